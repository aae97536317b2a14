// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/pagecopier.h"

#include <set>
#include <stdexcept>

namespace pdf {

void PageCopier::announce(const PageEntry &entry)
{
    QPDFObjectHandle page = document.qpdf().getObject(entry.page);
    std::vector<QPDFObjectHandle> appearances;
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (annotations.isArray()) {
        for (QPDFObjectHandle &annotation : annotations.getArrayAsVector()) {
            if (!annotation.isDictionary())
                continue;
            appearances.push_back(annotation.getKey("/AP"));
            appearances.push_back(annotation.getKey("/MK"));
            resources.addFieldDefaults(annotation.getKey("/DA"), annotation.getKey("/DR"));
        }
    }
    resources.addPage(page.getKey("/Contents"), resourcesOf(entry), appearances);
}

QPDFObjectHandle PageCopier::copy(const PageEntry &entry)
{
    // Everything else a page can hold leads to other pages, to the structure tree or into
    // applications' private data.
    static const char *const keys[] = {"/Contents", "/BleedBox",     "/TrimBox",  "/ArtBox",
                                       "/UserUnit", "/BoxColorInfo", "/Group",    "/Trans",
                                       "/Dur",      "/Tabs",         "/Metadata", "/LastModified",
                                       "/VP",       "/AF",           "/PZ",       "/OutputIntents"};
    QPDFObjectHandle original = document.qpdf().getObject(entry.page);
    if (!original.isDictionary())
        throw std::runtime_error("a page cannot be read");
    QPDFObjectHandle page = QPDFObjectHandle::newDictionary();
    page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    for (const char *key : keys)
        page.replaceKey(key, copier.copy(original.getKey(key)));
    for (const char *key : {"/MediaBox", "/CropBox"}) {
        QPDFObjectHandle box = inherited(entry, key);
        if (box.isRectangle())
            page.replaceKey(key, copier.copy(box));
    }
    page.replaceKey("/Rotate", copier.copy(inherited(entry, "/Rotate")));
    if (!page.hasKey("/MediaBox"))
        page.replaceKey("/MediaBox", QPDFObjectHandle::parse("[0 0 612 792]"));
    page.replaceKey("/AA", destinations.copyAdditionalActions(original.getKey("/AA")));
    page.replaceKey("/PresSteps", copySteps(original.getKey("/PresSteps")));
    page.replaceKey("/SeparationInfo", copySeparation(original.getKey("/SeparationInfo")));
    page.replaceKey("/Resources", copyResources(entry));
    return page;
}

/// The steps of a presentation within the page, a chain of nodes (ISO 32000-1, 12.4.4.2).
QPDFObjectHandle PageCopier::copySteps(QPDFObjectHandle node)
{
    QPDFObjectHandle first = QPDFObjectHandle::newNull();
    QPDFObjectHandle previous;
    std::set<QPDFObjGen> visited; // the chain of a damaged file can be a loop
    while (node.isDictionary() && (!node.isIndirect() || visited.insert(node.getObjGen()).second)) {
        QPDFObjectHandle copied = copier.copyAsIndirect(QPDFObjectHandle::newDictionary());
        for (const char *key : {"/Type", "/Dur"})
            copied.replaceKey(key, copier.copy(node.getKey(key)));
        for (const char *key : {"/NA", "/PA"})
            copied.replaceKey(key, destinations.copyAction(node.getKey(key)));
        if (first.isNull()) {
            first = copied;
        } else {
            previous.replaceKey("/Next", copied);
            copied.replaceKey("/Prev", previous);
        }
        previous = copied;
        node = node.getKey("/Next");
    }
    return first;
}

/// Which ink a preseparated page is for, and the kept ones among the pages that make one sheet
/// with it (ISO 32000-1, 14.11.4).
QPDFObjectHandle PageCopier::copySeparation(QPDFObjectHandle original)
{
    if (!original.isDictionary())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    for (const char *key : {"/DeviceColorant", "/ColorSpace"})
        copied.replaceKey(key, copier.copy(original.getKey(key)));
    QPDFObjectHandle sheet = original.getKey("/Pages");
    QPDFObjectHandle kept = QPDFObjectHandle::newArray();
    if (sheet.isArray()) {
        for (const QPDFObjectHandle &page : sheet.getArrayAsVector()) {
            const QPDFObjectHandle there = copier.mapped(page.getObjGen());
            if (there.isIndirect())
                kept.appendItem(there);
        }
    }
    copied.replaceKey("/Pages", kept);
    return copied;
}

QPDFObjectHandle PageCopier::inherited(const PageEntry &entry, const char *key)
{
    QPDFObjectHandle own = document.qpdf().getObject(entry.page).getKey(key);
    if (!own.isNull())
        return own;
    // What a node hands down is looked up once, not for each page below it.
    const auto [found, isNew] = handedDown.try_emplace({entry.parent, key});
    if (isNew) {
        const std::map<QPDFObjGen, QPDFObjGen> &parents = document.pages().nodeParents;
        const auto above = parents.find(entry.parent);
        const PageEntry node{entry.parent, above == parents.end() ? QPDFObjGen() : above->second};
        found->second = node.page.isIndirect()
                            ? inheritedAttribute(document.qpdf(), document.pages(), node, key)
                            : QPDFObjectHandle::newNull();
    }
    return found->second;
}

ResourceCopier::PageResources PageCopier::resourcesOf(const PageEntry &entry)
{
    const QPDFObjectHandle dictionary = inherited(entry, "/Resources");
    if (document.qpdf().getObject(entry.page).hasKey("/Resources"))
        return {dictionary, entry.page, false};
    return {dictionary, inheritedFrom(document.qpdf(), document.pages(), entry, "/Resources"),
            true};
}

/// Resources that stand directly in a node of the page tree serve all pages below it and are
/// written once.
QPDFObjectHandle PageCopier::copyResources(const PageEntry &entry)
{
    const ResourceCopier::PageResources found = resourcesOf(entry);
    QPDFObjectHandle dictionary = found.dictionary;
    if (!dictionary.isDictionary())
        return QPDFObjectHandle::newDictionary();
    if (dictionary.isIndirect())
        return copier.copy(dictionary);
    if (!found.isInherited)
        return resources.copyOwn(dictionary, found.owner);
    return resources.copyInherited(dictionary, found.owner);
}

} // namespace pdf
