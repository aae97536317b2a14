// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/objectpeek.h"

#include "pdf/document/syntax.h"

#include <climits>

namespace pdf {

namespace {

/// A reader of PDF syntax (ISO 32000-1, 7.2 and 7.3) that skips values. Every function gives false
/// as soon as something is not as expected; the position is then of no use.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : in(text) {}

    void skipBlanks()
    {
        for (;;) {
            while (pos < in.size() && isBlank(in[pos]))
                ++pos;
            if (pos >= in.size() || in[pos] != '%')
                return;
            while (pos < in.size() && in[pos] != '\n' && in[pos] != '\r')
                ++pos;
        }
    }

    bool accept(std::string_view token)
    {
        if (in.substr(pos, token.size()) != token)
            return false;
        pos += token.size();
        return true;
    }

    bool keyword(std::string_view word)
    {
        skipBlanks();
        return accept(word) && (pos >= in.size() || !isRegular(in[pos]));
    }

    bool name(std::string_view &result)
    {
        if (pos >= in.size() || in[pos] != '/')
            return false;
        const std::size_t start = pos + 1;
        skipRegular(start);
        result = in.substr(start, pos - start);
        // "/P#61ges" is a spelling of "/Pages": left to qpdf.
        return result.find('#') == std::string_view::npos;
    }

    bool number(int &result)
    {
        skipBlanks();
        const std::size_t start = pos;
        long value = 0;
        while (pos < in.size() && in[pos] >= '0' && in[pos] <= '9' && value <= INT_MAX)
            value = value * 10 + (in[pos++] - '0');
        result = static_cast<int>(value);
        return pos > start && value <= INT_MAX && pos < in.size() && !isRegular(in[pos]);
    }

    bool reference(QPDFObjGen &result)
    {
        int objectNumber = 0;
        int generation = 0;
        if (!number(objectNumber) || !number(generation) || !keyword("R"))
            return false;
        result = QPDFObjGen(objectNumber, generation);
        return true;
    }

    bool referenceArray(std::vector<QPDFObjGen> &result)
    {
        if (!accept("["))
            return false;
        for (skipBlanks(); !accept("]"); skipBlanks()) {
            QPDFObjGen entry;
            if (!reference(entry))
                return false;
            result.push_back(entry);
        }
        return true;
    }

    [[nodiscard]] std::size_t position() const { return pos; }
    [[nodiscard]] std::string_view textFrom(std::size_t start) const
    {
        return in.substr(start, pos - start);
    }

    /// One value of any kind, or the three tokens of a reference.
    bool skipValue()
    {
        int depth = 0;
        do {
            skipBlanks();
            if (pos >= in.size())
                return false;
            // Inside brackets a reference is as good as three values.
            if (isRegular(in[pos]) && depth > 0)
                skipRegular(pos);
            else if (isRegular(in[pos]))
                skipNumberOrReference();
            else if (!skipDelimited(depth))
                return false;
        } while (depth > 0);
        return true;
    }

private:
    /// A string or a name, or one bracket, which changes the depth.
    bool skipDelimited(int &depth)
    {
        switch (in[pos]) {
        case '(':
            return skipString();
        case '/':
            skipRegular(pos + 1);
            return true;
        case '[':
            ++depth;
            ++pos;
            return true;
        case ']':
            ++pos;
            return --depth >= 0;
        case '<':
            if (!accept("<<"))
                return skipHexString();
            ++depth;
            return true;
        default:
            return accept(">>") && --depth >= 0;
        }
    }

    void skipRegular(std::size_t from)
    {
        pos = from;
        while (pos < in.size() && isRegular(in[pos]))
            ++pos;
    }

    bool skipHexString()
    {
        const std::size_t end = in.find('>', pos);
        pos = end + 1;
        return end != std::string_view::npos;
    }

    void skipNumberOrReference()
    {
        const std::size_t start = pos;
        QPDFObjGen unused;
        const bool isNumber = in[pos] >= '0' && in[pos] <= '9';
        if (!isNumber || !reference(unused))
            skipRegular(start);
    }

