// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/destinations.h"
#include "pdf/assembly/objectcopier.h"
#include "pdf/document/document.h"

#include <set>
#include <vector>

namespace pdf {

/// Copies the outline entries (ISO 32000-1, 12.3.3) that lead to copied pages, with the entries
/// above them, which keep their titles but lead nowhere unless their page is copied, too.
///
/// The whole outline is looked at for every document taken out of a file, so its entries are read
/// from the file's bytes where these are plain, and only those kept through qpdf.
class OutlineCopier
{
public:
    OutlineCopier(Document &inputDocument, ObjectCopier &objectCopier,
                  DestinationCopier &destinationCopier)
        : document(inputDocument), copier(objectCopier), destinations(destinationCopier)
    {
    }

    /// The value of the catalog's /Outlines, null when no entry leads to a copied page.
    [[nodiscard]] QPDFObjectHandle copyOutline();

private:
    /// An entry of the source. Entry 0 is the outline itself.
    struct Entry
    {
        QPDFObjGen number;
        std::size_t parent = 0;
        bool leadsToKept = false;
        bool isKept = false;
        std::vector<std::size_t> kids; ///< kept ones
        QPDFObjectHandle copied;
    };
    /// What the walk needs to know of an entry.
    struct Links
    {
        QPDFObjGen first;
        QPDFObjGen next;
        bool leadsToKept = false;
    };

    void readEntries(QPDFObjGen first);
    Links linksOf(QPDFObjGen entry);
    Links linksThroughQpdf(QPDFObjectHandle entry);
    bool keepAncestors();
    bool isOpenInSource(QPDFObjGen entry);
    QPDFObjectHandle copyEntry(const Entry &entry);
    void linkSiblings();

    Document &document;
    ObjectCopier &copier;
    DestinationCopier &destinations;
    std::vector<Entry> entries;
    std::set<QPDFObjGen> visited;
};

} // namespace pdf
