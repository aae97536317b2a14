// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/annotations.h"

namespace pdf {

void AnnotationCopier::announcePage(const QPDFObjectHandle &sourcePage,
                                    const QPDFObjectHandle &targetPage, bool isRepetition)
{
    Page page{targetPage, {}, isRepetition};
    QPDFObjectHandle array = QPDFObjectHandle(sourcePage).getKey("/Annots");
    if (array.isArray()) {
        for (QPDFObjectHandle &original : array.getArrayAsVector()) {
            if (!original.isDictionary() || !original.hasKey("/Subtype"))
                continue;
            // An annotation listed by two pages stays with the first of them; the other page and a
            // page written a second time get objects of their own.
            const QPDFObjectHandle copied = copier.placeholder();
            if (original.isIndirect() && !copier.isMapped(original.getObjGen()))
                copier.map(original.getObjGen(), copied);
            page.annotations.push_back({original, copied});
        }
    }
    pages.push_back(std::move(page));
}

QPDFObjectHandle AnnotationCopier::copyPage(std::size_t index)
{
    const Page &page = pages[index];
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    for (const Annotation &annotation : page.annotations) {
        if (copyAnnotation(annotation, page))
            result.appendItem(annotation.copied);
    }
    return result.getArrayNItems() > 0 ? result : QPDFObjectHandle::newNull();
}

bool AnnotationCopier::copyAnnotation(const Annotation &annotation, const Page &page)
{
    QPDFObjectHandle original = annotation.original;
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    for (const auto &[key, value] : original.getDictAsMap())
        copyEntry(copied, key, value);
    const auto lost = [&](const char *key) { return original.hasKey(key) && !copied.hasKey(key); };
    const bool leadsNowhere = lost("/Dest") || lost("/A");
    const bool isLink = original.getKey("/Subtype").isNameAndEquals("/Link");
    if (isLink && leadsNowhere && !copied.hasKey("/Dest") && !copied.hasKey("/A"))
        return false;
    if (original.hasKey("/P"))
        copied.replaceKey("/P", page.target);
    if (original.getKey("/Subtype").isNameAndEquals("/Widget")) {
        if (page.isRepetition)
            FormFieldCopier::makePicture(copied);
        else
            fields.attach(original, copied, annotation.copied);
    }
    copier.targetDocument().replaceObject(annotation.copied.getObjGen(), copied);
    return true;
}

void AnnotationCopier::copyEntry(QPDFObjectHandle &copied, const std::string &key,
                                 const QPDFObjectHandle &value)
{
    // /Kids occurs where a form field and its only widget share a dictionary, and is void there.
    if (key == "/P" || key == "/StructParent" || key == "/Kids")
        return;
    if (key == "/Dest") {
        copied.replaceKey(key, destinations.copyDestination(value));
    } else if (key == "/A") {
        copied.replaceKey(key, destinations.copyAction(value));
    } else if (key == "/AA") {
        copied.replaceKey(key, destinations.copyAdditionalActions(value));
    } else {
        copied.replaceKey(key, copier.copy(value));
    }
}

} // namespace pdf
