// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/layoutfile.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace pdf {

namespace {

bool isAlphanumeric(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// Whether a browser reads an entity from the text behind an ampersand (HTML, 13.5): a number
/// after "#", any name that ends in ";", or one of the old names that need no ";".
bool startsEntity(std::string_view rest)
{
    static constexpr std::string_view names[] = {
        "AElig",  "AMP",    "Aacute", "Acirc",  "Agrave", "Aring",  "Atilde", "Auml",   "COPY",
        "Ccedil", "ETH",    "Eacute", "Ecirc",  "Egrave", "Euml",   "GT",     "Iacute", "Icirc",
        "Igrave", "Iuml",   "LT",     "Ntilde", "Oacute", "Ocirc",  "Ograve", "Oslash", "Otilde",
        "Ouml",   "QUOT",   "REG",    "THORN",  "Uacute", "Ucirc",  "Ugrave", "Uuml",   "Yacute",
        "aacute", "acirc",  "acute",  "aelig",  "agrave", "amp",    "aring",  "atilde", "auml",
        "brvbar", "ccedil", "cedil",  "cent",   "copy",   "curren", "deg",    "divide", "eacute",
        "ecirc",  "egrave", "eth",    "euml",   "frac12", "frac14", "frac34", "gt",     "iacute",
        "icirc",  "iexcl",  "igrave", "iquest", "iuml",   "laquo",  "lt",     "macr",   "micro",
        "middot", "nbsp",   "not",    "ntilde", "oacute", "ocirc",  "ograve", "ordf",   "ordm",
        "oslash", "otilde", "ouml",   "para",   "plusmn", "pound",  "quot",   "raquo",  "reg",
        "sect",   "shy",    "sup1",   "sup2",   "sup3",   "szlig",  "thorn",  "times",  "uacute",
        "ucirc",  "ugrave", "uml",    "uuml",   "yacute", "yen",    "yuml"};
    if (rest.substr(0, 1) == "#")
        return rest.size() > 1 && (isAlphanumeric(rest[1]));
    const auto end = std::find_if_not(rest.begin(), rest.end(), isAlphanumeric);
    if (end != rest.begin() && end != rest.end() && *end == ';')
        return true;
    return std::any_of(std::begin(names), std::end(names), [rest](std::string_view name) {
        return rest.substr(0, name.size()) == name;
    });
}

void appendMarkup(std::string &result, std::string_view text)
{
    for (std::size_t i = text.find_first_of("<>&"); i != std::string_view::npos;
         i = text.find_first_of("<>&")) {
        result += text.substr(0, i);
        if (text[i] == '<')
            result += "&lt;";
        else if (text[i] == '>')
            result += "&gt;";
        else if (startsEntity(text.substr(i + 1)))
            result += "&amp;";
        else
            result += '&';
        text.remove_prefix(i + 1);
    }
    result += text;
}

void appendNumber(std::string &result, std::string_view label, int number)
{
    char digits[16];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    result += label;
    result.append(digits, end);
}

} // namespace

std::string markupText(const std::string &text)
{
    std::string result;
    appendMarkup(result, text);
    return result;
}

std::string layoutFileText(const std::vector<Fragment> &fragments)
{
    std::string result;
    if (fragments.empty())
        return result;
    constexpr std::size_t usualLine = 100;
    result.reserve(fragments.size() * usualLine);
    result = "<meta charset=\"utf-8\">";
    for (const Fragment &fragment : fragments) {
        appendNumber(result, "<span style=\"left:", fragment.left);
        appendNumber(result, ";top:", fragment.top);
        appendNumber(result, ";width:", fragment.width);
        appendNumber(result, ";height:", fragment.height);
        result += "\">";
        appendMarkup(result, fragment.text);
        result += "</span>\n";
    }
    return result;
}

} // namespace pdf
