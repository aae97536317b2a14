// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/commandline.h"

#include "batch/filename.h"
#include "pdf/error.h"
#include "rules/settingsfile.h"

#include <functional>
#include <limits>

namespace {

[[noreturn]] void refuse(const QString &cause)
{
    throw pdf::Error(pdf::ExitCode::Usage,
                     cause.toStdString() + " (sendrivo-batch --help tells the usage)");
}

[[noreturn]] void refuseUndecodable(const QString &argument)
{
    refuse(QStringLiteral("\"%1\" is not valid UTF-8").arg(argument));
}

int number(const QString &text, int least, const QString &option)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || value < least)
        refuse(QStringLiteral("%1: \"%2\" is not a whole number of at least %3")
                   .arg(option, text, QString::number(least)));
    return value;
}

QPair<int, int> position(const QString &text, const QString &option)
{
    if (text.count(QLatin1Char(',')) != 1)
        refuse(QStringLiteral("%1: \"%2\" is not X,Y").arg(option, text));
    return {number(text.section(QLatin1Char(','), 0, 0), 1, option),
            number(text.section(QLatin1Char(','), 1, 1), 1, option)};
}

ExistingFiles existingFiles(const QString &text)
{
    if (text == QLatin1String("overwrite"))
        return ExistingFiles::Overwrite;
    if (text == QLatin1String("fail"))
        return ExistingFiles::Fail;
    if (text == QLatin1String("rename"))
        return ExistingFiles::Rename;
    refuse(QStringLiteral("--existing: \"%1\" is none of fail, overwrite, rename").arg(text));
}

DamagedFiles damagedFiles(const QString &text)
{
    if (text == QLatin1String("fail"))
        return DamagedFiles::Fail;
    if (text == QLatin1String("split"))
        return DamagedFiles::Split;
    refuse(QStringLiteral("--damaged: \"%1\" is none of fail, split").arg(text));
}

int methodIndex(const QString &text)
{
    const int method = number(text, 1, QStringLiteral("--method"));
    constexpr int methods = 3;
    if (method > methods)
        refuse(QStringLiteral("--method: there is no method %1").arg(method));
    return method - 1;
}

/// An option and what it does to the options when it is met.
struct Handler
{
    OptionDescription description;
    std::function<void(BatchOptions &options, const QStringList &values)> apply;
};

/// An option that takes a text as it is.
Handler textOption(const char *name, const char *value, const char *help,
                   QString BatchOptions::*target)
{
    return {{QLatin1String(name), {QLatin1String(value)}, QLatin1String(help)},
            [target](BatchOptions &options, const QStringList &values) {
                options.*target = values[0];
            }};
}

Handler flag(const char *name, const char *help, bool BatchOptions::*target)
{
    return {{QLatin1String(name), {}, QLatin1String(help)},
            [target](BatchOptions &options, const QStringList &) { options.*target = true; }};
}

Handler action(const char *name, const char *help, Action value)
{
    return {{QLatin1String(name), {}, QLatin1String(help)},
            [value](BatchOptions &options, const QStringList &) { options.action = value; }};
}

Handler general(const char *name, const QStringList &values, const char *help,
                const std::function<void(BatchOptions &, const QStringList &)> &apply)
{
    return {{QLatin1String(name), values, QLatin1String(help)}, apply};
}

QList<Handler> textHandlers()
{
    using O = BatchOptions;
    using V = const QStringList &;
    return {
        textOption("--rule", "NAME", "split by the stored rule NAME", &O::ruleName),
        general("--position", {"X,Y"}, "split by the text at X,Y (pixels at 96 dpi) instead",
                [](O &o, V v) { o.position = position(v[0], "--position"); }),
        textOption("--settings", "FILE", "take the rules from FILE (setting.ini)",
                   &O::settingsFile),
        general("--tolerance", {"PX"}, "take the nearest text up to PX pixels away (0)",
                [](O &o, V v) { o.tolerancePx = number(v[0], 0, "--tolerance"); }),
        textOption("--match", "REGEX", "let only texts that match count; its first group is used",
                   &O::match),
        general("--method", {"1|2|3"}, "1 text changes, 2 text is there, 3 as 1 and grouped (1)",
                [](O &o, V v) { o.methodIndex = methodIndex(v[0]); }),
    };
}

