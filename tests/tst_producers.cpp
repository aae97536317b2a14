// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/document.h"
#include "pdf/layout/fragment.h"
#include "pdf/layout/pagereader.h"
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

/// The same mail merge, made with many programs (see tests/producers/make.py): each field stands in
/// one place on all of its pages and reads as it was written, whatever the letters before it are
/// made of.
class TestProducers : public QObject
{
    Q_OBJECT

private slots:
    void fieldsStayInPlace_data();
    void fieldsStayInPlace();
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
    pdf::Document document(file.toStdString());
    const pdf::ReadablePages pages(document);
    pdf::PageReader reader(pages);
    const QList<QStringList> lines = fields();
    QCOMPARE(pages.count(), lines.size());
    QSet<QPair<int, int>> corners[2];
    for (int page = 0; page < lines.size(); ++page) {
        const QStringList &line = lines[page];
        const QString texts[] = {line[0], isLatex ? line.last() : line[2]};
        const std::vector<pdf::Fragment> fragments = reader.fragments(page);
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

SENDRIVO_TEST_MAIN(TestProducers, QGuiApplication)
#include "tst_producers.moc"
