// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/document.h"
#include "pdf/layout/fragment.h"
#include "pdf/layout/pagereader.h"
#include "pdf/layout/unknownglyphs.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"

#include <QDir>
#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <map>
#include <set>

/// The same mail merge, made with many programs (see tests/producers/make.py): each field stands in
/// one place on all of its pages and reads as it was written, whatever the letters before it are
/// made of.
class TestProducers : public QObject
{
    Q_OBJECT

private slots:
    void fieldsStayInPlace_data();
    void fieldsStayInPlace();
    void lettersWithoutCharacters();
};

namespace {

const QDir producers(QStringLiteral(SENDRIVO_SOURCE "/tests/producers"));
const QDir fixtures(QStringLiteral(SENDRIVO_SOURCE "/tests/fixtures/producers"));

/// The columns of fields.txt: number, style, customer, customer for LaTeX.
QList<QStringList> fields()
{
    QList<QStringList> result;
    const QString text = QString::fromUtf8(readFile(producers.filePath("fields.txt")));
    for (const QString &line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        result.append(line.split(QLatin1Char('\t')));
    return result;
}

void writeWithQt(const QString &path)
{
    constexpr int dpi = 300;
    QPdfWriter writer(path);
    writer.setResolution(dpi);
    writer.setPageSize(QPageSize(QPageSize::A4));
    QPainter painter(&writer);
    bool isFirst = true;
    for (const QStringList &line : fields()) {
        if (!std::exchange(isFirst, false))
            writer.newPage();
        QFont font(QStringLiteral("DejaVu Sans"), 11);
        painter.setFont(font);
        painter.drawText(1600, 400, line[0]);
        font.setBold(line[1] == QLatin1String("bold"));
        painter.setFont(font);
        painter.drawText(200, 700, line[2]);
    }
}

using FragmentPages = std::vector<std::vector<pdf::Fragment>>;

FragmentPages readPages(const QString &path)
{
    pdf::Document document(path.toStdString());
    const pdf::ReadablePages pages(document);
    pdf::PageReader reader(pages);
    FragmentPages result;
    for (int page = 0; page < pages.count(); ++page)
        result.push_back(reader.fragments(page));
    return result;
}

} // namespace

void TestProducers::fieldsStayInPlace_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("Qt") << QString();
    for (const QString &name : fixtures.entryList({"*.pdf"}, QDir::Files))
        QTest::newRow(qPrintable(name)) << fixtures.filePath(name);
}

void TestProducers::fieldsStayInPlace()
{
    QFETCH(QString, file);
    const bool isLatex = QFileInfo(file).fileName().startsWith(QLatin1String("latex"));
    const QTemporaryDir folder;
    if (file.isEmpty()) {
        file = folder.filePath("qt.pdf");
        writeWithQt(file);
    }
    const FragmentPages pages = readPages(file);
    const QList<QStringList> lines = fields();
    QCOMPARE(static_cast<qsizetype>(pages.size()), lines.size());
    QSet<QPair<int, int>> corners[2];
    for (int page = 0; page < lines.size(); ++page) {
        const QStringList &line = lines[page];
        const QString texts[] = {line[0], isLatex ? line.last() : line[2]};
        const std::vector<pdf::Fragment> &fragments = pages[static_cast<std::size_t>(page)];
        for (int field = 0; field < 2; ++field) {
            const auto found = std::find_if(
                fragments.begin(), fragments.end(), [&](const pdf::Fragment &fragment) {
                    return QString::fromStdString(fragment.text) == texts[field];
                });
            QVERIFY2(found != fragments.end(), qPrintable(texts[field]));
            corners[field].insert({found->left, found->top});
        }
    }
    QCOMPARE(corners[0].size(), 1);
    QCOMPARE(corners[1].size(), 1);
}

void TestProducers::lettersWithoutCharacters()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("qt.pdf");
    writeWithQt(path);
    const FragmentPages known = readPages(path);
    QByteArray bytes = readFile(path);
    writeFile(path, bytes.replace("/ToUnicode", "/NoUnicode"));
    const FragmentPages unknown = readPages(path);
    QCOMPARE(unknown.size(), known.size());
    std::map<std::string, std::string> textOf;
    std::set<std::string> texts;
    for (std::size_t page = 0; page < known.size(); ++page) {
        QCOMPARE(unknown[page].size(), known[page].size());
        for (std::size_t i = 0; i < known[page].size(); ++i) {
            const pdf::Fragment &fragment = unknown[page][i];
            QCOMPARE(QPoint(fragment.left, fragment.top),
                     QPoint(known[page][i].left, known[page][i].top));
            QVERIFY(pdf::hasUnknownLetters(fragment.text));
            const auto [entry, isNew] = textOf.insert({known[page][i].text, fragment.text});
            QCOMPARE(fragment.text, entry->second);
            QCOMPARE(texts.insert(fragment.text).second, isNew);
        }
    }
}

SENDRIVO_TEST_MAIN(TestProducers, QGuiApplication)
#include "tst_producers.moc"
