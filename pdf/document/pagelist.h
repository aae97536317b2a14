// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/objectbytes.h"

#include <map>
#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

namespace pdf {

/// One page as the page tree lists it.
struct PageEntry
{
    QPDFObjGen page;   ///< number of the page object
    QPDFObjGen parent; ///< number of the page tree node that lists it
};

/// The pages of a document in the order a reader shows them, entry 0 being page 1.
///
/// Every operation takes its pages from here. /Count is not looked at: the tree itself says what
/// there is, so a file whose counts lie gives every operation the same pages.
///
/// What is a page: a dictionary among the /Kids of a reachable node that is no node itself.
/// Null kids and kids of other types are no pages. What is listed several times, be it a page or a
/// node with all its pages, is there several times, as viewers have it; a node below itself adds
/// nothing (page trees with loops end). A file without any reachable page falls back to all objects
/// of /Type /Page in the order of their numbers.
class PageList
{
public:
    std::vector<PageEntry> pages;
    /// The node above each node, for attributes that pages inherit: the first one, where several
    /// list it. The root has no entry.
    std::map<QPDFObjGen, QPDFObjGen> nodeParents;
    /// Whether pages stood directly in the tree and were made indirect in memory: their numbers do
    /// not exist in the file then.
    bool hasNewObjects = false;
    /// Whether something stood where a page or a node should, so that pages may be missing, or
    /// they had to be found without the tree.
    bool isRepaired = false;

    [[nodiscard]] int count() const { return static_cast<int>(pages.size()); }
};

/// Reads the page list of an open document. Throws Error(InputUnreadable) for a tree in which
/// repetitions of repetitions multiply beyond what any document has.
[[nodiscard]] PageList readPageList(QPDF &pdf, const ObjectBytes &bytes);

/// The value of an attribute that pages inherit (ISO 32000-1, table 30: /Resources, /MediaBox,
/// /CropBox, /Rotate): the page's own or the nearest one above it in the tree, null if none.
[[nodiscard]] QPDFObjectHandle inheritedAttribute(QPDF &pdf, const PageList &list,
                                                  const PageEntry &entry, const std::string &key);

/// The page tree node whose attribute the page inherits, no number when it has its own or none.
[[nodiscard]] QPDFObjGen inheritedFrom(QPDF &pdf, const PageList &list, const PageEntry &entry,
                                       const std::string &key);

} // namespace pdf
