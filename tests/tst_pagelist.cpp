// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfobjects.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/toolrunner.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

/// Page count, layouts and merges see the same pages in the same order, whatever the page tree
/// looks like.
class TestPageList : public QObject
{
    Q_OBJECT

private slots:
    void allOperationsAgree_data();
    void allOperationsAgree();
};

namespace {

/// A page tree under construction; each page shows the name it was added with.
struct Tree
{
    Tree() : root(file.reserve()), font(file.addHelvetica()) {}

    [[nodiscard]] QByteArray pageDictionary(const QByteArray &name, const QByteArray &type,
                                            int parent)
    {
        const int stream = file.addStream(showText(20, 100, name));
        return "<< " + type + " /Parent " + PdfBuilder::ref(parent) +
               " /MediaBox [0 0 300 200] /Resources << /Font << /F1 " + PdfBuilder::ref(font) +
               " >> >> /Contents " + PdfBuilder::ref(stream) + " >>";
    }
    int page(const QByteArray &name, int parent)
    {
        return file.add(pageDictionary(name, "/Type /Page", parent));
    }
    void node(int number, const QByteArray &kids, const QByteArray &count)
    {
        file.define(number, "<< /Type /Pages /Kids [" + kids + "] /Count " + count + " >>");
    }
    [[nodiscard]] QByteArray bytes()
    {
        return file.bytes(file.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(root) + " >>"));
    }

    PdfBuilder file;
    int root;
    int font;
};

/// Root with pages A and B, a node with C and D, and page E; the counts are the caller's.
QByteArray nested(const QByteArray &rootCount, const QByteArray &nodeCount)
{
    Tree tree;
    const int inner = tree.file.reserve();
    const int a = tree.page("A", tree.root);
    const int b = tree.page("B", tree.root);
    const int c = tree.page("C", inner);
    const int d = tree.page("D", inner);
    const int e = tree.page("E", tree.root);
    tree.node(inner, PdfBuilder::ref(c) + ' ' + PdfBuilder::ref(d), nodeCount);
    tree.node(tree.root,
              PdfBuilder::ref(a) + ' ' + PdfBuilder::ref(b) + ' ' + PdfBuilder::ref(inner) + ' ' +
                  PdfBuilder::ref(e),
              rootCount);
    return tree.bytes();
}

/// Root with page A, whatever stands in kids, and page B.
QByteArray between(const std::function<QByteArray(Tree &)> &kids)
{
    Tree tree;
    const QByteArray a = PdfBuilder::ref(tree.page("A", tree.root));
    const QByteArray b = PdfBuilder::ref(tree.page("B", tree.root));
    tree.node(tree.root, a + ' ' + kids(tree) + ' ' + b, "3");
    return tree.bytes();
}

QByteArray deep(int levels)
{
    Tree tree;
    int node = tree.root;
    for (int i = 0; i < levels; ++i) {
        const int below = tree.file.reserve();
        tree.node(node, PdfBuilder::ref(below), "1");
        node = below;
    }
    tree.node(node, PdfBuilder::ref(tree.page("A", node)), "1");
    return tree.bytes();
}

} // namespace

