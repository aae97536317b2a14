// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <variant>
#include <vector>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class Ui_OpDialog;

/// The check box of a page in the page list.
struct PageFlag
{
    QListWidget *pages;
    int savedRow;  ///< the row whose state is saved
    int loadedRow; ///< the row that a loaded value sets
};

/// The combo box that chooses between the standard preset and custom values.
struct PresetChoice
{
    QComboBox *box;
};

/// A line edit for a resolution: blanks do not count, and it is never loaded empty.
struct ResolutionField
{
    QLineEdit *field;
};

/// Steps of loading, in their order. The options of one step are loaded in table order.
enum class LoadStep {
    Preset,
    Pages,
    DownsampleTypes,
    CompressModes,
    Resolutions,
    Fonts,
    Passwords,
    Permissions,
    Information
};

/// One value in setting.ini and the widget that shows it. The kind of widget is the encoding:
/// combo boxes are stored as an index, check boxes and page flags as "Ok" or "No", line edits as
/// typed.
struct Option
{
    QString key;
    LoadStep step;
    QString absent;   ///< stands for an absent key, and for an index or resolution of no use
    QString standard; ///< what the standard preset sets
    std::variant<PresetChoice, PageFlag, QComboBox *, ResolutionField, QLineEdit *, QCheckBox *>
        widget;
};

/// A visitor for Option::widget made of one function per kind of widget.
template <class... Functions>
struct Overloaded : Functions...
{
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

/// All options of the form, in the order in which they are saved.
[[nodiscard]] std::vector<Option> optionTable(const Ui_OpDialog &form);

/// The text that stores the present state of the option's widget.
[[nodiscard]] QString storedText(const Option &option);

/// Shows the stored text `stored` in the option's widget.
void showStored(const Option &option, const QString &stored);
