// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/opdialog.h"
#include "rules/settingsfile.h"
#include "tests/support/privatefolders.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>
#include <QTest>

#include <functional>

namespace {

/// Stored texts with what the widget shows for them; the first pair also holds for saving.
using Cases = QList<std::pair<QString, QString>>;
const Cases types = {{"1", "Subsample"}, {"7", "Bicubic"}, {"-1", "Bicubic"}, {"abc", "Closed"}};
const Cases modes = {{"2", "ZIP"}, {"3", "JPEG"}, {"-1", "JPEG"}, {"abc", "Auto"}};
const Cases monoModes = {{"3", "JBIG2"}, {"5", "CCITT Group 4"}, {"abc", "Auto"}};
const Cases resolutions = {{"72", "72"}, {" 2 00", "200"}, {"abc", "abc"}};
const Cases texts = {{" A, B; \"%1\" ä ", " A, B; \"%1\" ä "}, {"", ""}};
const Cases flags = {{"No", "off"}, {"no", "on"}, {" No", "on"}, {"Ok", "on"}};
const Cases offByDefault = {{"Ok", "on"}, {"ok", "off"}, {"No", "off"}};

/// Widgets are named by object name, pages by "page 0" to "page 3".
struct Row
{
    const char *key;
    const char *loaded;
    const char *saved;
    const char *absent;
    const char *standard;
    Cases cases;
};
#define SAME(name) name, name

const QList<Row> rows = {
    {"Image/Image", SAME("page 0"), "on", "on", flags},
    {"Image/ColorType", SAME("comboBox_clr_down_type"), "Bicubic", "Bicubic", types},
    {"Image/ColorRes", SAME("lineEdit_clr_res"), "150", "150", resolutions},
    {"Image/ColorEnc", SAME("comboBox_clr_compress"), "JPEG", "JPEG", modes},
    {"Image/GrayType", SAME("comboBox_gry_down_type"), "Bicubic", "Bicubic", types},
    {"Image/GrayRes", SAME("lineEdit__gry_res"), "150", "150", resolutions},
    {"Image/GrayEnc", SAME("comboBox_gry_compress"), "JPEG", "JPEG", modes},
    {"Image/MonoType", SAME("comboBox__mno_down_type"), "Bicubic", "Bicubic", types},
    {"Image/MonoRes", SAME("lineEdit_mno_res"), "300", "300", {{"72", "72"}, {"  ", "300"}}},
    {"Image/MonoEnc", SAME("comboBox_mno_compress"), "CCITT Group 4", "CCITT Group 4", monoModes},
    {"Fonts/Fonts", SAME("page 1"), "on", "on", flags},
    {"Fonts/Embed", SAME("checkBox_embedallfonts"), "on", "on", flags},
    {"Fonts/Com", SAME("checkBox_compressfonts"), "on", "on", flags},
    {"Fonts/Sub", SAME("checkBox_subset"), "on", "on", flags},
    {"Secur/Secur", "page 2", "page 3", "on", "on", flags},
    {"Secur/UsrPwd", SAME("lineEdit_userpassword"), "", "", texts},
    {"Secur/OwrPwd", SAME("lineEdit_ownerpassword"), "", "", texts},
    {"Secur/AllowPri", SAME("checkBox_allow_print"), "on", "off", flags},
    {"Secur/AllowMod", SAME("checkBox_allow_modcontents"), "on", "off", flags},
    {"Secur/AllowCop", SAME("checkBox_allow_copy"), "on", "off", flags},
    {"Secur/AllowAdd", SAME("checkBox_allow_add"), "on", "off", flags},
    {"Annot/Annot", SAME("page 3"), "on", "on", flags},
    {"Annot/PDFA", SAME("checkBox_pdfa"), "off", "off", offByDefault},
    {"Annot/Aut", SAME("lineEdit_author"), "", "", texts},
    {"Annot/Tit", SAME("lineEdit_title"), "", "", texts},
    {"Annot/Sub", SAME("lineEdit_subject"), "", "", texts},
    {"Annot/Key", SAME("lineEdit_keywords"), "", "", texts},
    {"Annot/Cre", SAME("lineEdit_creator"), "", "", texts},
    {"Annot/Pro", SAME("lineEdit_producer"), "", "", texts},
    {"Set/Set",
     SAME("comboBox_generalsettings"),
     "Standard",
     "Standard",
     {{"1", "Custom"}, {"2", "Standard"}, {"0", "Standard"}}},
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
    QListWidgetItem *page(int row) const { return get<QListWidget>("listWidge_option")->item(row); }
    QWidget *pageWidget(int row) const
    {
        return get<QStackedWidget>("stackedWidget_option")->widget(row);
    }
    std::function<void()> onHide = [] {};
    QString preset() const { return state("comboBox_generalsettings"); }

    QString state(const QString &name) const
    {
        const auto flag = [](bool on) { return on ? QString("on") : QString("off"); };
        if (name.startsWith("page"))
            return flag(page(name.right(1).toInt())->checkState() == Qt::Checked);
        if (name.startsWith("checkBox"))
            return flag(get<QCheckBox>(name)->isChecked());
        return name.startsWith("comboBox") ? get<QComboBox>(name)->currentText()
                                           : get<QLineEdit>(name)->text();
    }
    void set(const QString &name, const QString &state)
    {
        if (name.startsWith("page"))
            page(name.right(1).toInt())->setCheckState(state == "on" ? Qt::Checked : Qt::Unchecked);
        else if (name.startsWith("checkBox"))
            get<QCheckBox>(name)->setChecked(state == "on");
        else if (name.startsWith("comboBox"))
            get<QComboBox>(name)->setCurrentText(state);
        else
            get<QLineEdit>(name)->setText(state);
    }

protected:
    void hideEvent(QHideEvent *) override { onHide(); }
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
    void loadsAndSaves();
    void presetAndEdits_data() { addOptionRows(); }
    void presetAndEdits();
    void pagesFollowTheirItems();
    void resolutionRows();
    void warnings_data();
    void warnings();
    void applyHidesThenSaves();
    void everythingFits_data();
    void everythingFits();
};

void OpDialogTest::loadsAndSaves()
{
    QFETCH(const Row, row);
    QCOMPARE(Dialog().state(row.loaded), row.absent);
    for (const auto &[text, state] : row.cases) {
        store(row.key, text);
        QCOMPARE(Dialog().state(row.loaded), state);
        QCOMPARE(Dialog().preset(), row.key == QString("Set/Set") ? state : "Standard");
    }
    Dialog dialog;
    dialog.set(row.saved, row.cases.first().second);
    dialog.setop();
    QCOMPARE(stored(row.key), row.cases.first().first);
}

void OpDialogTest::presetAndEdits()
{
    QFETCH(const Row, row);
    const QString standard = row.standard;
    const QString edited = standard == "on"    ? QString("off")
                           : standard == "off" ? QString("on")
                                               : row.cases.first().second;
    // A page that was unchecked turns the selector back to "Custom" although all values are set.
    const bool isPage = QString(row.loaded).startsWith("page");
    Dialog dialog;
    dialog.set("comboBox_generalsettings", "Custom");
    dialog.set("comboBox_generalsettings", "Standard");
    for (int round = 0; round < 2; ++round) {
        dialog.set(row.loaded, edited);
        QCOMPARE(dialog.preset(), "Custom");
        QCOMPARE(dialog.state(row.loaded), edited);
        dialog.set("comboBox_generalsettings", "Standard");
        QCOMPARE(dialog.preset(), isPage ? "Custom" : "Standard");
        for (const Row &other : rows) {
            if (other.key != QString("Set/Set"))
                QCOMPARE(dialog.state(other.loaded), other.standard);
        }
    }
}

void OpDialogTest::pagesFollowTheirItems()
{
    store("Fonts/Fonts", "No");
    Dialog dialog;
    QVERIFY(dialog.pageWidget(1)->isEnabled()); // loading checks items only
    dialog.set("page 3", "off");
    for (int page = 0; page < 4; ++page)
        QCOMPARE(dialog.pageWidget(page)->isEnabled(), page == 0 || page == 2);
    dialog.set("comboBox_generalsettings", "Standard");
    QVERIFY(dialog.pageWidget(1)->isEnabled() && dialog.pageWidget(3)->isEnabled());
    dialog.get<QListWidget>("listWidge_option")->setCurrentRow(2);
    QVERIFY(dialog.pageWidget(2)->isVisibleTo(&dialog));
}

void OpDialogTest::resolutionRows()
{
    for (const char *key : {"Image/ColorType", "Image/GrayType", "Image/MonoType"})
        store(key, "0");
    Dialog dialog;
    dialog.show();
    const auto areVisible = [&dialog](const QStringList &row) {
        return std::all_of(row.begin(), row.end(), [&dialog](const QString &name) {
            return dialog.get<QWidget>(name)->isVisible();
        });
    };
    const std::pair<QString, QStringList> kinds[] = {
        {"comboBox_clr_down_type", {"label_CLR_DSR", "label_PPI1", "lineEdit_clr_res"}},
        {"comboBox_gry_down_type", {"label_GRY_DSR", "label_PPI2", "lineEdit__gry_res"}},
        {"comboBox__mno_down_type", {"label_MNO_DSR", "label_PPI3", "lineEdit_mno_res"}}};
    for (const auto &[type, row] : kinds) {
        QVERIFY(areVisible(row)); // loading found the box on "Closed" already
        dialog.set(row.last(), "99");
        dialog.set(type, "Average");
        dialog.set(type, "Closed");
        for (const auto &[otherType, other] : kinds) {
            for (const QString &name : other)
                QCOMPARE(areVisible({name}), otherType != type);
        }
        dialog.set(type, "Subsample");
        QVERIFY(areVisible(row));
        QCOMPARE(dialog.state(row.last()), "99");
    }
}

void OpDialogTest::warnings_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("owner");
    const auto row = [](const char *name, const char *user, const char *owner) {
        QTest::newRow(name) << user << owner;
    };
    row("no password", "", "");
    row("user", "u", "");
    row("owner", "", "o");
    row("both", "u", "o");
}