    bool skipString()
    {
        int depth = 0;
        for (; pos < in.size(); ++pos) {
            if (in[pos] == '\\')
                ++pos;
            else if (in[pos] == '(')
                ++depth;
            else if (in[pos] == ')' && --depth == 0) {
                ++pos;
                return true;
            }
        }
        return false;
    }

    std::string_view in;
    std::size_t pos = 0;
};

/// Calls visit(key, value) for each entry of the dictionary; false when it is not in plain syntax
/// or as soon as visit gives false.
template <typename Visitor>
bool visitEntries(Scanner &scanner, Visitor visit)
{
    scanner.skipBlanks();
    if (!scanner.accept("<<"))
        return false;
    for (scanner.skipBlanks(); !scanner.accept(">>"); scanner.skipBlanks()) {
        std::string_view key;
        if (!scanner.name(key))
            return false;
        scanner.skipBlanks();
        const std::size_t start = scanner.position();
        if (!scanner.skipValue() || !visit(key, scanner.textFrom(start)))
            return false;
    }
    return true;
}

/// The same for the dictionary that is the indirect object at offset.
template <typename Visitor>
bool visitIndirectEntries(std::string_view file, std::size_t offset, QPDFObjGen object,
                          Visitor visit)
{
    if (offset >= file.size())
        return false;
    Scanner scanner(file.substr(offset));
    int number = 0;
    int generation = 0;
    return scanner.number(number) && scanner.number(generation) && scanner.keyword("obj") &&
           QPDFObjGen(number, generation) == object && visitEntries(scanner, visit) &&
           scanner.keyword("endobj");
}

/// A visitor that takes everything.
auto addTo(RawEntries &entries)
{
    return [&entries](std::string_view key, std::string_view value) {
        entries.emplace_back(key, value);
        return true;
    };
}

} // namespace

std::optional<PeekedNode> peekIndirectObject(std::string_view file, std::size_t offset,
                                             QPDFObjGen object)
{
    PeekedNode result;
    std::string_view type;
    bool hasKids = false;
    const auto visit = [&](std::string_view key, std::string_view value) {
        if (key == "Type")
            return type.empty() && Scanner(value).name(type);
        if (key != "Kids")
            return true;
        const bool isFirst = !hasKids;
        hasKids = true;
        return isFirst && Scanner(value).referenceArray(result.kids);
    };
    if (!visitIndirectEntries(file, offset, object, visit))
        return std::nullopt;
    result.isPage = type == "Page";
    const bool isNode = type == "Pages" && hasKids;
    return isNode || (result.isPage && !hasKids) ? std::optional(std::move(result)) : std::nullopt;
}

std::optional<RawEntries> peekIndirectEntries(std::string_view file, std::size_t offset,
                                              QPDFObjGen object)
{
    RawEntries entries;
    return visitIndirectEntries(file, offset, object, addTo(entries))
               ? std::optional(std::move(entries))
               : std::nullopt;
}

std::optional<RawEntries> rawEntries(std::string_view dictionary)
{
    RawEntries entries;
    Scanner scanner(dictionary);
    return visitEntries(scanner, addTo(entries)) ? std::optional(std::move(entries)) : std::nullopt;
}

std::string_view rawValue(const RawEntries &entries, std::string_view key)
{
    for (const auto &[name, value] : entries) {
        if (name == key)
            return value;
    }
    return {};
}

std::optional<QPDFObjGen> rawReference(std::string_view value)
{
    QPDFObjGen object;
    Scanner scanner(value);
    return scanner.reference(object) ? std::optional(object) : std::nullopt;
}

std::optional<QPDFObjGen> rawFirstReference(std::string_view array)
{
    QPDFObjGen object;
    Scanner scanner(array);
    return scanner.accept("[") && scanner.reference(object) ? std::optional(object) : std::nullopt;
}

} // namespace pdf
