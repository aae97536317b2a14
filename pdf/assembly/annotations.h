// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/destinations.h"
#include "pdf/assembly/formfields.h"
#include "pdf/assembly/objectcopier.h"

#include <map>
#include <string>
#include <vector>

namespace pdf {

/// Copies the annotations of pages (ISO 32000-1, 12.5) with what belongs to them: appearances,
/// pop-ups, form fields. Links to pages outside the new document are left out.
class AnnotationCopier
{
public:
    AnnotationCopier(ObjectCopier &objectCopier, DestinationCopier &destinationCopier,
                     FormFieldCopier &fieldCopier)
        : copier(objectCopier), destinations(destinationCopier), fields(fieldCopier)
    {
    }

    /// Sets aside an object of the target for each annotation of the page, so that annotations can
    /// refer to each other. To be called for all pages, when these are mapped, before the first
    /// copyPage().
    void announcePage(const QPDFObjectHandle &sourcePage, const QPDFObjectHandle &targetPage,
                      bool isRepetition);
    /// Copies the annotations of the page announced as number index (from 0, in the order of the
    /// calls). Gives the value of /Annots for the target, null when no annotation remains.
    [[nodiscard]] QPDFObjectHandle copyPage(std::size_t index);

private:
    struct Annotation
    {
        QPDFObjectHandle original;
        QPDFObjectHandle copied;
        bool isPicture = false; ///< of a form field
    };
    struct Page
    {
        QPDFObjectHandle target;
        std::vector<Annotation> annotations;
        std::vector<QPDFObjectHandle> listed;          ///< in /Annots
        std::map<QPDFObjGen, QPDFObjectHandle> copies; ///< by the numbers of the originals
        bool isRepetition = false;
    };

    bool leadsNowhere(QPDFObjectHandle annotation);
    QPDFObjectHandle announce(QPDFObjectHandle original, Page &page);
    void copyAnnotation(const Annotation &annotation, const Page &page);
    void copyEntry(QPDFObjectHandle &copied, const std::string &key, const QPDFObjectHandle &value,
                   const Page &page);

    ObjectCopier &copier;
    DestinationCopier &destinations;
    FormFieldCopier &fields;
    std::vector<Page> pages;
};

} // namespace pdf