QList<Handler> outputHandlers()
{
    using O = BatchOptions;
    using V = const QStringList &;
    return {
        textOption("--output", "DIR", "write into a subfolder of DIR for each file",
                   &O::outputFolder),
        textOption("--name", "TEMPLATE", "name documents by {n} {text} {base} {range} and more",
                   &O::nameTemplate),
        general("--existing", {"fail|overwrite|rename"},
                "what to do about files that are there already (overwrite)",
                [](O &o, V v) { o.existing = existingFiles(v[0]); }),
        general("--damaged", {"fail|split"}, "what to do about files that are damaged (fail)",
                [](O &o, V v) { o.damaged = damagedFiles(v[0]); }),
        flag("--output-options", "apply document information and passwords of the settings",
             &O::usesOutputOptions),
        general("--no-sync", {}, "do not wait until documents are on the disk",
                [](O &o, V) { o.isSynchronising = false; }),
        flag("--dry-run", "print what would be written and write nothing", &O::isDryRun),
    };
}

QList<Handler> runHandlers()
{
    using O = BatchOptions;
    using V = const QStringList &;
    return {
        textOption("--files-from", "LIST", "read file names from LIST, one a line or NUL-separated",
                   &O::filesFrom),
        general("--jobs", {"N"}, "use N processors (all)",
                [](O &o, V v) { o.jobs = number(v[0], 1, "--jobs"); }),
        textOption("--report", "FILE", "write a line of JSON for each input to FILE",
                   &O::reportFile),
        flag("--resume", "skip inputs that the report shows as done", &O::isResuming),
        flag("--json", "print JSON where a table is printed", &O::isJson),
        flag("--quiet", "print no progress and no results, only complaints", &O::isQuiet),
        action("--list-rules", "print the stored rules", Action::ListRules),
        general("--fragments", {"PAGE"}, "print the texts of a page of FILE with their positions",
                [](O &o, V v) {
                    o.page = number(v[0], 1, "--fragments");
                    if (o.action == Action::Split)
                        o.action = Action::ShowFragments;
                }),
        general("--save-rule", {"NAME", "X,Y"},
                "store a rule; with --fragments, of the text at X,Y",
                [](O &o, V v) {
                    o.newRuleName = v[0];
                    o.position = position(v[1], "--save-rule");
                    o.action = Action::SaveRule;
                }),
        action("--help", "print this text", Action::Help),
        action("--version", "print the version", Action::Version),
    };
}

const QList<Handler> &handlers()
{
    static const QList<Handler> all = textHandlers() + outputHandlers() + runHandlers();
    return all;
}

/// Applies the option at `arguments[i]`; returns the index behind its values.
qsizetype applyOption(BatchOptions &options, const QStringList &arguments, qsizetype i)
{
    const QString &argument = arguments[i];
    const qsizetype equals = argument.indexOf(QLatin1Char('='));
    const QString name = argument.left(equals);
    for (const Handler &handler : handlers()) {
        if (handler.description.name != name)
            continue;
        const qsizetype wanted = handler.description.values.size();
        if (equals >= 0) {
            if (wanted != 1)
                refuse(name + QStringLiteral(" takes no value behind \"=\""));
            handler.apply(options, {argument.mid(equals + 1)});
            return i + 1;
        }
        if (i + wanted >= arguments.size())
            refuse(QStringLiteral("%1 needs %2")
                       .arg(name, handler.description.values.join(QLatin1Char(' '))));
        handler.apply(options, arguments.mid(i + 1, wanted));
        return i + 1 + wanted;
    }
    refuse(QStringLiteral("\"%1\" is not an option").arg(argument));
}

