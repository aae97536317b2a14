// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/documentoptions.h"

#include <cstring>
#include <optional>
#include <string_view>

namespace pdf {

namespace {

/// How an information entry stands in XMP.
struct XmpProperty
{
    const char *key;
    const char *name;
    const char *before; ///< what stands between the element and the text
    const char *after;
};

constexpr XmpProperty properties[] = {
    {"/Title", "dc:title", "<rdf:Alt><rdf:li xml:lang=\"x-default\">", "</rdf:li></rdf:Alt>"},
    {"/Author", "dc:creator", "<rdf:Seq><rdf:li>", "</rdf:li></rdf:Seq>"},
    {"/Subject", "dc:description", "<rdf:Alt><rdf:li xml:lang=\"x-default\">",
     "</rdf:li></rdf:Alt>"},
    {"/Keywords", "pdf:Keywords", "", ""},
    {"/Creator", "xmp:CreatorTool", "", ""},
    {"/Producer", "pdf:Producer", "", ""},
};

std::string escaped(const std::string &text)
{
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (static_cast<unsigned char>(c) >= 0x20)
            result += c;
    }
    return result;
}

bool isBlank(char c)
{
    return std::string_view(" \t\r\n").find(c) != std::string_view::npos;
}

/// A start tag or the tag of an empty element.
struct Tag
{
    std::size_t begin = 0;
    std::size_t behindName = 0;
    std::size_t end = 0; ///< behind its ">"
};

std::size_t behind(const std::string &xmp, const char *text, std::size_t from)
{
    const std::size_t found = xmp.find(text, from);
    return found == std::string::npos ? found : found + std::strlen(text);
}

/// Behind the ">" of the tag; there can be one in the value of an attribute, too.
std::size_t behindTag(const std::string &xmp, std::size_t from)
{
    char quote = '\0';
    for (std::size_t i = from; i < xmp.size(); ++i) {
        if (quote != '\0')
            quote = xmp[i] == quote ? '\0' : quote;
        else if (xmp[i] == '"' || xmp[i] == '\'')
            quote = xmp[i];
        else if (xmp[i] == '>')
            return i + 1;
    }
    return std::string::npos;
}

/// The next tag from a place outside of tags on; nothing behind the last one, or where the rest is
/// no XML.
std::optional<Tag> nextTag(const std::string &xmp, std::size_t from)
{
    while (from != std::string::npos && (from = xmp.find('<', from)) != std::string::npos) {
        const auto startsWith = [&](const char *text) {
            return xmp.compare(from, std::strlen(text), text) == 0;
        };
        if (startsWith("<!--")) {
            from = behind(xmp, "-->", from);
        } else if (startsWith("<![CDATA[")) {
            from = behind(xmp, "]]>", from);
        } else if (startsWith("<?")) {
            from = behind(xmp, "?>", from);
        } else if (startsWith("</") || startsWith("<!")) {
            from = behind(xmp, ">", from);
        } else {
            const std::size_t end = behindTag(xmp, from);
            if (end == std::string::npos)
                return std::nullopt;
            return Tag{from, xmp.find_first_of(" \t\r\n/>", from), end};
        }
    }
    return std::nullopt;
}

/// Removes the attribute, `pdf:Producer="..."`, from the tag if it is there.
void removeAttribute(std::string &xmp, Tag &tag, const std::string &name)
{
    for (std::size_t i = tag.behindName; i < tag.end;) {
        const std::size_t begin = i;
        while (isBlank(xmp[i]))
            ++i;
        const std::size_t nameBegin = i;
        i = xmp.find_first_of(" \t\r\n=/>", i);
        const bool isIt = xmp.compare(nameBegin, i - nameBegin, name) == 0;
        const std::size_t quote = xmp.find_first_not_of(" \t\r\n=", i);
        if (quote >= tag.end || (xmp[quote] != '"' && xmp[quote] != '\''))
            return;
        i = xmp.find(xmp[quote], quote + 1) + 1;
        if (isIt) {
            xmp.erase(begin, i - begin);
            tag.end -= i - begin;
            return;
        }
    }
}

/// Removes the property where it is an element, `<dc:title>...</dc:title>`, or an attribute.
void removeProperty(std::string &xmp, const std::string &name)
{
    std::size_t from = 0;
    while (std::optional<Tag> tag = nextTag(xmp, from)) {
        from = tag->begin;
        if (xmp.compare(tag->begin + 1, tag->behindName - tag->begin - 1, name) != 0) {
            removeAttribute(xmp, *tag, name);
            from = tag->end;
            continue;
        }
        const bool isEmpty = xmp[tag->end - 2] == '/';
        const std::size_t close = isEmpty ? tag->end : behind(xmp, ("</" + name).c_str(), tag->end);
        const std::size_t end = isEmpty ? close : behind(xmp, ">", close);
        if (end == std::string::npos)
            return;
        xmp.erase(tag->begin, end - tag->begin);
    }
}

} // namespace

std::string xmpWithInformation(const std::string &xmp,
                               const std::map<std::string, std::string> &information)
{
    const std::string closing = "</rdf:RDF>";
    if (xmp.rfind(closing) == std::string::npos)
        return xmp;
    std::string result = xmp;
    std::string description =
        "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
        " xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\">";
    for (const XmpProperty &property : properties) {
        const auto entry = information.find(property.key);
        if (entry == information.end())
            continue;
        removeProperty(result, property.name);
        description += std::string("<") + property.name + ">" + property.before +
                       escaped(entry->second) + property.after + "</" + property.name + ">";
    }
    return result.insert(result.rfind(closing), description + "</rdf:Description>");
}

} // namespace pdf
