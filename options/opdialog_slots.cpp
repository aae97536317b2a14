// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/opdialog.h"

#include "options/markfile.h"
#include "rules/settingsfile.h"
#include "ui_opdialog.h"

#include <QFile>
#include <QSettings>

namespace {

constexpr int customPreset = 1;
constexpr int closedType = 0;

/// All steps of loading but the preset itself, in their order; a preset sets the options of these.
constexpr LoadStep valueSteps[] = {
    LoadStep::Pages, LoadStep::DownsampleTypes, LoadStep::CompressModes, LoadStep::Resolutions,
    LoadStep::Fonts, LoadStep::Passwords,       LoadStep::Permissions,   LoadStep::Information};

/// Calls action(widget, signal) for every option whose edit makes the settings custom ones. The
/// preset selector and the page list have handlers of their own.
template <class Action>
void forEachEdit(const std::vector<Option> &options, const Action &action)
{
    const auto visitor =
        Overloaded{[](const PresetChoice &) {},
                   [](const PageFlag &) {},
                   [&](QComboBox *box) { action(box, &QComboBox::currentIndexChanged); },
                   [&](const ResolutionField &resolution) {
                       action(resolution.field, &QLineEdit::textChanged);
                   },
                   [&](QLineEdit *field) { action(field, &QLineEdit::textChanged); },
                   [&](QCheckBox *box) { action(box, &QCheckBox::toggled); }};
    for (const Option &option : options)
        std::visit(visitor, option.widget);
}

/// Shows the widgets of a resolution for every downsample type but "Closed".
void showResolution(const QComboBox *downsampleType, std::initializer_list<QWidget *> row)
{
    for (QWidget *widget : row)
        widget->setVisible(downsampleType->currentIndex() != closedType);
}

/// Lets only the owner read the file, from before a password gets into it. Later writes, which
/// replace the file, give the new one the permissions of the old one.
void makePrivate(const QString &path)
{
    QFile file(path);
    const bool isThere = file.exists() || file.open(QIODevice::NewOnly | QIODevice::WriteOnly);
    if (!isThere || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
        qWarning("%s: other users may read its passwords: %s", qUtf8Printable(path),
                 qUtf8Printable(file.errorString()));
}

} // namespace

void OpDialog::setop()
{
    if (!ui->lineEdit_userpassword->text().isEmpty() ||
        !ui->lineEdit_ownerpassword->text().isEmpty())
        makePrivate(settingsFileName());
    {
        QSettings settings(settingsFileName(), QSettings::IniFormat);
        for (const Option &option : options)
            settings.setValue(option.key, storedText(option));
    }
    writeAnnot();
}

void OpDialog::loadStep(LoadStep step, const QSettings &settings)
{
    for (const Option &option : options) {
        if (option.step == step)
            showStored(option, settings.value(option.key, option.absent).toString());
    }
}

void OpDialog::setallowshow()
{
    const QSettings settings(settingsFileName(), QSettings::IniFormat);
    // The preset goes first, with its handler connected; the values that follow must not turn it
    // into "Custom".
    loadStep(LoadStep::Preset, settings);
    disconnect(ui->listWidge_option, &QListWidget::itemChanged, this, &OpDialog::setstackenable);
    allCustomDisconnection();
    for (const LoadStep step : valueSteps) {
        loadStep(step, settings);
        if (step == LoadStep::Passwords)
            setwarning();
    }
    connect(ui->listWidge_option, &QListWidget::itemChanged, this, &OpDialog::setstackenable);
    allCustomConnection();
}

void OpDialog::setGeneralSetting()
{
    allCustomDisconnection();
    if (ui->comboBox_generalsettings->currentIndex() != customPreset) {
        // The page list's handler stays connected: checking a page that was unchecked selects
        // "Custom" again, although all standard values are put in.
        for (const LoadStep step : valueSteps) {
            for (const Option &option : options) {
                if (option.step == step)
                    showStored(option, option.standard);
            }
        }
        setwarning();
    }
    allCustomConnection();
}

void OpDialog::allCustomConnection()
{
    forEachEdit(options, [this](auto *widget, auto signal) {
        connect(widget, signal, this, &OpDialog::linkCustomSetting, Qt::UniqueConnection);
    });
}

void OpDialog::allCustomDisconnection()
{
    forEachEdit(options, [this](auto *widget, auto signal) {
        disconnect(widget, signal, this, &OpDialog::linkCustomSetting);
    });
}

void OpDialog::linkCustomSetting()
{
    ui->comboBox_generalsettings->setCurrentIndex(customPreset);
}

void OpDialog::setstackenable()
{
    linkCustomSetting();
    for (int page = 0; page < ui->stackedWidget_option->count(); ++page) {
        const bool checked = ui->listWidge_option->item(page)->checkState() == Qt::Checked;
        ui->stackedWidget_option->widget(page)->setEnabled(checked);
    }
}

void OpDialog::closeClrDSres()
{
    showResolution(ui->comboBox_clr_down_type,
                   {ui->label_CLR_DSR, ui->label_PPI1, ui->lineEdit_clr_res});
}

void OpDialog::closeGryDSres()
{
    showResolution(ui->comboBox_gry_down_type,
                   {ui->label_GRY_DSR, ui->label_PPI2, ui->lineEdit__gry_res});
}

void OpDialog::closeMnoDSres()
{
    showResolution(ui->comboBox__mno_down_type,
                   {ui->label_MNO_DSR, ui->label_PPI3, ui->lineEdit_mno_res});
}

void OpDialog::setwarning()
{
    const bool userPassword = !ui->lineEdit_userpassword->text().isEmpty();
    const bool anyPassword = userPassword || !ui->lineEdit_ownerpassword->text().isEmpty();
    ui->groupBox_warning_mark->setVisible(userPassword);
    ui->groupBox_warningPDFA->setVisible(anyPassword);
    ui->checkBox_pdfa->setEnabled(!anyPassword);
}

void OpDialog::writeAnnot()
{
    writeMarkFile({ui->lineEdit_title->text(), ui->lineEdit_author->text(),
                   ui->lineEdit_subject->text(), ui->lineEdit_keywords->text(),
                   ui->lineEdit_creator->text(), ui->lineEdit_producer->text()});
}

void OpDialog::InitialTablewidget()
{
}

void OpDialog::changeStackedDisplay()
{
}
