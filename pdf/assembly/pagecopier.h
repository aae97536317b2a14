// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/destinations.h"
#include "pdf/assembly/objectcopier.h"
#include "pdf/assembly/resources.h"
#include "pdf/document/document.h"

#include <map>
#include <string>
#include <utility>

namespace pdf {

/// Copies page objects (ISO 32000-1, 7.7.3.3) by a list of what belongs to a page, with the
/// attributes it inherits.
class PageCopier
{
public:
    PageCopier(Document &inputDocument, ObjectCopier &objectCopier,
               DestinationCopier &destinationCopier, ResourceCopier &resourceCopier)
        : document(inputDocument), copier(objectCopier), destinations(destinationCopier),
          resources(resourceCopier)
    {
    }

    /// Looks up which resources the page and its annotations use.
    void announce(const PageEntry &entry);
    /// The page without /Parent, /Annots and /StructParents.
    [[nodiscard]] QPDFObjectHandle copy(const PageEntry &entry);

private:
    QPDFObjectHandle inherited(const PageEntry &entry, const char *key);
    ResourceCopier::PageResources resourcesOf(const PageEntry &entry);
    QPDFObjectHandle copyResources(const PageEntry &entry);
    QPDFObjectHandle copySteps(QPDFObjectHandle node);
    QPDFObjectHandle copySeparation(QPDFObjectHandle original);

    Document &document;
    ObjectCopier &copier;
    DestinationCopier &destinations;
    ResourceCopier &resources;
    /// By node and key.
    std::map<std::pair<QPDFObjGen, std::string>, QPDFObjectHandle> handedDown;
};

} // namespace pdf
