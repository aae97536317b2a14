// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "options/optiontable.h"

#include <QDialog>

#include <memory>
#include <vector>

class QSettings;

/// The options window: four pages of output settings, a preset selector, "Cancel" and "Apply".
///
/// It is loaded from setting.ini once, when it is made, and keeps what was edited between showings;
/// "Apply" alone saves. One instance is meant to live as long as the main window.
///
/// opdialog.cpp builds the window, opdialog_slots.cpp holds what it does.
class OpDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OpDialog(QWidget *parent = nullptr);
    ~OpDialog() override;

public slots:
    /// Saves all options, then the document information file. Problems are not reported.
    void setop();
    /// Does nothing; kept for those who call it.
    void InitialTablewidget();
    /// Loads all options. Pages are not enabled or disabled by this.
    void setallowshow();
    /// Selects "Custom" and enables exactly the pages whose list items are checked.
    void setstackenable();
    /// Does nothing; called when another page is shown.
    void changeStackedDisplay();
    /// Puts in the standard values when the preset selector stands on "Standard".
    void setGeneralSetting();
    /// Selects "Custom".
    void linkCustomSetting();
    /// Makes edits of the options select "Custom".
    void allCustomConnection();
    /// Undoes allCustomConnection().
    void allCustomDisconnection();
    /// Shows the resolution of colour images unless their downsampling is "Closed".
    void closeClrDSres();
    /// The same for grey images.
    void closeGryDSres();
    /// The same for monochrome images.
    void closeMnoDSres();
    /// Writes the document information file, see writeMarkFile().
    void writeAnnot();
    /// Shows what the passwords rule out: with any password PDF/A, with a user password the mark.
    void setwarning();

protected:
    /// Accepts the close and leaves everything else as it is.
    void closeEvent(QCloseEvent *event) override;

private:
    void addPages();
    void placeWidgets();
    void showAlertIcons();
    void fitFonts();
    void loadStep(LoadStep step, const QSettings &settings);

    std::unique_ptr<Ui_OpDialog> ui;
    std::vector<Option> options;
};
