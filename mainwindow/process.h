// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "about/aboutdialog.h"
#include "split/fileowners.h"
#include "split/filetrouble.h"
#include "split/pageinfofile.h"
#include "split/subtext.h"

#include <QPoint>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <memory>

class OpDialog;
class ProgressPane;
class QNetworkAccessManager;
class QNetworkReply;
class QTableWidgetItem;
class QTimer;
class Rules;
class SortOnClick;
class ToolProcesses;
class Ui_process;

/// The main window: the list of input files, the choice of rule, method and output folder, and the
/// two chains of steps behind it. Each step starts a tool or a read and returns to the event loop;
/// what it started calls the next step when it ends.
///
/// - Page counts, after files were added: getpdfpage() -> stavekit -> setpdfpage() -> getpdfpage().
/// - The split job, after a press of Split, for each file: convertbegin() -> splitPage() ->
///   clearLayouts() -> quillrend -> setlink() -> for each page getAlltheText() -> read -> gethtm()
///   -> getTextPosition() -> for each document splitpdffile() -> stavekit; then convertbegin()
///   again.
///
/// Where the slots live:
///
/// | subject                                     | file                              |
/// |---------------------------------------------|-----------------------------------|
/// | construction, about box, busy controls      | mainwindow/process.cpp            |
/// | adding, removing, moving and opening files  | mainwindow/process_inputlist.cpp  |
/// | output folder, rule list, rule editor       | mainwindow/process_choices.cpp    |
/// | page counts                                 | split/process_pagecount.cpp       |
/// | the split job                               | split/process_job.cpp             |
/// | page texts                                  | split/process_page.cpp            |
/// | output documents                            | split/process_output.cpp          |
class Process : public QWidget
{
    Q_OBJECT

public:
    explicit Process(QWidget *parent = nullptr);
    /// Ends the tools that still run. Documents are whole or not there.
    ~Process() override;
    Q_DISABLE_COPY_MOVE(Process)

    /// Called when the list of files becomes empty; the window shows no page preview.
    void setdefaultpreview();

public slots:
    /// Starts a batch; between two files, writes the verdict of the one and begins the other.
    void convertbegin();
    /// Opens the rule editor on the first file and makes a newly saved rule the chosen one.
    void enteroption();
    /// Asks for files and adds them to the list.
    void setopenfile();
    /// Removes the selected rows.
    void setremove();
    /// Opens the current row's file in the desktop's PDF viewer.
    void setopenselected();
    /// Removes all rows.
    void setremoveall();
    /// Asks for the output folder. Cancelling clears it.
    void setoutputfile();
    /// Sets what the about button and the title bar show.
    void setabout();
    /// Shows the about box.
    void setabout1();
    void dragEnterEvent(QDragEnterEvent *event) override;
    /// Adds the dropped PDF files to the list. A dropped folder ends the drop.
    void dropEvent(QDropEvent *event) override;
    /// No key has a function in this window.
    void keyReleaseEvent(QKeyEvent *event) override;
    /// Called 300 ms after the selection changed, and repeatedly; the window shows no page preview.
    void dopreview();
    /// Restarts the preview timer.
    void setpreview();
    /// Asks for the page count of the next pending file.
    void getpdfpage();
    /// Reads the chosen rule and starts the page layout conversion of the current file. The list is
    /// always empty.
    QStringList splitPage();
    /// Requests the layout of the next page; after the last page decides the documents.
    void getAlltheText();
    /// Takes the page layout that has been read.
    void gethtm();
    /// Records the text at the rule's position of the page with the layout `sxml`.
    void getTextPosition(const QString &sxml);
    /// The fragment that a layout line describes; see parseFragment().
    Subtext getSubtextInfo(const QString &sRow);
    /// The value of the style key `sPos` of a layout line; see styleValue().
    int getpos(const QString &sPos, const QString &sRow);
    /// The text of a layout line; see fragmentText().
    QString gettext(const QString &sRow);
    /// Starts writing the current file's next document; after the last one goes on to the next
    /// file.
    void splitpdffile();
    /// Makes the folder for the current file's documents and begins with its pages.
    void setlink();
    /// Moves the selected row up.
    void setrowup();
    /// Moves the selected row down.
    void setrowdown();
    /// Takes the page count that stavekit has reported.
    void setpdfpage();

private:
    void connectControls();
    void setUpTable();
    void setUpBackground();
    void fitTexts();
    void updateControls();
    [[nodiscard]] QString cellText(int row, int column) const;
    void connectPreview();
    void disconnectPreview();
    void clearPendingFiles();
    void addRow(int row, const QString &path);
    void beginPageCounts();
    void returnFocus();
    void removeRows(const QList<int> &descendingRows);
    void swapRows(int row, int other);
    void listChanged();

