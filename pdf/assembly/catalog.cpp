// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/catalog.h"

namespace pdf {

namespace {

/// The page ranges of the print dialog count the source's pages.
QPDFObjectHandle viewerPreferences(ObjectCopier &copier, QPDFObjectHandle original)
{
    if (!original.isDictionary())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle copied = copier.copyContents(original);
    copied.removeKey("/PrintPageRange");
    return copied;
}

/// Where and how large a document opens; scripts that run then are not taken along.
QPDFObjectHandle openAction(DestinationCopier &destinations, QPDFObjectHandle original)
{
    if (!original.isDictionary())
        return destinations.copyDestination(original);
    return original.getKey("/S").isNameAndEquals("/GoTo") ? destinations.copyAction(original)
                                                          : QPDFObjectHandle::newNull();
}

} // namespace

void copyDocumentEntries(ObjectCopier &copier, DestinationCopier &destinations)
{
    QPDFObjectHandle from = copier.sourceCatalog();
    QPDFObjectHandle to = copier.targetDocument().getRoot();
    for (const char *key : {"/Lang", "/PageLayout", "/PageMode", "/Metadata", "/OutputIntents",
                            "/Extensions", "/URI", "/MarkInfo"})
        to.replaceKey(key, copier.copy(from.getKey(key)));
    to.replaceKey("/ViewerPreferences",
                  viewerPreferences(copier, from.getKey("/ViewerPreferences")));
    to.replaceKey("/OpenAction", openAction(destinations, from.getKey("/OpenAction")));
    QPDFObjectHandle info = copier.sourceDocument().getTrailer().getKey("/Info");
    if (info.isDictionary())
        copier.targetDocument().getTrailer().replaceKey(
            "/Info", info.isIndirect() ? copier.copy(info) : copier.copyAsIndirect(info));
    copier.finish();
}

void copyNames(ObjectCopier &copier, const DestinationCopier &destinations)
{
    QPDFObjectHandle from = copier.sourceCatalog().getKey("/Names");
    QPDFObjectHandle to = copier.targetDocument().getRoot();
    QPDFObjectHandle names = QPDFObjectHandle::newDictionary();
    names.replaceKey("/Dests", destinations.usedNameTree());
    if (to.hasKey("/AcroForm") && from.isDictionary())
        names.replaceKey("/JavaScript", copier.copy(from.getKey("/JavaScript")));
    if (!names.getKeys().empty())
        to.replaceKey("/Names", names);
    to.replaceKey("/Dests", destinations.usedNameDictionary());
    copier.finish();
}

} // namespace pdf
