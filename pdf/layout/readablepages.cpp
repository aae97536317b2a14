// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/error.h"
#include "pdf/isolation/limits.h"
#include "pdf/layout/pagereader.h"

#include <new>
#include <qpdf/Pl_String.hh>
#include <qpdf/QPDFWriter.hh>

namespace pdf {

namespace {

/// Replaces the page tree by one node that lists all pages, which then hold what they inherited.
void flattenPageTree(QPDF &pdf, const PageList &list)
{
    std::vector<QPDFObjectHandle> kids;
    QPDFObjectHandle node = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
    for (const PageEntry &entry : list.pages) {
        QPDFObjectHandle page = pdf.getObject(entry.page);
        for (const char *key : {"/Resources", "/MediaBox", "/CropBox", "/Rotate"})
            page.replaceKey(key, inheritedAttribute(pdf, list, entry, key));
        kids.push_back(page);
    }
    for (QPDFObjectHandle &page : kids) {
        page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
        page.replaceKey("/Parent", node);
    }
    node.replaceKey("/Type", QPDFObjectHandle::newName("/Pages"));
    node.replaceKey("/Count", QPDFObjectHandle::newInteger(list.count()));
    node.replaceKey("/Kids", QPDFObjectHandle::newArray(kids));
    QPDFObjectHandle trailer = pdf.getTrailer();
    if (!trailer.getKey("/Root").isDictionary())
        trailer.replaceKey("/Root", pdf.makeIndirectObject(QPDFObjectHandle::newDictionary()));
    QPDFObjectHandle catalog = trailer.getKey("/Root");
    catalog.replaceKey("/Type", QPDFObjectHandle::newName("/Catalog"));
    catalog.replaceKey("/Pages", node);
}

/// The writer takes an /ID for the two strings that it is in a sound file.
void removeOddId(QPDF &pdf)
{
    QPDFObjectHandle trailer = pdf.getTrailer();
    QPDFObjectHandle id = trailer.getKey("/ID");
    if (!id.isArray() || id.getArrayNItems() != 2 || !id.getArrayItem(0).isString() ||
        !id.getArrayItem(1).isString())
        trailer.removeKey("/ID");
}

std::string soundCopy(Document &document)
{
    flattenPageTree(document.qpdf(), document.pages());
    removeOddId(document.qpdf());
    // A string that grows by itself takes up to three times its size.
    std::string result;
    const std::size_t size = document.file().bytes().size();
    result.reserve(size + size / 8);
    Pl_String output("copy", nullptr, result);
    QPDFWriter writer(document.qpdf());
    writer.setOutputPipeline(&output);
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.setPreserveEncryption(false);
    writer.write();
    return result;
}

} // namespace

ReadablePages::ReadablePages(Document &inputDocument)
    : document(inputDocument), view(inputDocument.file().bytes()),
      entries(inputDocument.pages().pages)
{
    if (document.isDamaged() || document.pages().hasNewObjects)
        makeCopy();
}

void ReadablePages::makeCopy()
{
    constexpr long long largestInputBytes = memoryLimitBytes / 2;
    const auto fail = [this](const char *cause) {
        throw Error(ExitCode::InputUnreadable, document.file().path() + cause);
    };
    if (static_cast<long long>(view.size()) > largestInputBytes)
        fail(": is damaged and too large to be repaired");
    try {
        copy = soundCopy(document);
        view = copy;
    } catch (const std::bad_alloc &) {
        fail(": is damaged and needs too much memory to be repaired");
    } catch (const std::exception &) {
        fail(": is damaged beyond repair");
    }
}

} // namespace pdf
