// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/objectcopier.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace pdf {

namespace {

template <std::size_t N>
bool isOneOf(const std::string &name, const std::array<std::string_view, N> &names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Whether the dictionary is a part of the document's structure rather than of a page's contents.
bool isStructural(QPDFObjectHandle dictionary)
{
    static constexpr std::array<std::string_view, 11> types = {
        "/Page", "/Pages",  "/Catalog", "/Outlines", "/StructTreeRoot", "/StructElem",
        "/MCR",  "/Thread", "/Bead",    "/Template", "/Annot"};
    const auto has = [&dictionary](const char *key) { return dictionary.hasKey(key); };
    QPDFObjectHandle type = dictionary.getKey("/Type");
    if (type.isName() && isOneOf(type.getName(), types))
        return true;
    // /Type is optional in most of them.
    const bool isAnnotation = has("/Subtype") && has("/Rect");
    const bool isField = has("/FT") || (has("/T") && (has("/Kids") || has("/Parent")));
    const bool isTreeNode = has("/Kids") && has("/Count");
    const bool isOutlineItem = has("/Title") && has("/Parent");
    const bool isElement =
        dictionary.getKey("/S").isName() && has("/P") && (has("/K") || has("/Pg"));
    return isAnnotation || isField || isTreeNode || isOutlineItem || isElement;
}

/// Keys that are not taken along from dictionaries of any kind: numbers of the structure tree,
/// which are given anew where they count, and applications' private data.
bool isLeftOut(const std::string &key)
{
    static constexpr std::array<std::string_view, 3> keys = {"/StructParent", "/StructParents",
                                                             "/PieceInfo"};
    return isOneOf(key, keys);
}

} // namespace

std::string ObjectCopier::writtenName(const std::string &name)
{
    static const bool escapesNumberSign = QPDFObjectHandle::newName("/#").unparse() != "/#";
    if (escapesNumberSign || name.find('#') == std::string::npos)
        return name;
    std::string escaped;
    for (const char c : name)
        escaped += c == '#' ? std::string("#23") : std::string(1, c);
    return escaped;
}

void ObjectCopier::setEntry(QPDFObjectHandle dictionary, const std::string &key,
                            const QPDFObjectHandle &copied)
{
    dictionary.replaceKey(writtenName(key), copied);
}

void ObjectCopier::map(QPDFObjGen object, const QPDFObjectHandle &replacement)
{
    mapping[object] = replacement;
}

bool ObjectCopier::isMapped(QPDFObjGen object) const
{
    return mapping.find(object) != mapping.end();
}

QPDFObjectHandle ObjectCopier::mapped(QPDFObjGen object) const
{
    const auto found = mapping.find(object);
    return found == mapping.end() ? QPDFObjectHandle::newNull() : found->second;
}

QPDFObjectHandle ObjectCopier::copy(const QPDFObjectHandle &value)
{
    return value.isIndirect() ? copyReference(value) : copyDirect(value);
}

QPDFObjectHandle ObjectCopier::copyAsIndirect(const QPDFObjectHandle &value)
{
    return target.makeIndirectObject(copyDirect(value));
}

QPDFObjectHandle ObjectCopier::placeholder()
{
    // Not a null: assigning a reference to null to a key removes the key.
    return target.makeIndirectObject(QPDFObjectHandle::newDictionary());
}

void ObjectCopier::finish()
{
    while (!pending.empty()) {
        Pending next = pending.back();
        pending.pop_back();
        if (next.original.isStream())
            fillStream(next.original, next.copied);
        else
            target.replaceObject(next.copied.getObjGen(), copyDirect(next.original));
    }
}

QPDFObjectHandle ObjectCopier::structureKey(QPDFObjectHandle sourceKey)
{
    int number = 0;
    if (!sourceKey.getValueAsInt(number))
        return QPDFObjectHandle::newNull();
    sourceStructureKeys.push_back(number);
    return QPDFObjectHandle::newInteger(static_cast<int>(sourceStructureKeys.size()) - 1);
}

QPDFObjectHandle ObjectCopier::copyReference(QPDFObjectHandle object)
{
    const auto found = mapping.find(object.getObjGen());
    if (found != mapping.end())
        return found->second;
    const bool isLeftOutObject = object.isNull() || (object.isDictionary() && isStructural(object));
    QPDFObjectHandle copied = QPDFObjectHandle::newNull();
    if (!isLeftOutObject) {
        copied = object.isStream() ? target.newStream() : placeholder();
        pending.push_back({object, copied});
    }
    mapping[object.getObjGen()] = copied;
    return copied;
}

QPDFObjectHandle ObjectCopier::copyDirect(QPDFObjectHandle value)
{
    switch (value.getTypeCode()) {
    case ::ot_array:
        return copyArray(value);
    case ::ot_dictionary:
        return copyDictionary(value);
    case ::ot_boolean:
        return QPDFObjectHandle::newBool(value.getBoolValue());
    case ::ot_integer:
        return QPDFObjectHandle::newInteger(value.getIntValue());
    case ::ot_real:
        return QPDFObjectHandle::newReal(value.getRealValue());
    case ::ot_string:
        return QPDFObjectHandle::newString(value.getStringValue());
    case ::ot_name:
        return QPDFObjectHandle::newName(writtenName(value.getName()));
    default:
        return QPDFObjectHandle::newNull();
    }
}

QPDFObjectHandle ObjectCopier::copyArray(QPDFObjectHandle array)
{
    std::vector<QPDFObjectHandle> items = array.getArrayAsVector();
    for (QPDFObjectHandle &item : items)
        item = copy(item);
    return QPDFObjectHandle::newArray(items);
}

QPDFObjectHandle ObjectCopier::copyDictionary(QPDFObjectHandle dictionary)
{
    std::map<std::string, QPDFObjectHandle> entries;
    for (const auto &[key, value] : dictionary.getDictAsMap()) {
        if (isLeftOut(key))
            continue;
        QPDFObjectHandle copied = copy(value);
        if (copied.isIndirect() || !copied.isNull())
            entries.emplace_hint(entries.end(), writtenName(key), copied);
    }
    return QPDFObjectHandle::newDictionary(entries);
}

void ObjectCopier::fillStream(QPDFObjectHandle original, QPDFObjectHandle copied)
{
    QPDFObjectHandle dictionary = original.getDict();
    std::map<std::string, QPDFObjectHandle> entries = dictionary.getDictAsMap();
    // The writer states the length of what it writes; a copied reference would be a stray object.
    entries.erase("/Length");
    QPDFObjectHandle copiedDictionary = copyDictionary(QPDFObjectHandle::newDictionary(entries));
    for (const char *key : {"/StructParents", "/StructParent"})
        copiedDictionary.replaceKey(key, structureKey(dictionary.getKey(key)));
    copied.replaceDict(copiedDictionary);
    const auto provide = [original](Pipeline *out, bool suppressWarnings, bool) mutable {
        // The writer would take what is missing for the stream's end.
        if (!original.pipeStreamData(out, nullptr, 0, qpdf_dl_none, suppressWarnings, false))
            throw std::runtime_error("a stream cannot be read to its end");
        return true;
    };
    // Left uninitialised, the handles keep /Filter and /DecodeParms: the bytes stay as they are.
    copied.replaceStreamData(provide, QPDFObjectHandle(), QPDFObjectHandle());
    copied.setFilterOnWrite(false);
}

} // namespace pdf
