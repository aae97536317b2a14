// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/destinations.h"

#include <qpdf/QPDFNameTreeObjectHelper.hh>

namespace pdf {

namespace {

/// Deep enough for every real chain of actions; a file can chain them in a loop.
constexpr int maximalActionDepth = 32;

QPDFObjectHandle nothing()
{
    return QPDFObjectHandle::newNull();
}

} // namespace

QPDFObjectHandle DestinationCopier::named(QPDFObjectHandle name)
{
    QPDFObjectHandle catalog = document.qpdf().getTrailer().getKey("/Root");
    if (name.isName()) {
        QPDFObjectHandle names = catalog.getKey("/Dests");
        return names.isDictionary() ? names.getKey(name.getName()) : nothing();
    }
    QPDFObjectHandle names = catalog.getKey("/Names");
    QPDFObjectHandle tree = names.isDictionary() ? names.getKey("/Dests") : nothing();
    QPDFObjectHandle found = nothing();
    if (tree.isDictionary()) {
        try {
            QPDFNameTreeObjectHelper(tree, document.qpdf(), false)
                .findObject(name.getUTF8Value(), found);
        } catch (const std::exception &) {
            // A damaged name tree names nothing; the page itself is still good.
            return nothing();
        }
    }
    return found;
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

QPDFObjectHandle DestinationCopier::copyDestination(const QPDFObjectHandle &destination)
{
    QPDFObjectHandle value = destination;
    if (value.isName() || value.isString())
        value = named(value);
    if (value.isDictionary())
        value = value.getKey("/D");
    if (!value.isArray() || value.getArrayNItems() == 0)
        return nothing();
    std::vector<QPDFObjectHandle> items = value.getArrayAsVector();
    QPDFObjectHandle page = targetPage(items.front());
    if (page.isNull() && !page.isIndirect())
        return nothing();
    for (QPDFObjectHandle &item : items)
        item = copier.copy(item);
    items.front() = page;
    return QPDFObjectHandle::newArray(items);
}

QPDFObjectHandle DestinationCopier::copyAction(const QPDFObjectHandle &action)
{
    return copyActionChain(action, 0);
}

QPDFObjectHandle DestinationCopier::copyActionChain(QPDFObjectHandle action, int depth)
{
    if (!action.isDictionary() || depth > maximalActionDepth)
        return nothing();
    QPDFObjectHandle kind = action.getKey("/S");
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    if (kind.isNameAndEquals("/Thread"))
        return nothing();
    if (kind.isNameAndEquals("/GoTo")) {
        const QPDFObjectHandle destination = copyDestination(action.getKey("/D"));
        if (QPDFObjectHandle(destination).isNull())
            return nothing();
        copied.replaceKey("/S", QPDFObjectHandle::newName("/GoTo"));
        copied.replaceKey("/D", destination);
    } else {
        for (const auto &[key, value] : action.getDictAsMap()) {
            if (key != "/Next")
                copied.replaceKey(key, copier.copy(value));
        }
    }
    copied.replaceKey("/Next", copyFollowing(action.getKey("/Next"), depth + 1));
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
        result.replaceKey(event, copyAction(action));
    return result.getKeys().empty() ? nothing() : result;
}

} // namespace pdf
