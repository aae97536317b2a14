// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/outputoptions.h"

#include "options/optionvalues.h"

#include <QSettings>

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

} // namespace

OutputOptions readOutputOptions(const QSettings &settings)
{
    const auto text = [&](const char *key) { return settings.value(key).toString(); };
    const auto flag = [&](const char *key, bool absent) { return flagValue(text(key), absent); };
    OutputOptions options;
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
