// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/objectbytes.h"

#include <qpdf/QPDF.hh>
#include <set>

namespace pdf {

/// Reads objects of a file ahead of their use, several times as fast as qpdf reads them. Only those
/// in plain and sound syntax: streams, escapes, comments and everything odd are left to qpdf, and
/// so is an encrypted file.
class AheadReader
{
public:
    AheadReader(QPDF &document, const ObjectBytes &objectBytes)
        : pdf(document), bytes(objectBytes), isAllowed(!document.isEncrypted())
    {
    }

    /// Reads the object and those it refers to over so many further levels.
    void read(QPDFObjGen object, int levels);

private:
    QPDF &pdf;
    const ObjectBytes &bytes;
    bool isAllowed;
    std::set<QPDFObjGen> visited;
};

} // namespace pdf