void OpDialogTest::warnings()
{
    QFETCH(const QString, user);
    QFETCH(const QString, owner);
    const bool any = !user.isEmpty() || !owner.isEmpty();
    const auto isShown = [&](const Dialog &dialog) {
        const auto *pdfa = dialog.get<QCheckBox>("checkBox_pdfa");
        return dialog.get<QGroupBox>("groupBox_warning_mark")->isHidden() == user.isEmpty() &&
               dialog.get<QGroupBox>("groupBox_warningPDFA")->isHidden() == !any &&
               pdfa->isEnabled() == !any && pdfa->isChecked();
    };
    Dialog edited;
    edited.set("checkBox_pdfa", "on");
    const std::pair<QString, QString> fields[] = {{"lineEdit_userpassword", user},
                                                  {"lineEdit_ownerpassword", owner}};
    for (const auto &[name, password] : fields) {
        edited.set(name, "passing");
        emit edited.get<QLineEdit>(name)->editingFinished();
        edited.set(name, password);
        emit edited.get<QLineEdit>(name)->editingFinished();
    }
    QVERIFY(isShown(edited));
    edited.setop();
    QVERIFY(isShown(Dialog()));
    edited.set("comboBox_generalsettings", "Standard");
    QVERIFY(edited.get<QCheckBox>("checkBox_pdfa")->isEnabled());
    QVERIFY(edited.get<QGroupBox>("groupBox_warningPDFA")->isHidden());
}

