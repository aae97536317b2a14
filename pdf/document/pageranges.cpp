// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/pageranges.h"

#include "pdf/error.h"

#include <charconv>
#include <string>

namespace pdf {

namespace {

/// 0 for what is no page number, also for numbers beyond int.
int positiveNumber(std::string_view text)
{
    // from_chars takes a minus sign, which "-3" must not pass for.
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return 0;
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

[[noreturn]] void refuse(std::string_view text, const std::string &cause)
{
    throw Error(ExitCode::Usage, "page range \"" + std::string(text) + "\": " + cause);
}

} // namespace

PageRange parsePageRange(std::string_view text, int pageCount)
{
    const std::size_t hyphen = text.find('-');
    PageRange range;
    range.first = positiveNumber(text.substr(0, hyphen));
    range.last =
        hyphen == std::string_view::npos ? range.first : positiveNumber(text.substr(hyphen + 1));
    if (range.first == 0 || range.last == 0)
        refuse(text, "is not a page number or two joined by a hyphen");
    if (range.first > range.last)
        refuse(text, "ends before it begins");
    if (range.last > pageCount)
        refuse(text, "the file has " + std::to_string(pageCount) + " pages");
    return range;
}

int parsePageNumber(std::string_view text)
{
    const int number = positiveNumber(text);
    if (number == 0)
        throw Error(ExitCode::Usage, "\"" + std::string(text) + "\" is not a page number");
    return number;
}

std::vector<int> pageIndexes(const std::vector<PageRange> &ranges)
{
    std::vector<int> indexes;
    for (const PageRange &range : ranges) {
        for (int page = range.first; page <= range.last; ++page)
            indexes.push_back(page - 1);
    }
    return indexes;
}

} // namespace pdf
