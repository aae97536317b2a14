// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/optiontable.h"

#include "options/optionvalues.h"
#include "ui_opdialog.h"

std::vector<Option> optionTable(const Ui_OpDialog &form)
{
    using Step = LoadStep;
    QListWidget *pages = form.listWidge_option;
    const QString none;
    const auto text = [](const char *literal) { return QString::fromLatin1(literal); };
    const QString ok = text("Ok");
    const QString no = text("No");

    // "Secur/Secur" is saved from the annotation page but loaded into the security page, and
    // "Annot/PDFA" is the one flag that is off when absent: setting files of existing users are
    // read and written in this way, so both stay.
    // clang-format off
    return {
        // key                    step                   absent       standard     widget
        {text("Set/Set"),         Step::Preset,          text("0"),   text("0"),   PresetChoice{form.comboBox_generalsettings}},
        {text("Image/Image"),     Step::Pages,           ok,          ok,          PageFlag{pages, 0, 0}},
        {text("Image/ColorType"), Step::DownsampleTypes, text("3"),   text("3"),   form.comboBox_clr_down_type},
        {text("Image/ColorRes"),  Step::Resolutions,     text("150"), text("150"), ResolutionField{form.lineEdit_clr_res}},
        {text("Image/ColorEnc"),  Step::CompressModes,   text("1"),   text("1"),   form.comboBox_clr_compress},
        {text("Image/GrayType"),  Step::DownsampleTypes, text("3"),   text("3"),   form.comboBox_gry_down_type},
        {text("Image/GrayRes"),   Step::Resolutions,     text("150"), text("150"), ResolutionField{form.lineEdit__gry_res}},
        {text("Image/GrayEnc"),   Step::CompressModes,   text("1"),   text("1"),   form.comboBox_gry_compress},
        {text("Image/MonoType"),  Step::DownsampleTypes, text("3"),   text("3"),   form.comboBox__mno_down_type},
        {text("Image/MonoRes"),   Step::Resolutions,     text("300"), text("300"), ResolutionField{form.lineEdit_mno_res}},
        {text("Image/MonoEnc"),   Step::CompressModes,   text("4"),   text("4"),   form.comboBox_mno_compress},
        {text("Fonts/Fonts"),     Step::Pages,           ok,          ok,          PageFlag{pages, 1, 1}},
        {text("Fonts/Embed"),     Step::Fonts,           ok,          ok,          form.checkBox_embedallfonts},
        {text("Fonts/Com"),       Step::Fonts,           ok,          ok,          form.checkBox_compressfonts},
        {text("Fonts/Sub"),       Step::Fonts,           ok,          ok,          form.checkBox_subset},
        {text("Secur/Secur"),     Step::Pages,           ok,          ok,          PageFlag{pages, 3, 2}},
        {text("Secur/UsrPwd"),    Step::Passwords,       none,        none,        form.lineEdit_userpassword},
        {text("Secur/OwrPwd"),    Step::Passwords,       none,        none,        form.lineEdit_ownerpassword},
        {text("Secur/AllowPri"),  Step::Permissions,     ok,          no,          form.checkBox_allow_print},
        {text("Secur/AllowMod"),  Step::Permissions,     ok,          no,          form.checkBox_allow_modcontents},
        {text("Secur/AllowCop"),  Step::Permissions,     ok,          no,          form.checkBox_allow_copy},
        {text("Secur/AllowAdd"),  Step::Permissions,     ok,          no,          form.checkBox_allow_add},
        {text("Annot/Annot"),     Step::Pages,           ok,          ok,          PageFlag{pages, 3, 3}},
        {text("Annot/PDFA"),      Step::Permissions,     no,          no,          form.checkBox_pdfa},
        {text("Annot/Aut"),       Step::Information,     none,        none,        form.lineEdit_author},
        {text("Annot/Tit"),       Step::Information,     none,        none,        form.lineEdit_title},
        {text("Annot/Sub"),       Step::Information,     none,        none,        form.lineEdit_subject},
        {text("Annot/Key"),       Step::Information,     none,        none,        form.lineEdit_keywords},
        {text("Annot/Cre"),       Step::Information,     none,        none,        form.lineEdit_creator},
        {text("Annot/Pro"),       Step::Information,     none,        none,        form.lineEdit_producer},
    };
    // clang-format on
}

QString storedText(const Option &option)
{
    return std::visit(
        Overloaded{
            [](const PresetChoice &preset) { return presetText(preset.box->currentIndex()); },
            [](const PageFlag &page) {
                return flagText(page.pages->item(page.savedRow)->checkState() == Qt::Checked);
            },
            [](const QComboBox *box) { return QString::number(box->currentIndex()); },
            [](const ResolutionField &resolution) { return resolution.field->text(); },
            [](const QLineEdit *field) { return field->text(); },
            [](const QCheckBox *box) { return flagText(box->isChecked()); },
        },
        option.widget);
}

void showStored(const Option &option, const QString &stored)
{
    const auto flag = [&] { return flagValue(stored, option.absent == flagText(true)); };
    std::visit(
        Overloaded{
            [&](const PresetChoice &preset) { preset.box->setCurrentIndex(presetValue(stored)); },
            [&](const PageFlag &page) {
                page.pages->item(page.loadedRow)
                    ->setCheckState(flag() ? Qt::Checked : Qt::Unchecked);
            },
            [&](QComboBox *box) {
                box->setCurrentIndex(indexValue(stored, box->count() - 1, option.absent.toInt()));
            },
            [&](const ResolutionField &resolution) {
                resolution.field->setText(resolutionValue(stored, option.absent));
            },
            [&](QLineEdit *field) { field->setText(stored); },
            [&](QCheckBox *box) { box->setChecked(flag()); },
        },
        option.widget);
}
