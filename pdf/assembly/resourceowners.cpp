// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/resourceowners.h"

#include <algorithm>
#include <iterator>

namespace pdf {

namespace {

using Numbers = std::vector<QPDFObjGen>;

/// Adds the dictionaries of resources that the object refers to; false when its bytes do not tell.
/// What only looks like such a reference, inside a string for instance, does no harm: one more
/// dictionary is taken for a shared one, or for one that comes with its page in whole.
bool addResources(Numbers &found, const ObjectBytes &bytes, QPDFObjGen object)
{
    constexpr std::string_view key = "/Resources";
    std::string_view text = bytes.from(object);
    text = text.substr(0, text.find("endobj"));
    // "/R#65sources" is another spelling.
    if (text.empty() || text.find('#') != std::string_view::npos)
        return false;
    for (std::size_t at = text.find(key); at != std::string_view::npos; at = text.find(key)) {
        text.remove_prefix(at + key.size());
        if (const std::optional<QPDFObjGen> dictionary = rawReference(text))
            found.push_back(*dictionary);
    }
    return true;
}

void sort(Numbers &numbers)
{
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

} // namespace

std::vector<QPDFObjGen> ownResources(const Document &document, const std::vector<int> &indexes)
{
    const PageList &list = document.pages();
    const ObjectBytes &bytes = document.objectBytes();
    // Looking at as many pages costs as much as reading the contents of one.
    constexpr std::size_t pagesPerContents = 200;
    if (indexes.size() * pagesPerContents < list.pages.size())
        return {};
    std::vector<bool> isKept(list.pages.size(), false);
    for (const int index : indexes)
        isKept[static_cast<std::size_t>(index)] = true;
    Numbers own;
    Numbers others;
    for (std::size_t i = 0; i < list.pages.size(); ++i) {
        const PageEntry &page = list.pages[i];
        const bool isFirstOfNode = i == 0 || list.pages[i - 1].parent != page.parent;
        if (!addResources(isKept[i] ? own : others, bytes, page.page) ||
            (isFirstOfNode && !addResources(others, bytes, page.parent)))
            return {};
    }
    for (const auto &[node, parent] : list.nodeParents) {
        if (!addResources(others, bytes, parent))
            return {};
    }
    sort(own);
    sort(others);
    Numbers result;
    std::set_difference(own.begin(), own.end(), others.begin(), others.end(),
                        std::back_inserter(result));
    return result;
}

} // namespace pdf
