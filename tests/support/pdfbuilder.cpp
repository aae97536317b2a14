// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfbuilder.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

int PdfBuilder::reserve()
{
    objects.append(QByteArray());
    return static_cast<int>(objects.size());
}

void PdfBuilder::define(int number, const QByteArray &body)
{
    objects[number - 1] = body;
}

int PdfBuilder::add(const QByteArray &body)
{
    const int number = reserve();
    define(number, body);
    return number;
}

int PdfBuilder::addStream(const QByteArray &data, const QByteArray &entries)
{
    return add("<< /Length " + QByteArray::number(data.size()) + ' ' + entries + " >>\nstream\n" +
               data + "\nendstream");
}

QByteArray PdfBuilder::ref(int number)
{
    return QByteArray::number(number) + " 0 R";
}

QByteArray PdfBuilder::refs(const QList<int> &numbers)
{
    QByteArrayList parts;
    for (const int number : numbers)
        parts.append(ref(number));
    return '[' + parts.join(' ') + ']';
}

int PdfBuilder::addHelvetica()
{
    return add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica "
               "/Encoding /WinAnsiEncoding >>");
}

QByteArray PdfBuilder::bytes(int catalog, const QByteArray &trailer) const
{
    QByteArray result = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
    QByteArray table = "0000000000 65535 f \n";
    for (qsizetype i = 0; i < objects.size(); ++i) {
        table += QByteArray::number(result.size()).rightJustified(10, '0') + " 00000 n \n";
        result += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const QByteArray size = QByteArray::number(objects.size() + 1);
    const QByteArray start = QByteArray::number(result.size());
    return result + "xref\n0 " + size + '\n' + table + "trailer\n<< /Size " + size + " /Root " +
           ref(catalog) + ' ' + trailer + " >>\nstartxref\n" + start + "\n%%EOF\n";
}

QByteArray simplePdf(const QByteArrayList &contents, const QByteArray &pageEntries,
                     const QByteArray &streamEntries)
{
    PdfBuilder file;
    const int root = file.reserve();
    const int font = file.addHelvetica();
    QList<int> pages;
    for (const QByteArray &stream : contents) {
        const int data = file.addStream(stream, streamEntries);
        pages.append(file.add("<< /Type /Page /Parent " + PdfBuilder::ref(root) +
                              " /MediaBox [0 0 300 200] /Resources << /Font << /F1 " +
                              PdfBuilder::ref(font) + " >> >> /Contents " + PdfBuilder::ref(data) +
                              ' ' + pageEntries + " >>"));
    }
    file.define(root, "<< /Type /Pages /Kids " + PdfBuilder::refs(pages) + " /Count " +
                          QByteArray::number(pages.size()) + " >>");
    return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " >>"));
}

QByteArray showText(double x, double y, const QByteArray &text, int size)
{
    return "BT /F1 " + QByteArray::number(size) + " Tf " + QByteArray::number(x) + ' ' +
           QByteArray::number(y) + " Td (" + text + ") Tj ET\n";
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        qFatal("Cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QMap<QString, QByteArray> filesIn(const QString &folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString file = walk.next();
        files.insert(QDir(folder).relativeFilePath(file), readFile(file));
    }
    return files;
}

QStringList namesIn(const QString &folder)
{
    return filesIn(folder).keys();
}
