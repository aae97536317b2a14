// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/samplepdf.h"

#include <QFile>
#include <QFont>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

namespace {

constexpr QSizeF portrait(595, 842); // A4 in points
constexpr qreal cropMargin = 40;     // points that the crop box hides on each side

struct PageShape
{
    QSizeF media;              ///< what is drawn on, in points
    QTransform displayToMedia; ///< from what a reader sees; both from the top left corner
    int rotation = 0;
    bool isCropped = false;
};

PageShape shapeOf(SampleLayout layout)
{
    switch (layout) {
    case SampleLayout::Portrait:
        break;
    case SampleLayout::Rotated90:
        return {portrait.transposed(), QTransform(0, -1, 1, 0, 0, portrait.width()), 90};
    case SampleLayout::Cropped:
        return {portrait.grownBy({cropMargin, cropMargin, cropMargin, cropMargin}),
                QTransform::fromTranslate(cropMargin, cropMargin), 0, true};
    }
    return {portrait, {}};
}

/// Draws with points as the unit, on a device of any resolution.
class PagePainter
{
public:
    PagePainter(QPdfWriter &writer, const PageShape &shape)
        : painter(&writer), unit(writer.resolution() / 72.0), page(shape)
    {
    }

    void beginPage()
    {
        painter.resetTransform();
        const QTransform toDevice = QTransform::fromScale(unit, unit);
        painter.setTransform(toDevice.inverted() * page.displayToMedia * toDevice);
    }

    void text(qreal x, qreal y, qreal size, const QString &words, bool isBold = false)
    {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSizeF(size);
        font.setBold(isBold);
        painter.setFont(font);
        painter.drawText(QPointF(x, y) * unit, words);
    }

    void line(qreal y)
    {
        painter.setPen(QPen(QColor(0x70, 0x80, 0x90), 0.6 * unit));
        painter.drawLine(QPointF(56, y) * unit, QPointF(portrait.width() - 56, y) * unit);
        painter.setPen(Qt::black);
    }

private:
    QPainter painter;
    qreal unit;
    PageShape page;
};

/// `sheet` numbers the pages of the whole file, so that no two of them are alike.
void drawInvoicePage(PagePainter &painter, const SampleInvoice &invoice, int page, int sheet)
{
    painter.beginPage();
    painter.text(56, 70, 17, QStringLiteral("Birchfield Paper & Supplies"), true);
    painter.text(56, 86, 8, QStringLiteral("14 Harbour Street · Millbrook"));
    painter.line(100);
    painter.text(56, 130, 10, invoice.customer);
    painter.text(360, 130, 10, QStringLiteral("Invoice"), true);
    if (page == 1 || !invoice.isNumberOnFirstPageOnly)
        painter.text(450, 130, 10, invoice.number);
    painter.text(360, 146, 9, QStringLiteral("Page %1 of %2").arg(page).arg(invoice.pages));
    painter.line(170);
    painter.text(56, 186, 9, QStringLiteral("Article"), true);
    painter.text(360, 186, 9, QStringLiteral("Quantity"), true);
    painter.text(450, 186, 9, QStringLiteral("Price"), true);
    static const QStringList articles = {
        QStringLiteral("Copy paper A4, white"), QStringLiteral("Envelopes C5, window"),
        QStringLiteral("Ring binder, blue"),    QStringLiteral("Index tabs, 12 parts"),
        QStringLiteral("Archive box, brown"),   QStringLiteral("Labels 70 x 37 mm")};
    for (int row = 0; row < articles.size(); ++row) {
        const qreal y = 206 + 18 * row;
        const int quantity = 1 + (row * 7 + page * 3 + invoice.pages) % 24;
        painter.text(56, y, 9, articles.at((row + page) % articles.size()));
        painter.text(360, y, 9, QString::number(quantity));
        painter.text(450, y, 9, QString::number(quantity * 3.45, 'f', 2));
    }
    painter.line(330);
    painter.text(56, 346, 8,
                 page < invoice.pages ? QStringLiteral("continued on the next page")
                                      : QStringLiteral("Payable within 30 days. Thank you."));
    painter.text(450, 346, 8, QStringLiteral("Sheet %1").arg(sheet));
}

/// Adds what QPdfWriter cannot write: rotation and crop box.
void finishPages(const QString &path, const PageShape &shape)
{
    const std::string name = QFile::encodeName(path).toStdString();
    const std::string unfinished = name + ".unfinished";
    {
        QPDF pdf;
        pdf.processFile(name.c_str());
        for (QPDFPageObjectHelper &page : QPDFPageDocumentHelper(pdf).getAllPages()) {
            QPDFObjectHandle dictionary = page.getObjectHandle();
            if (shape.rotation != 0)
                dictionary.replaceKey("/Rotate", QPDFObjectHandle::newInteger(shape.rotation));
            if (shape.isCropped) {
                const QPDFObjectHandle::Rectangle box(cropMargin, cropMargin,
                                                      shape.media.width() - cropMargin,
                                                      shape.media.height() - cropMargin);
                dictionary.replaceKey("/CropBox", QPDFObjectHandle::newArray(box));
            }
        }
        QPDFWriter writer(pdf, unfinished.c_str());
        writer.write();
    }
    QFile::remove(path);
    QFile::rename(QFile::decodeName(QByteArray::fromStdString(unfinished)), path);
}

} // namespace

bool writeSamplePdf(const QString &path, const QList<SampleInvoice> &invoices, SampleLayout layout)
{
    const PageShape shape = shapeOf(layout);
    {
        QPdfWriter writer(path);
        writer.setTitle(QStringLiteral("Invoices"));
        writer.setPageSize(QPageSize(shape.media, QPageSize::Point, {}, QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF());
        PagePainter painter(writer, shape);
        int sheet = 0;
        for (const SampleInvoice &invoice : invoices) {
            for (int page = 1; page <= invoice.pages; ++page) {
                if (sheet > 0 && !writer.newPage())
                    return false;
                drawInvoicePage(painter, invoice, page, ++sheet);
            }
        }
    }
    if (!QFile::exists(path))
        return false;
    finishPages(path, shape);
    return true;
}

void encryptSamplePdf(const QString &source, const QString &path,
                      const SampleEncryption &encryption)
{
    QPDF pdf;
    pdf.processFile(QFile::encodeName(source).constData());
    const QByteArray name = QFile::encodeName(path); // the writer keeps the pointer
    QPDFWriter writer(pdf, name.constData());
    writer.setR6EncryptionParameters(encryption.userPassword.constData(), "owner", true, true,
                                     encryption.mayAssemble, true, true, true,
                                     encryption.mayPrint ? qpdf_r3p_full : qpdf_r3p_none, true);
    writer.write();
}

QList<SampleInvoice> exampleInvoices()
{
    const QString alder = QStringLiteral("Alder & Wren Ltd");
    const QString cobalt = QStringLiteral("Cobalt Theatre");
    const QString dunmore = QStringLiteral("Dunmore School");
    const QString elm = QStringLiteral("Elm Street Clinic");
    return {{QStringLiteral("INV-2041"), alder, 2},   {QStringLiteral("INV-2042"), cobalt, 1},
            {QStringLiteral("INV-2043"), dunmore, 4}, {QStringLiteral("INV-2044"), alder, 1},
            {QStringLiteral("INV-2045"), elm, 3},     {QStringLiteral("INV-2046"), cobalt, 1}};
}
