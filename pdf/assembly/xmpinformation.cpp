// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/documentoptions.h"

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

/// Removes the property where it is an element, `<dc:title>...</dc:title>`.
void removeElement(std::string &xmp, const std::string &name)
{
    const std::string end = "</" + name + ">";
    for (std::size_t from = 0;;) {
        const std::size_t begin = xmp.find("<" + name, from);
        if (begin == std::string::npos)
            return;
        const std::size_t behindName = begin + 1 + name.size();
        const std::size_t bracket = xmp.find('>', behindName);
        if (bracket == std::string::npos)
            return;
        from = behindName;
        if (std::string_view(" \t\r\n/>").find(xmp[behindName]) == std::string_view::npos)
            continue; // a longer name
        const bool isEmpty = xmp[bracket - 1] == '/';
        const std::size_t close = isEmpty ? bracket : xmp.find(end, bracket);
        if (close == std::string::npos)
            return;
        xmp.erase(begin, (isEmpty ? bracket + 1 : close + end.size()) - begin);
        from = begin;
    }
}

/// Removes the property where it is an attribute, `pdf:Producer="..."`.
void removeAttribute(std::string &xmp, const std::string &name)
{
    for (std::size_t from = 0;;) {
        const std::size_t begin = xmp.find(name + "=", from);
        if (begin == std::string::npos)
            return;
        const std::size_t quote = begin + name.size() + 1;
        const std::size_t end =
            quote < xmp.size() ? xmp.find(xmp[quote], quote + 1) : std::string::npos;
        if (end == std::string::npos)
            return;
        xmp.erase(begin, end + 1 - begin);
        from = begin;
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
        removeElement(result, property.name);
        removeAttribute(result, property.name);
        description += std::string("<") + property.name + ">" + property.before +
                       escaped(entry->second) + property.after + "</" + property.name + ">";
    }
    return result.insert(result.rfind(closing), description + "</rdf:Description>");
}

} // namespace pdf
