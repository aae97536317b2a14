// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/opdialog.h"
#include "rules/settingsfile.h"
#include "tests/support/privatefolders.h"

#include <QCheckBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaProperty>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>
#include <QTest>

#include <functional>

namespace {

/// Stored texts with what the widget shows for them; the first pair also holds for saving.
using Cases = QList<std::pair<QString, QString>>;

/// What the widget of an option shows without a stored text and as "Standard".
struct Kind
{
    QString absent;
    QString standard;
    Cases cases;
};
const Cases flags = {{"No", "false"}, {"no", "true"}, {" No", "true"}, {"Ok", "true"}};
const Cases types = {{"1", "Subsample"}, {"7", "Bicubic"}, {"-1", "Bicubic"}, {"abc", "Closed"}};
const Cases modes = {{"2", "ZIP"}, {"3", "JPEG"}, {"-1", "JPEG"}, {"abc", "Auto"}};
const Cases monoModes = {{"3", "JBIG2"}, {"5", "CCITT Group 4"}, {"abc", "Auto"}};
const Cases presets = {{"1", "Custom"}, {"2", "Standard"}, {"0", "Standard"}};
const Kind flag = {"true", "true", flags};
const Kind permission = {"true", "false", flags};
const Kind pdfa = {"false", "false", {{"Ok", "true"}, {"ok", "false"}, {"No", "false"}}};
const Kind words = {"", "", {{" A, B; \"%1\" ä ", " A, B; \"%1\" ä "}, {"", ""}}};
const Kind type = {"Bicubic", "Bicubic", types};
const Kind mode = {"JPEG", "JPEG", modes};
const Kind monoMode = {"CCITT Group 4", "CCITT Group 4", monoModes};
const Kind resolution = {"150", "150", {{"72", "72"}, {" 2 00", "200"}, {"abc", "abc"}}};
const Kind monoResolution = {"300", "300", {{"72", "72"}, {"  ", "300"}}};
const Kind preset = {"Standard", "Standard", presets};

/// Widgets are named by object name, pages by "page 0" to "page 3".
struct Row
{
    const char *key;
    const char *widget;
    Kind kind;
    const char *savedFrom = widget;
};

const QList<Row> rows = {
    {"Image/Image", "page 0", flag},
    {"Image/ColorType", "comboBox_clr_down_type", type},
    {"Image/ColorRes", "lineEdit_clr_res", resolution},
    {"Image/ColorEnc", "comboBox_clr_compress", mode},
    {"Image/GrayType", "comboBox_gry_down_type", type},
    {"Image/GrayRes", "lineEdit__gry_res", resolution},
    {"Image/GrayEnc", "comboBox_gry_compress", mode},
    {"Image/MonoType", "comboBox__mno_down_type", type},
    {"Image/MonoRes", "lineEdit_mno_res", monoResolution},
    {"Image/MonoEnc", "comboBox_mno_compress", monoMode},
    {"Fonts/Fonts", "page 1", flag},
    {"Fonts/Embed", "checkBox_embedallfonts", flag},
    {"Fonts/Com", "checkBox_compressfonts", flag},
    {"Fonts/Sub", "checkBox_subset", flag},
    {"Secur/Secur", "page 2", flag, "page 3"},
    {"Secur/UsrPwd", "lineEdit_userpassword", words},
    {"Secur/OwrPwd", "lineEdit_ownerpassword", words},
    {"Secur/AllowPri", "checkBox_allow_print", permission},
    {"Secur/AllowMod", "checkBox_allow_modcontents", permission},
    {"Secur/AllowCop", "checkBox_allow_copy", permission},
    {"Secur/AllowAdd", "checkBox_allow_add", permission},
    {"Annot/Annot", "page 3", flag},
    {"Annot/PDFA", "checkBox_pdfa", pdfa},
    {"Annot/Aut", "lineEdit_author", words},
    {"Annot/Tit", "lineEdit_title", words},
    {"Annot/Sub", "lineEdit_subject", words},
    {"Annot/Key", "lineEdit_keywords", words},
    {"Annot/Cre", "lineEdit_creator", words},
    {"Annot/Pro", "lineEdit_producer", words},
    {"Set/Set", "comboBox_generalsettings", preset},
};

/// The dialog with its widgets by name.
class Dialog : public OpDialog
{
public:
    template <class Widget>
    Widget *get(const QString &name) const
    {
        auto *widget = findChild<Widget *>(name);
        if (!widget)
            qFatal("No widget %s", qPrintable(name));
        return widget;
    }
    QListWidget *list() const { return get<QListWidget>("listWidge_option"); }
    QListWidgetItem *item(const QString &page) const
    {
        return list()->item(page.section(' ', 1).toInt());
    }
    QWidget *pageWidget(int row) const
    {
        return get<QStackedWidget>("stackedWidget_option")->widget(row);
    }
    QString chosenPreset() const { return state("comboBox_generalsettings"); }

