// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/objectcopier.h"
#include "pdf/document/document.h"

#include <map>
#include <string>
#include <vector>

namespace pdf {

/// Copies the part of the structure tree (ISO 32000-1, 14.7) that describes the copied contents, so
/// that tagged text stays accessible: the elements of the copied pages, annotations and streams
/// with all elements above them, and nothing else.
///
/// The elements are found from the contents upwards, so the cost is that of the copied part. An
/// element that also describes contents left out loses its replacement texts (/ActualText, /Alt,
/// /E), which would tell what those contents say.
class StructureCopier
{
public:
    StructureCopier(Document &inputDocument, ObjectCopier &objectCopier)
        : document(inputDocument), copier(objectCopier)
    {
    }

    /// The value of the catalog's /StructTreeRoot, null when no copied contents are tagged. To be
    /// called when all contents are copied.
    [[nodiscard]] QPDFObjectHandle copyTree();

private:
    using Number = QPDFObjGen;

    QPDFObjectHandle copyParentTree(const QPDFObjectHandle &sourceTree);
    QPDFObjectHandle copyParentEntry(QPDFObjectHandle entry);
    void keepWithAncestors(QPDFObjectHandle element);
    void fillElements();
    void fillElement(QPDFObjectHandle original, QPDFObjectHandle copied);
    QPDFObjectHandle keptAmong(QPDFObjectHandle array);
    QPDFObjectHandle copyKids(QPDFObjectHandle element, const QPDFObjectHandle &page);
    QPDFObjectHandle copyKid(QPDFObjectHandle kid, const QPDFObjectHandle &page);
    QPDFObjectHandle copyContentReference(QPDFObjectHandle kid, const QPDFObjectHandle &page);
    bool isForeignElement(const QPDFObjectHandle &kid);
    QPDFObjectHandle keptPage(const QPDFObjectHandle &page);
    void removeReplacementTexts();

    Document &document;
    ObjectCopier &copier;
    QPDFObjectHandle sourceRoot;
    QPDFObjectHandle root;
    std::map<Number, QPDFObjectHandle> kept;
    std::vector<QPDFObjectHandle> elements; ///< of the source, in the order they were found
    std::size_t filled = 0;                 ///< of them
    std::vector<QPDFObjectHandle> cut;      ///< of the source: those that lost kids
    std::map<std::string, QPDFObjectHandle> identifiers;
};

} // namespace pdf