void OpDialogTest::applyHidesThenSaves()
{
    QFile::remove("pdfinfo.txt");
    store("Rechnung ä, 1/text", "No. (1); 2"); // a rule
    Dialog dialog;
    for (const char *field : {"title", "author", "subject", "keywords", "creator", "producer"})
        dialog.set(QString("lineEdit_") + field, field);
    int hidden = 0;
    dialog.onHide = [&hidden] { hidden += stored("Annot/Tit").isEmpty() ? 1 : 0; };
    for (const char *button : {"pushButton_cancel", "pushButton_apply"}) {
        QVERIFY(!QFile::exists("pdfinfo.txt"));
        dialog.show();
        dialog.get<QPushButton>(button)->click();
    }
    QCOMPARE(hidden, 2); // each time before anything was saved
    const QSettings settings(settingsFileName(), QSettings::IniFormat);
    QCOMPARE(settings.allKeys().size(), rows.size() + 1);
    QCOMPARE(stored("Rechnung ä, 1/text"), "No. (1); 2");
    QFile file("pdfinfo.txt");
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "[ /Title (title)\n /Author (author) \n /Subject (subject) \n"
                             " /Keywords (keywords) \n /Creator (creator) \n"
                             " /Producer (producer) \n /DOCINFO pdfmark");
}

void OpDialogTest::everythingFits_data()
{
    QTest::addColumn<int>("pointSize");
    for (const int size : {8, 10, 12, 24})
        QTest::addRow("%d pt", size) << size;
}

void OpDialogTest::everythingFits()
{
    QFETCH(const int, pointSize);
    const QFont before = QApplication::font();
    QApplication::setFont(QFont(before.family(), pointSize));
    Dialog dialog;
    dialog.set("lineEdit_userpassword", "u");
    dialog.setwarning();
    dialog.show();
    for (int page = 0; page < 4; ++page) {
        dialog.get<QListWidget>("listWidge_option")->setCurrentRow(page);
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const auto *list = dialog.get<QListWidget>("listWidge_option");
        QVERIFY(list->sizeHintForColumn(0) <= list->viewport()->width());
        QSet<QWidget *> labelled;
        for (const auto *label : dialog.pageWidget(page)->findChildren<QLabel *>())
            labelled << label->buddy();
        for (auto *widget : dialog.pageWidget(page)->findChildren<QWidget *>()) {
            const QString name = widget->objectName();
            if (name.isEmpty() || name.startsWith("qt_") || !widget->isVisible())
                continue; // parts of the widgets
            if (name.startsWith("comboBox") || name.startsWith("lineEdit"))
                QVERIFY2(labelled.contains(widget), qPrintable(name));
            const QSize needed =
                name.startsWith("comboBox") ? widget->sizeHint() : widget->minimumSizeHint();
            const QRect place(widget->mapTo(dialog.pageWidget(page), QPoint()), widget->size());
            QVERIFY2(widget->size().expandedTo(needed) == widget->size(), qPrintable(name));
            QVERIFY2(dialog.pageWidget(page)->rect().contains(place), qPrintable(name));
        }
    }
    QCOMPARE(dialog.size(), QSize(558, 393));
    QCOMPARE(dialog.minimumSize(), dialog.maximumSize());
    QApplication::setFont(before);
}

SENDRIVO_TEST_MAIN(OpDialogTest, QApplication)
#include "tst_opdialog.moc"