    /// What the user sees in a widget; "true" or "false" of what can be checked.
    QString state(const QString &name) const
    {
        if (name.startsWith("page"))
            return QVariant(item(name)->checkState() == Qt::Checked).toString();
        return userProperty(name).read(get<QWidget>(name)).toString();
    }
    void set(const QString &name, const QString &state) const
    {
        if (name.startsWith("page"))
            item(name)->setCheckState(state == "true" ? Qt::Checked : Qt::Unchecked);
        else
            userProperty(name).write(get<QWidget>(name), state);
    }
    /// Enters a text as a person does, who leaves the field afterwards.
    void enter(const QString &name, const QString &typed) const
    {
        set(name, typed);
        emit get<QLineEdit>(name)->editingFinished();
    }
    std::function<void()> onHide = [] {};

protected:
    void hideEvent(QHideEvent *) override { onHide(); }

private:
    QMetaProperty userProperty(const QString &name) const
    {
        return get<QWidget>(name)->metaObject()->userProperty();
    }
};

void store(const QString &key, const QString &value)
{
    QSettings(settingsFileName(), QSettings::IniFormat).setValue(key, value);
}

QString stored(const QString &key)
{
    return QSettings(settingsFileName(), QSettings::IniFormat).value(key).toString();
}

void addOptionRows()
{
    QTest::addColumn<Row>("row");
    for (const Row &row : rows)
        QTest::newRow(row.key) << row;
}

} // namespace

class OpDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QSettings(settingsFileName(), QSettings::IniFormat).clear(); }

    void loadsAndSaves_data() { addOptionRows(); }
    void loadsAndSaves()
    {
        QFETCH(const Row, row);
        QCOMPARE(Dialog().state(row.widget), row.kind.absent);
        for (const auto &[written, state] : row.kind.cases) {
            store(row.key, written);
            QCOMPARE(Dialog().state(row.widget), state);
            QCOMPARE(Dialog().chosenPreset(), row.key == QString("Set/Set") ? state : "Standard");
        }
        Dialog dialog;
        dialog.set(row.savedFrom, row.kind.cases.first().second);
        dialog.setop();
        QCOMPARE(stored(row.key), row.kind.cases.first().first);
    }

    void presetAndEdits_data() { addOptionRows(); }
    void presetAndEdits()
    {
        QFETCH(const Row, row);
        const QString &standard = row.kind.standard;
        QString edited = row.kind.cases.first().second;
        if (edited == standard) // a flag that is off
            edited = "true";
        // A page that was unchecked turns the selector back to "Custom" although all values are
        // set.
        const bool isPage = QString(row.widget).startsWith("page");
        Dialog dialog;
        dialog.set("comboBox_generalsettings", "Custom");
        dialog.set("comboBox_generalsettings", "Standard");
        for (int round = 0; round < 2; ++round) {
            dialog.set(row.widget, edited);
            QCOMPARE(dialog.chosenPreset(), "Custom");
            QCOMPARE(dialog.state(row.widget), edited);
            dialog.set("comboBox_generalsettings", "Standard");
            QCOMPARE(dialog.chosenPreset(), isPage ? "Custom" : "Standard");
            for (const Row &other : rows) {
                if (other.key != QString("Set/Set"))
                    QCOMPARE(dialog.state(other.widget), other.kind.standard);
            }
        }
    }

    void pagesFollowTheirItems()
    {
        store("Fonts/Fonts", "No");
        const Dialog dialog;
        QVERIFY(dialog.pageWidget(1)->isEnabled()); // loading checks items only
        dialog.set("page 3", "false");
        for (int page = 0; page < 4; ++page)
            QCOMPARE(dialog.pageWidget(page)->isEnabled(), page == 0 || page == 2);
        dialog.set("comboBox_generalsettings", "Standard");
        QVERIFY(dialog.pageWidget(1)->isEnabled() && dialog.pageWidget(3)->isEnabled());
        dialog.list()->setCurrentRow(2);
        QVERIFY(dialog.pageWidget(2)->isVisibleTo(&dialog));
    }

    void resolutionRows()
    {
        for (const char *key : {"Image/ColorType", "Image/GrayType", "Image/MonoType"})
            store(key, "0");
        Dialog dialog;
        dialog.show();
        const std::pair<QString, QStringList> kinds[] = {
            {"comboBox_clr_down_type", {"label_CLR_DSR", "label_PPI1", "lineEdit_clr_res"}},
            {"comboBox_gry_down_type", {"label_GRY_DSR", "label_PPI2", "lineEdit__gry_res"}},
            {"comboBox__mno_down_type", {"label_MNO_DSR", "label_PPI3", "lineEdit_mno_res"}}};
        const auto hidden = [&] {
            QStringList names;
            for (const auto &kind : kinds) {
                for (const QString &name : kind.second)
                    names +=
                        dialog.get<QWidget>(name)->isVisible() ? QStringList() : QStringList{name};
            }
            return names;
        };
        QCOMPARE(hidden(), QStringList()); // loading found the box on "Closed" already
        for (const auto &[box, row] : kinds) {
            dialog.set(row.last(), "99");
            dialog.set(box, "Average");
            dialog.set(box, "Closed");
            QCOMPARE(hidden(), row);
            dialog.set(box, "Subsample");
            QCOMPARE(hidden(), QStringList());
            QCOMPARE(dialog.state(row.last()), "99");
        }
    }

    void warnings_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("owner");
        for (const char *user : {"", "u"}) {
            for (const char *owner : {"", "o"})
                QTest::addRow("user \"%s\", owner \"%s\"", user, owner) << user << owner;
        }
    }
    void warnings()
    {
        QFETCH(const QString, user);
        QFETCH(const QString, owner);
        const bool any = !user.isEmpty() || !owner.isEmpty();
        const auto isShown = [&](const Dialog &dialog) {
            const auto *box = dialog.get<QCheckBox>("checkBox_pdfa");
            return dialog.get<QGroupBox>("groupBox_warning_mark")->isHidden() == user.isEmpty() &&
                   dialog.get<QGroupBox>("groupBox_warningPDFA")->isHidden() == !any &&
                   box->isEnabled() == !any && box->isChecked();
        };
        Dialog edited;
        edited.set("checkBox_pdfa", "true");
        for (const QString &password : {QString("passing"), user})
            edited.enter("lineEdit_userpassword", password);
        for (const QString &password : {QString("passing"), owner})
            edited.enter("lineEdit_ownerpassword", password);
        QVERIFY(isShown(edited));
        edited.setop();
        QVERIFY(isShown(Dialog()));
        edited.set("comboBox_generalsettings", "Standard");
        QVERIFY(edited.get<QCheckBox>("checkBox_pdfa")->isEnabled());
        QVERIFY(edited.get<QGroupBox>("groupBox_warningPDFA")->isHidden());
    }

    void applyHidesThenSaves()
    {
        QFile::remove("pdfinfo.txt");
        store("Rechnung ä, 1/text", "No. (1); 2"); // a rule
        Dialog dialog;
        dialog.set("lineEdit_title", "T");
        int hidden = 0;
        dialog.onHide = [&hidden] { hidden += stored("Annot/Tit").isEmpty() ? 1 : 0; };
        for (const char *button : {"pushButton_cancel", "pushButton_apply"}) {
            QVERIFY(!QFile::exists("pdfinfo.txt"));
            dialog.show();
            dialog.get<QPushButton>(button)->click();
        }
        QCOMPARE(hidden, 2); // each time before anything was saved
        QVERIFY(QFile::exists("pdfinfo.txt"));
        const QSettings settings(settingsFileName(), QSettings::IniFormat);
        QCOMPARE(settings.allKeys().size(), rows.size() + 1);
        QCOMPARE(stored("Rechnung ä, 1/text"), "No. (1); 2");
    }

    void passwordsAreForTheOwner_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("isThere");
        QTest::newRow("no password") << "lineEdit_title" << true;
        QTest::newRow("user password") << "lineEdit_userpassword" << true;
        QTest::newRow("owner password, new file") << "lineEdit_ownerpassword" << false;
    }
    void passwordsAreForTheOwner()
    {
        QFETCH(const QString, field);
        QFETCH(const bool, isThere);
        const auto forOwner = QFile::ReadOwner | QFile::WriteOwner;
        const auto forAll = forOwner | QFile::ReadGroup | QFile::ReadOther;
        QFile file(settingsFileName());
        store("Image/Image", "Ok");
        QVERIFY(isThere ? file.setPermissions(forAll) : file.remove());
        const Dialog dialog;
        dialog.set(field, "secret");
        dialog.get<QPushButton>("pushButton_apply")->click();
        store("currule/rule", "later");
        const auto named = ~(QFile::ReadUser | QFile::WriteUser);
        QCOMPARE(file.permissions() & named, field == "lineEdit_title" ? forAll : forOwner);
    }

    void markFile_data()
    {
        QTest::addColumn<QStringList>("typed");
        QTest::addColumn<QStringList>("written");
        const QStringList odd = {"Report (final)", "\\", ")", " ", "Äpfel", "日本"};
        QTest::newRow("nothing escaped") << odd << odd;
        QTest::newRow("placeholder in the title") << QStringList{"A%1", "B", "S", "K", "C", "P"}
                                                  << QStringList{"AB", "S", "K", "C", "P", "%6"};
        QTest::newRow("later placeholders in the title")
            << QStringList{"%3 %6", "A", "S", "K", "C", "P"}
            << QStringList{"S P", "A", "S", "K", "C", "P"};
    }
    void markFile()
    {
        QFETCH(const QStringList, typed);
        QFETCH(const QStringList, written);
        QFile file("pdfinfo.txt");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(1000, '#')); // an older, longer file
        file.close();
        const char *const fields[] = {"title",    "author",  "subject",
                                      "keywords", "creator", "producer"};
        const char *const before[] = {"[ /Title (",       ")\n /Author (",   ") \n /Subject (",
                                      ") \n /Keywords (", ") \n /Creator (", ") \n /Producer ("};
        const Dialog dialog;
        QString expected;
        for (int k = 0; k < 6; ++k) {
            dialog.set(QString("lineEdit_") + fields[k], typed[k]);
            expected += before[k] + written[k];
        }
        dialog.get<QPushButton>("pushButton_apply")->click();
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), expected + ") \n /DOCINFO pdfmark");
    }

    /// However large the font of the desktop is.
    void everythingFits()
    {
        const QFont before = QApplication::font();
        QApplication::setFont(QFont(before.family(), 24));
        Dialog dialog;
        QApplication::setFont(before);
        dialog.enter("lineEdit_userpassword", "u");
        dialog.show();
        QVERIFY(dialog.list()->sizeHintForColumn(0) <= dialog.list()->viewport()->width());
        for (int row = 0; row < 4; ++row) {
            dialog.list()->setCurrentRow(row);
            const QWidget *page = dialog.pageWidget(row);
            QSet<QWidget *> labelled;
            for (const auto *label : page->findChildren<QLabel *>())
                labelled << label->buddy();
            for (auto *widget : page->findChildren<QWidget *>()) {
                const QString name = widget->objectName();
                if (name.isEmpty() || name.startsWith("qt_") || !widget->isVisible())
                    continue; // parts of the widgets
                const bool isBox = name.startsWith("comboBox");
                if (isBox || name.startsWith("lineEdit"))
                    QVERIFY2(labelled.contains(widget), qPrintable(name));
                const QSize needed = isBox ? widget->sizeHint() : widget->minimumSizeHint();
                const QRect place(widget->mapTo(page, QPoint()), widget->size());
                QVERIFY2(place.size().expandedTo(needed) == place.size(), qPrintable(name));
                QVERIFY2(page->rect().contains(place), qPrintable(name));
            }
        }
        QCOMPARE(dialog.size(), QSize(558, 393));
        QCOMPARE(dialog.minimumSize(), dialog.maximumSize());
    }
};

SENDRIVO_TEST_MAIN(OpDialogTest, QApplication)
#include "tst_opdialog.moc"
