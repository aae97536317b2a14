// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/outputoptions.h"

#include "options/optionvalues.h"

#include <QFile>
#include <QSettings>
#include <QStringDecoder>
#include <QVariant>

#include <algorithm>

namespace {

struct StandardValue
{
    const char *key;
    const char *value;
};

/// Image and font options in the state that the options window calls Standard.
constexpr StandardValue standardValues[] = {
    {"Image/Image", "Ok"},   {"Image/ColorType", "3"}, {"Image/ColorRes", "150"},
    {"Image/ColorEnc", "1"}, {"Image/GrayType", "3"},  {"Image/GrayRes", "150"},
    {"Image/GrayEnc", "1"},  {"Image/MonoType", "3"},  {"Image/MonoRes", "300"},
    {"Image/MonoEnc", "4"},  {"Fonts/Fonts", "Ok"},    {"Fonts/Embed", "Ok"},
    {"Fonts/Com", "Ok"},     {"Fonts/Sub", "Ok"},
};

struct InformationField
{
    const char *option;
    const char *pdfKey;
};

constexpr InformationField informationFields[] = {
    {"Annot/Tit", "/Title"},    {"Annot/Aut", "/Author"},  {"Annot/Sub", "/Subject"},
    {"Annot/Key", "/Keywords"}, {"Annot/Cre", "/Creator"}, {"Annot/Pro", "/Producer"},
};

/// Why the value is not the one text that a person meant by it, empty when it is. What the file
/// says without quotes is a list from a comma on, and something else from an "@" on; a list would
/// be read as an empty text.
QString textFault(const QVariant &value)
{
    if (value.typeId() != QMetaType::QString)
        return QStringLiteral("is not one text (one with a comma or an @ needs quotes)");
    const QString text = value.toString();
    const bool isOdd = std::any_of(text.begin(), text.end(),
                                   [](QChar c) { return c.category() == QChar::Other_Control; });
    return isOdd ? QStringLiteral("holds an escape such as \\b") : QString();
}

QString permissionFault(const QVariant &value)
{
    const bool isFlag = value == flagText(true) || value == flagText(false);
    return isFlag ? QString() : QStringLiteral("is neither Ok nor No");
}

/// Options that say how a document is protected and what it tells of itself.
struct CheckedOption
{
    const char *key;
    QString (*faultOf)(const QVariant &value);
};

constexpr CheckedOption checkedOptions[] = {
    {"Secur/UsrPwd", textFault},
    {"Secur/OwrPwd", textFault},
    {"Secur/AllowPri", permissionFault},
    {"Secur/AllowMod", permissionFault},
    {"Secur/AllowCop", permissionFault},
    {"Secur/AllowAdd", permissionFault},
    {"Annot/Tit", textFault},
    {"Annot/Aut", textFault},
    {"Annot/Sub", textFault},
    {"Annot/Key", textFault},
    {"Annot/Cre", textFault},
    {"Annot/Pro", textFault},
};

/// Why the option may not be used as it stands, empty when it may.
QString faultOf(const QSettings &settings, const QString &key)
{
    for (const CheckedOption &option : checkedOptions) {
        const QLatin1String name(option.key);
        if (key == name)
            return option.faultOf(settings.value(key));
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return QLatin1String("is spelt ") + name;
    }
    return {};
}

/// Whether the file is UTF-8 throughout: the settings library leaves out what is not.
bool isUtf8(const QString &path)
{
    QFile file(path);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text =
        file.open(QIODevice::ReadOnly) ? decoder.decode(file.readAll()) : QString();
    return file.error() == QFile::NoError && !decoder.hasError();
}

/// The first fault of the options and of the file that they stand in.
QString firstFault(const QSettings &settings)
{
    const QStringList keys = settings.allKeys();
    // Only now is the whole file parsed.
    if (settings.status() != QSettings::NoError)
        return QStringLiteral("cannot be read as settings");
    if (!isUtf8(settings.fileName()))
        return QStringLiteral("is not UTF-8 throughout");
    for (const QString &key : keys) {
        const QString fault = faultOf(settings, key);
        if (!fault.isEmpty())
            return key + QLatin1String(": ") + fault;
    }
    return {};
}

} // namespace

OutputOptions readOutputOptions(const QSettings &settings)
{
    const auto text = [&](const char *key) { return settings.value(key).toString(); };
    const auto flag = [&](const char *key, bool absent) { return flagValue(text(key), absent); };
    OutputOptions options;
    options.fault = firstFault(settings);
    for (const InformationField &field : informationFields) {
        const QString value = text(field.option);
        if (!value.isEmpty() && flag("Annot/Annot", true))
            options.information.insert(QLatin1String(field.pdfKey), value);
    }
    options.isPdfA = flag("Annot/PDFA", false);
    // The security page's own flag is not looked at: the window saves the state of another page
    // under its key, and a password that was set must not be left out for that.
    options.userPassword = text("Secur/UsrPwd");
    options.ownerPassword = text("Secur/OwrPwd");
    options.mayPrint = flag("Secur/AllowPri", true);
    options.mayModify = flag("Secur/AllowMod", true);
    options.mayCopy = flag("Secur/AllowCop", true);
    options.mayAnnotate = flag("Secur/AllowAdd", true);
    const bool isChanged = std::any_of(
        std::begin(standardValues), std::end(standardValues), [&](const StandardValue &standard) {
            return settings.value(standard.key, standard.value).toString() !=
                   QLatin1String(standard.value);
        });
    if (isChanged)
        options.remarks.append(QStringLiteral("image and font options are not applied"));
    const bool forbidsAny =
        !options.mayPrint || !options.mayModify || !options.mayCopy || !options.mayAnnotate;
    if (forbidsAny && options.userPassword.isEmpty() && options.ownerPassword.isEmpty())
        options.remarks.append(QStringLiteral("permissions are not applied without a password"));
    if (options.isPdfA)
        options.remarks.append(QStringLiteral("PDF/A is not made"));
    return options;
}
