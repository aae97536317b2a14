// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/keytree.h"

#include <set>
#include <vector>

namespace pdf {

namespace {

/// Enough for any number of keys; a damaged tree can be a loop.
constexpr int maximalTreeDepth = 32;

} // namespace

KeyTree::KeyTree(const QPDFObjectHandle &rootNode, Kind kind)
    : root(rootNode), holdsNames(kind == Kind::Names)
{
}

QPDFObjectHandle KeyTree::find(const std::string &name)
{
    return find(Key{0, name});
}

QPDFObjectHandle KeyTree::find(long long number)
{
    return find(Key{number, {}});
}

QPDFObjectHandle KeyTree::find(const Key &key)
{
    if (const std::optional<QPDFObjectHandle> value = descend(key))
        return *value;
    readAll();
    const auto found = all->find(key);
    return found == all->end() ? QPDFObjectHandle::newNull() : found->second;
}

std::optional<std::pair<long long, QPDFObjectHandle>> KeyTree::findLast(long long number)
{
    readAll();
    const auto next = all->upper_bound(Key{number, {}});
    if (next == all->begin())
        return std::nullopt;
    return std::pair(std::prev(next)->first.number, std::prev(next)->second);
}

KeyTree::Key KeyTree::keyOf(QPDFObjectHandle object) const
{
    Key key;
    if (holdsNames)
        key.name = object.isString() ? object.getStringValue() : std::string();
    else
        object.getValueAsInt(key.number);
    return key;
}

std::optional<QPDFObjectHandle> KeyTree::descend(const Key &key)
{
    QPDFObjectHandle node = root;
    for (int level = 0; node.isDictionary() && level < maximalTreeDepth; ++level) {
        QPDFObjectHandle pairs = node.getKey(holdsNames ? "/Names" : "/Nums");
        if (pairs.isArray()) {
            const QPDFObjectHandle value = leafValue(key, pairs);
            return QPDFObjectHandle(value).isNull() ? std::nullopt : std::optional(value);
        }
        QPDFObjectHandle kids = node.getKey("/Kids");
        if (!kids.isArray())
            return std::nullopt;
        node = kidFor(key, kids);
    }
    return std::nullopt;
}

QPDFObjectHandle KeyTree::kidFor(const Key &key, QPDFObjectHandle kids) const
{
    int low = 0;
    int high = kids.getArrayNItems();
    while (low < high) {
        const int middle = low + (high - low) / 2;
        QPDFObjectHandle kid = kids.getArrayItem(middle);
        QPDFObjectHandle limits =
            kid.isDictionary() ? kid.getKey("/Limits") : QPDFObjectHandle::newNull();
        if (!limits.isArray() || limits.getArrayNItems() != 2)
            break;
        if (key < keyOf(limits.getArrayItem(0)))
            high = middle;
        else if (keyOf(limits.getArrayItem(1)) < key)
            low = middle + 1;
        else
            return kid;
    }
    return QPDFObjectHandle::newNull();
}

QPDFObjectHandle KeyTree::leafValue(const Key &key, QPDFObjectHandle pairs) const
{
    int low = 0;
    int high = pairs.getArrayNItems() / 2;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const Key there = keyOf(pairs.getArrayItem(2 * middle));
        if (key < there)
            high = middle;
        else if (there < key)
            low = middle + 1;
        else
            return pairs.getArrayItem(2 * middle + 1);
    }
    return QPDFObjectHandle::newNull();
}

void KeyTree::readAll()
{
    if (all)
        return;
    all.emplace();
    std::set<QPDFObjGen> visited;
    std::vector<QPDFObjectHandle> nodes = {root};
    while (!nodes.empty()) {
        QPDFObjectHandle node = nodes.back();
        nodes.pop_back();
        if (!node.isDictionary() || (node.isIndirect() && !visited.insert(node.getObjGen()).second))
            continue;
        QPDFObjectHandle pairs = node.getKey(holdsNames ? "/Names" : "/Nums");
        const int count = pairs.isArray() ? pairs.getArrayNItems() : 0;
        for (int i = 0; i + 1 < count; i += 2)
            all->emplace(keyOf(pairs.getArrayItem(i)), pairs.getArrayItem(i + 1));
        QPDFObjectHandle kids = node.getKey("/Kids");
        if (kids.isArray()) {
            const std::vector<QPDFObjectHandle> items = kids.getArrayAsVector();
            nodes.insert(nodes.end(), items.rbegin(), items.rend());
        }
    }
}

} // namespace pdf
