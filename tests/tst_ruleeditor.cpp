// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/pagezoom.h"
#include "rules/rules.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "split/toolcommands.h"
#include "tests/support/editordriver.h"
#include "tests/support/fulldisk.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfreader.h"
#include "tests/support/privatefolders.h"
#include "tests/support/samplepdf.h"
#include "tests/support/windowdriver.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QNetworkReply>
#include <QRegion>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <cmath>

namespace {

/// Where the invoice number stands on every sample page.
constexpr QPoint numberPlace(604, 168);

/// The layout line of a fragment, as quillrend writes it.
QByteArray line(const QRect &box, const QByteArray &text)
{
    return "<span style=\"left:" + QByteArray::number(box.x()) +
           ";top:" + QByteArray::number(box.y()) + ";width:" + QByteArray::number(box.width()) +
           ";height:" + QByteArray::number(box.height()) + "\">" + text + "</span>\n";
}

/// The pages that were converted, each with what the mouse cursor looked like.
QStringList conversions;

void recordConversion(QtMsgType, const QMessageLogContext &, const QString &message)
{
    const QCursor *cursor = QGuiApplication::overrideCursor();
    if (message.contains("quillrend"))
        conversions.append(message.mid(message.indexOf("-f "), 4) +
                           (cursor && cursor->shape() == Qt::WaitCursor ? " waiting" : ""));
}

/// What is wrong between the dark pixels of a page and the boxes over its words.
QString misplaced(const QImage &image, const QList<QPushButton *> &boxes)
{
    // Not the bluish lines between the sample's columns.
    const auto isInk = [&image](int x, int y) {
        const QRgb colour = image.valid(x, y) ? image.pixel(x, y) : qRgb(255, 255, 255);
        return qGray(colour) < 160 && qBlue(colour) - qRed(colour) < 8;
    };
    QRegion covered;
    for (const QPushButton *button : boxes) {
        const QRect box = button->geometry();
        covered += box.adjusted(-2, -2, 2, 2);
        QRect ink;
        for (int y = box.top(); y <= box.bottom(); ++y) {
            for (int x = box.left(); x <= box.right(); ++x)
                ink |= isInk(x, y) ? QRect(x, y, 1, 1) : QRect();
        }
        if (ink.left() - box.left() > 4 || box.right() - ink.right() > 4 ||
            ink.height() * 2 < box.height())
            return "no word fills the box of " + button->accessibleName();
    }
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isInk(x, y) && !covered.contains(QPoint(x, y)))
                return QStringLiteral("no box over the ink at %1, %2").arg(x).arg(y);
        }
    }
    return {};
}

/// A rule editor opened on a file as the main window opens it.
struct Editor : Rules, EditorDriver
{
    Editor() : EditorDriver(static_cast<QDialog &>(*this)) {}
    /// Opened with the boxes of the first page.
    Editor(const QString &file, int pages) : Editor()
    {
        if (!openOn(file, pages) || !waitForBoxes())
            qFatal("%s is not shown", qPrintable(file));
    }

    bool openOn(const QString &file, int pages)
    {
        storedSettings().setValue("file/file", file);
        storedSettings().setValue("file/page", QString::number(pages));
        const bool isPrepared = setIniImage();
        show();
        return isPrepared;
    }
    /// Which of the controls can be used, in the order of the layout.
    [[nodiscard]] QByteArray enabled() const
    {
        QByteArray flags;
        for (const char *name :
             {"pushButton_zoomout", "pushButton_zoomin", "pushButton_down", "pushButton_up",
              "pushButton_save", "lineEdit_rule", "lineEdit_rulebefore"})
            flags += widget<QWidget>(name)->isEnabled() ? '1' : '0';
        return flags;
    }
    [[nodiscard]] QSpinBox *pageBox() const { return widget<QSpinBox>("spinBox_pagenumber"); }
    /// Has the page shown again with this layout.
    [[nodiscard]] bool reload(const QByteArray &layout)
    {
        writeFile(previewLayoutFile(QDir::tempPath()), layout);
        click("zoomin");
        click("zoomout");
        return waitForBoxes();
    }
    /// Whether there are no boxes and a text says why.
    [[nodiscard]] bool staysWithoutBoxes(const char *reason) const
    {
        QTest::qWait(50);
        const auto *note = widget<QLabel>("pageNote");
        return boxes().isEmpty() && note->isVisible() && note->text().contains(reason);
    }
    /// Saves under this name and gives the message that is shown.
    [[nodiscard]] QString refusal(const QString &name)
    {
        QString shown;
        typeName(name);
        acceptMessageBox(&shown);
        click("save");
        return shown;
    }
};

} // namespace

