// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/markedpdf.h"
#include "tests/support/pdfbuilder.h"

namespace {

/// What real files rarely hold: actions and layers in trees, fields without appearance, an object
/// that is only a reference, tags without a parent tree.
QByteArray rarePdf()
{
    PdfBuilder file;
    const int catalog = file.add(
        "<< /Type /Catalog /Pages 2 0 R /OCProperties << /OCGs [7 0 R 8 0 R] /D << /Order "
        "9 0 R >> >> /AcroForm << /Fields [10 0 R] /NeedAppearances true >> /Dests << /a [3 0 R "
        "/Fit] >> /MarkInfo << /Marked true >> /StructTreeRoot 13 0 R >>");
    file.add("<< /Type /Pages /Kids [3 0 R 4 0 R 3 0 R] /Count 3 /MediaBox [0 0 9 9] /Resources << "
             "/Properties << /L 7 0 R /M 8 0 R >> >> >>");
    file.add("<< /Type /Page /Parent 2 0 R /Dur 12 0 R /Contents 15 0 R /StructParents 0 /Annots ["
             "<< /Subtype /Link /A 5 0 R >> << /Subtype /Link /Dest (a) >> 10 0 R] >>");
    file.add("<< /Type /Page /Parent 2 0 R /Contents 15 0 R /StructParents 1 /Annots [11 0 R] >>");
    file.add("<< /S /GoTo /D [4 0 R /Fit] /Next [6 0 R << /S /URI /URI (a) /Next 6 0 R >>] >>");
    file.add("<< /S /URI /URI (b) /Next [<< /S /URI /URI (c) >>] >>");
    file.add("<< /Type /OCG /Name (L) >>");
    file.add("<< /Type /OCG /Name (M) >>");
    file.add("[(group) [7 0 R [8 0 R]] 7 0 R]");
    file.add("<< /Subtype /Widget /FT /Tx /T (a) /V (b) /Rect [0 0 9 9] /Kids [11 0 R] >>");
    file.add("<< /Subtype /Widget /Parent 10 0 R /Rect [0 0 9 9] >>");
    file.add("16 0 R");
    file.add("<< /Type /StructTreeRoot /K 14 0 R >>");
    file.add("<< /S /P /P 13 0 R /Pg 3 0 R /K [0 << /Type /MCR /Pg 4 0 R /MCID 0 >>] >>");
    file.addStream("/P << /MCID 0 >> BDC /OC /L BDC 0 0 9 9 re f EMC EMC");
    file.add("7");
    return file.bytes(catalog);
}

} // namespace

/// Writes small files with everything that stavekit looks at. Usage: makeseed FOLDER
int main(int argc, char *argv[])
{
    if (argc != 2)
        return 2;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    writeFile(folder + QStringLiteral("/marked.pdf"), MarkedPdf(3).bytes());
    writeFile(folder + QStringLiteral("/rare.pdf"), rarePdf());
    return 0;
}
