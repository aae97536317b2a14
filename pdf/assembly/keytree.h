// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <optional>
#include <qpdf/QPDFObjectHandle.hh>
#include <string>

namespace pdf {

/// Looks up a name tree or a number tree (ISO 32000-1, 7.9.6 and 7.9.7).
///
/// A sound tree is descended by its /Limits, so a lookup reads a few nodes however large the tree
/// is. What is not found so (a damaged tree, names sorted in another way) is looked for in all of
/// it, which is read at most once. Names are compared as bytes.
class KeyTree
{
public:
    enum class Kind { Names, Numbers };

    KeyTree(const QPDFObjectHandle &rootNode, Kind kind);

    /// The value of the name or number, null when the tree has none.
    [[nodiscard]] QPDFObjectHandle find(const std::string &name);
    [[nodiscard]] QPDFObjectHandle find(long long number);
    /// The value of the greatest number not above the given one, with that number.
    [[nodiscard]] std::optional<std::pair<long long, QPDFObjectHandle>> findLast(long long number);

private:
    struct Key
    {
        long long number = 0;
        std::string name;
        bool operator<(const Key &other) const
        {
            return number != other.number ? number < other.number : name < other.name;
        }
    };

    [[nodiscard]] QPDFObjectHandle find(const Key &key);
    [[nodiscard]] std::optional<QPDFObjectHandle> descend(const Key &key);
    [[nodiscard]] QPDFObjectHandle kidFor(const Key &key, QPDFObjectHandle kids) const;
    [[nodiscard]] QPDFObjectHandle leafValue(const Key &key, QPDFObjectHandle pairs) const;
    [[nodiscard]] Key keyOf(QPDFObjectHandle object) const;
    void readAll();

    QPDFObjectHandle root;
    bool holdsNames;
    std::optional<std::map<Key, QPDFObjectHandle>> all;
};

} // namespace pdf
