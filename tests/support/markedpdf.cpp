// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/markedpdf.h"

namespace {

QByteArray ref(int number)
{
    return PdfBuilder::ref(number);
}

/// A reply to the last of the annotations.
QByteArray repliesTo(const QList<int> &annotations)
{
    return annotations.isEmpty() ? QByteArray() : " /IRT " + ref(annotations.last());
}

QByteArray digits(int number)
{
    return QByteArray::number(number);
}

} // namespace

MarkedPdf::MarkedPdf(int pageCount)
    : count(pageCount), root(file.reserve()), resources(file.reserve()), group(file.reserve()),
      sharedField(file.reserve()), document(file.reserve())
{
    for (int i = 0; i < count; ++i) {
        for (QList<int> *list : {&pages, &beads, &paragraphs, &formElements})
            list->append(file.reserve());
    }
    for (int number = 1; number <= count; ++number)
        definePage(number);
}

void MarkedPdf::addResources(const QByteArray &digit)
{
    const int font = file.add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Name /font" +
                              digit + " /Encoding /WinAnsiEncoding >>");
    const int image =
        file.addStream("image" + digit, "/Type /XObject /Subtype /Image /Width 2 /Height 1 "
                                        "/ColorSpace /DeviceRGB /BitsPerComponent 8");
    layers.append(file.add("<< /Type /OCG /Name (layer" + digit + ") >>"));
    views += "<< /Name (view" + digit + ") /ON [" + ref(layers.last()) + "] >> ";
    fonts += "/F" + digit + ' ' + ref(font) + ' ';
    images += "/Im#2E" + digit + ' ' + ref(image) + ' ';
    properties += "/L" + digit + ' ' + ref(layers.last()) + ' ';
}

void MarkedPdf::definePage(int number)
{
    const QByteArray digit = digits(number);
    const QByteArray self = ref(pages[number - 1]);
    addResources(digit);
    const QByteArray text = showText(20, 100, "text" + digit).replace("/F1", "/F" + digit);
    const int contents =
        file.addStream("/P << /MCID 0 >> BDC " + text + "EMC q 20 0 0 20 200 9 cm /Im." + digit +
                       " Do Q /OC /L" + digit + " BDC 0 0 20 20 re f EMC");
    const int metadata = file.addStream("xmp" + digit, "/Type /Metadata /Subtype /XML");
    const int thumbnail = file.addStream("thumb" + digit, "/Width 2 /Height 1 /BitsPerComponent 8 "
                                                          "/ColorSpace /DeviceRGB");
    file.define(beads[number - 1], "<< /X (bead" + digit + ") /N " + ref(beads[number % count]) +
                                       " /P " + self + " >>");
    file.define(paragraphs[number - 1], "<< /S /P /C /Small /P " + ref(document) + " /Ref [" +
                                            ref(paragraphs[number % count]) + "]" + " /Alt (tag" +
                                            digit + ") /ID (id" + digit + ") /Pg " + self +
                                            " /K 0 >>");
    file.define(pages[number - 1],
                "<< /Type /Page /Parent " + ref(root) + " /Contents " + ref(contents) +
                    " /Annots " + addAnnotations(number) + " /B [" + ref(beads[number - 1]) +
                    "] /StructParents " + digit + " /Metadata " + ref(metadata) + " /Thumb " +
                    ref(thumbnail) + " /PieceInfo << /App << /Private (piece" + digit +
                    ") >> >> /Trans << /S /Wipe >> /Tabs /S" + pageExtras(number) +
                    (number % 2 == 1 ? " /Resources " + ref(resources) : QByteArray()) + " >>");
}

/// What few pages have: boxes, associated files, steps of a presentation, separations.
QByteArray MarkedPdf::pageExtras(int number)
{
    const QByteArray digit = digits(number);
    const QByteArray sheet = ref(pages[number - 1]) + ' ' + ref(pages[number % count]);
    const int data = file.addStream("associate" + digit, "/Type /EmbeddedFile");
    const int second = file.reserve();
    const int first =
        file.add("<< /Type /NavNode /Next " + ref(second) + " /NA << /S /GoTo /D (dest" +
                 digits(number % count + 1) + ") /Next [<< /S /URI /URI (step" + digit +
                 ") >> << /S /URI /URI (then" + digit + ") >>] >> >>");
    file.define(second, "<< /Type /NavNode /Prev " + ref(first) + " /Next " + ref(first) +
                            " /PA << /S /URI /URI (back" + digit + ") >> >>");
    return " /UserUnit 1.5 /Dur 5 /TrimBox [1 1 299 199] /AF [<< /Type /Filespec /F (a) /EF << "
           "/F " +
           ref(data) + " >> >>] /PresSteps " + ref(first) + " /SeparationInfo << /Pages [" + sheet +
           "] /DeviceColorant (ink" + digit + ") >>";
}

