// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/contentparents.h"

#include <set>
#include <vector>

namespace pdf {

namespace {

/// More marked contents than any page has; a number costs an entry for all below it.
constexpr long long maximalContents = 1 << 16;
/// More than documents have on all pages together; few bytes can be made to ask for more.
constexpr long long maximalEntries = 1 << 22;

class Walk
{
public:
    explicit Walk(const ObjectCopier &objectCopier) : copier(objectCopier) {}

    std::map<long long, QPDFObjectHandle> parents;

    void from(const QPDFObjectHandle &structureRoot)
    {
        waiting = {structureRoot};
        while (!waiting.empty()) {
            const QPDFObjectHandle element = waiting.back();
            waiting.pop_back();
            visit(element);
        }
    }

private:
    void visit(QPDFObjectHandle element)
    {
        QPDFObjectHandle kids = element.getKey("/K");
        const QPDFObjectHandle page = element.getKey("/Pg");
        for (const QPDFObjectHandle &kid :
             kids.isArray() ? kids.getArrayAsVector() : std::vector<QPDFObjectHandle>{kids})
            visitKid(kid, element, page);
    }

    void visitKid(QPDFObjectHandle kid, const QPDFObjectHandle &element,
                  const QPDFObjectHandle &page)
    {
        if (kid.isInteger()) {
            addContents(page, kid, element);
        } else if (!kid.isDictionary()) {
            return;
        } else if (kid.hasKey("/MCID")) {
            const QPDFObjectHandle stream = kid.getKey("/Stm");
            const QPDFObjectHandle own = kid.hasKey("/Pg") ? kid.getKey("/Pg") : page;
            addContents(kid.hasKey("/Stm") ? stream : own, kid.getKey("/MCID"), element);
        } else if (kid.hasKey("/Obj")) {
            const QPDFObjectHandle number = keyIn(kid.getKey("/Obj"), "/StructParent");
            if (QPDFObjectHandle(number).isInteger())
                parents.emplace(QPDFObjectHandle(number).getIntValue(), element);
        } else if (kid.isIndirect() && visited.insert(kid.getObjGen()).second) {
            waiting.push_back(kid);
        }
    }

    /// Where pages share a number, it is that of the copied one.
    [[nodiscard]] QPDFObjectHandle keyIn(QPDFObjectHandle object, const char *key) const
    {
        if (!copier.mapped(object.getObjGen()).isIndirect())
            return QPDFObjectHandle::newNull();
        if (object.isStream())
            object = object.getDict();
        return object.isDictionary() ? object.getKey(key) : QPDFObjectHandle::newNull();
    }

    void addContents(const QPDFObjectHandle &holder, QPDFObjectHandle identifier,
                     const QPDFObjectHandle &element)
    {
        QPDFObjectHandle number = keyIn(holder, "/StructParents");
        const long long index = identifier.isInteger() ? identifier.getIntValue() : -1;
        if (!number.isInteger() || index < 0 || index >= maximalContents)
            return;
        QPDFObjectHandle &list =
            parents.try_emplace(number.getIntValue(), QPDFObjectHandle::newArray()).first->second;
        if (!list.isArray())
            return;
        const long long missing = index + 1 - list.getArrayNItems();
        if (missing > maximalEntries - entries)
            return;
        for (long long i = 0; i < missing; ++i, ++entries)
            list.appendItem(QPDFObjectHandle::newNull());
        list.setArrayItem(static_cast<int>(index), element);
    }

    const ObjectCopier &copier;
    std::vector<QPDFObjectHandle> waiting;
    std::set<QPDFObjGen> visited;
    long long entries = 0; ///< in all lists
};

} // namespace

std::map<long long, QPDFObjectHandle> contentParents(const ObjectCopier &copier,
                                                     const QPDFObjectHandle &structureRoot)
{
    Walk walk(copier);
    walk.from(structureRoot);
    return walk.parents;
}

} // namespace pdf
