// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/batchrunner.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

/// What sendrivo-batch makes of inputs that are not as they should be: nothing that somebody could
/// take for the documents of a good one.
class TestBatchInputs : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder;

    /// One document a text, whatever stands where.
    [[nodiscard]] QStringList call(const QStringList &further = {}) const
    {
        return QStringList{"--position", "1,1",      "--tolerance",  "900",
                           "--output",   "out",      "--json",       "--report",
                           "report",     "--resume", "--name={text}"} +
               further + QStringList{"in.pdf"};
    }

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QDir::setCurrent(folder->path());
        QDir().mkdir("out");
    }
    void cleanup() { QDir::setCurrent(QDir::tempPath()); }

    void verdicts_data();
    void verdicts();
    void completedLater();
    void outlivesPowerCut_data();
    void outlivesPowerCut();
};

namespace {

QByteArray threePages()
{
    return simplePdf({showText(30, 100, "A"), showText(30, 100, "B"), showText(30, 100, "C")});
}

QByteArray replaced(const QByteArray &bytes, const QByteArray &from, const QByteArray &to)
{
    return QByteArray(bytes).replace(from, to);
}

/// A page with compressed contents, which `spoil` may change.
QByteArray compressed(const std::function<void(QByteArray &)> &spoil)
{
    QByteArray text;
    for (int i = 0; i < 200; ++i)
        text += showText(30, 100 + i % 7, QByteArray::number(i * i * i));
    constexpr int lengthOfQt = 4; // what qCompress() puts in front
    QByteArray data = qCompress(text).mid(lengthOfQt);
    spoil(data);
    return simplePdf({data}, "", "/Filter /FlateDecode");
}

/// A block of zlib's format that is neither compressed nor the last one.
QByteArray storedBlock(const QByteArray &text)
{
    const auto length = static_cast<char>(text.size());
    return QByteArray{"\0", 1} + length + '\0' + static_cast<char>(~length) + '\xff' + text;
}

} // namespace

void TestBatchInputs::verdicts_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("verdict");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const QByteArray &bytes, const char *verdict = "done",
                        const char *complaint = "") {
        QTest::newRow(name) << bytes << QString(verdict) << QString(complaint);
    };
    const QByteArray sound = threePages();
    const auto damaged = [&](const char *name, const QByteArray &bytes, const char *complaint) {
        row(name, bytes, "damaged", complaint);
    };
    damaged("half of the file", sound.left(sound.size() / 2), "table of objects");
    damaged("part of an update", sound + "1 0 obj\n<< /Type /Pa", "is cut off");
    damaged("table leads beyond the end",
            replaced(sound, "0000000015 00000 n", "0000099999 00000 n"), "");
    damaged("place of a font is wrong",
            replaced(sound, "2 0 obj\n<< /Type /Font", "7 7 obj\n<< /Type /Font"),
            "table of objects");
    damaged("page lost", replaced(sound, "/Kids [4 0 R", "/Kids [null "), "page tree");
    damaged("wrong byte in contents",
            compressed([](QByteArray &data) { data[data.size() / 2] ^= 8; }), "decoded on pages 1");
    damaged("contents end early", compressed([](QByteArray &data) { data.chop(200); }),
            "decoded on pages 1");
    row("contents unreadable",
        simplePdf({"x"}, "", "/Filter /FlateDecode /DecodeParms << /Predictor 10 /Colors 99999 >>"),
        "pages given up", "page 1: given up: damaged");
#if !defined(__SANITIZE_ADDRESS__)
    const QByteArray wide = "<< /Predictor 10 /Columns 260000000 >>";
    row("contents need too much memory",
        simplePdf({"x"}, "",
                  "/Filter [/FlateDecode /FlateDecode] /DecodeParms [" + wide + wide + "]"),
        "pages given up", "page 1: given up: needs too much memory");
#endif
    // What viewers read without a word.
    row("sound", sound);
    row("bytes in front", "junk\n" + sound);
    row("size is wrong", replaced(sound, "/Size ", "/Size 1"));
    row("last line missing", sound.chopped(6));
    row("compressed data without the mark of its end",
        simplePdf({"\x78\x9c" + storedBlock(showText(30, 100, "A")) + storedBlock("")}, "",
                  "/Filter /FlateDecode"));
}

