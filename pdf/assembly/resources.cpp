// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/resources.h"

#include "pdf/assembly/namecollector.h"

#include <algorithm>
#include <utility>

namespace pdf {

namespace {

/// Form XObjects and tiling patterns, which have contents and resources of their own.
bool hasContents(QPDFObjectHandle stream)
{
    QPDFObjectHandle dictionary = stream.getDict();
    return dictionary.getKey("/Subtype").isNameAndEquals("/Form") ||
           dictionary.hasKey("/PatternType") || dictionary.hasKey("/BBox");
}

/// Whether the dictionary names more than fonts and ways to draw. Tools that take pages out often
/// leave the images of all pages in each one's dictionary.
bool holdsContents(QPDFObjectHandle resources)
{
    if (!resources.isDictionary())
        return false;
    return resources.hasKey("/XObject") || resources.hasKey("/Pattern") ||
           resources.hasKey("/Properties");
}

QPDFObjectHandle dictionaryOf(QPDFObjectHandle object)
{
    return object.isStream() ? object.getDict() : object;
}

void addColorSpaceName(std::set<std::string> &names, QPDFObjectHandle owner, const char *key)
{
    if (!owner.isDictionary())
        return;
    QPDFObjectHandle space = owner.getKey(key);
    if (space.isName())
        names.insert(space.getName());
}

/// Adds the colour spaces that are used without being named in the contents: those that replace the
/// device's (ISO 32000-1, 8.6.5.6), those that images, shadings and groups name, and those of
/// single inks: a renderer that simulates overprinting draws a page with the inks its resources
/// list.
void addImplied(std::set<std::string> &names, const std::string &category,
                QPDFObjectHandle resources)
{
    if (category != "/ColorSpace")
        return;
    const std::set<std::string> named = names;
    for (const auto &[name, space] : resources.getKey(category).getDictAsMap()) {
        QPDFObjectHandle array = space;
        QPDFObjectHandle family = array.isArray() && array.getArrayNItems() > 0
                                      ? array.getArrayItem(0)
                                      : QPDFObjectHandle::newNull();
        if (family.isNameAndEquals("/Separation") || family.isNameAndEquals("/DeviceN"))
            names.insert(name);
    }
    for (const char *user : {"/XObject", "/Shading", "/Pattern"}) {
        QPDFObjectHandle users = resources.getKey(user);
        if (!users.isDictionary())
            continue;
        for (const std::string &name : named) {
            QPDFObjectHandle owner = dictionaryOf(users.getKey(name));
            if (!owner.isDictionary())
                continue;
            addColorSpaceName(names, owner, "/ColorSpace");
            addColorSpaceName(names, dictionaryOf(owner.getKey("/Shading")), "/ColorSpace");
            addColorSpaceName(names, owner.getKey("/Group"), "/CS");
        }
    }
    names.insert({"/DefaultGray", "/DefaultRGB", "/DefaultCMYK"});
}

std::vector<QPDFObjectHandle> streamsOf(QPDFObjectHandle contents)
{
    return contents.isArray() ? contents.getArrayAsVector()
                              : std::vector<QPDFObjectHandle>{contents};
}

} // namespace

ResourceCopier::Scope ResourceCopier::scopeOf(QPDFObjectHandle resources, QPDFObjGen owner) const
{
    bool hasShared = false;
    if (resources.isDictionary()) {
        for (const auto &[category, dictionary] : resources.getDictAsMap())
            hasShared = hasShared || dictionary.isIndirect();
    }
    if (!resources.isIndirect())
        return {{resources, owner, false, hasShared}, {}};
    const QPDFObjGen number = resources.getObjGen();
    const bool isUnshared = std::binary_search(unshared.begin(), unshared.end(), number);
    const bool isShared = !isUnshared || holdsContents(resources);
    return {{resources, number, isShared, isShared || hasShared}, {}};
}

void ResourceCopier::addPage(const QPDFObjectHandle &contents, const PageResources &resources,
                             const std::vector<QPDFObjectHandle> &appearances)
{
    Scope scope = scopeOf(resources.dictionary, resources.owner);
    scope.isShared = scope.isShared || resources.isInherited || holdsContents(resources.dictionary);
    scope.hasShared = scope.hasShared || scope.isShared;
    waiting.push_back({streamsOf(contents), scope});
    for (const QPDFObjectHandle &appearance : appearances)
        addAppearance(appearance, scope);
    follow();
}

void ResourceCopier::addAppearance(const QPDFObjectHandle &appearance, const Scope &scope)
{
    // /AP holds streams or dictionaries of streams (ISO 32000-1, 12.5.5), /MK streams.
    constexpr int maximalDepth = 3;
    std::vector<std::pair<QPDFObjectHandle, int>> values = {{appearance, 0}};
    while (!values.empty()) {
        auto [value, depth] = values.back();
        values.pop_back();
        if (value.isStream()) {
            visitResource(value, scope);
            continue;
        }
        const bool isNew =
            !value.isIndirect() ||
            visited.insert({value.getObjGen(), scope.owner, QPDFObjGen(depth, 0)}).second;
        if (value.isDictionary() && depth < maximalDepth && isNew) {
            for (const auto &[key, item] : value.getDictAsMap())
                values.emplace_back(item, depth + 1);
        }
    }
}

void ResourceCopier::addFormDefaults(QPDFObjectHandle resources)
{
    if (!resources.isDictionary())
        return;
    Scope scope = scopeOf(resources, QPDFObjGen());
    if (scope.isShared)
        sharedResources.emplace(scope.owner, resources);
    // The dictionary serves all pages, wherever it stands.
    scope.isShared = scope.isShared || !resources.isIndirect();
    for (const auto &[category, dictionary] : resources.getDictAsMap()) {
        if (!QPDFObjectHandle(dictionary).isDictionary() ||
            (!scope.isShared && !dictionary.isIndirect()))
            continue;
        if (category == "/Font" || category == "/Encoding")
            usageOf(dictionary, scope.owner, category).isWhole = true;
        else
            useNamed(defaultNames, dictionary, category, scope);
    }
}

QPDFObjectHandle ResourceCopier::copyFormDefaults(const QPDFObjectHandle &resources)
{
    const bool isDirect = !resources.isIndirect() && QPDFObjectHandle(resources).isDictionary();
    return isDirect ? usedResources(resources, QPDFObjGen()) : copier.copy(resources);
}

void ResourceCopier::addFieldDefaults(QPDFObjectHandle operators, QPDFObjectHandle resources)
{
    if (!operators.isString())
        return;
    const Names names = namesIn(operators.getStringValue());
    defaultNames.insert(names.begin(), names.end());
    if (!resources.isDictionary())
        return;
    const Scope scope = scopeOf(resources, QPDFObjGen());
    for (auto &[category, dictionary] : resources.getDictAsMap()) {
        if (dictionary.isDictionary() && (scope.isShared || dictionary.isIndirect()))
            useNamed(names, dictionary, category, scope);
    }
    if (scope.isShared)
        sharedResources.emplace(scope.owner, resources);
}

void ResourceCopier::follow()
{
    while (!waiting.empty()) {
        const Contents next = std::move(waiting.back());
        waiting.pop_back();
        visit(next);
    }
}

ResourceCopier::Usage &ResourceCopier::usageOf(const QPDFObjectHandle &dictionary, QPDFObjGen owner,
                                               const std::string &category)
{
    const DictionaryId id = dictionary.isIndirect()
                                ? DictionaryId(dictionary.getObjGen(), std::string())
                                : DictionaryId(owner, category);
    Usage &usage = usages[id];
    usage.dictionary = dictionary;
    return usage;
}

void ResourceCopier::visit(const Contents &contents)
{
    const Scope &scope = contents.scope;
    QPDFObjectHandle resources = scope.resources;
    if (!resources.isDictionary())
        return;
    if (resources.isIndirect() && scope.isShared)
        sharedResources.emplace(scope.owner, resources);
    std::optional<Names> names;
    bool isScanned = false;
    for (auto &[category, dictionary] : resources.getDictAsMap()) {
        if (!dictionary.isDictionary())
            continue;
        const bool isShared = scope.isShared || dictionary.isIndirect();
        if (isShared && !isScanned) {
            names = namesInContents(contents.streams);
            isScanned = true;
        }
        if (isShared && names) {
            addImplied(*names, category, resources);
            useNamed(*names, dictionary, category, scope);
            continue;
        }
        if (isShared)
            usageOf(dictionary, scope.owner, category).isWhole = true;
        for (const auto &[name, resource] : dictionary.getDictAsMap())
            visitResource(resource, scope);
    }
    visitAround(contents, isScanned ? std::move(names) : std::nullopt);
}

void ResourceCopier::visitAround(const Contents &contents, std::optional<Names> names)
{
    std::vector<QPDFObjectHandle> inner = {contents.scope.resources};
    const std::vector<Dictionary> &around = contents.scope.around;
    for (auto outer = around.rbegin(); outer != around.rend(); ++outer) {
        QPDFObjectHandle resources = outer->resources;
        if (!outer->hasShared || !resources.isDictionary())
            continue;
        if (!names)
            names = namesInContents(contents.streams);
        if (!names)
            return;
        for (auto &[category, dictionary] : resources.getDictAsMap()) {
            if (!dictionary.isDictionary() || (!outer->isShared && !dictionary.isIndirect()))
                continue;
            Names missing = *names;
            for (QPDFObjectHandle &found : inner) {
                QPDFObjectHandle hiding = found.getKey(category);
                for (const std::string &name : hiding.isDictionary() ? hiding.getKeys() : Names())
                    missing.erase(name);
            }
            useNamed(missing, dictionary, category, {*outer, {}});
        }
        inner.push_back(resources);
    }
}

void ResourceCopier::useNamed(const Names &names, QPDFObjectHandle dictionary,
                              const std::string &category, const Scope &scope)
{
    Usage &usage = usageOf(dictionary, scope.owner, category);
    for (const std::string &name : names) {
        QPDFObjectHandle resource = dictionary.getKey(name);
        if (resource.isNull())
            continue;
        usage.names.insert(name);
        visitResource(resource, scope);
    }
}

void ResourceCopier::visitResource(QPDFObjectHandle resource, const Scope &scope)
{
    if (resource.isStream()) {
        if (hasContents(resource))
            visitStreams({resource}, resource.getDict().getKey("/Resources"), resource.getObjGen(),
                         scope);
    } else if (resource.isDictionary() && resource.hasKey("/CharProcs")) {
        std::vector<QPDFObjectHandle> glyphs;
        QPDFObjectHandle procedures = resource.getKey("/CharProcs");
        if (procedures.isDictionary())
            for (const auto &[name, glyph] : procedures.getDictAsMap())
                glyphs.push_back(glyph);
        visitStreams(std::move(glyphs), resource.getKey("/Resources"), resource.getObjGen(), scope);
    } else if (resource.isDictionary()) {
        // A graphics state, whose soft mask is a form XObject.
        QPDFObjectHandle mask = resource.getKey("/SMask");
        QPDFObjectHandle group =
            mask.isDictionary() ? mask.getKey("/G") : QPDFObjectHandle::newNull();
        if (group.isStream())
            visitResource(group, scope);
    }
}

void ResourceCopier::visitStreams(std::vector<QPDFObjectHandle> streams, QPDFObjectHandle resources,
                                  QPDFObjGen owner, const Scope &scope)
{
    if (streams.empty())
        return;
    // Without resources of its own such a stream uses those of the page (ISO 32000-1, 7.8.3).
    Scope own = scope;
    if (resources.isDictionary()) {
        constexpr std::size_t maximalAround = 4;
        own = scopeOf(resources, owner);
        own.around = scope.around;
        if (scope.owner != own.owner && own.around.size() < maximalAround)
            own.around.push_back(scope);
    }
    std::vector<QPDFObjGen> key = {streams.front().getObjGen(), own.owner};
    // The page's, which is where most of what is missing elsewhere is found.
    if (!own.around.empty() && own.around.front().hasShared)
        key.push_back(own.around.front().owner);
    if (visited.insert(key).second)
        waiting.push_back({std::move(streams), own});
}

void ResourceCopier::mapShared()
{
    // In a damaged file an object can be referred to as something else, too, a page for instance.
    const auto claim = [this](QPDFObjGen number) {
        const bool isFree = !copier.isMapped(number);
        if (isFree)
            copier.map(number, copier.placeholder());
        return isFree;
    };
    std::vector<QPDFObjGen> claimedResources;
    std::vector<const Usage *> claimedUsages;
    for (const auto &[number, resources] : sharedResources) {
        if (claim(number))
            claimedResources.push_back(number);
    }
    for (const auto &[id, usage] : usages) {
        if (id.second.empty() && claim(id.first))
            claimedUsages.push_back(&usage);
    }
    const auto fill = [this](QPDFObjGen number, const QPDFObjectHandle &contents) {
        copier.targetDocument().replaceObject(copier.mapped(number).getObjGen(), contents);
    };
    for (const QPDFObjGen number : claimedResources)
        fill(number, usedResources(sharedResources.at(number), number));
    for (const Usage *usage : claimedUsages)
        fill(usage->dictionary.getObjGen(), usedEntries(*usage));
}

QPDFObjectHandle ResourceCopier::usedEntries(const Usage &usage)
{
    QPDFObjectHandle dictionary = usage.dictionary;
    if (usage.isWhole)
        return copier.copyContents(dictionary);
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    for (const std::string &name : usage.names)
        ObjectCopier::setEntry(copied, name, copier.copy(dictionary.getKey(name)));
    return copied;
}

QPDFObjectHandle ResourceCopier::usedResources(QPDFObjectHandle resources, QPDFObjGen owner)
{
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    for (auto &[category, dictionary] : resources.getDictAsMap()) {
        const auto usage = usages.find({owner, category});
        const bool isOwn = dictionary.isDictionary() && !dictionary.isIndirect();
        if (!isOwn)
            ObjectCopier::setEntry(copied, category, copier.copy(dictionary));
        else if (usage != usages.end())
            ObjectCopier::setEntry(copied, category, usedEntries(usage->second));
    }
    return copied;
}

QPDFObjectHandle ResourceCopier::copyOwn(const QPDFObjectHandle &resources, QPDFObjGen page)
{
    return holdsContents(resources) ? usedResources(resources, page) : copier.copy(resources);
}

QPDFObjectHandle ResourceCopier::copyInherited(const QPDFObjectHandle &resources, QPDFObjGen owner)
{
    const auto [entry, isNew] = inheritedCopies.try_emplace(owner);
    if (isNew)
        entry->second = copier.targetDocument().makeIndirectObject(usedResources(resources, owner));
    return entry->second;
}

} // namespace pdf
