// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/outline.h"

namespace pdf {

namespace {

QPDFObjGen numberOf(const QPDFObjectHandle &object)
{
    return object.isIndirect() ? object.getObjGen() : QPDFObjGen();
}

} // namespace

QPDFObjectHandle OutlineCopier::copyOutline()
{
    QPDFObjectHandle root = copier.sourceCatalog().getKey("/Outlines");
    if (!root.isDictionary())
        return QPDFObjectHandle::newNull();
    entries.push_back({numberOf(root), 0, false, true, {}, copier.placeholder()});
    readEntries(numberOf(root.getKey("/First")));
    if (!keepAncestors())
        return QPDFObjectHandle::newNull();

    // From the last to the first, so that an entry's kids have their counts when it is its turn.
    std::vector<int> openBelow(entries.size(), 0);
    for (std::size_t i = entries.size(); i-- > 0;) {
        Entry &entry = entries[i];
        if (!entry.isKept)
            continue;
        QPDFObjectHandle copied = copyEntry(entry);
        copied.replaceKey("/Count", QPDFObjectHandle::newNull());
        if (!entry.kids.empty()) {
            int below = static_cast<int>(entry.kids.size());
            for (const std::size_t kid : entry.kids)
                below += openBelow[kid];
            const bool isOpen = i == 0 || isOpenInSource(entry.number);
            openBelow[i] = isOpen ? below : 0;
            copied.replaceKey("/Count", QPDFObjectHandle::newInteger(isOpen ? below : -below));
            copied.replaceKey("/First", entries[entry.kids.front()].copied);
            copied.replaceKey("/Last", entries[entry.kids.back()].copied);
        }
        copier.targetDocument().replaceObject(entry.copied.getObjGen(), copied);
    }
    linkSiblings();
    return entries.front().copied;
}

/// In the order of a printed table of contents, entries before those below them. Numbers that were
/// seen before end a chain: damaged outlines can be loops.
void OutlineCopier::readEntries(QPDFObjGen first)
{
    struct Place
    {
        QPDFObjGen next;
        std::size_t parent;
    };
    std::vector<Place> places = {{first, 0}};
    while (!places.empty()) {
        const Place place = places.back();
        places.pop_back();
        if (!place.next.isIndirect() || !visited.insert(place.next).second)
            continue;
        const Links links = linksOf(place.next);
        Entry entry;
        entry.number = place.next;
        entry.parent = place.parent;
        entry.leadsToKept = links.leadsToKept;
        entries.push_back(std::move(entry));
        places.push_back({links.next, place.parent});
        places.push_back({links.first, entries.size() - 1});
    }
}

OutlineCopier::Links OutlineCopier::linksOf(QPDFObjGen entry)
{
    const std::optional<RawEntries> raw = document.objectBytes().peekEntries(entry);
    if (!raw)
        return linksThroughQpdf(document.qpdf().getObject(entry));
    // An entry that leads by a name, or by an action of its own, is left to qpdf.
    const std::string_view destination = rawValue(*raw, "Dest");
    const std::string_view action = rawValue(*raw, "A");
    std::optional<QPDFObjGen> page = rawFirstReference(destination);
    if (!action.empty() && destination.empty()) {
        const std::optional<QPDFObjGen> number = rawReference(action);
        const std::optional<RawEntries> inner =
            number ? document.objectBytes().peekEntries(*number) : rawEntries(action);
        if (inner && rawValue(*inner, "S") == "/GoTo" && rawValue(*inner, "Next").empty())
            page = rawFirstReference(rawValue(*inner, "D"));
    }
    const bool isSilent = action.empty() && destination.empty();
    if (!page && !isSilent)
        return linksThroughQpdf(document.qpdf().getObject(entry));
    Links links;
    links.first = rawReference(rawValue(*raw, "First")).value_or(QPDFObjGen());
    links.next = rawReference(rawValue(*raw, "Next")).value_or(QPDFObjGen());
    links.leadsToKept = page && copier.mapped(*page).isIndirect();
    return links;
}

OutlineCopier::Links OutlineCopier::linksThroughQpdf(QPDFObjectHandle entry)
{
    if (!entry.isDictionary())
        return {};
    QPDFObjectHandle action = entry.getKey("/A");
    bool leadsToKept = destinations.targetOf(entry.getKey("/Dest")).isIndirect();
    if (action.isDictionary() && action.getKey("/S").isNameAndEquals("/GoTo"))
        leadsToKept = leadsToKept || destinations.targetOf(action.getKey("/D")).isIndirect();
    return {numberOf(entry.getKey("/First")), numberOf(entry.getKey("/Next")), leadsToKept};
}

/// Whether any entry is kept.
bool OutlineCopier::keepAncestors()
{
    for (std::size_t i = entries.size(); i-- > 1;) {
        Entry &entry = entries[i];
        entry.isKept = entry.isKept || entry.leadsToKept;
        if (entry.isKept)
            entries[entry.parent].isKept = true;
    }
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (!entries[i].isKept)
            continue;
        entries[i].copied = copier.placeholder();
        entries[entries[i].parent].kids.push_back(i);
    }
    return !entries.front().kids.empty();
}

bool OutlineCopier::isOpenInSource(QPDFObjGen entry)
{
    int count = 0;
    return document.qpdf().getObject(entry).getKey("/Count").getValueAsInt(count) && count > 0;
}

QPDFObjectHandle OutlineCopier::copyEntry(const Entry &entry)
{
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    if (&entry == &entries.front()) {
        copied.replaceKey("/Type", QPDFObjectHandle::newName("/Outlines"));
        return copied;
    }
    QPDFObjectHandle original = document.qpdf().getObject(entry.number);
    for (const char *key : {"/Title", "/C", "/F"})
        copied.replaceKey(key, copier.copy(original.getKey(key)));
    copied.replaceKey("/Parent", entries[entry.parent].copied);
    if (entry.leadsToKept) {
        copied.replaceKey("/Dest", destinations.copyDestination(original.getKey("/Dest")));
        copied.replaceKey("/A", destinations.copyAction(original.getKey("/A")));
        copied.replaceKey("/SE", copier.mapped(original.getKey("/SE").getObjGen()));
    }
    return copied;
}

void OutlineCopier::linkSiblings()
{
    for (Entry &entry : entries) {
        for (std::size_t i = 1; i < entry.kids.size(); ++i) {
            QPDFObjectHandle &before = entries[entry.kids[i - 1]].copied;
            QPDFObjectHandle &after = entries[entry.kids[i]].copied;
            before.replaceKey("/Next", after);
            after.replaceKey("/Prev", before);
        }
    }
}

} // namespace pdf
