// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/structuretree.h"

#include "pdf/assembly/contentparents.h"
#include "pdf/assembly/keytree.h"

#include <set>

namespace pdf {

namespace {

QPDFObjectHandle nothing()
{
    return QPDFObjectHandle::newNull();
}

bool isElement(QPDFObjectHandle object)
{
    return object.isIndirect() && object.isDictionary() && object.getKey("/S").isName();
}

bool isEmpty(QPDFObjectHandle value)
{
    return value.isNull() || (value.isArray() && value.getArrayNItems() == 0);
}

} // namespace

QPDFObjectHandle StructureCopier::copyTree()
{
    sourceRoot = copier.sourceCatalog().getKey("/StructTreeRoot");
    if (!sourceRoot.isDictionary() || copier.structureKeys().empty())
        return nothing();
    root = copier.placeholder();
    if (sourceRoot.isIndirect())
        copier.map(sourceRoot.getObjGen(), root);
    QPDFObjectHandle parentTree = copyParentTree(sourceRoot.getKey("/ParentTree"));
    if (elements.empty())
        return nothing();
    removeReplacementTexts();

    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    copied.replaceKey("/Type", QPDFObjectHandle::newName("/StructTreeRoot"));
    for (const char *key : {"/RoleMap", "/ClassMap", "/Namespaces", "/PronunciationLexicon"})
        copied.replaceKey(key, copier.copy(sourceRoot.getKey(key)));
    copied.replaceKey("/K", copyKids(sourceRoot, nothing()));
    copied.replaceKey("/ParentTree", parentTree);
    copied.replaceKey("/ParentTreeNextKey", QPDFObjectHandle::newInteger(static_cast<long long>(
                                                copier.structureKeys().size())));
    if (!identifiers.empty()) {
        QPDFObjectHandle names = QPDFObjectHandle::newArray();
        for (const auto &[name, element] : identifiers) {
            names.appendItem(QPDFObjectHandle::newString(name));
            names.appendItem(element);
        }
        QPDFObjectHandle tree = QPDFObjectHandle::newDictionary();
        tree.replaceKey("/Names", names);
        copied.replaceKey("/IDTree", tree);
    }
    copier.targetDocument().replaceObject(root.getObjGen(), copied);
    copier.finish();
    return root;
}

QPDFObjectHandle StructureCopier::copyParentTree(const QPDFObjectHandle &sourceTree)
{
    KeyTree tree(sourceTree, KeyTree::Kind::Numbers);
    const bool isMissing = !QPDFObjectHandle(sourceTree).isDictionary();
    std::map<long long, QPDFObjectHandle> found;
    if (isMissing)
        found = contentParents(copier, sourceRoot);
    QPDFObjectHandle numbers = QPDFObjectHandle::newArray();
    // Elements can refer to streams that are copied only with them and are tagged themselves.
    for (std::size_t i = 0; i < copier.structureKeys().size(); ++i) {
        const auto key = static_cast<long long>(copier.structureKeys()[i]);
        QPDFObjectHandle entry = copyParentEntry(isMissing ? found[key] : tree.find(key));
        if (!isEmpty(entry)) {
            numbers.appendItem(QPDFObjectHandle::newInteger(static_cast<long long>(i)));
            numbers.appendItem(entry);
        }
        if (i + 1 == copier.structureKeys().size())
            fillElements();
    }
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    copied.replaceKey("/Nums", numbers);
    return copier.targetDocument().makeIndirectObject(copied);
}

QPDFObjectHandle StructureCopier::copyParentEntry(QPDFObjectHandle entry)
{
    const auto copiedElement = [this](const QPDFObjectHandle &element) {
        keepWithAncestors(element);
        const auto found = kept.find(element.getObjGen());
        return found == kept.end() ? nothing() : found->second;
    };
    if (!entry.isArray())
        return copiedElement(entry);
    std::vector<QPDFObjectHandle> items = entry.getArrayAsVector();
    for (QPDFObjectHandle &item : items)
        item = copiedElement(item);
    return copier.targetDocument().makeIndirectObject(QPDFObjectHandle::newArray(items));
}

void StructureCopier::keepWithAncestors(QPDFObjectHandle element)
{
    while (isElement(element)) {
        const Number number = element.getObjGen();
        const QPDFObjectHandle mapped = copier.mapped(number);
        if (kept.count(number) > 0 || mapped.isIndirect())
            return;
        const QPDFObjectHandle copied = copier.placeholder();
        kept.emplace(number, copied);
        copier.map(number, copied);
        elements.push_back(element);
        element = element.getKey("/P");
    }
}

void StructureCopier::fillElements()
{
    for (; filled < elements.size(); ++filled)
        fillElement(elements[filled], kept.at(elements[filled].getObjGen()));
    copier.finish();
}

void StructureCopier::fillElement(QPDFObjectHandle original, QPDFObjectHandle copied)
{
    const QPDFObjectHandle page = keptPage(original.getKey("/Pg"));
    const auto parent = kept.find(original.getKey("/P").getObjGen());
    QPDFObjectHandle dictionary = QPDFObjectHandle::newDictionary();
    for (const auto &[key, value] : original.getDictAsMap()) {
        if (key != "/K" && key != "/P" && key != "/Pg" && key != "/Ref")
            ObjectCopier::setEntry(dictionary, key, copier.copy(value));
    }
    dictionary.replaceKey("/P", parent == kept.end() ? root : parent->second);
    dictionary.replaceKey("/Pg", page);
    dictionary.replaceKey("/K", copyKids(original, page));
    dictionary.replaceKey("/Ref", keptAmong(original.getKey("/Ref")));
    QPDFObjectHandle identifier = original.getKey("/ID");
    if (identifier.isString())
        identifiers.emplace(identifier.getStringValue(), copied);
    copier.targetDocument().replaceObject(copied.getObjGen(), dictionary);
}

/// The kept ones among the elements that the array lists.
QPDFObjectHandle StructureCopier::keptAmong(QPDFObjectHandle array)
{
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    const int count = array.isArray() ? array.getArrayNItems() : 0;
    for (int i = 0; i < count; ++i) {
        const auto found = kept.find(array.getArrayItem(i).getObjGen());
        if (found != kept.end())
            result.appendItem(found->second);
    }
    return isEmpty(result) ? nothing() : result;
}

QPDFObjectHandle StructureCopier::copyKids(QPDFObjectHandle element, const QPDFObjectHandle &page)
{
    QPDFObjectHandle kids = element.getKey("/K");
    if (kids.isNull())
        return kids;
    const std::vector<QPDFObjectHandle> items =
        kids.isArray() ? kids.getArrayAsVector() : std::vector<QPDFObjectHandle>{kids};
    std::vector<QPDFObjectHandle> copied;
    for (const QPDFObjectHandle &item : items) {
        const QPDFObjectHandle kid = copyKid(item, page);
        if (!isEmpty(kid))
            copied.push_back(kid);
    }
    if (copied.size() < items.size() && element.isIndirect())
        cut.push_back(element);
    if (copied.empty())
        return nothing();
    return kids.isArray() ? QPDFObjectHandle::newArray(copied) : copied.front();
}

QPDFObjectHandle StructureCopier::copyKid(QPDFObjectHandle kid, const QPDFObjectHandle &page)
{
    if (kid.isIndirect()) {
        const auto found = kept.find(kid.getObjGen());
        if (found != kept.end())
            return found->second;
        if (isForeignElement(kid))
            return nothing();
    }
    if (kid.isInteger())
        return isEmpty(page) ? nothing() : QPDFObjectHandle::newInteger(kid.getIntValue());
    if (kid.isDictionary() && (kid.hasKey("/MCID") || kid.hasKey("/Obj")))
        return copyContentReference(kid, page);
    return nothing();
}

/// Whether a quick look tells that the object is an element that was not kept: a document's topmost
/// element can list one for each paragraph.
bool StructureCopier::isForeignElement(const QPDFObjectHandle &kid)
{
    const std::optional<RawEntries> entries =
        document.objectBytes().peekEntries(QPDFObjectHandle(kid).getObjGen());
    return entries && !rawValue(*entries, "S").empty();
}

/// A marked-content or object reference (ISO 32000-1, 14.7.4.2 and 14.7.4.3).
QPDFObjectHandle StructureCopier::copyContentReference(QPDFObjectHandle kid,
                                                       const QPDFObjectHandle &page)
{
    const QPDFObjectHandle own = kid.getKey("/Pg");
    const QPDFObjectHandle ownPage = keptPage(own);
    QPDFObjectHandle shownOn = QPDFObjectHandle(own).isNull() ? page : ownPage;
    if (shownOn.isNull())
        return nothing();
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    for (const char *key : {"/Type", "/MCID"})
        copied.replaceKey(key, copier.copy(kid.getKey(key)));
    copied.replaceKey("/Pg", ownPage);
    for (const char *key : {"/Obj", "/Stm", "/StmOwn"}) {
        QPDFObjectHandle object = kid.getKey(key);
        if (object.isNull())
            continue;
        // Only what the pages themselves brought along.
        const QPDFObjectHandle there = copier.mapped(object.getObjGen());
        if (!there.isIndirect())
            return nothing();
        copied.replaceKey(key, there);
    }
    return copied;
}

QPDFObjectHandle StructureCopier::keptPage(const QPDFObjectHandle &page)
{
    return page.isIndirect() ? copier.mapped(page.getObjGen()) : nothing();
}

void StructureCopier::removeReplacementTexts()
{
    std::set<Number> done;
    for (QPDFObjectHandle element : cut) {
        while (isElement(element) && done.insert(element.getObjGen()).second) {
            const auto found = kept.find(element.getObjGen());
            if (found != kept.end()) {
                for (const char *key : {"/ActualText", "/Alt", "/E"})
                    found->second.removeKey(key);
            }
            element = element.getKey("/P");
        }
    }
}

} // namespace pdf
