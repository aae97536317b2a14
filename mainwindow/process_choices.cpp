// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"
#include "rules/rules.h"
#include "rules/rulestore.h"
#include "rules/settingsfile.h"
#include "ui_process.h"

#include <QFileDialog>
#include <QSettings>

void Process::fillRuleList()
{
    QSettings settings(settingsFileName(), QSettings::IniFormat);
    ui->comboBox_rule->clear();
    ui->comboBox_rule->addItems(ruleNames(settings));
}

void Process::setoutputfile()
{
    const QString key = QStringLiteral("dir/output");
    QSettings settings(settingsFileName(), QSettings::IniFormat);
    const QString folder = QFileDialog::getExistingDirectory(
        this, tr("Save"), settings.value(key, QStringLiteral(".")).toString(),
        QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    ui->outputfolderEdit->setText(folder);
    settings.setValue(key, folder);
}

void Process::enteroption()
{
    QSettings settings(settingsFileName(), QSettings::IniFormat);
    const bool isListEmpty = ui->inputfiletableWidget->rowCount() == 0;
    const QString pages = cellText(0, 1);
    settings.setValue(QStringLiteral("file/file"),
                      isListEmpty ? QStringLiteral("Empty input") : cellText(0, 0));
    settings.setValue(QStringLiteral("file/page"), pages.isEmpty() ? QStringLiteral("0") : pages);
    ruleEditor->setIniImage();
    if (ruleEditor->exec() == QDialog::Accepted) {
        const QString rule = currentRuleName(settings);
        if (rule.isEmpty())
            return;
        ui->comboBox_rule->addItem(rule);
        ui->comboBox_rule->setCurrentIndex(ui->comboBox_rule->count() - 1);
    } else {
        ui->comboBox_rule->setCurrentIndex(0);
    }
}
