// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/plainobject.h"

#include "pdf/document/syntax.h"

#include <charconv>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace pdf {

namespace {

/// Thrown inside only: the object is not plain.
struct NotPlain
{
};

class Parser
{
public:
    Parser(QPDF &document, std::string_view text) : pdf(document), in(text) {}

    /// No value for a stream; throws NotPlain for what is odd.
    std::optional<QPDFObjectHandle> indirectObject(QPDFObjGen object)
    {
        const bool isRight = integer() == object.getObj() && integer() == object.getGen();
        if (!isRight || word() != "obj")
            throw NotPlain();
        const QPDFObjectHandle result = value(0);
        if (result.isIndirect())
            throw NotPlain();
        return word() == "endobj" ? std::optional(result) : std::nullopt;
    }

private:
    static constexpr int maximalDepth = 50;

    [[nodiscard]] char peek() const { return pos < in.size() ? in[pos] : '%'; }

    void skipBlanks()
    {
        while (pos < in.size() && isBlank(in[pos]))
            ++pos;
    }

    std::string_view regular()
    {
        const std::size_t start = pos;
        while (pos < in.size() && isRegular(in[pos]))
            ++pos;
        return in.substr(start, pos - start);
    }

    std::string_view word()
    {
        skipBlanks();
        return regular();
    }

    static bool toInteger(std::string_view digits, long long &number)
    {
        const char *const end = digits.data() + digits.size();
        const auto [behind, error] = std::from_chars(digits.data(), end, number);
        return !digits.empty() && behind == end && error == std::errc();
    }

    long long integer()
    {
        long long number = 0;
        if (!toInteger(word(), number))
            throw NotPlain();
        return number;
    }

    QPDFObjectHandle value(int depth)
    {
        skipBlanks();
        if (depth > maximalDepth)
            throw NotPlain();
        switch (peek()) {
        case '/':
            return QPDFObjectHandle::newName(name());
        case '(':
            return literalString();
        case '[':
            return array(depth);
        case '<':
            return in.substr(pos, 2) == "<<" ? dictionary(depth) : hexString();
        default:
            return numberOrWord();
        }
    }

    /// With its slash. "/#41" is another spelling of "/A": left to qpdf.
    std::string name()
    {
        const std::size_t start = pos++;
        if (regular().find('#') != std::string_view::npos)
            throw NotPlain();
        return std::string(in.substr(start, pos - start));
    }

    QPDFObjectHandle literalString()
    {
        const std::size_t start = ++pos;
        int depth = 1;
        for (; pos < in.size(); ++pos) {
            if (in[pos] == '\\' || in[pos] == '\r')
                throw NotPlain();
            depth += in[pos] == '(' ? 1 : 0;
            depth -= in[pos] == ')' ? 1 : 0;
            if (depth == 0)
                return QPDFObjectHandle::newString(std::string(in.substr(start, pos++ - start)));
        }
        throw NotPlain();
    }

    QPDFObjectHandle hexString()
    {
        const std::size_t start = ++pos;
        const std::string_view digits = regular();
        std::string bytes;
        for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
            unsigned byte = 0;
            const char *const end = digits.data() + i + 2;
            if (std::from_chars(digits.data() + i, end, byte, 16).ptr != end)
                throw NotPlain();
            bytes += static_cast<char>(byte);
        }
        if (digits.size() % 2 != 0 || start + digits.size() != pos || peek() != '>')
            throw NotPlain();
        ++pos;
        return QPDFObjectHandle::newString(bytes);
    }

    QPDFObjectHandle array(int depth)
    {
        ++pos;
        std::vector<QPDFObjectHandle> items;
        for (skipBlanks(); peek() != ']'; skipBlanks())
            items.push_back(value(depth + 1));
        ++pos;
        return QPDFObjectHandle::newArray(items);
    }

    QPDFObjectHandle dictionary(int depth)
    {
        pos += 2;
        std::map<std::string, QPDFObjectHandle> entries;
        for (skipBlanks(); peek() == '/'; skipBlanks()) {
            std::string key = name();
            if (!entries.emplace(std::move(key), value(depth + 1)).second)
                throw NotPlain();
        }
        if (in.substr(pos, 2) != ">>")
            throw NotPlain();
        pos += 2;
        return QPDFObjectHandle::newDictionary(entries);
    }

    QPDFObjectHandle numberOrWord()
    {
        const std::string_view text = regular();
        long long number = 0;
        if (toInteger(text, number))
            return number >= 0 ? integerOrReference(number) : QPDFObjectHandle::newInteger(number);
        if (text == "true" || text == "false")
            return QPDFObjectHandle::newBool(text == "true");
        if (text == "null")
            return QPDFObjectHandle::newNull();
        const std::string_view digits = text.substr(!text.empty() && text.front() == '-' ? 1 : 0);
        // Out of bounds for an integer; qpdf would give up the object for it, and readers do not.
        if (!digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos)
            return QPDFObjectHandle::newReal(std::string(text) + ".0");
        const std::size_t point = digits.find('.');
        if (point == 0 || point + 1 >= digits.size() ||
            digits.find_first_not_of("0123456789") != point ||
            digits.find_first_not_of("0123456789", point + 1) != std::string_view::npos)
            throw NotPlain();
        return QPDFObjectHandle::newReal(std::string(text));
    }

    QPDFObjectHandle integerOrReference(long long number)
    {
        constexpr long long maximalNumber = 1LL << 24;
        const std::size_t after = pos;
        long long generation = 0;
        if (toInteger(word(), generation) && generation >= 0 && word() == "R") {
            if (number == 0 || number > maximalNumber || generation > 0xffff)
                throw NotPlain();
            return pdf.getObject(static_cast<int>(number), static_cast<int>(generation));
        }
        pos = after;
        return QPDFObjectHandle::newInteger(number);
    }

    QPDF &pdf;
    std::string_view in;
    std::size_t pos = 0;
};

/// Adds the references in a dictionary or an array, but those that lead back and away.
void addReferences(std::vector<QPDFObjGen> &found, QPDFObjectHandle value)
{
    if (value.isIndirect()) {
        found.push_back(value.getObjGen());
    } else if (value.isArray()) {
        for (const QPDFObjectHandle &item : value.getArrayAsVector())
            addReferences(found, item);
    } else if (value.isDictionary()) {
        for (const auto &[key, item] : value.getDictAsMap()) {
            if (key != "/Parent" && key != "/P" && key != "/Dest" && key != "/D" && key != "/B")
                addReferences(found, item);
        }
    }
}

/// An object longer than this is not looked at to its end.
constexpr std::size_t maximalLength = std::size_t{1} << 16;

std::optional<QPDFObjectHandle> parsed(QPDF &pdf, QPDFObjGen object, std::string_view text)
{
    try {
        return Parser(pdf, text.substr(0, maximalLength)).indirectObject(object);
    } catch (const NotPlain &) {
        return std::nullopt;
    }
}

} // namespace

void AheadReader::read(QPDFObjGen object, int levels)
{
    if (!isAllowed || !visited.insert(object).second)
        return;
    const std::string_view text = bytes.from(object);
    const std::optional<QPDFObjectHandle> found =
        text.empty() ? std::nullopt : parsed(pdf, object, text);
    if (!found)
        return;
    if (levels > 0) {
        std::vector<QPDFObjGen> references;
        addReferences(references, *found);
        for (const QPDFObjGen reference : references)
            read(reference, levels - 1);
    }
    pdf.replaceObject(object, *found);
}

} // namespace pdf
