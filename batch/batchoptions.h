// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/textquery.h"
#include "pdf/assembly/documentoptions.h"
#include "pdf/document/mappedfile.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <set>

/// What to do about files that have the name of a document already.
enum class ExistingFiles {
    Overwrite, ///< put the document in their place, as the window does
    Fail,      ///< leave the whole input alone
    Rename     ///< number the document
};

/// What to do about an input that is damaged.
enum class DamagedFiles {
    Fail, ///< write none of its documents
    Split ///< write what can be read of it
};

/// What one call asks for.
enum class Action { Split, ListRules, ShowFragments, SaveRule, Help, Version };

/// A call of the program, as far as the command line tells it.
struct BatchOptions
{
    Action action = Action::Split;

    QString settingsFile;
    QString ruleName;                        ///< empty with --position
    std::optional<QPair<int, int>> position; ///< page pixels
    int tolerancePx = 0;
    QString match;

    int methodIndex = 0;  ///< a SplitMethod
    QString nameTemplate; ///< empty: the window's names
    QString outputFolder;
    ExistingFiles existing = ExistingFiles::Overwrite;
    DamagedFiles damaged = DamagedFiles::Fail;
    bool isDryRun = false;
    bool isSynchronising = true;
    bool usesOutputOptions = false;

    QStringList inputs;
    QStringList undecodableInputs; ///< whose names are not UTF-8, as far as they can be shown
    QString filesFrom;
    int jobs = 0; ///< 0: as many as there are processors
    QString reportFile;
    bool isResuming = false;
    bool isJson = false;
    bool isQuiet = false;

    int page = 0;        ///< of --fragments, from 1
    QString newRuleName; ///< of --save-rule
};

/// What is the same for every input: options as they were looked up and checked.
struct SplitPlan
{
    TextQuery query;
    QString ruleName; ///< empty when the position was given
    int methodIndex = 0;
    QString nameTemplate;
    QString outputFolder; ///< absolute, without links
    ExistingFiles existing = ExistingFiles::Overwrite;
    DamagedFiles damaged = DamagedFiles::Fail;
    bool isDryRun = false;
    bool isSynchronising = true; ///< whether to wait until what is written is on the disk
    bool isResuming = false;
    std::optional<pdf::DocumentOptions> documentOptions;
    QString documentOptionsState; ///< differs when the file that they are from was changed
    /// Inputs, lists and settings: nothing is written in place of one of them.
    std::set<pdf::FileIdentity> filesRead;
};