    void takePageCount(int row, const QString &info);
    void stopPageCounts();
    [[nodiscard]] bool isPageCountPending(int row) const;
    void goOnWithCountedFile();

    void fillRuleList();

    void beginBatch();
    void endBatch();
    void endFile();
    void writeVerdict(int row);
    void collectLayouts();
    void clearLayouts();
    void convertFile();
    void requestLayout(int page);
    void checkPageCount();
    [[nodiscard]] QString nextOutputPath();
    [[nodiscard]] QString currentDocumentName() const;
    void removeEarlierDocument(const QString &document);
    void documentEnded(const QString &document, const QString &complaint);

    std::unique_ptr<Ui_process> ui;
    AboutDialog aboutBox;
    std::unique_ptr<OpDialog> optionsDialog;
    std::unique_ptr<Rules> ruleEditor;
    QTimer *previewTimer = nullptr;
    SortOnClick *sorting = nullptr;
    ProgressPane *progress = nullptr;
    QNetworkAccessManager *fileReader = nullptr;
    ToolProcesses *tools = nullptr;

    // Page counts still to be fetched: paths, their rows as decimal texts, and the next entry.
    QStringList pendingFiles;
    QStringList pendingRows;
    int loadIndex = 0;
    bool fetchingPageCounts = false;
    bool pageCountsStopped = false; ///< no count can be fetched any more
    PageInfoFile pageInfo;
    QString pageInfoPath;                ///< of the count under way
    QString pageCountComplaint;          ///< of the tool that has counted last
    QPointer<QWidget> focusBeforeCounts; ///< had the focus until the buttons were switched off
    QPointer<QWidget> focusDuringCounts; ///< got it then

    // The split job.
    bool batchRunning = false;
    bool fileFinished = false;        ///< convertbegin() is to go on with the running batch
    bool waitingForPageCount = false; ///< the current file was added while the batch ran
    int fileIndex = 0;                ///< row now processed; also the number of files finished
    int fileCount = 0;                ///< rows in this batch
    int pageCount = 1;                ///< pages of the current file
    int currentPage = 1;              ///< next page to analyse, 1-based
    QStringList pageTexts;            ///< text at the rule's position, for each page analysed
    QStringList layoutLines;          ///< lines of the page analysed last
    QPointer<QNetworkReply> layoutReply;
    QString layoutFolder;       ///< where the current file's layouts are; empty when there is none
    QStringList earlierLayouts; ///< layout files of earlier files that are still to be removed
    QPoint batchRule;           ///< the rule's position when the batch began
    int ruleXpos = 0;
    int ruleYpos = 0;
    int ruleWid = 0;
    int ruleHei = 0;
    QString ruleText;
    QStringList rangeList; ///< documents of the current file: page ranges
    QStringList textList;  ///< documents of the current file: texts that name them
    int mergeIndex = 0;    ///< next entry of rangeList to write
    QString outputFile;    ///< document started last
    FileOwners inputs;     ///< of this batch
    FileOwners documents;  ///< written by this batch
    FileTrouble trouble;   ///< with the current file
};
