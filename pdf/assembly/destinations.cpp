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

/// What can stand for an action left out: the action after it, the first where there are several.
QPDFObjectHandle withoutBranches(QPDFObjectHandle following)
{
    return following.isArray() ? following.getArrayItem(0) : following;
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
    if (name.isString())
        return nameTree.find(name.getStringValue());
    QPDFObjectHandle names = copier.sourceCatalog().getKey("/Dests");
    return names.isDictionary() ? names.getKey(name.getName()) : nothing();
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
    // Branches are followed by their first action, which is enough to know a dead end.
    QPDFObjectHandle current = action;
    for (int depth = 0; current.isDictionary() && depth <= maximalActionDepth; ++depth) {
        QPDFObjectHandle kind = current.getKey("/S");
        const bool isJump = kind.isNameAndEquals("/GoTo");
        const bool leadsOutside = isJump && !targetOf(current.getKey("/D")).isIndirect();
        if (!leadsOutside && !kind.isNameAndEquals("/Thread"))
            return true;
        current = current.getKey("/Next");
        if (current.isArray())
            return true;
    }
    return false;
}

QPDFObjectHandle DestinationCopier::copyAction(const QPDFObjectHandle &action)
{
    return copyActionChain(action, 0);
}

QPDFObjectHandle DestinationCopier::copyActionChain(QPDFObjectHandle action, int depth)
{
    if (!action.isDictionary() || depth > maximalActionDepth)
        return nothing();
    const QPDFObjectHandle following = copyFollowing(action.getKey("/Next"), depth + 1);
    QPDFObjectHandle kind = action.getKey("/S");
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    if (kind.isNameAndEquals("/Thread"))
        return withoutBranches(following);
    if (kind.isNameAndEquals("/GoTo")) {
        const QPDFObjectHandle destination = copyDestination(action.getKey("/D"));
        if (QPDFObjectHandle(destination).isNull())
            return withoutBranches(following);
        copied.replaceKey("/S", QPDFObjectHandle::newName("/GoTo"));
        copied.replaceKey("/D", destination);
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
    // Of several, each could branch again; one level of branching is all that producers write.
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    for (const QPDFObjectHandle &action : next.getArrayAsVector()) {
        QPDFObjectHandle copied = copyActionChain(action, maximalActionDepth);
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
