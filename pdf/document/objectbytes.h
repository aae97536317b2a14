// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/objectpeek.h"

#include <map>
#include <qpdf/QPDF.hh>
#include <string_view>

namespace pdf {

/// Where the objects of an open document stand in its file, for looking at them without building
/// qpdf's objects. Answers only what is certain: nothing in damaged files, nothing about objects
/// inside object streams.
class ObjectBytes
{
public:
    /// The document must outlive the object.
    ObjectBytes(QPDF &document, std::string_view file);

    /// What the object says as a part of the page tree; no value when qpdf is to be asked.
    [[nodiscard]] std::optional<PeekedNode> peekNode(QPDFObjGen object) const;
    /// The entries of the object if it is a dictionary; no value when qpdf is to be asked.
    [[nodiscard]] std::optional<RawEntries> peekEntries(QPDFObjGen object) const;
    /// The file from where the object begins ("7 0 obj"); empty when qpdf is to be asked.
    [[nodiscard]] std::string_view from(QPDFObjGen object) const;
    /// Whether objects are to stand behind the end of the file.
    [[nodiscard]] bool reachBeyondEnd() const;

private:
    [[nodiscard]] std::optional<std::size_t> offsetOf(QPDFObjGen object) const;

    QPDF &pdf;
    std::string_view bytes;
    std::map<QPDFObjGen, QPDFXRefEntry> offsets;
};

} // namespace pdf
