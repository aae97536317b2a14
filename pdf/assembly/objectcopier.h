// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

namespace pdf {

/// Copies objects of one document into another, each indirect object once, whatever refers to it.
///
/// Objects that belong to the structure of the source (pages, page tree, annotations, form fields,
/// outline, structure tree, article threads) are copied only where the caller says what takes their
/// place: a reference to any other of them is left out. So nothing that happens to be referred to
/// drags another page along. The caller's stack does not grow with the depth of the references.
class ObjectCopier
{
public:
    ObjectCopier(QPDF &sourceDocument, QPDF &targetDocument)
        : source(sourceDocument), target(targetDocument)
    {
    }

    /// References to the source object lead to replacement from now on.
    void map(QPDFObjGen object, const QPDFObjectHandle &replacement);
    [[nodiscard]] bool isMapped(QPDFObjGen object) const;
    /// What stands for the source object in the target, null if nothing does.
    [[nodiscard]] QPDFObjectHandle mapped(QPDFObjGen object) const;

    /// The value as one for the target. References inside are given their objects at once and
    /// those their contents by finish(). Null for a reference that is left out.
    [[nodiscard]] QPDFObjectHandle copy(const QPDFObjectHandle &value);
    /// The contents of an indirect object, as copy() gives those of a direct one.
    [[nodiscard]] QPDFObjectHandle copyContents(const QPDFObjectHandle &value)
    {
        return copyDirect(value);
    }
    /// Gives the dictionary of the target the entry of a source's dictionary. To be used for keys
    /// that the source decides, instead of replaceKey().
    static void setEntry(QPDFObjectHandle dictionary, const std::string &key,
                         const QPDFObjectHandle &copied);
    /// A name of the source for the target: qpdf up to version 11 writes a number sign that is part
    /// of a name as it is, and readers would take it for the beginning of an escape.
    [[nodiscard]] static std::string writtenName(const std::string &name);

    /// A copy of a direct value as an indirect object of the target.
    [[nodiscard]] QPDFObjectHandle copyAsIndirect(const QPDFObjectHandle &value);
    /// An indirect object of the target to be filled later with replaceObject().
    [[nodiscard]] QPDFObjectHandle placeholder();

    /// Copies everything that is referred to and not yet copied.
    void finish();

    [[nodiscard]] QPDF &sourceDocument() { return source; }
    [[nodiscard]] QPDF &targetDocument() { return target; }
    /// The source's catalog, in a damaged file possibly no dictionary.
    [[nodiscard]] QPDFObjectHandle sourceCatalog() { return source.getTrailer().getKey("/Root"); }

    /// The number under which a copied object finds its structure elements in the target: the value
    /// for its /StructParents or /StructParent, null when the source's value is no number (ISO
    /// 32000-1, 14.7.4.4). Each object of the target needs numbers of its own.
    [[nodiscard]] QPDFObjectHandle structureKey(QPDFObjectHandle sourceKey);
    /// The source's number for each of the target's, which count from 0. Grows while streams are
    /// copied.
    [[nodiscard]] const std::vector<int> &structureKeys() const { return sourceStructureKeys; }

private:
    struct Pending
    {
        QPDFObjectHandle original;
        QPDFObjectHandle copied;
    };

    QPDFObjectHandle copyReference(QPDFObjectHandle object);
    QPDFObjectHandle copyDirect(QPDFObjectHandle value);
    QPDFObjectHandle copyArray(QPDFObjectHandle array);
    QPDFObjectHandle copyDictionary(QPDFObjectHandle dictionary);
    void fillStream(QPDFObjectHandle original, QPDFObjectHandle copied);

    QPDF &source;
    QPDF &target;
    std::map<QPDFObjGen, QPDFObjectHandle> mapping;
    std::vector<Pending> pending;
    std::vector<int> sourceStructureKeys;
};

} // namespace pdf
