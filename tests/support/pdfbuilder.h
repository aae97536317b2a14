// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QMap>
#include <QString>
#include <QStringList>

/// Writes tiny PDF files object by object, so that a test states exactly what its file holds, sound
/// or not. Nothing is checked or completed.
class PdfBuilder
{
public:
    /// Sets aside the next object number (from 1), for objects that are referred to before they
    /// are known.
    int reserve();
    /// Gives the reserved number its object, written as PDF syntax ("<< /Type /Page >>").
    void define(int number, const QByteArray &body);
    /// A new object; gives its number.
    int add(const QByteArray &body);
    /// A new stream object with the entries added to its dictionary; gives its number.
    int addStream(const QByteArray &data, const QByteArray &entries = QByteArray());

    /// "7 0 R"
    [[nodiscard]] static QByteArray ref(int number);
    /// "[1 0 R 2 0 R]"
    [[nodiscard]] static QByteArray refs(const QList<int> &numbers);

    /// Adds /Helvetica as a font object; gives its number.
    int addHelvetica();
    /// The whole file: header, objects, cross-reference table, trailer with this catalog and
    /// further trailer entries.
    [[nodiscard]] QByteArray bytes(int catalog, const QByteArray &trailer = QByteArray()) const;

private:
    QByteArrayList objects;
};

/// A file of one page for each contents stream, Helvetica as /F1, media box 0 0 300 200 points;
/// pageEntries is added to each page dictionary, streamEntries to that of each contents stream.
[[nodiscard]] QByteArray simplePdf(const QByteArrayList &contents,
                                   const QByteArray &pageEntries = QByteArray(),
                                   const QByteArray &streamEntries = QByteArray());

/// Operators that show the text in Helvetica with its baseline beginning at x, y.
[[nodiscard]] QByteArray showText(double x, double y, const QByteArray &text, int size = 12);

/// Writes the bytes; ends the test program when that fails.
void writeFile(const QString &path, const QByteArray &bytes);
/// The whole file, null when it does not exist.
[[nodiscard]] QByteArray readFile(const QString &path);
/// All files below a folder, hidden ones included, with their bytes.
[[nodiscard]] QMap<QString, QByteArray> filesIn(const QString &folder);
[[nodiscard]] QStringList namesIn(const QString &folder);
