// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/pagelist.h"

#include "pdf/error.h"

#include <set>

namespace pdf {

namespace {

bool isTypedAsOther(QPDFObjectHandle &dictionary)
{
    const QPDFObjectHandle type = dictionary.getKey("/Type");
    if (!QPDFObjectHandle(type).isName() || QPDFObjectHandle(type).isNameAndEquals("/Page"))
        return false;
    return !dictionary.hasKey("/Contents") && !dictionary.hasKey("/MediaBox") &&
           !dictionary.hasKey("/Resources");
}

/// The walk over one page tree, with a stack of its own: a file decides how deep the tree is.
class TreeWalk
{
public:
    TreeWalk(QPDF &document, const ObjectBytes &objectBytes) : pdf(document), bytes(objectBytes) {}

    PageList run(const QPDFObjectHandle &root)
    {
        enterIndirect(root, QPDFObjGen());
        while (!levels.empty()) {
            Level &level = levels.back();
            if (level.next >= level.size()) {
                above.erase(level.node);
                levels.pop_back();
                continue;
            }
            if (level.isRepeated && ++repeatedKids > mostRepeatedKids)
                throw Error(ExitCode::InputUnreadable,
                            pdf.getFilename() + ": lists the same pages again and again");
            const std::size_t index = level.next++;
            if (level.references.empty())
                visitHandle(level.kids.getArrayItem(static_cast<int>(index)), level.node);
            else
                visitReference(level.references[index], level.node);
        }
        return std::move(list);
    }

private:
    struct Level
    {
        QPDFObjGen node;
        std::vector<QPDFObjGen> references; ///< kids of a node read from its bytes
        QPDFObjectHandle kids;              ///< kids of a node read through qpdf
        std::size_t length = 0;
        std::size_t next = 0;
        bool isRepeated = false;
        [[nodiscard]] std::size_t size() const { return length; }
    };

    /// Levels are addressed by the caller through references that this invalidates, so it comes
    /// last in each visit.
    void enter(QPDFObjGen node, QPDFObjGen parent, Level level)
    {
        if (!above.insert(node).second) {
            list.isRepaired = true;
            return;
        }
        level.isRepeated = !visited.insert(node).second;
        if (parent.isIndirect())
            list.nodeParents.emplace(node, parent);
        level.node = node;
        levels.push_back(std::move(level));
    }

    void visitReference(QPDFObjGen object, QPDFObjGen parent)
    {
        std::optional<PeekedNode> peeked = bytes.peekNode(object);
        if (!peeked) {
            visitHandle(pdf.getObject(object), parent);
        } else if (peeked->isPage) {
            list.pages.push_back({object, parent});
        } else {
            Level level;
            level.length = peeked->kids.size();
            level.references = std::move(peeked->kids);
            enter(object, parent, std::move(level));
        }
    }

    void visitHandle(const QPDFObjectHandle &object, QPDFObjGen parent)
    {
        if (object.isIndirect() && bytes.peekNode(object.getObjGen()))
            visitReference(object.getObjGen(), parent);
        else
            enterIndirect(object, parent);
    }

    void enterIndirect(QPDFObjectHandle object, QPDFObjGen parent)
    {
        if (!object.isDictionary()) {
            list.isRepaired = true;
            return;
        }
        QPDFObjectHandle kids = object.getKey("/Kids");
        const bool isPage = object.getKey("/Type").isNameAndEquals("/Page") || !kids.isArray();
        if (isPage && (isTypedAsOther(object) || !parent.isIndirect())) {
            list.isRepaired = true;
            return;
        }
        if (!object.isIndirect()) {
            object = pdf.makeIndirectObject(object);
            list.hasNewObjects = true;
        }
        if (isPage) {
            list.pages.push_back({object.getObjGen(), parent});
            return;
        }
        Level level;
        level.length = static_cast<std::size_t>(kids.getArrayNItems());
        level.kids = kids;
        enter(object.getObjGen(), parent, std::move(level));
    }

    QPDF &pdf;
    const ObjectBytes &bytes;
    PageList list;
    std::vector<Level> levels;
    std::set<QPDFObjGen> visited;
    std::set<QPDFObjGen> above; ///< the nodes that the walk is in
    /// Kids of nodes met before. A few hundred bytes can list each node twice in the next one, and
    /// so more pages than there is memory for.
    static constexpr int mostRepeatedKids = 1000 * 1000;
    int repeatedKids = 0;
};

QPDFObjectHandle pageTreeRoot(QPDF &pdf)
{
    QPDFObjectHandle catalog = pdf.getTrailer().getKey("/Root");
    return catalog.isDictionary() ? catalog.getKey("/Pages") : QPDFObjectHandle::newNull();
}

PageList allPageObjects(QPDF &pdf)
{
    PageList list;
    list.isRepaired = true;
    for (QPDFObjectHandle &object : pdf.getAllObjects()) {
        if (!object.isDictionaryOfType("/Page"))
            continue;
        QPDFObjectHandle above = object.getKey("/Parent");
        list.pages.push_back({object.getObjGen(), above.getObjGen()});
        while (above.isIndirect() && above.isDictionary()) {
            const QPDFObjGen node = above.getObjGen();
            above = above.getKey("/Parent");
            if (!list.nodeParents.emplace(node, above.getObjGen()).second)
                break;
        }
    }
    return list;
}

/// A root node that lists no kids is an empty document, not a damaged one.
bool isEmptyTree(QPDFObjectHandle root)
{
    if (!root.isDictionary())
        return false;
    QPDFObjectHandle kids = root.getKey("/Kids");
    return kids.isArray() && kids.getArrayNItems() == 0;
}

/// An attribute's value and the node it comes from, no number when the page has it itself.
struct Attribute
{
    QPDFObjectHandle value;
    QPDFObjGen node;
};

Attribute lookUp(QPDF &pdf, const PageList &list, const PageEntry &entry, const std::string &key)
{
    Attribute found{pdf.getObject(entry.page).getKey(key), {}};
    QPDFObjGen node = entry.parent;
    // A damaged file can hold nodes that are each other's parents.
    std::size_t steps = list.nodeParents.size() + 1;
    while (found.value.isNull() && node.isIndirect() && steps-- > 0) {
        QPDFObjectHandle dictionary = pdf.getObject(node);
        if (!dictionary.isDictionary())
            break;
        found = {dictionary.getKey(key), node};
        const auto above = list.nodeParents.find(node);
        node = above == list.nodeParents.end() ? QPDFObjGen() : above->second;
    }
    return found;
}

} // namespace

PageList readPageList(QPDF &pdf, const ObjectBytes &bytes)
{
    const std::size_t warnings = pdf.numWarnings();
    PageList list = TreeWalk(pdf, bytes).run(pageTreeRoot(pdf));
    if (pdf.numWarnings() != warnings) {
        // A walk that meets damage may make qpdf rebuild its table of offsets, after which objects
        // seen before can read differently. A second walk sees the rebuilt table from the start.
        list = TreeWalk(pdf, ObjectBytes(pdf, {})).run(pageTreeRoot(pdf));
    }
    if (list.pages.empty() && !isEmptyTree(pageTreeRoot(pdf)))
        return allPageObjects(pdf);
    return list;
}

QPDFObjectHandle inheritedAttribute(QPDF &pdf, const PageList &list, const PageEntry &entry,
                                    const std::string &key)
{
    return lookUp(pdf, list, entry, key).value;
}

QPDFObjGen inheritedFrom(QPDF &pdf, const PageList &list, const PageEntry &entry,
                         const std::string &key)
{
    return lookUp(pdf, list, entry, key).node;
}

} // namespace pdf