QByteArray MarkedPdf::addAnnotations(int number)
{
    const QByteArray digit = digits(number);
    const QByteArray self = ref(pages[number - 1]);
    const int look =
        file.addStream("% look" + digit, "/Type /XObject /Subtype /Form /BBox [0 0 9 9]");
    const int stamp = file.reserve();
    const int popup = file.add("<< /Type /Annot /Subtype /Popup /Rect [99 9 120 20] /Contents "
                               "(popup" +
                               digit + ") /Parent " + ref(stamp) + " >>");
    file.define(stamp, "<< /Type /Annot /Subtype /Stamp /Rect [9 9 20 20] /P " + self +
                           " /Contents (note" + digit + ") /Popup " + ref(popup) + " /AP << /N " +
                           ref(look) + " >>" + repliesTo(stamps) + " >>");
    stamps.append(stamp);
    const int link = file.add("<< /Subtype /Link /Rect [1 1 9 9] /Contents (link" + digit +
                              ") /Dest (dest" + digits(number % count + 1) + ") >>");
    const int data = file.addStream("attach" + digit, "/Type /EmbeddedFile");
    const int attachment = file.add("<< /Type /Annot /Subtype /FileAttachment /Rect [60 9 70 20] "
                                    "/FS << /Type /Filespec /F (file" +
                                    digit + ") /EF << /F " + ref(data) + " >> >> >>");
    const QByteArray before = widgets.isEmpty() ? "(none)" : ref(widgets.last());
    const int widget =
        file.add("<< /Type /Annot /Subtype /Widget /Rect [30 9 60 20] /T (f" + digit +
                 ") /V (value" + digit + ") /Parent " + ref(group) + " /P " + self +
                 " /StructParent 10" + digit + " /A << /S /Hide /T " + before + " >> >>");
    file.define(formElements[number - 1],
                "<< /Type /StructElem /S /Form /P " + ref(document) + " /Alt (formtag" + digit +
                    ") /K << /Type /OBJR /Pg " + self + " /Obj " + ref(widget) + " >> >>");
    widgets.append(widget);
    sharedWidgets.append(file.add(
        "<< /Type /Annot /Subtype /Widget /Rect [80 9 90 20]" +
        (number == 3 ? " /AP << /N " + ref(look) + " >>" : " /Parent " + ref(sharedField)) +
        " /TU (part" + digit + ") >>"));
    // The pop-up is found through its parent only, as some producers write it.
    return PdfBuilder::refs({stamp, link, attachment, widget, sharedWidgets.last()});
}

/// Chapters of two pages each.
int MarkedPdf::addOutline()
{
    const int outline = file.reserve();
    QList<int> chapters;
    for (int i = 0; i < count; i += 2)
        chapters.append(file.reserve());
    for (int i = 0; i < chapters.size(); ++i) {
        const int first = file.reserve();
        const int second = 2 * i + 2 <= count ? file.reserve() : first;
        for (const int entry : {first, second}) {
            const int page = 2 * i + (entry == first ? 1 : 2);
            file.define(entry, "<< /Title (entry" + digits(page) + ") /Parent " + ref(chapters[i]) +
                                   (entry != second ? " /Next " + ref(second) : QByteArray()) +
                                   (page % 2 == 1 ? " /Dest [" : " /A << /S /GoTo /D [") +
                                   ref(pages[page - 1]) + " /Fit]" +
                                   (page % 2 == 1 ? " >>" : " >> >>"));
        }
        const bool isLast = i + 1 == chapters.size();
        file.define(chapters[i], "<< /Title (chapter" + digits(i + 1) + ") /Parent " +
                                     ref(outline) + " /Count -2 /SE " + ref(paragraphs[2 * i]) +
                                     " /First " + ref(first) + " /Last " + ref(second) +
                                     (isLast ? QByteArray() : " /Next " + ref(chapters[i + 1])) +
                                     " >>");
    }
    file.define(outline, "<< /Type /Outlines /First " + ref(chapters.first()) + " /Last " +
                             ref(chapters.last()) + " >>");
    return outline;
}

