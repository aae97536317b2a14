// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/damage.h"
#include "pdf/document/mappedfile.h"
#include "pdf/document/pagelist.h"

#include <memory>
#include <qpdf/QPDF.hh>
#include <string>

namespace pdf {

/// An input file opened for reading with the empty password, and its pages.
///
/// Both tools open their input here, so that they agree on what can be read and on which page is
/// page 7. Nothing is written to standard error.
class Document
{
public:
    /// Throws Error: Forbidden when a password or a certificate is needed, InputUnreadable when the
    /// file cannot be read, is no PDF or is damaged beyond repair.
    explicit Document(const std::string &path);

    [[nodiscard]] const MappedFile &file() const { return input; }
    [[nodiscard]] QPDF &qpdf() { return *pdf; }
    [[nodiscard]] const PageList &pages() const { return pageList; }
    /// A quick look at single objects.
    [[nodiscard]] const ObjectBytes &objectBytes() const { return *bytesOfObjects; }
    /// To be appended to the file for readers that take long for a cross-reference table in many
    /// sections: one that says the same in one section. Empty when the file is well as it is.
    [[nodiscard]] std::string_view wholeTable() const { return wholeReferenceTable; }
    /// Whether the permissions allow taking pages out (ISO 32000-1, table 22, bit 11, or bit 4 in
    /// files of security handler revision 2).
    [[nodiscard]] bool mayAssemble();
    /// Whether reading met anything wrong so far: object numbers and offsets in the file are then
    /// not to be relied on.
    [[nodiscard]] bool isDamaged() const { return pdf->anyWarnings() || hadWarnings; }
    /// What was lost of the file or had to be found anew so far, in words that follow "damaged: ";
    /// empty when pages and their contents are what the file says, odd as it may be otherwise.
    [[nodiscard]] std::string damage() const;

private:
    void open();
    void read(std::string_view bytes);
    /// Tries again with what looks like objects; whether this gives pages.
    bool salvage();

    MappedFile input;
    std::string wholeReferenceTable;
    std::string salvaged; ///< stands for the input's bytes unless empty
    std::shared_ptr<QPDF> pdf;
    std::unique_ptr<ObjectBytes> bytesOfObjects;
    PageList pageList;
    RebuildNotes notes;
    bool isCutOff = false; ///< the file ends before what belongs to it does
    bool hadWarnings = false;
};

} // namespace pdf
