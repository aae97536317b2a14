// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "about/aboutdialog.h"
#include "about/addresses.h"
#include "mainwindow/process.h"
#include "resources/lightground.h"
#include "tests/support/privatefolders.h"

#include <QApplication>
#include <QDesktopServices>
#include <QHeaderView>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QTest>
#include <QUrl>

class AboutDialogTest : public QObject
{
    Q_OBJECT

public slots:
    void opened(const QUrl &address) { addresses << address; }

private slots:
    void showsProductAndLinks();
    void images();
    void readableOnDarkDesktop();

private:
    QList<QUrl> addresses;
};

void AboutDialogTest::showsProductAndLinks()
{
    QTest::ignoreMessage(QtWarningMsg, // and fail without it
                         QRegularExpression("No such slot AboutDialog::openmailpage.QString"));
    AboutDialog dialog;
    for (const char *scheme : {"https", "mailto"})
        QDesktopServices::setUrlHandler(scheme, this, "opened");
    auto *home = dialog.findChild<QLabel *>("label_homepage");
    auto *mail = dialog.findChild<QLabel *>("label_mail");
    emit home->linkActivated(homePageAddress());
    emit mail->linkActivated("mailto:" + supportAddress());
    QCOMPARE(addresses, QList<QUrl>{homePageAddress()}); // the mail link opens by itself only
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    for (QLabel *label : {home, mail})
        QTest::mouseClick(label, Qt::LeftButton, {}, QPoint(20, label->height() / 2));
    for (const char *scheme : {"https", "mailto"})
        QDesktopServices::unsetUrlHandler(scheme);
    const QUrl homePage(homePageAddress());
    QCOMPARE(addresses, QList<QUrl>({homePage, homePage, QUrl("mailto:" + supportAddress())}));
    QCOMPARE(dialog.findChild<QLabel *>("label_4")->text(), "Sendrivo 2.0");
    QCOMPARE(dialog.minimumSize(), QSize(320, 137));
    QCOMPARE(dialog.maximumSize(), QSize(320, 137));
    for (const auto *label : dialog.findChildren<QLabel *>())
        QVERIFY2(label->width() >= label->sizeHint().width(), qPrintable(label->objectName()));
}

void AboutDialogTest::images()
{
    const auto sizes = [](const QString &name) {
        QImageReader reader(":/iconoption/icons/" + name);
        reader.setDecideFormatFromContent(false); // the name must be true
        QList<QSize> found;
        do {
            found << reader.read().size();
        } while (reader.imageCount() > 1 && reader.jumpToNextImage());
        return found;
    };
    for (const char *name : {"content32", "pdfcompress32", "add", "del", "clear", "go_up",
                             "go_down", "setting", "segmentation", "about", "up", "downa"}) {
        QCOMPARE(sizes(QString("%1.png").arg(name)), QList<QSize>{QSize(32, 32)});
        QCOMPARE(sizes(QString("%1@2x.png").arg(name)), QList<QSize>{QSize(64, 64)});
    }
    for (const char *name : {"alert", "zoom_in", "zoom_out", "folder_green_open"}) {
        for (const int side : {28, 32, 56, 64})
            QVERIFY2(sizes(QString("%1.ico").arg(name)).contains(QSize(side, side)), name);
    }
    QCOMPARE(sizes("graybackgr.png"), QList<QSize>{QSize(558, 393)});
    QCOMPARE(sizes("stock-ved.jpg"), QList<QSize>{QSize(840, 490)});
}

void AboutDialogTest::readableOnDarkDesktop()
{
    QApplication::setPalette(QPalette(QColor(50, 50, 50), QColor(43, 43, 43)));
    QWidget window;
    window.resize(200, 160);
    auto *label = new QLabel("Wording", &window);
    auto *styled = new QLabel("Wording", &window);
    styled->setStyleSheet("QLabel { background-color : #E1E6E2;  }");
    auto *field = new QLineEdit("Wording", &window);
    auto *frame = new QFrame(&window);
    frame->setStyleSheet("background-color : #E1E6E2;  ");
    (new QPushButton("Wording", frame))->setFlat(true);
    int top = 0;
    for (QWidget *widget : std::initializer_list<QWidget *>{label, styled, field, frame}) {
        widget->setGeometry(0, top, 200, 40);
        top += 40;
    }
    setPictureGround(&window, ":/iconoption/icons/stock-ved.jpg");
    const QImage picture = window.grab().toImage();
    Process mainWindow;
    mainWindow.show();
    const auto *table = mainWindow.findChild<QTableWidget *>("inputfiletableWidget");
    const QColor header = table->verticalHeader()->palette().color(QPalette::Window);
    QApplication::setPalette(QPalette());
    QVERIFY(header.lightness() > 200); // it has a style sheet of its own
    for (int band = 0; band < top; band += 40) {
        // Text is the dark minority on a light ground.
        int dark = 0;
        int light = 0;
        for (int pixel = 0; pixel < 200 * 40; ++pixel) {
            const int grey = qGray(picture.pixel(pixel % 200, band + pixel / 200));
            dark += grey < 80 ? 1 : 0;
            light += grey > 200 ? 1 : 0;
        }
        QVERIFY2(dark > 50 && light > 6000, qPrintable(QString("widget at %1").arg(band)));
    }
}

SENDRIVO_TEST_MAIN(AboutDialogTest, QApplication)
#include "tst_aboutdialog.moc"
