// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/batchrunner.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"
#include "tests/support/windowcomparison.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>

/// Window and sendrivo-batch over files that nobody made for them: some of a few pages, always the
/// same ones, out of the folder that SENDRIVO_CORPUS names.
class TestBatchCorpus : public QObject
{
    Q_OBJECT

private slots:
    void sameAsWindow();
};

namespace {

/// Stores a rule for a text of the first page, if possible where the second page has one, too.
bool storeCommonRule(const QString &name, const QString &file)
{
    const auto places = [&](const char *page) {
        QStringList list;
        for (const QJsonObject &line :
             jsonLines(batch({"--fragments", page, "--json", file}).output)) {
            const int left = line["left"].toInt();
            const int top = line["top"].toInt();
            if (left > 0 && top > 0)
                list.append(QString("%1,%2").arg(left).arg(top));
        }
        return list;
    };
    const QStringList first = places("1");
    const QStringList second = places("2");
    QString place = first.value(0);
    for (const QString &candidate : first)
        place = second.contains(candidate) ? candidate : place;
    return !place.isEmpty() &&
           batch({"--save-rule", name, place, "--fragments", "1", file}).exitCode == 0;
}

} // namespace

/// The same over files that nobody made for this program: some of a few pages out of the
/// corpus, always the same ones.
void TestBatchCorpus::sameAsWindow()
{
    const QString corpus = qEnvironmentVariable("SENDRIVO_CORPUS");
    if (corpus.isEmpty())
        QSKIP("SENDRIVO_CORPUS names no folder of PDF files");
    QMap<QByteArray, QString> shuffled;
    QDirIterator walk(corpus, {"*.pdf"}, QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString file = walk.next();
        shuffled.insert(QCryptographicHash::hash(walk.fileName().toUtf8(), QCryptographicHash::Md5),
                        file);
    }
    constexpr int wanted = 15;
    constexpr int fewPages = 20;
    const QString info = QDir::current().filePath("info");
    int compared = 0;
    for (const QString &file : shuffled) {
        const int pages = toolPageCount(file, info);
        const QString rule = QString("corpus %1").arg(compared);
        if (pages < 3 || pages > fewPages || !storeCommonRule(rule, file))
            continue;
        for (int method = 0; method < 3; ++method) {
            const QTemporaryDir output;
            const QString difference = differenceFromWindow({file}, rule, method, output.path());
            QVERIFY2(difference.isEmpty(), qPrintable(file + ": " + difference));
            qInfo("%s: %d pages, %lld documents", qPrintable(file), pages,
                  static_cast<long long>(namesIn(output.path()).size()));
        }
        if (++compared == wanted)
            break;
    }
    QCOMPARE(compared, wanted);
}

SENDRIVO_TEST_MAIN(TestBatchCorpus, QApplication)
#include "tst_batchcorpus.moc"