void TestPageList::allOperationsAgree_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("pages");

    const QByteArray sound = nested("5", "2");
    QTest::newRow("sound") << sound << "ABCDE";
    QTest::newRow("root count too small") << nested("2", "2") << "ABCDE";
    QTest::newRow("root count too large") << nested("50", "2") << "ABCDE";
    QTest::newRow("counts lie consistently") << nested("9", "6") << "ABCDE";
    QTest::newRow("negative count") << nested("-5", "-2") << "ABCDE";
    QTest::newRow("count is no number") << nested("(five)", "null") << "ABCDE";
    QTest::newRow("null kid") << between([](Tree &) { return "null"; }) << "AB";
    QTest::newRow("kid that does not exist") << between([](Tree &) { return "999 0 R"; }) << "AB";
    QTest::newRow("kid that is a number") << between([](Tree &) { return "7"; }) << "AB";
    QTest::newRow("kid that is a font")
        << between([](Tree &tree) { return PdfBuilder::ref(tree.font); }) << "AB";
    QTest::newRow("kid that is the root")
        << between([](Tree &tree) { return PdfBuilder::ref(tree.root); }) << "AB";
    QTest::newRow("page without type") << between([](Tree &tree) {
        return PdfBuilder::ref(tree.file.add(tree.pageDictionary("X", "", tree.root)));
    }) << "AXB";
    QTest::newRow("page of another type") << between([](Tree &tree) {
        return PdfBuilder::ref(tree.file.add(tree.pageDictionary("X", "/Type /Pag", tree.root)));
    }) << "AXB";
    QTest::newRow("page directly in the tree")
        << between([](Tree &tree) { return tree.pageDictionary("X", "/Type /Page", tree.root); })
        << "AXB";
    QTest::newRow("page with a wrong parent")
        << between([](Tree &tree) { return PdfBuilder::ref(tree.page("X", 998)); }) << "AXB";
    QTest::newRow("page listed twice") << between([](Tree &tree) {
        const QByteArray page = PdfBuilder::ref(tree.page("X", tree.root));
        return page + ' ' + page;
    }) << "AXXB";
    QTest::newRow("node listed twice") << between([](Tree &tree) {
        const int inner = tree.file.reserve();
        tree.node(inner, PdfBuilder::ref(tree.page("X", inner)), "1");
        return PdfBuilder::ref(inner) + ' ' + PdfBuilder::ref(inner);
    }) << "AXXB";
    QTest::newRow("node without type") << between([](Tree &tree) {
        const QByteArray page = PdfBuilder::ref(tree.page("X", tree.root));
        return PdfBuilder::ref(tree.file.add("<< /Kids [" + page + "] /Count 1 >>"));
    }) << "AXB";
    QTest::newRow("node directly in the tree") << between([](Tree &tree) {
        const QByteArray page = PdfBuilder::ref(tree.page("X", tree.root));
        return "<< /Type /Pages /Kids [" + page + "] /Count 1 >>";
    }) << "AXB";
    QTest::newRow("key spelled with an escape") << between([](Tree &tree) {
        return PdfBuilder::ref(
            tree.file.add(tree.pageDictionary("X", "/Typ#65 /P#61ge", tree.root)));
    }) << "AXB";
    QTest::newRow("nested very deep") << deep(20000) << "A";
    QTest::newRow("table of offsets lost")
        << QByteArray(sound).replace("startxref", "startxxxx") << "ABCDE";
    QTest::newRow("offsets shifted by bytes in front") << QByteArray("junk\n") + sound << "ABCDE";
    QTest::newRow("cut off behind the objects")
        << sound.left(sound.indexOf("xref\n0 ")) + "trailer << /Root " +
               PdfBuilder::ref(sound.count(" 0 obj")) + " >>"
        << "ABCDE";
    const QByteArray objects = sound.left(sound.indexOf("xref\n0 "));
    QTest::newRow("table and trailer lost") << objects << "ABCDE";
    const QByteArray attached = "1 0 obj\n<< /Type /Pages /Kids [] >>\nendobj\n";
    QTest::newRow("another file attached, table and trailer lost")
        << objects + "99 0 obj\n<< /Length " + QByteArray::number(attached.size()) +
               " >>\nstream\n" + attached + "\nendstream\nendobj\n"
        << "ABCDE";
    QTest::newRow("object changed, table and trailer lost")
        << objects + "1 0 obj\n<< /Type /Pages /Kids [ 3 0 R ] >>\nendobj\n"
        << "CD";
    QTest::newRow("identifiers are no strings")
        << QByteArray(sound)
               .replace("trailer\n<< ", "trailer\n<< /ID [ null ] ")
               .replace("startxref", "startxxxx")
        << "ABCDE";
    QTest::newRow("trailer cut off") << sound.left(sound.indexOf("trailer") + 20) << "ABCDE";
    QTest::newRow("object streams, their table lost")
        << pdfobjects::withObjectStreams(sound).replace("/XRef", "/Xxxx") << "ABCDE";
    QTest::newRow("catalog without page tree")
        << QByteArray(sound).replace("/Catalog /Pages", "/Catalog /Nodes") << "ABCDE";
}

void TestPageList::allOperationsAgree()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, pages);
    const QTemporaryDir folder;
    const QString input = folder.filePath("in.pdf");
    writeFile(input, bytes);

    QCOMPARE(toolPageCount(input, folder.filePath("info.txt")), pages.size());

    QCOMPARE(convertPages(input, folder.path()).exitCode, 0);
    QString layouts;
    for (int page = 1; QFile::exists(layoutPath(folder.path(), page)); ++page)
        layouts += QString::fromUtf8(readFile(layoutPath(folder.path(), page)))
                       .section(QLatin1Char('>'), 2, 2)
                       .left(1);
    QCOMPARE(layouts, pages);

    const QString output = folder.filePath("out.pdf");
    const QString all = QStringLiteral("1-%1").arg(pages.size());
    QCOMPARE(mergePages(input, all, output).exitCode, 0);
    QCOMPARE(pdfreader::pageTexts(output).join(QString()), pages);
    QCOMPARE(pdfreader::complaints(output), QString());
    QCOMPARE(mergePages(input, QString::number(pages.size() + 1), output).exitCode, 2);
}

SENDRIVO_TEST_MAIN(TestPageList, QCoreApplication)
#include "tst_pagelist.moc"