void checkSplit(const BatchOptions &options)
{
    if (options.ruleName.isEmpty() == !options.position.has_value())
        refuse(QStringLiteral("one of --rule and --position is needed"));
    if (options.outputFolder.isEmpty())
        refuse(QStringLiteral("--output is needed"));
    if (options.inputs.isEmpty() && options.undecodableInputs.isEmpty() &&
        options.filesFrom.isEmpty())
        refuse(QStringLiteral("no files are given"));
    if (options.isResuming && options.reportFile.isEmpty())
        refuse(QStringLiteral("--resume needs --report"));
}

void check(const BatchOptions &options)
{
    if (options.action == Action::Split)
        checkSplit(options);
    else if (!options.undecodableInputs.isEmpty())
        refuseUndecodable(options.undecodableInputs.first());
    const bool readsPage = options.page > 0 && (options.action == Action::ShowFragments ||
                                                options.action == Action::SaveRule);
    if (readsPage && options.inputs.size() != 1)
        refuse(QStringLiteral("--fragments takes one file"));
    const bool takesNoFile = options.action == Action::SaveRule && options.page == 0;
    if (takesNoFile && !options.inputs.isEmpty())
        refuse(QStringLiteral("--save-rule takes a file only with --fragments"));
}

} // namespace

const QList<OptionDescription> &optionDescriptions()
{
    static const QList<OptionDescription> all = [] {
        QList<OptionDescription> descriptions;
        for (const Handler &handler : handlers())
            descriptions.append(handler.description);
        return descriptions;
    }();
    return all;
}

BatchOptions parseCommandLine(const QByteArrayList &bytes)
{
    BatchOptions options;
    QStringList arguments;
    QList<bool> areText;
    for (const QByteArray &argument : bytes) {
        const FileName name(argument);
        arguments.append(name.text);
        areText.append(name.isText);
    }
    options.settingsFile = settingsFileName();
    bool areOptionsOver = false;
    for (qsizetype i = 0; i < arguments.size();) {
        const QString &argument = arguments[i];
        if (!areOptionsOver && argument == QLatin1String("--")) {
            areOptionsOver = true;
            ++i;
        } else if (areOptionsOver || argument == QLatin1String("-") ||
                   !argument.startsWith(QLatin1Char('-'))) {
            (areText[i] ? options.inputs : options.undecodableInputs).append(argument);
            ++i;
        } else {
            for (const qsizetype end = applyOption(options, arguments, i); i < end; ++i) {
                if (!areText[i])
                    refuseUndecodable(arguments[i]);
            }
        }
    }
    check(options);
    return options;
}

QString helpText()
{
    QString text =
        QStringLiteral("sendrivo-batch: splits PDF files by the text at one position of each page\n"
                       "\n"
                       "  sendrivo-batch --rule NAME --output DIR [OPTION...] FILE...\n"
                       "  sendrivo-batch --position X,Y --output DIR [OPTION...] FILE...\n"
                       "  sendrivo-batch --list-rules [--settings FILE]\n"
                       "  sendrivo-batch --fragments PAGE [--json] [--save-rule NAME X,Y] FILE\n"
                       "\n"
                       "FILE \"-\" reads the list of files from standard input.\n"
                       "\n");
    for (const OptionDescription &option : optionDescriptions()) {
        const QString synopsis = option.name + QLatin1Char(' ') + option.values.join(u' ');
        constexpr int column = 22;
        text += QLatin1String("  ") + synopsis.trimmed().leftJustified(column);
        if (synopsis.trimmed().size() > column)
            text += QLatin1Char('\n') + QString(column + 2, u' ');
        text += QLatin1Char(' ') + option.help + QLatin1Char('\n');
    }
    return text +
           QStringLiteral(
               "\n"
               "Exit codes:\n"
               "  0  done; warnings alone do not count\n"
               "  2  command line not understood, or a rule that does not exist\n"
               "  3  no input could be read\n"
               "  4  some inputs are damaged or failed, or pages of them; the others are whole\n"
               "  5  output cannot be written\n"
               "  6  every input needs a password, or forbids taking pages out\n");
}