/// The rule editor with the real converter.
class TestRuleEditor : public QObject
{
    Q_OBJECT

    const QString sample = workPath("sample.pdf");

private slots:
    void initTestCase()
    {
        QVERIFY(writeSamplePdf(sample, {{"INV-1", "Ash", 2}, {"INV-2", "Birch", 1}}));
        writeFile(workPath("broken.pdf"), "no PDF");
    }
    void cleanup() { QFile::remove(settingsFileName()); }

    /// The whole way: in the main window open the editor, look at the boxes at several zooms, pick
    /// the invoice number, save, split.
    void fromPickToDocuments_data()
    {
        QTest::addColumn<SampleLayout>("layout");
        QTest::addColumn<QString>("prefix");
        const auto row = [](const char *name, SampleLayout layout, const char *prefix = "INV-") {
            QTest::newRow(name) << layout << QString::fromUtf8(prefix);
        };
        row("portrait", SampleLayout::Portrait);
        row("rotated", SampleLayout::Rotated90);
        row("cropped", SampleLayout::Cropped);
        row("Arabic", SampleLayout::Portrait, "فاتورة ");
        row("Chinese", SampleLayout::Portrait, "发票号");
    }
    void fromPickToDocuments()
    {
        QFETCH(SampleLayout, layout);
        QFETCH(QString, prefix);
        const QString name = QTest::currentDataTag();
        const QTemporaryDir folder;
        const QString file = folder.filePath("in.pdf");
        QVERIFY(writeSamplePdf(
            file, {{prefix + '1', "A", 2}, {prefix + '2', "B", 1}, {prefix + '3', "C", 3}},
            layout));
        const QImage rendered = pdfreader::renderPage(file, 0);
        WindowDriver driver;
        QVERIFY(driver.add({file}));
        QSet<QString> rules;
        whenDialogOpens([&](QDialog *dialog) {
            const EditorDriver editor(*dialog);
            QCOMPARE(editor.image().size(), rendered.size());
            for (const char *step : {"zoomout", "zoomin", "zoomin"}) {
                editor.click(step);
                QVERIFY(editor.waitForBoxes());
                const QImage shown = editor.image();
                const QImage expected =
                    rendered.scaled(shown.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
                QCOMPARE(misplaced(shown, editor.boxes()), QString());
                QCOMPARE(misplaced(expected, editor.boxes()), QString());
                const double zoom = shown.width() * 1.0 / rendered.width();
                rules.insert(editor.makeRuleAt((QPointF(numberPlace) * zoom).toPoint()));
            }
            editor.typeName(name);
            editor.click("save");
        });
        driver.click("pushButton_option");
        QCOMPARE(rules.size(), 1);
        QCOMPARE(driver.widget<QComboBox>("comboBox_rule")->currentText(), name);
        driver.setOutputFolder(folder.path());
        QVERIFY(driver.split());
        QStringList ranges;
        for (const QString &document : QDir(folder.filePath("in")).entryList(QDir::Files))
            ranges.append(document.section(' ', -1));
        QCOMPARE(ranges, QStringList({"1-2.pdf", "3.pdf", "4-6.pdf"}));
    }

    void cancellingChoosesTheFirstRule()
    {
        QSettings settings = storedSettings();
        for (const char *name : {"a", "b"})
            saveRule(settings, name, {});
        WindowDriver driver;
        auto *rules = driver.widget<QComboBox>("comboBox_rule");
        rules->setCurrentIndex(1);
        whenDialogOpens([](QDialog *) {});
        driver.click("pushButton_option");
        QCOMPARE(rules->currentIndex(), 0);
        QCOMPARE(settings.value("file/file").toString(), QStringLiteral("Empty input"));
        QCOMPARE(settings.value("file/page").toString(), QStringLiteral("0"));
    }

    void picking_data()
    {
        QTest::addColumn<QPoint>("place");
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QPoint>("anchor");
        const auto row = [](const char *name, QPoint place, const char *rule, QPoint anchor) {
            QTest::newRow(name) << place << rule << anchor;
        };
        row("first column", {100, 25}, "(100 20 50 10)=top", {150, 20});
        row("row below the later box", {110, 30}, "(100 20 50 10)=top", {150, 20});
        row("column beside the later box", {150, 25}, "(150 20 40 10)=right %1 %5", {190, 20});
        row("overlap", {125, 62}, "(120 60 50 20)=over", {170, 60});
        row("under the overlap", {105, 70}, "(100 50 50 30)=under", {150, 50});
        row("edge of the page", {790, 210}, "(700 200 94 20)=edge", {794, 200});
        row("corner of the page", {790, 1115}, "(700 1110 94 13)=corner", {794, 1110});
        row("no box", {400, 300}, "(10 1 5 5)=first", {0, 0});
    }
    void picking()
    {
        QFETCH(QPoint, place);
        QFETCH(QString, rule);
        QFETCH(QPoint, anchor);
        Editor editor(sample, 3);
        QVERIFY(
            editor.reload(line({10, 1, 5, 5}, "first") + line({150, 20, 40, 10}, "right %1 %5") +
                          line({100, 30, 50, 10}, "below") + line({100, 20, 50, 10}, "top") +
                          line({100, 50, 50, 30}, "under") + line({120, 60, 50, 20}, "over") +
                          line({700, 200, 94, 20}, "edge") + line({700, 1110, 94, 13}, "corner")));
        QCOMPARE(editor.boxes().size(), 8);
        editor.clickAt({110, 25});
        editor.clickAt({300, 300});
        QVERIFY2(!editor.confirmButton(), "a click beside the boxes withdraws the offer");
        QCOMPARE(editor.enabled(), "1101000");
        if (anchor.isNull()) {
            // The cursor leaves the box before the button is released.
            QCursor::setPos(editor.page()->mapToGlobal(place));
            QTest::mouseClick(editor.box("top"), Qt::LeftButton);
        } else {
            editor.clickAt(place);
        }
        const QStringList numbers = rule.section(')', 0, 0).mid(1).split(' ');
        QCOMPARE(QToolTip::text(), "Position\n X- " + numbers[0] + " Y- " + numbers[1]);
        const QPushButton *confirm = editor.confirmButton();
        QVERIFY(confirm);
        QCOMPARE(confirm->text(), QStringLiteral("Make it be the rule"));
        QCOMPARE(confirm->geometry(), QRect(anchor, QSize(141, 28)));
        QCOMPARE(confirm->visibleRegion().boundingRect(), confirm->rect());
        QVERIFY2(editor.page()->rect().contains(editor.image().rect()), "no more to scroll to");
        const QPoint scrolledTo = editor.page()->pos();
        QTest::mouseClick(editor.confirmButton(), Qt::LeftButton);
        QCOMPARE(editor.page()->pos(), scrolledTo);
        QCOMPARE(editor.enabled(), "1101111");
        QCOMPARE(editor.candidate(), rule);
    }

    /// By double clicks and by assistive technology, the rule that is shown is the one pressed, and
    /// the one that is saved.
    void pressedOnce()
    {
        const DesktopFont large(12);
        for (const char *name : {"mouse", "no mouse"}) {
            Editor editor(sample, 3);
            QVERIFY(editor.reload(line({160, 20, 100, 20}, "under the button") +
                                  line({100, 20, 50, 10}, "top") + line({10, 1, 5, 5}, "last")));
            QCursor::setPos(editor.page()->mapToGlobal(QPoint(170, 30)));
            for (const bool isPick : {true, false}) {
                QPushButton *button = isPick ? editor.box("top") : editor.confirmButton();
                QVERIFY(button && button->fontMetrics().boundingRect(button->text()).width() + 4 <
                                      button->width());
                const QSignalSpy clicks(button, &QPushButton::clicked);
                if (name == QLatin1String("mouse"))
                    editor.clickAt(button->geometry().topLeft() + QPoint(20, 5), true);
                else
                    QAccessible::queryAccessibleInterface(button)->actionInterface()->doAction(
                        QAccessibleActionInterface::pressAction());
                QTRY_COMPARE(clicks.size(), 1);
            }
            QTest::keyClicks(editor.widget<QLineEdit>("lineEdit_rulebefore"), "9");
            QCOMPARE(editor.candidate(), QStringLiteral("(100 20 50 10)=top"));
            editor.typeName(name);
            editor.click("save");
            QSettings settings = storedSettings();
            QCOMPARE(readRule(settings, name).text, QStringLiteral("top"));
        }
    }

    void saving()
    {
        Editor editor(sample, 3);
        QVERIFY(!editor.makeRuleAt(numberPlace).isEmpty());
        QSettings settings = storedSettings();
        saveRule(settings, "old", {1, 2, 3, 4, "x"});
        const QString taken = "Existed Rule Name: The rule name has been used, Please input "
                              "another one";
        QCOMPARE(editor.refusal(""), QStringLiteral("Empty Rule Name: Please input rule name"));
        QCOMPARE(editor.refusal("old"), taken);
        QVERIFY(editor.refusal("zeph").startsWith("Invalid Rule Name: "));
        {
            const FullDisk disk;
            const QString shown = editor.refusal("new one");
            QVERIFY(shown.startsWith("Rule Not Saved: ") &&
                    shown.contains(workPath(settingsFileName())));
        }
        QVERIFY(editor.isVisible());
        editor.typeName("new one");
        QTest::keyClick(editor.widget<QLineEdit>("lineEdit_rule"), Qt::Key_Return);
        QCOMPARE(editor.result(), int(QDialog::Accepted));
        QVERIFY(!editor.isVisible());

        // The next opening still has the old pick, and saves it under another name only.
        QVERIFY(editor.openOn(sample, 3));
        QCOMPARE(editor.enabled(), "1101111");
        QCOMPARE(editor.refusal("new one"), taken);
        editor.typeName("another");
        editor.click("save");
        QCOMPARE(ruleNames(settings), QStringList({"another", "new one", "old"}));
        QCOMPARE(currentRuleName(settings), QStringLiteral("another"));
        const Subtext rule = readRule(settings, "another");
        QVERIFY(QRect(rule.left, rule.top, rule.width, rule.height).contains(numberPlace));
        QCOMPARE(readRule(settings, "new one").text, QStringLiteral("INV-1"));
        QCOMPARE(readRule(settings, "old").text, QStringLiteral("x"));
    }

    void paging()
    {
        Editor editor(sample, 3);
        QVERIFY(editor.box("Page 1 of 2"));
        QCOMPARE(editor.enabled(), "1101000");
        editor.click("up");
        QVERIFY2(editor.boxes().isEmpty(), "boxes of the page before");
        QTRY_VERIFY(editor.box("Page 2 of 2"));
        QCOMPARE(editor.enabled(), "1111000");
        editor.pageBox()->selectAll();
        QTest::keyClicks(editor.pageBox(), "3");
        QVERIFY2(editor.box("Page 2 of 2"), "a page number that is still being typed counts");
        QTest::keyClick(editor.pageBox(), Qt::Key_Return);
        QTRY_VERIFY(editor.box("Birch"));
        QCOMPARE(editor.enabled(), "1110000");
        const qsizetype boxesOfPage = editor.boxes().size();
        // Presses while the converter runs, and before the layout has been read: only the page
        // asked for last counts.
        for (void (Rules::*press)() :
             {&Rules::setpageup, &Rules::setpagedown, &Rules::setpageup, &Rules::setZoomin})
            QMetaObject::invokeMethod(&editor, press, Qt::QueuedConnection);
        conversions.clear();
        const QtMessageHandler former = qInstallMessageHandler(recordConversion);
        editor.click("down");
        qInstallMessageHandler(former);
        QCOMPARE(conversions, QStringList({"-f 2 waiting", "-f 3 waiting"}));
        QVERIFY(!QGuiApplication::overrideCursor());
        QVERIFY(editor.waitForBoxes());
        QVERIFY(editor.box("Birch") && !editor.box("Ash"));
        QCOMPARE(editor.boxes().size(), boxesOfPage);

        QVERIFY(editor.openOn(sample, 1));
        QCOMPARE(editor.enabled(), "1100000");
        QCOMPARE(editor.widget<QLabel>("label_pagenumber")->text(), QStringLiteral("/1"));
    }

    void zooming()
    {
        Editor editor(sample, 3);
        const int height = editor.image().height();
        const auto turnWheel = [&editor](int delta, QPoint place) {
            QCursor::setPos(editor.mapToGlobal(place));
            QWheelEvent turn(place, editor.mapToGlobal(place), {}, {0, delta}, Qt::NoButton,
                             Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&editor, &turn);
            return editor.image().height();
        };
        const QPoint buttonRow(300, 30);
        QCOMPARE(turnWheel(120, buttonRow), int(height * 1.25F));
        QCOMPARE(turnWheel(-120, buttonRow), height);
        QCOMPARE(turnWheel(120, {300, 400}), height);
        QCOMPARE(turnWheel(0, buttonRow), int(height * 0.8F));
        // Kept across pages and openings.
        editor.click("up");
        QVERIFY(editor.openOn(sample, 3));
        QCOMPARE(editor.image().height(), int(height * 0.8F));
    }

    /// Shrunk to nothing, the page stays without its boxes. It is not enlarged beyond what memory
    /// is there for. There is a way back from both.
    void zoomBeyondWhatCanBeShown()
    {
        Editor editor(sample, 3);
        const int height = editor.image().height();
        const int boxWidth = editor.box("Ash")->width();
        for (int step = 0; step < 40; ++step)
            editor.click("zoomin");
        QVERIFY(!editor.image().isNull() && editor.staysWithoutBoxes("Enlarge"));
        for (int step = 0; step < 55; ++step)
            editor.click("zoomout");
        QVERIFY(editor.waitForBoxes());
        const double zoom = editor.image().height() * 1.0 / height;
        QVERIFY(zoom > 9 && zoom < 10);
        QVERIFY(std::abs(editor.box("Ash")->width() - boxWidth * zoom) < 2 + zoom);
        editor.click("zoomin");
        QVERIFY(editor.waitForBoxes());
        QVERIFY(std::abs(editor.image().height() - height * zoom * 0.8) < 2);

        float extreme = 1;
        for (const float factor : {0.8F, 1.25F, 0.8F}) {
            const float before = extreme;
            for (int step = 0; step < 1000; ++step)
                extreme = boundedZoom(extreme * factor);
            QVERIFY(std::isnormal(extreme) && (extreme < before) == (factor < 1));
        }
    }

    void nothingToShow()
    {
        Editor editor;
        QVERIFY(!editor.openOn("Empty input", 0));
        QCOMPARE(editor.enabled(), "0000000");
        QCOMPARE(editor.pageBox()->maximum(), 0);
        QVERIFY(editor.image().isNull() && editor.staysWithoutBoxes("no file in the list"));
        QVERIFY(!editor.openOn(workPath("broken.pdf"), 0));
        QVERIFY(editor.staysWithoutBoxes("broken.pdf has no page"));

        QVERIFY(editor.openOn(sample, 3) && editor.waitForBoxes());
        QVERIFY(!editor.widget<QLabel>("pageNote")->isVisible());
        QVERIFY(!editor.openOn(workPath("missing.pdf"), 7));
        QVERIFY(editor.staysWithoutBoxes("missing.pdf does not exist"));
        QTest::mouseClick(&editor, Qt::LeftButton, {}, QPoint(5, 5));
    }

    void conversionFails()
    {
        Editor editor(sample, 9);
        editor.pageBox()->setValue(4);
        QVERIFY2(editor.image().isNull(), "a page that is not there after all");
        editor.click("zoomout");
        QVERIFY(editor.staysWithoutBoxes("Page 4 cannot"));
        editor.click("down");
        QTRY_VERIFY(editor.box("Birch"));

        QVERIFY(editor.openOn(workPath("broken.pdf"), 9));
        QVERIFY(editor.image().isNull() && editor.staysWithoutBoxes("Page 1 cannot"));

        QVERIFY(editor.openOn(sample, 3) && editor.waitForBoxes());
        const QString tool = QCoreApplication::applicationDirPath() + "/quillrend";
        QVERIFY(QFile::rename(tool, tool + ".away"));
        editor.click("up");
        QVERIFY(QFile::rename(tool + ".away", tool));
        QVERIFY(editor.image().isNull() && editor.staysWithoutBoxes("Page 2 cannot"));
    }

    void keyboard()
    {
        Editor editor(sample, 3);
        QVERIFY(!editor.makeRuleAt(numberPlace).isEmpty());
        QStringList order;
        editor.widget<QWidget>("pushButton_zoomout")->setFocus();
        for (int k = 0; k < 7; ++k) {
            order.append(editor.focusWidget()->objectName());
            QTest::keyClick(editor.focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(order, QStringList({"pushButton_zoomout", "pushButton_zoomin", "pushButton_up",
                                     "spinBox_pagenumber", "pushButton_save", "lineEdit_rule",
                                     "lineEdit_rulebefore"}));
        editor.typeName("name");
        QTest::keyClick(editor.pageBox(), Qt::Key_Return);
        QTest::keyClick(editor.widget<QLineEdit>("lineEdit_rulebefore"), Qt::Key_Return);
        QVERIFY2(editor.isVisible(), "Return saves from the name field only");

        QTest::keyClick(editor.box("Ash"), Qt::Key_Space);
        QVERIFY(editor.confirmButton() && editor.focusWidget() == editor.confirmButton());
        QTest::keyClick(editor.confirmButton(), Qt::Key_Return);
        QVERIFY(editor.candidate().endsWith(")=Ash"));
        QCOMPARE(editor.focusWidget(), editor.widget<QLineEdit>("lineEdit_rule"));
    }

    void bounds()
    {
        Editor editor(sample, 3);
        QByteArray layout;
        for (int k = 0; k < 10050; ++k)
            layout += line({k % 700, k / 10, 5, 5}, QByteArray::number(k));
        QVERIFY(editor.reload(layout));
        QCOMPARE(editor.boxes().size(), 10000);
        QCOMPARE(editor.boxes().last()->accessibleName(), QStringLiteral("9999"));

        for (int step = 0; step < 5; ++step)
            QVERIFY(editor.reload(line({1, 1, 5, 5}, "x")));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(editor.findChildren<QNetworkReply *>().size() <= 1);
    }
};

SENDRIVO_TEST_MAIN(TestRuleEditor, QApplication)

#include "tst_ruleeditor.moc"
