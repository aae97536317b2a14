// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/process.h"
#include "split/layoutscan.h"
#include "split/toolcommands.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStandardPaths>
#include <QUrl>

void Process::requestLayout(int page)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    const QUrl address = QUrl::fromLocalFile(layoutFile(folder, page));
    layoutReply = fileReader->get(QNetworkRequest(address));
    connect(layoutReply, &QNetworkReply::finished, this, &Process::gethtm);
}

void Process::gethtm()
{
    if (!layoutReply)
        return;
    const QString layout = QString::fromUtf8(layoutReply->readAll());
    layoutReply->deleteLater();
    layoutReply.clear();
    getTextPosition(layout);
}

void Process::getTextPosition(const QString &sxml)
{
    layoutLines = layoutFileLines(sxml);
    pageTexts.append(textAtPosition(layoutLines, ruleXpos, ruleYpos));
    getAlltheText();
}

Subtext Process::getSubtextInfo(const QString &sRow)
{
    return parseFragment(sRow);
}

int Process::getpos(const QString &sPos, const QString &sRow)
{
    return styleValue(sPos, sRow);
}

QString Process::gettext(const QString &sRow)
{
    return fragmentText(sRow);
}
