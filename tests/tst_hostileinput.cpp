// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QTest>

/// Files made to keep stavekit busy for ever, or out of memory: it ends, with the page.
class TestHostileInput : public QObject
{
    Q_OBJECT

private slots:
    void doesEnd_data();
    void doesEnd();
    void isAnError_data();
    void isAnError();
};

namespace {

/// One page, with entries of its own and for the catalog, and further objects from number 5 on.
QByteArray onePage(const QByteArray &catalogEntries, const QByteArray &pageEntries,
                   const QByteArrayList &objects)
{
    PdfBuilder file;
    const int root = file.add("<< /Type /Pages /Kids [2 0 R] /Count 1 >>");
    file.add("<< /Type /Page /Parent 1 0 R /MediaBox [0 0 9 9] " + pageEntries + " >>");
    const int catalog =
        file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + ' ' + catalogEntries + ">>");
    file.add("[2 0 R /Fit]");
    for (const QByteArray &object : objects)
        file.add(object);
    return file.bytes(catalog);
}

/// count objects from number 5 on, each "PREFIX n 0 R SUFFIX" with n the number of the next.
QByteArrayList chain(const QByteArray &prefix, const QByteArray &suffix, int count)
{
    QByteArrayList objects;
    for (int i = 0; i < count; ++i)
        objects.append("<< " + prefix + PdfBuilder::ref(6 + i) + ' ' + suffix + " >>");
    return objects;
}

/// Objects from number 5 on, each of which refers to the next one twice.
QByteArrayList doubling(const QByteArray &prefix, const QByteArray &suffix)
{
    QByteArrayList objects;
    for (int next = 6; next < 36; ++next)
        objects.append(prefix + PdfBuilder::refs({next, next}).mid(1).chopped(1) + suffix);
    return objects;
}

} // namespace

void TestHostileInput::doesEnd_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const int depth = 30000;
    const QByteArray deepArray = QByteArray(depth, '[') + QByteArray(depth, ']');
    QTest::newRow("deep array") << onePage("", "/Trans 5 0 R", {deepArray});
    QTest::newRow("deep chain of objects") << onePage("", "/Trans 5 0 R", chain("/A ", "", depth));
    QTest::newRow("deep form") << onePage("", "/Annots [5 0 R]",
                                          chain("/Subtype /Widget /T (a) /Parent ", "", depth));
    QTest::newRow("deep outline") << onePage("/Outlines 5 0 R", "",
                                             chain("/Title (a) /First ", "/Dest 4 0 R", depth));
    QTest::newRow("outline in a loop")
        << onePage("/Outlines 5 0 R", "",
                   {"<< /First 6 0 R >>", "<< /Dest 4 0 R /First 6 0 R /Next 7 0 R >>",
                    "<< /Dest 4 0 R /First 5 0 R /Next 6 0 R >>"});
    QTest::newRow("structure in a loop")
        << onePage("/StructTreeRoot 5 0 R", "/StructParents 0",
                   {"<< /K 6 0 R /ParentTree 8 0 R >>", "<< /S /P /P 7 0 R /K [6 0 R 7 0 R 0] >>",
                    "<< /S /P /P 6 0 R /K 6 0 R >>", "<< /Kids [8 0 R 9 0 R] >>",
                    "<< /Nums [0 [6 0 R 1 0 R 2 0 R 3 0 R]] >>"});
    QByteArray contents;
    for (int i = 0; i < 20000; ++i)
        contents += "<< /Stm << /StructParents " + QByteArray::number(i) + " >> /MCID 65535 >>";
    QTest::newRow("many tagged contents without a parent tree")
        << onePage("/StructTreeRoot 5 0 R", "/StructParents 0", {"<< /K [" + contents + "] >>"});
    const QByteArray link = "/Annots [<< /Subtype /Link /A 5 0 R >>]";
    QTest::newRow("action that follows itself")
        << onePage("", link, {"<< /S /URI /Next [5 0 R] >>"});
    QTest::newRow("actions that branch again and again")
        << onePage("", link, doubling("<< /S /URI /Next [", "] >>"));
    QTest::newRow("layers listed again and again")
        << onePage("/OCProperties << /OCGs 5 0 R /D << /Order 5 0 R >> >>", "", doubling("[", "]"));
    QByteArray states;
    for (int i = 0; i < 1500; ++i)
        states += "/S" + QByteArray::number(i) + " 5 0 R ";
    QTest::newRow("appearances in a loop")
        << onePage("", "/Annots [<< /Subtype /Stamp /AP 5 0 R >>]", {"<< " + states + ">>"});
    QTest::newRow("reference to a reference") << onePage("", "/Dur 5 0 R", {"6 0 R", "7"});
    QTest::newRow("names in a loop")
        << onePage("/Names << /Dests 5 0 R >>", "/Annots [<< /Subtype /Link /Dest (a) >>]",
                   {"<< /Kids [5 0 R] >>"});
    QTest::newRow("page as everything")
        << onePage("/AcroForm 2 0 R /Outlines 2 0 R /StructTreeRoot 2 0 R /PageLabels 2 0 R",
                   "/Resources 2 0 R /Contents 2 0 R /StructParents 2 0 R /Annots [2 0 R 1 0 R << "
                   "/Subtype /Widget /Parent 2 0 R >> << /Subtype /Widget /Parent 1 0 R >>]",
                   {});
    // Thirty kilobytes that are thirty megabytes of names.
    const QByteArray packed = qCompress(QByteArray("/A ").repeated(10000000), 9).mid(4);
    QTest::newRow("contents far larger than the file") << onePage(
        "", "/Resources << /Font 5 0 R >> /Contents 6 0 R",
        {"<< >>", "<< /Filter /FlateDecode /Length " + QByteArray::number(packed.size()) +
                      " >>\nstream\n" + packed + "\nendstream"});
    QTest::newRow("version beyond all bounds")
        << onePage("", "", {}).replace("%PDF-1.7", "%PDF-" + QByteArray(40, '5') + ".7");
    QByteArray huge = onePage("", "", {});
    QTest::newRow("four billion objects") << huge.replace("/Size 5", "/Size 4294967295");
}

/// Rather than an empty page in the place of one that says something, or pages without end.
void TestHostileInput::isAnError_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("cause");
    const QByteArray deepArray = QByteArray(30000, '[') + QByteArray(30000, ']');
    QTest::newRow("page is unreadable")
        << onePage("", "/Trans " + deepArray, {}) << QByteArray("page");
    QTest::newRow("nodes listed again and again")
        << onePage("", "", doubling("<< /Kids [", "] >>") + QByteArrayList{"<< /Type /Page >>"})
               .replace("/Kids [2 0 R]", "/Kids [5 0 R]")
        << QByteArray("lists the same pages again and again");
}

void TestHostileInput::isAnError()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, cause);
    const MergeRun run(bytes, "1");
    QCOMPARE(run.result.exitCode, 3);
    QVERIFY(run.result.errors.contains(cause));
}

void TestHostileInput::doesEnd()
{
    QFETCH(QByteArray, bytes);
    const MergeRun run(bytes, "1");
    QCOMPARE(run.result.exitCode, 0);
    QCOMPARE(pdfreader::pageCount(run.output), 1);
}

SENDRIVO_TEST_MAIN(TestHostileInput, QCoreApplication)
#include "tst_hostileinput.moc"