void TestBatchInputs::verdicts()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, verdict);
    QFETCH(QString, complaint);
    writeFile("in.pdf", bytes);
    const bool isDamaged = verdict == "damaged";
    for (const char *mode : {"--damaged=fail", "--damaged=split"}) {
        const ToolResult result = batch(call({mode}));
        QCOMPARE(result.exitCode, verdict == "done" ? 0 : 4);
        const QJsonObject entry = jsonLines(result.output).value(0);
        QCOMPARE(entry["verdict"].toString(), verdict);
        const QString said = entry["complaints"].toArray().at(0).toString();
        QVERIFY2(said.contains(complaint) && said.isEmpty() == (verdict == "done"),
                 qPrintable(said));
        QCOMPARE(namesIn(folder->filePath("out")).isEmpty(),
                 isDamaged && mode == QByteArray("--damaged=fail"));
        QFile::remove("report");
    }
}

/// A file that was split while it was being copied, and once more when it was whole.
void TestBatchInputs::completedLater()
{
    writeFile("in.pdf", simplePdf({showText(30, 100, "A"), showText(30, 100, "X"),
                                   showText(30, 100, "Y"), showText(30, 100, "Z")}));
    QCOMPARE(batch(call()).exitCode, 0);
    QCOMPARE(batch(call({"--name=other {text}"})).exitCode, 0);
    writeFile("out/in/Z.pdf", "changed meanwhile");
    writeFile("out/in/mine.pdf", "mine");
    writeFile("in.pdf", threePages());
    const ToolResult result = batch(call());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.errors.count("removed: "), 2);
    QCOMPARE(namesIn(folder->filePath("out")),
             QStringList({"in/A.pdf", "in/B.pdf", "in/C.pdf", "in/Z.pdf", "in/mine.pdf",
                          "in/other A.pdf", "in/other X.pdf", "in/other Y.pdf", "in/other Z.pdf"}));
    // What failed has lost nothing.
    writeFile("in.pdf", threePages().left(400));
    QVERIFY(batch(call()).exitCode != 0);
    QCOMPARE(namesIn(folder->filePath("out")).size(), 9);
}

void TestBatchInputs::outlivesPowerCut_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("order");
    QTest::newRow("usual") << "--quiet"
                           << "fsync ., linkat 1.pdf, linkat 2.pdf, linkat 3.pdf, syncfs in, "
                              "rename A.pdf, rename B.pdf, rename C.pdf, fsync in, fsync out, "
                              "write report, fdatasync report, ";
    QTest::newRow("no wait") << "--no-sync"
                             << "linkat 1.pdf, linkat 2.pdf, linkat 3.pdf, "
                                "rename A.pdf, rename B.pdf, rename C.pdf, write report, ";
}

/// No name before its bytes, no word of a document before its name.
void TestBatchInputs::outlivesPowerCut()
{
#if defined(__SANITIZE_ADDRESS__)
    QSKIP("sanitizers must be loaded first");
#endif
    QFETCH(QString, option);
    writeFile("in.pdf", threePages());
    qputenv("SENDRIVO_TEST_CALLS", "calls");
    qputenv("LD_PRELOAD", SENDRIVO_TEST_CALLS);
    const ToolResult result = batch(call({option, "--jobs=1"}));
    qunsetenv("LD_PRELOAD");
    QCOMPARE(result.exitCode, 0);
    const QByteArray here = folder->path().toUtf8();
    QByteArray order;
    for (const QByteArray &line : readFile("calls").split('\n')) {
        const QByteArray name = line.endsWith(here) ? "." : line.mid(line.lastIndexOf('/') + 1);
        if (line.contains(here)) // and not on the way from one process to the other
            order += line.left(line.indexOf(' ') + 1) + name + ", ";
    }
    QTEST(QString(order), "order");
}

SENDRIVO_TEST_MAIN(TestBatchInputs, QCoreApplication)
#include "tst_batchinputs.moc"
