// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "split/outputname.h"

#include <QList>
#include <QString>

/// A pattern of document names: text with fields in braces, for example "{base}-{n:04}-{text}".
///
/// Fields: {n} number of the document, from 1; {text} the deciding text; {base} the input's name
/// up to its first dot; {range} the pages as in "3-5", several with blanks between them; {first}
/// and {last} page; {pages} their number. Numbers take a width, zeros in front: {n:04}. "{{" and
/// "}}" stand for braces. ".pdf" is added where it is missing.
class NameTemplate
{
public:
    /// Throws pdf::Error(Usage) for an unknown field, a lone brace or a "/".
    explicit NameTemplate(const QString &wanted);

    /// The name of the document. Of its parts the text alone is cut so that the name fits
    /// `maxBytes`, and a "." with which a field begins the name becomes "_"; what the others bring
    /// is cleaned, but never cut.
    [[nodiscard]] QString fileName(const OutputDocument &document, int maxBytes) const;

private:
    struct Piece
    {
        QString field; ///< empty for plain text
        QString text;  ///< plain text
        int width = 0; ///< least number of digits
    };
    void addPlain(QChar c);
    [[nodiscard]] static Piece parseField(const QString &content);
    [[nodiscard]] static QString value(const Piece &piece, const OutputDocument &document);

    QList<Piece> pieces;
};
