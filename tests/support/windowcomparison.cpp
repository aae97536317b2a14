// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/windowcomparison.h"

#include "tests/support/batchrunner.h"
#include "tests/support/pdfbuilder.h"
#include "tests/support/pdfreader.h"
#include "tests/support/windowdriver.h"

#include <QComboBox>
#include <QDir>
#include <QTemporaryDir>

namespace {

QList<QImage> pictures(const QString &file)
{
    QList<QImage> images;
    const int pages = pdfreader::pageCount(file);
    for (int page = 0; page < pages; ++page)
        images.append(pdfreader::renderPage(file, page));
    return images;
}

} // namespace

QString differenceFromWindow(const QStringList &inputs, const QString &rule, int method,
                             const QString &output)
{
    const QTemporaryDir fromWindow;
    WindowDriver driver;
    if (!driver.add(inputs))
        return "the window takes no files";
    driver.widget<QComboBox>("comboBox_rule")->setCurrentText(rule);
    driver.widget<QComboBox>("comboBox_method")->setCurrentIndex(method);
    driver.setOutputFolder(fromWindow.path());
    if (!driver.split())
        return "the window does not end";
    const ToolResult result = batch(
        QStringList{"--rule", rule, "--method", QString::number(method + 1), "--output", output} +
        inputs);
    if (result.exitCode != 0)
        return "exit code: " + result.errors;
    const QMap<QString, QByteArray> expected = filesIn(fromWindow.path());
    const QMap<QString, QByteArray> found = filesIn(output);
    if (found.keys() != expected.keys())
        return found.keys().join("; ") + " instead of " + expected.keys().join("; ");
    for (const QString &name : found.keys()) {
        const bool isEncrypted = found[name].contains("/Encrypt");
        if (isEncrypted
                ? pictures(QDir(output).filePath(name)) != pictures(fromWindow.filePath(name))
                : found[name] != expected[name])
            return name;
    }
    return {};
}
