// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "split/subtext.h"

#include <QDialog>
#include <QList>
#include <QPointer>
#include <QRect>
#include <QStringList>

#include <memory>

class QLabel;
class QNetworkAccessManager;
class QNetworkReply;
class QPushButton;
class QScrollArea;
class Ui_Rules;

/// The rule editor: shows a page of a sample file with a box over every text fragment, and saves a
/// picked fragment as a rule.
///
/// One page view goes this way: setIniImage() or setPageChange() -> quillrend, which leaves page
/// image and page layout in the temporary folder -> setframeImage() -> read of the layout ->
/// gethtmlinfo() -> getTextPosition() -> drawlabels(). A zoom step begins at setframeImage().
/// One rule: textmessagebox() -> addtorules() -> setsave().
///
/// Names and effects of the zoom and paging controls are crossed, and users of this class rely on
/// it: zoomout enlarges, zoomin shrinks, up goes to the next page, down to the previous one.
///
/// | subject                              | file                    |
/// |--------------------------------------|-------------------------|
/// | construction, paging, zoom, saving   | rules/rules.cpp         |
/// | conversion, page image, page layout  | rules/rules_preview.cpp |
/// | boxes, picking, confirming           | rules/rules_pick.cpp    |
class Rules : public QDialog
{
    Q_OBJECT

public:
    explicit Rules(QWidget *parent = nullptr);
    ~Rules() override;
    Q_DISABLE_COPY_MOVE(Rules)

    /// Shows the page image that quillrend has left, at the current zoom, and requests the page's
    /// layout. Returns false, and says in the page view why, when there is no image that could be
    /// shown at this zoom. An earlier image stays when nothing would be left of this one.
    bool setframeImage();

public slots:
    /// Takes the page layout that has been read and draws the boxes.
    void gethtmlinfo();
    /// Does nothing; connections to it are accepted.
    void getdiv();
    /// Takes the fragments of the page with the layout `sxml`; lines beyond the 10,000th are left
    /// out.
    void getTextPosition(QString sxml);
    /// The fragment that a layout line describes; see parseFragment().
    Subtext getSubtextInfo(QString sRow);
    /// The value of the style key `sPos` of a layout line; see styleValue().
    int getpos(QString sPos, QString sRow);
    /// The text of a layout line; see fragmentText().
    QString gettext(QString sRow);
    /// Lays a box over every fragment of the page.
    void drawlabels();
    /// Moving the mouse has no function in this dialog.
    void mouseMoveEvent(QMouseEvent *event) override;
    /// A press beside the boxes withdraws the offer to make the picked fragment the rule.
    void mousePressEvent(QMouseEvent *event) override;
    /// Makes the page larger, unless that would take more memory than is sensible.
    void setZoomout();
    /// Makes the page smaller.
    void setZoomin();
    /// Picks a fragment and offers to make it the rule: after a click with the mouse the one under
    /// the cursor, otherwise the one whose box was pressed.
    void textmessagebox();
    /// Does nothing; connections to it are accepted.
    void getSpecifytext();
    /// Makes the picked fragment the candidate that setsave() stores.
    void addtorules();
    /// Has quillrend convert a page (1-based) of `pdffile`, or all pages when `page` is 0, and
    /// waits for it up to 30 seconds. Its output names derive from `pngfile`. A failure shows only
    /// in the log and by the missing outputs.
    void generatePNGfile(QString pdffile, int page, QString pngfile);
    /// Prepares the dialog from the hand-over keys "file/file" and "file/page" and shows the first
    /// page. Returns false when there is no page to show.
    bool setIniImage();
    /// Shows the page that the spin box names, or came to name while that page was converted.
    void setPageChange();
    /// Stores the candidate under the name that was typed and closes the dialog as accepted.
    /// Returns false, after telling the user, when the name is empty, taken or not allowed, or when
    /// the settings file cannot be written.
    bool setsave();
    /// Goes to the next page.
    void setpageup();
    /// Goes to the previous page.
    void setpagedown();
    /// Updates which of the paging buttons can be used.
    void setupdownVis();

protected:
    /// Zooms while the mouse cursor is above the page view; over the page the wheel scrolls.
    void wheelEvent(QWheelEvent *event) override;
    /// Lets the keyboard pick and confirm: there the focused button counts, not the mouse cursor.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectControls();
    void setUpPageView();
    void fitOnScreen();
    void setSaveControlsEnabled(bool enabled);
    [[nodiscard]] int totalPages() const;
    void showAtZoom(float newZoom);

    void convertPage(int page);
    void clearPageView();
    void clearPageImage();
    void showNote(const QString &text);
    void dropLayoutReply();
    void makeRuleButton();

    void pickFragment(qsizetype index, QPoint tipPosition);
    void showRuleButton(QPoint position);
    void hideRuleButton();
    void pickPressedBox(const QObject *box);

    std::unique_ptr<Ui_Rules> ui;
    QScrollArea *scrollArea = nullptr;
    QLabel *pageLabel = nullptr;      ///< shows the page; parent of boxes and ruleButton
    QLabel *pageNote = nullptr;       ///< over the page: why it is not the one asked for
    QPointer<QPushButton> ruleButton; ///< gone between pages and when there is no page
    QNetworkAccessManager *fileReader = nullptr;
    QPointer<QNetworkReply> layoutReply;

    QString sampleFile;
    bool hasConverted = false;   ///< the outputs in the temporary folder are from this dialog
    bool isChangingPage = false; ///< a page change goes on to the page asked for last
    float zoom = 1.0F;           ///< kept across pages and openings

    // The page shown; entry i of each list belongs to line i of the layout.
    QStringList textLines;
    QList<Subtext> subtexts;
    QList<QPushButton *> labelButtons;

    Subtext currentRule; ///< the fragment picked last, in page pixels
};
