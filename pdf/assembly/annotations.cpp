// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/annotations.h"

namespace pdf {

bool AnnotationCopier::leadsNowhere(QPDFObjectHandle annotation)
{
    if (!annotation.getKey("/Subtype").isNameAndEquals("/Link"))
        return false;
    const bool hasAction = annotation.hasKey("/A");
    const bool hasDestination = annotation.hasKey("/Dest");
    return (hasAction || hasDestination) &&
           !(hasAction && destinations.isKept(annotation.getKey("/A"))) &&
           !(hasDestination && destinations.targetOf(annotation.getKey("/Dest")).isIndirect());
}

QPDFObjectHandle AnnotationCopier::announce(QPDFObjectHandle original, Page &page)
{
    // An annotation listed by two pages stays with the first of them; the other page and a page
    // written a second time get objects of their own.
    const QPDFObjGen number = original.getObjGen();
    const bool isFirst = !copier.isMapped(number);
    const auto known = page.copies.find(number);
    if (original.isIndirect() && known != page.copies.end())
        return known->second;
    const QPDFObjectHandle copied = copier.placeholder();
    if (original.isIndirect()) {
        page.copies.emplace(number, copied);
        if (isFirst)
            copier.map(number, copied);
    }
    const bool isWidget = original.getKey("/Subtype").isNameAndEquals("/Widget");
    const bool isPicture = page.isRepetition && isWidget && fields.canBePicture(original);
    page.annotations.push_back({original, copied, isPicture});
    if (isWidget && !isPicture)
        fields.announce(original, isFirst);
    return copied;
}

void AnnotationCopier::announcePage(const QPDFObjectHandle &sourcePage,
                                    const QPDFObjectHandle &targetPage, bool isRepetition)
{
    Page page{targetPage, {}, {}, {}, isRepetition};
    QPDFObjectHandle array = QPDFObjectHandle(sourcePage).getKey("/Annots");
    std::vector<QPDFObjectHandle> popups;
    if (array.isArray()) {
        for (QPDFObjectHandle &original : array.getArrayAsVector()) {
            if (!original.isDictionary() || !original.hasKey("/Subtype") ||
                leadsNowhere(original) || !fields.canBeCopied(original, isRepetition))
                continue;
            page.listed.push_back(announce(original, page));
            popups.push_back(original.getKey("/Popup"));
        }
    }
    // Pop-ups belong among the page's annotations, but some producers leave them out there.
    for (const QPDFObjectHandle &popup : popups) {
        const bool isAnnotation = popup.isIndirect() && QPDFObjectHandle(popup).isDictionary() &&
                                  QPDFObjectHandle(popup).hasKey("/Subtype");
        if (isAnnotation && (isRepetition || !copier.isMapped(popup.getObjGen())))
            announce(popup, page);
    }
    pages.push_back(std::move(page));
}

QPDFObjectHandle AnnotationCopier::copyPage(std::size_t index)
{
    const Page &page = pages[index];
    for (const Annotation &annotation : page.annotations)
        copyAnnotation(annotation, page);
    return page.listed.empty() ? QPDFObjectHandle::newNull()
                               : QPDFObjectHandle::newArray(page.listed);
}

void AnnotationCopier::copyAnnotation(const Annotation &annotation, const Page &page)
{
    QPDFObjectHandle original = annotation.original;
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    for (const auto &[key, value] : original.getDictAsMap())
        copyEntry(copied, key, value, page);
    if (original.hasKey("/P"))
        copied.replaceKey("/P", page.target);
    if (original.getKey("/Subtype").isNameAndEquals("/Widget")) {
        if (annotation.isPicture)
            FormFieldCopier::makePicture(copied);
        else
            fields.attach(original, copied, annotation.copied);
    }
    if (!page.isRepetition)
        copied.replaceKey("/StructParent", copier.structureKey(original.getKey("/StructParent")));
    copier.targetDocument().replaceObject(annotation.copied.getObjGen(), copied);
}

void AnnotationCopier::copyEntry(QPDFObjectHandle &copied, const std::string &key,
                                 const QPDFObjectHandle &value, const Page &page)
{
    // /Kids occurs where a form field and its only widget share a dictionary, and is void there.
    if (key == "/P" || key == "/StructParent" || key == "/Kids")
        return;
    const auto neighbour = page.copies.find(value.getObjGen());
    if (value.isIndirect() && neighbour != page.copies.end()) {
        copied.replaceKey(key, neighbour->second);
    } else if (key == "/Dest") {
        copied.replaceKey(key, destinations.copyDestination(value));
    } else if (key == "/A") {
        copied.replaceKey(key, destinations.copyAction(value));
    } else if (key == "/AA") {
        copied.replaceKey(key, destinations.copyAdditionalActions(value));
    } else {
        ObjectCopier::setEntry(copied, key, copier.copy(value));
    }
}

} // namespace pdf
