// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/documentinfo.h"

#include "pdf/assembly/pagegeometry.h"
#include "pdf/document/utf8.h"

#include <cstdio>

namespace pdf {

namespace {

std::string line(const std::string &key, const std::string &value)
{
    return key + ": " + singleLineUtf8(value) + "\n";
}

std::string infoLine(QPDFObjectHandle &info, const char *key, const std::string &name)
{
    QPDFObjectHandle value = info.getKey(key);
    return value.isString() ? line(name, value.getUTF8Value()) : std::string();
}

std::string sizeLine(Document &document)
{
    const PageSize size =
        displayedPageSize(document.qpdf(), document.pages(), document.pages().pages.front());
    char text[64];
    std::snprintf(text, sizeof text, "%.2f x %.2f", size.width, size.height);
    return line("PageSize", text);
}

void addFacts(std::string &result, Document &document)
{
    QPDF &pdf = document.qpdf();
    result += line("PDFVersion", pdf.getPDFVersion());
    result += line("Encrypted", pdf.isEncrypted() ? "yes" : "no");
    result += line("Repaired", document.damage().empty() ? "no" : "yes");
    QPDFObjectHandle info = pdf.getTrailer().getKey("/Info");
    if (info.isDictionary()) {
        result += infoLine(info, "/Title", "Title");
        result += infoLine(info, "/Author", "Author");
    }
    if (document.pages().count() > 0)
        result += sizeLine(document);
}

} // namespace

std::string documentInfo(Document &document)
{
    std::string result = line("NumberOfPages", std::to_string(document.pages().count()));
    try {
        addFacts(result, document);
    } catch (const std::exception &) {
        // Damage where the facts stand does not change how many pages there are.
    }
    return result;
}

std::string failureInfo(const std::string &cause)
{
    return "NumberOfPages: \n" + line("Error", cause);
}

} // namespace pdf