QByteArray MarkedPdf::structureTree()
{
    QByteArray numbers;
    QByteArray identifiers;
    for (int i = 1; i <= count; ++i) {
        numbers += digits(i) + " [" + ref(paragraphs[i - 1]) + "] ";
        identifiers += "(id" + digits(i) + ") " + ref(paragraphs[i - 1]) + ' ';
    }
    for (int i = 1; i <= count; ++i)
        numbers += "10" + digits(i) + ' ' + ref(formElements[i - 1]) + ' ';
    const int tree = file.reserve();
    file.define(document, "<< /Type /StructElem /S /Document /P " + ref(tree) +
                              " /ActualText (everything) /K " +
                              PdfBuilder::refs(paragraphs + formElements) + " >>");
    file.define(tree, "<< /Type /StructTreeRoot /K [" + ref(document) + "] /ParentTree << /Nums [" +
                          numbers + "] >> /IDTree << /Names [" + identifiers +
                          "] >> /RoleMap << /Title /P >> /ClassMap << /Small << /O "
                          "/Layout >> >> >>");
    return ref(tree);
}

QByteArray MarkedPdf::catalogEntries()
{
    QByteArray names;
    QByteArray labels;
    for (int i = 1; i <= count; ++i) {
        names += "(dest" + digits(i) + ") [" + ref(pages[i - 1]) + " /Fit] ";
        labels += digits(i - 1) + " << /S /r /P (label" + digits(i) + ") /St " + digits(i) + " >> ";
    }
    const int metadata = file.addStream("<x:xmpmeta/>", "/Type /Metadata /Subtype /XML");
    const int profile = file.addStream("profile", "/N 3");
    return " /Metadata " + ref(metadata) + " /Lang (en) /Outlines " + ref(addOutline()) +
           " /Names << /Dests << /Names [" + names + "] >> >> /PageLabels << /Nums [" + labels +
           "] >> /StructTreeRoot " + structureTree() + " /MarkInfo << /Marked true >> " +
           "/OutputIntents [<< /S /GTS_PDFA1 /DestOutputProfile " + ref(profile) + " >>] " +
           "/ViewerPreferences " +
           ref(file.add("<< /DisplayDocTitle true /PrintPageRange [1 1] >>")) +
           " /Threads [<< /F " + ref(beads.first()) + " >>] /OCProperties << /OCGs " +
           PdfBuilder::refs(layers) + " /D << /OFF " + PdfBuilder::refs(layers) + " >> /Configs [" +
           views + "] >> /AcroForm << /DR << /Font << /Default " + ref(file.addHelvetica()) +
           " >> /XObject << " + images + ">> >> /Q 2 /DA (/F1 0 Tf) /CO " +
           PdfBuilder::refs(widgets) + " /Fields " + PdfBuilder::refs({group, sharedField}) + " >>";
}

QByteArray MarkedPdf::bytes()
{
    const QByteArray shared = "<< /ProcSet [/PDF] /Font " + ref(file.add("<< " + fonts + ">>")) +
                              " /XObject << " + images + ">> /Properties << " + properties +
                              ">> >>";
    file.define(resources, shared);
    file.define(group, "<< /T (group) /FT /Tx /Kids " + PdfBuilder::refs(widgets) + " >>");
    file.define(sharedField, "<< /T (shared) /FT /Tx /V (common) /Kids " +
                                 PdfBuilder::refs(sharedWidgets) + " >>");
    file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs(pages) + " /Count " +
                          digits(count) + " /MediaBox [0 0 300 200] /Resources " + shared + " >>");
    const int info =
        file.add("<< /Title (The title) /CreationDate (D:20200101) /Producer (Mill) >>");
    const int catalog =
        file.add("<< /Type /Catalog /Pages " + ref(root) + catalogEntries() + " >>");
    return file.bytes(catalog, "/Info " + ref(info));
}
