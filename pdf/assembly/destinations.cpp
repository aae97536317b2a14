// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/destinations.h"

namespace pdf {

namespace {

/// Deep enough for every real chain of actions; a file can chain them in a loop.
constexpr int maximalActionDepth = 32;

QPDFObjectHandle nothing()
{
    return QPDFObjectHandle::newNull();
}

std::vector<QPDFObjectHandle> itemsOf(QPDFObjectHandle following)
{
    if (following.isNull())
        return {};
    return following.isArray() ? following.getArrayAsVector()
                               : std::vector<QPDFObjectHandle>{following};
}

/// What can stand for an action left out: the first of those after it, with the others after that.
QPDFObjectHandle inPlace(const QPDFObjectHandle &following)
{
    const std::vector<QPDFObjectHandle> items = itemsOf(following);
    if (items.size() < 2)
        return items.empty() ? nothing() : items.front();
    QPDFObjectHandle first = QPDFObjectHandle(items.front()).shallowCopy();
    std::vector<QPDFObjectHandle> later = itemsOf(first.getKey("/Next"));
    later.insert(later.end(), items.begin() + 1, items.end());
    first.replaceKey("/Next", QPDFObjectHandle::newArray(later));
    return first;
}

QPDFObjectHandle nameTreeRoot(QPDFObjectHandle catalog)
{
    QPDFObjectHandle names = catalog.getKey("/Names");
    return names.isDictionary() ? names.getKey("/Dests") : nothing();
}

} // namespace

DestinationCopier::DestinationCopier(Document &inputDocument, ObjectCopier &objectCopier)
    : document(inputDocument), copier(objectCopier),
      nameTree(nameTreeRoot(objectCopier.sourceCatalog()), KeyTree::Kind::Names)
{
}

QPDFObjectHandle DestinationCopier::named(QPDFObjectHandle name)
{
    // Readers look a name up in the tree and in the older dictionary, however it is written.
    const std::string text = name.isString() ? name.getStringValue() : name.getName().substr(1);
    QPDFObjectHandle names = copier.sourceCatalog().getKey("/Dests");
    const QPDFObjectHandle older = names.isDictionary() ? names.getKey('/' + text) : nothing();
    if (name.isName() && !QPDFObjectHandle(older).isNull())
        return older;
    const QPDFObjectHandle found = nameTree.find(text);
    return QPDFObjectHandle(found).isNull() ? older : found;
}

QPDFObjectHandle DestinationCopier::targetPage(QPDFObjectHandle page)
{
    if (int index = 0; page.getValueAsInt(index)) {
        // Some producers write the page's index, which belongs into other files' destinations.
        if (index < 0 || index >= document.pages().count())
            return nothing();
        return copier.mapped(document.pages().pages[static_cast<std::size_t>(index)].page);
    }
    return page.isIndirect() && page.isDictionary() ? copier.mapped(page.getObjGen()) : nothing();
}

QPDFObjectHandle DestinationCopier::explicitArray(QPDFObjectHandle destination)
{
    if (destination.isName() || destination.isString())
        destination = named(destination);
    if (destination.isDictionary())
        destination = destination.getKey("/D");
    return destination.isArray() && destination.getArrayNItems() > 0 ? destination : nothing();
}

QPDFObjectHandle DestinationCopier::targetOf(const QPDFObjectHandle &destination)
{
    QPDFObjectHandle array = explicitArray(destination);
    return array.isArray() ? targetPage(array.getArrayItem(0)) : nothing();
}

QPDFObjectHandle DestinationCopier::copyDestination(const QPDFObjectHandle &destination)
{
    const QPDFObjectHandle page = targetOf(destination);
    if (!page.isIndirect())
        return nothing();
    std::vector<QPDFObjectHandle> items = explicitArray(destination).getArrayAsVector();
    for (QPDFObjectHandle &item : items)
        item = copier.copy(item);
    items.front() = page;
    const QPDFObjectHandle copied = QPDFObjectHandle::newArray(items);
    QPDFObjectHandle name = destination;
    if (name.isName()) {
        usedNames.emplace(ObjectCopier::writtenName(name.getName()), copied);
        return QPDFObjectHandle::newName(ObjectCopier::writtenName(name.getName()));
    }
    if (name.isString()) {
        usedStrings.emplace(name.getStringValue(), copied);
        return QPDFObjectHandle::newString(name.getStringValue());
    }
    return copied;
}

QPDFObjectHandle DestinationCopier::usedNameDictionary() const
{
    return usedNames.empty() ? nothing() : QPDFObjectHandle::newDictionary(usedNames);
}

QPDFObjectHandle DestinationCopier::usedNameTree() const
{
    if (usedStrings.empty())
        return nothing();
    QPDFObjectHandle pairs = QPDFObjectHandle::newArray();
    for (const auto &[name, destination] : usedStrings) {
        pairs.appendItem(QPDFObjectHandle::newString(name));
        pairs.appendItem(destination);
    }
    return QPDFObjectHandle::newDictionary({{"/Names", pairs}});
}

bool DestinationCopier::isKept(const QPDFObjectHandle &action)
{
    // More than producers chain; what has more is looked at when it is copied.
    constexpr int maximalActions = 64;
    std::vector<QPDFObjectHandle> waiting = {action};
    for (int count = 0; !waiting.empty(); ++count) {
        QPDFObjectHandle current = waiting.back();
        waiting.pop_back();
        if (!current.isDictionary())
            continue;
        if (!leadsOutside(current) || count == maximalActions)
            return true;
        const std::vector<QPDFObjectHandle> following = itemsOf(current.getKey("/Next"));
        waiting.insert(waiting.end(), following.begin(), following.end());
    }
    return false;
}

bool DestinationCopier::leadsOutside(QPDFObjectHandle action)
{
    QPDFObjectHandle kind = action.getKey("/S");
    return kind.isNameAndEquals("/Thread") ||
           (kind.isNameAndEquals("/GoTo") && !targetOf(action.getKey("/D")).isIndirect());
}

QPDFObjectHandle DestinationCopier::copyAction(const QPDFObjectHandle &action)
{
    return copyActionChain(action, 0);
}

/// Each action that is an object of its own is copied once, so that a chain in a loop, or one that
/// branches again and again, costs no more than its file's size.
QPDFObjectHandle DestinationCopier::copyActionChain(QPDFObjectHandle action, int depth)
{
    if (!action.isDictionary() || depth > maximalActionDepth)
        return nothing();
    if (!action.isIndirect() || !action.hasKey("/Next"))
        return copyWithFollowing(action, depth);
    const auto [entry, isNew] = chains.try_emplace(action.getObjGen(), nothing());
    if (isNew) {
        QPDFObjectHandle copied = copyWithFollowing(action, depth);
        const bool isDirect = copied.isDictionary() && !copied.isIndirect();
        entry->second = isDirect ? copier.targetDocument().makeIndirectObject(copied) : copied;
    }
    return entry->second;
}

QPDFObjectHandle DestinationCopier::copyWithFollowing(QPDFObjectHandle action, int depth)
{
    const QPDFObjectHandle following = copyFollowing(action.getKey("/Next"), depth + 1);
    if (leadsOutside(action))
        return inPlace(following);
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    if (action.getKey("/S").isNameAndEquals("/GoTo")) {
        copied.replaceKey("/S", QPDFObjectHandle::newName("/GoTo"));
        copied.replaceKey("/D", copyDestination(action.getKey("/D")));
    } else {
        for (const auto &[key, value] : action.getDictAsMap()) {
            if (key != "/Next")
                ObjectCopier::setEntry(copied, key, copier.copy(value));
        }
    }
    copied.replaceKey("/Next", following);
    return copied;
}

QPDFObjectHandle DestinationCopier::copyFollowing(QPDFObjectHandle next, int depth)
{
    if (!next.isArray())
        return copyActionChain(next, depth);
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    for (const QPDFObjectHandle &action : next.getArrayAsVector()) {
        QPDFObjectHandle copied = copyActionChain(action, depth);
        if (!copied.isNull())
            result.appendItem(copied);
    }
    return result.getArrayNItems() > 0 ? result : nothing();
}

QPDFObjectHandle DestinationCopier::copyAdditionalActions(const QPDFObjectHandle &actions)
{
    QPDFObjectHandle dictionary = actions;
    if (!dictionary.isDictionary())
        return nothing();
    QPDFObjectHandle result = QPDFObjectHandle::newDictionary();
    for (const auto &[event, action] : dictionary.getDictAsMap())
        ObjectCopier::setEntry(result, event, copyAction(action));
    return result.getKeys().empty() ? nothing() : result;
}

} // namespace pdf
