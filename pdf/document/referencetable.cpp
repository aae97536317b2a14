// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/referencetable.h"

#include "pdf/document/objectpeek.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>
#include <vector>

namespace pdf {

namespace {

constexpr std::size_t entryLength = 20; ///< of the table, line ending included

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

void skipBlanks(std::string_view &text)
{
    const std::size_t start = text.find_first_not_of(" \r\n\t");
    text.remove_prefix(std::min(start, text.size()));
}

/// Takes a number from the beginning of the text.
std::optional<std::size_t> takeNumber(std::string_view &text)
{
    skipBlanks(text);
    std::size_t value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc())
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return value;
}

/// The text after the last startxref leads to a table; empty when it does not.
std::string_view lastTable(std::string_view file)
{
    constexpr std::size_t endLength = 1024;
    const std::string_view end = file.substr(file.size() - std::min(file.size(), endLength));
    const std::string_view keyword = "startxref";
    const std::size_t found = end.rfind(keyword);
    if (file.substr(0, 5) != "%PDF-" || found == std::string_view::npos)
        return {};
    std::string_view rest = end.substr(found + keyword.size());
    const std::optional<std::size_t> offset = takeNumber(rest);
    if (!offset || *offset >= file.size() || file.substr(*offset, 4) != "xref")
        return {};
    return file.substr(*offset + 4);
}

/// A table's subsections as a stream's: /Index and the data, entries of 1, 5 and 2 bytes.
class Conversion
{
public:
    /// Takes all subsections from the beginning of the text; false when one of them is odd.
    bool takeSections(std::string_view &text)
    {
        for (skipBlanks(text); !text.empty() && isDigit(text.front()); skipBlanks(text)) {
            const std::optional<std::size_t> first = takeNumber(text);
            const std::optional<std::size_t> count = takeNumber(text);
            if (!first || !count)
                return false;
            skipBlanks(text);
            if (*count == 0 || *first > maximalNumber || *count > text.size() / entryLength)
                return false;
            size = std::max(size, *first + *count);
            sections.emplace_back(*first, *count);
            data.reserve(std::max(data.capacity(), data.size() + *count * entrySize));
            for (std::size_t i = 0; i < *count; ++i) {
                if (!addEntry(text.data() + i * entryLength))
                    return false;
            }
            text.remove_prefix(*count * entryLength);
        }
        return size > 0;
    }

    /// Makes one section of very many, with free entries between them. Returns whether that was
    /// done: not where most entries would be new ones, nor where a number has two entries.
    bool join()
    {
        constexpr std::size_t fewSections = 1000;
        constexpr std::size_t largestGrowth = 8;
        if (sections.size() <= fewSections || size * entrySize > data.size() * largestGrowth)
            return false;
        std::string joined(size * entrySize, '\0');
        std::vector<bool> isTaken(size);
        const char *entry = data.data();
        for (const auto &[first, count] : sections) {
            for (std::size_t number = first; number < first + count; ++number) {
                if (isTaken[number])
                    return false;
                isTaken[number] = true;
                std::copy_n(entry, entrySize, &joined[number * entrySize]);
                entry += entrySize;
            }
        }
        data = std::move(joined);
        sections = {{0, size}};
        return true;
    }

    /// The sections as a stream's /Index has them.
    [[nodiscard]] std::string index() const
    {
        std::string result;
        for (const auto &[first, count] : sections)
            result += std::to_string(first) + ' ' + std::to_string(count) + ' ';
        return result;
    }

    std::string data;
    std::size_t size = 0; ///< greatest object number and one

private:
    static constexpr std::size_t maximalNumber = 1U << 24U;
    static constexpr std::size_t entrySize = 8;

    std::vector<std::pair<std::size_t, std::size_t>> sections; ///< first number and how many

    /// "0000000015 00000 n \n"
    bool addEntry(const char *entry)
    {
        bool isSound = entry[10] == ' ' && entry[16] == ' ';
        const auto number = [entry, &isSound](int begin, int end) {
            unsigned long long value = 0;
            unsigned odd = 0;
            for (int i = begin; i < end; ++i) {
                const unsigned digit = static_cast<unsigned char>(entry[i]) - unsigned{'0'};
                odd |= digit > 9 ? 1U : 0U;
                value = value * 10 + digit;
            }
            isSound = isSound && odd == 0;
            return value;
        };
        const unsigned long long offset = number(0, 10);
        const unsigned long long generation = number(11, 16);
        const bool isUsed = entry[17] == 'n';
        const bool hasEnd =
            (entry[18] == ' ' || entry[18] == '\r') && (entry[19] == '\n' || entry[19] == '\r');
        if (!isSound || !hasEnd || generation > 0xffff || (!isUsed && entry[17] != 'f'))
            return false;
        const char bytes[] = {static_cast<char>(isUsed ? 1 : 0),   static_cast<char>(offset >> 32U),
                              static_cast<char>(offset >> 24U),    static_cast<char>(offset >> 16U),
                              static_cast<char>(offset >> 8U),     static_cast<char>(offset),
                              static_cast<char>(generation >> 8U), static_cast<char>(generation)};
        data.append(bytes, sizeof bytes);
        return true;
    }
};

/// The entries of the trailer, empty when there are those that mean something else in a stream or
/// lead to a second kind of table.
std::string trailerEntries(std::string_view text, std::size_t size)
{
    const std::string_view keyword = "trailer";
    if (text.substr(0, keyword.size()) != keyword)
        return {};
    const std::optional<RawEntries> entries = rawEntries(text.substr(keyword.size()));
    if (!entries || rawValue(*entries, "Size") != std::to_string(size))
        return {};
    std::string result;
    for (const auto &[key, value] : *entries) {
        for (const char *other : {"Type", "W", "Index", "Length", "Filter", "DecodeParms",
                                  "XRefStm", "F", "FFilter", "FDecodeParms", "DL"}) {
            if (key == other)
                return {};
        }
        result.append("/").append(key).append(" ").append(value).append("\n");
    }
    return result;
}

} // namespace

Appendix appendixFor(std::string_view file)
{
    Appendix appendix{streamEnd};
    std::string &result = appendix.bytes;
    std::string_view text = lastTable(file);
    Conversion table;
    if (text.empty() || !table.takeSections(text))
        return appendix;
    const std::string trailer = trailerEntries(text, table.size);
    if (trailer.empty())
        return appendix;
    // A free entry would hide what an older table, to which /Prev leads, says of the object.
    appendix.isWholeTable = trailer.find("/Prev ") == std::string::npos && table.join();
    const std::size_t offset = file.size() + result.size();
    // A number that no object has.
    result += std::to_string(table.size) + " 0 obj\n<< /Type /XRef /W [1 5 2]\n";
    result += trailer + "/Index [" + table.index() + "] /Length " +
              std::to_string(table.data.size()) + " >>\nstream\n" + table.data +
              "\nendstream\nendobj\nstartxref\n" + std::to_string(offset) + "\n%%EOF\n";
    return appendix;
}

} // namespace pdf
