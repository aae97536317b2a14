// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "tests/support/fulldisk.h"
#include "tests/support/privatefolders.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QTest>

namespace {

void save(const QString &name, const Subtext &fragment)
{
    QSettings settings(settingsFileName(), QSettings::IniFormat);
    saveRule(settings, name, fragment);
}

/// The settings as a program sees them that starts now. The settings library remembers what it has
/// written to a file, so only a copy shows what really went through the file.
struct Restarted : QSettings
{
    Restarted() : QSettings(copy(), QSettings::IniFormat) {}

private:
    static QString copy()
    {
        const QString name = QStringLiteral("copy.ini");
        QFile::remove(name);
        QFile::copy(settingsFileName(), name);
        return name;
    }
};

} // namespace

class TestRuleStore : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QFile::remove(settingsFileName()); }

    /// Whatever can be typed or stand on a page survives as a name and as a text.
    void everyStringSurvives_data()
    {
        QTest::addColumn<QString>("string");
        // clang-format off
        for (const char *string :
             {" blanks around ", "   ", "Rechnungs-Nr. für Ärzte", "发票号 №7 🧾", "فاتورة 5",
              "%41%20 100%", "a=b;c #d", "; comment", "a, b,", "[group]", "back\\slash\\x41\\n\\",
              "\"quoted\"", "@ByteArray(x)", "@@", "line\nbreak\r\ntab\tbell\a\x7f\0011",
              "NEL\u0085LS\u2028PS\u2029BOM\uFEFFend", "General", "general", "GENERAL/1", "file",
              "currule", "zeph", "2024/May", "/"})
            QTest::newRow(string) << QString::fromUtf8(string);
        // clang-format on
    }
    void everyStringSurvives()
    {
        QFETCH(QString, string);
        QSettings(settingsFileName(), QSettings::IniFormat).setValue("file/file", "sample.pdf");
        save("first", {1, 2, 3, 4, ""});
        save(string, {64, 118, 93, 15, string});
        Restarted after;
        QVERIFY(isRuleNameTaken(after, string));
        QVERIFY(!isRuleNameTaken(after, string + "x"));
        // A "/" makes a sub-group, and only direct keys of the group of names are listed.
        QCOMPARE(ruleNames(after).contains(string), !string.contains('/'));
        QCOMPARE(currentRuleName(after), string);
        const Subtext rule = readRule(after, string);
        QCOMPARE(QList<int>({rule.left, rule.top, rule.width, rule.height}),
                 QList<int>({64, 118, 93, 15}));
        QCOMPARE(rule.text, string);
        QVERIFY(ruleNames(after).contains("first"));
        QCOMPARE(readRule(after, "first").height, 4);
        QCOMPARE(after.value("file/file").toString(), QStringLiteral("sample.pdf"));
    }

    /// A later write of other settings must not bring it back either.
    void nothingRemainsOfWhatCannotBeWritten()
    {
        save("old", {1, 2, 3, 4, "x"});
        QSettings settings(settingsFileName(), QSettings::IniFormat);
        {
            const FullDisk disk;
            QVERIFY(!saveRule(settings, "new", {5, 6, 7, 8, "y"}));
            QVERIFY(!writeObstacle(settingsFileName()).isEmpty());
        }
        QCOMPARE(writeObstacle(settingsFileName()), QString());
        settings.setValue("file/file", "sample.pdf");
        settings.sync();
        Restarted after;
        QCOMPARE(ruleNames(after), QStringList("old"));
        QCOMPARE(after.childGroups(), QStringList({"currule", "file", "old", "zeph"}));
        QCOMPARE(after.value("file/file").toString(), QStringLiteral("sample.pdf"));
    }

    void namesThatWouldBeLostOrShareAGroup()
    {
        for (const char *name : {"zeph", "/", "2024/May", "a/"})
            QVERIFY2(!isRuleNameAllowed(name), name);
        for (const char *name : {"currule", "file", "Zeph", "a\\b", " "})
            QVERIFY2(isRuleNameAllowed(name), name);
        save("general", {1, 2, 3, 4, "one"});
        const Restarted after;
        for (const char *name : {"general", "General", "GENERAL"})
            QVERIFY2(isRuleNameTaken(after, name), name);
        for (const char *name : {"General 2", "zeph", "Eneral"})
            QVERIFY2(!isRuleNameTaken(after, name), name);
    }

    /// What Qt 4 wrote: no byte above 127; characters as \xNN, in keys as %NN or %UNNNN.
    void fileOfAnOlderQt()
    {
        QFile file(settingsFileName());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[zeph]\nInvoice%20No=1\nGr%F6%DFe=1\n%U53D1%U7968=1\nold=0\nyes=true\n\n"
                   "[currule]\nrule=Gr\\xf6\\xdf\\x65\n\n"
                   "[Gr%F6%DFe]\nxpos=64\nypos=x\ntext=\"M\\xfcller, \\x53d1\\x7968\"\n\n"
                   "[%U53D1%U7968]\nxpos=7\n\n");
        file.close();
        Restarted now;
        const QString size = QString::fromUtf8("Größe");
        const QString chinese = QString::fromUtf8("发票");
        QCOMPARE(ruleNames(now).size(), 5);
        QVERIFY(ruleNames(now).contains(size) && ruleNames(now).contains(chinese));
        QCOMPARE(currentRuleName(now), size);
        QCOMPARE(readRule(now, size).text, QString::fromUtf8("Müller, 发票"));
        QCOMPARE(readRule(now, size).left, 64);
        QCOMPARE(readRule(now, size).top, 0);
        QCOMPARE(readRule(now, chinese).left, 7);
        QVERIFY(isRuleNameTaken(now, "Invoice No"));
        QVERIFY(!isRuleNameTaken(now, "old") && !isRuleNameTaken(now, "yes"));
    }
};

SENDRIVO_TEST_MAIN(TestRuleStore, QCoreApplication)
#include "tst_rulestore.moc"
