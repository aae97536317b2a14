// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/nametemplate.h"

#include "pdf/error.h"
#include "split/pagerange.h"

#include <QStringList>

#include <limits>

namespace {

[[noreturn]] void refuse(const QString &cause)
{
    throw pdf::Error(pdf::ExitCode::Usage, "--name: " + cause.toStdString());
}

QString padded(qsizetype number, int width)
{
    return QString::number(number).rightJustified(width, QLatin1Char('0'));
}

constexpr qsizetype unlimited = std::numeric_limits<qsizetype>::max();

} // namespace

NameTemplate::NameTemplate(const QString &wanted)
{
    const QLatin1String suffix(".pdf");
    const QString pattern = wanted.endsWith(suffix) ? wanted.chopped(suffix.size()) : wanted;
    if (pattern.isEmpty())
        refuse(QStringLiteral("is empty"));
    if (pattern.contains(QLatin1Char('/')))
        refuse(QStringLiteral("a name cannot hold \"/\""));
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        const bool isBrace = c == QLatin1Char('{') || c == QLatin1Char('}');
        if (!isBrace || (i + 1 < pattern.size() && pattern[i + 1] == c)) {
            addPlain(c);
            i += isBrace ? 1 : 0;
            continue;
        }
        const qsizetype end = pattern.indexOf(QLatin1Char('}'), i);
        if (c == QLatin1Char('}') || end < 0)
            refuse(QStringLiteral("a brace stands alone; write {{ or }}"));
        pieces.append(parseField(pattern.mid(i + 1, end - i - 1)));
        i = end;
    }
}

void NameTemplate::addPlain(QChar c)
{
    if (pieces.isEmpty() || !pieces.last().field.isEmpty())
        pieces.append(Piece());
    pieces.last().text += c;
}

NameTemplate::Piece NameTemplate::parseField(const QString &content)
{
    static const QStringList texts = {QStringLiteral("text"), QStringLiteral("base"),
                                      QStringLiteral("range")};
    static const QStringList numbers = {QStringLiteral("n"), QStringLiteral("first"),
                                        QStringLiteral("last"), QStringLiteral("pages")};
    const qsizetype colon = content.indexOf(QLatin1Char(':'));
    Piece piece;
    piece.field = content.left(colon);
    const bool isNumber = numbers.contains(piece.field);
    if (!isNumber && !texts.contains(piece.field))
        refuse(QStringLiteral("there is no field {%1}").arg(content));
    if (colon >= 0) {
        constexpr int widest = 20;
        bool isGood = false;
        piece.width = content.mid(colon + 1).toInt(&isGood);
        if (!isNumber || !isGood || piece.width < 0 || piece.width > widest)
            refuse(QStringLiteral("{%1} has no such width").arg(content));
    }
    return piece;
}

QString NameTemplate::value(const Piece &piece, const OutputDocument &document)
{
    if (piece.field.isEmpty())
        return piece.text;
    if (piece.field == QLatin1String("n"))
        return padded(document.number, piece.width);
    if (piece.field == QLatin1String("base"))
        return document.baseName;
    if (piece.field == QLatin1String("range"))
        return document.ranges;
    const QList<PageSpan> spans = pageSpans(document.ranges);
    if (piece.field == QLatin1String("first"))
        return padded(spans.first().first, piece.width);
    if (piece.field == QLatin1String("last"))
        return padded(spans.last().last, piece.width);
    return padded(pageTotal(spans), piece.width);
}

QString NameTemplate::fileName(const OutputDocument &document, int maxBytes) const
{
    QString suffix = QStringLiteral(".pdf");
    if (document.copy > 1)
        suffix.prepend(QStringLiteral(" (%1)").arg(document.copy));
    qsizetype used = suffix.size();
    qsizetype texts = 0;
    for (const Piece &piece : pieces) {
        if (piece.field == QLatin1String("text"))
            ++texts;
        else
            used += fileNameText(value(piece, document), unlimited).toUtf8().size();
    }
    const qsizetype room = texts > 0 ? (maxBytes - used) / texts : 0;
    QString name;
    for (const Piece &piece : pieces)
        name += piece.field == QLatin1String("text")
                    ? fileNameText(document.text, room)
                    : fileNameText(value(piece, document), unlimited);
    // What a page says must not hide a document.
    if (name.startsWith(QLatin1Char('.')) && !pieces.first().field.isEmpty())
        name[0] = QLatin1Char('_');
    return name + suffix;
}
