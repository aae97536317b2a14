// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/pagetexts.h"

#include "batch/sharedrecords.h"
#include "pdf/error.h"
#include "pdf/layout/pageworkers.h"
#include "pdf/layout/repairingreader.h"
#include "pdf/layout/unknownglyphs.h"
#include "split/layoutscan.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

namespace {

// A page's record begins with two bytes: what the others are, and how the page was read.
constexpr char textFound = 'T';    ///< the deciding text
constexpr char nothingThere = 'N'; ///< nothing: the page has text, but none at the position
constexpr char pageIsEmpty = 'E';  ///< nothing: the page has no text at all
constexpr char givenUp = 'G';      ///< the cause
constexpr char matchFailed = 'M';  ///< nothing: the expression could not be matched to the end

constexpr char isSound = '-';
constexpr char isRepaired = 'R'; ///< objects were not where the file says
constexpr char isDamaged = 'D';  ///< contents could not be decoded as a whole

constexpr std::size_t headSize = 2;

std::string recordGivenUp(std::string_view cause)
{
    return std::string{givenUp, isSound} + std::string(cause);
}

std::string_view textOf(std::string_view record)
{
    return record.substr(headSize);
}

/// The record, which has a head at least.
std::string_view recordOf(const SharedRecords &records, int index)
{
    const std::string_view record = records.at(index).value_or(std::string_view());
    return record.size() < headSize ? "G-cannot be read" : record;
}

/// Runs `convert` for each page in worker processes. The record behind the last page's takes the
/// cause of what ended the whole work.
void workInProcesses(pdf::Document &document, SharedRecords &records, int pageCount, int workers,
                     const std::function<void(pdf::RepairingReader &, int)> &convert)
{
    pdf::ReadablePages pages(document);
    std::unique_ptr<pdf::RepairingReader> reader; // of each worker process
    pdf::PageWork work;
    work.pageCount = pageCount;
    work.workerCount = workers;
    work.secondsInAll = pdf::allTextsTimeLimitSeconds(pageCount);
    work.startWorker = [&]() -> std::function<void(int)> {
        reader = std::make_unique<pdf::RepairingReader>(pages);
        return [&](int index) { convert(*reader, index); };
    };
    work.report = [&](int index, const std::string &cause) {
        records.put(index < 0 ? pageCount : index, recordGivenUp(cause));
    };
    const pdf::ExitCode code = pdf::workOnPages(work);
    if (code == pdf::ExitCode::Done || code == pdf::ExitCode::DoneInPart)
        return;
    throw pdf::Error(code, std::string(textOf(recordOf(records, pageCount))));
}

std::string pageRecord(pdf::RepairingReader &reader, int index, const TextQuery &query)
{
    const std::vector<pdf::Fragment> fragments = reader.fragments(index);
    const char state = reader.hasDamagedContents() ? isDamaged
                       : reader.wasRepaired()      ? isRepaired
                                                   : isSound;
    if (fragments.empty())
        return {pageIsEmpty, state};
    try {
        const QString text = queriedText(fragments, query);
        if (text == noText())
            return {nothingThere, state};
        return std::string{textFound, state} + text.toStdString();
    } catch (const MatchLimit &) {
        return {matchFailed, state};
    }
}

QString toText(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

} // namespace

PageTexts readPageTexts(pdf::Document &document, const TextQuery &query, int workers,
                        std::atomic<int> &pagesDone)
{
    const int count = document.pages().count();
    SharedRecords records(count + 1);
    workInProcesses(document, records, count, workers,
                    [&](pdf::RepairingReader &reader, int index) {
                        records.put(index, pageRecord(reader, index, query));
                        ++pagesDone;
                    });
    PageTexts result;
    for (int index = 0; index < count; ++index) {
        const std::string_view record = recordOf(records, index);
        QString text = noText();
        if (record[0] == textFound) {
            text = toText(textOf(record));
            result.hasAnyAtPosition = true;
            if (pdf::hasUnknownLetters(record.substr(1)))
                result.pagesUnknown.append(index + 1);
        } else if (record[0] == pageIsEmpty) {
            result.pagesWithout.append(index + 1);
        } else if (record[0] == givenUp) {
            result.pagesGivenUp.append(index + 1);
            result.complaints.append(QStringLiteral("page %1: given up: %2")
                                         .arg(QString::number(index + 1), toText(textOf(record))));
        }
        // Another page could begin a document here: without knowing that, none is right.
        if (record[0] == matchFailed)
            throw pdf::Error(pdf::ExitCode::InputUnreadable,
                             "page " + std::to_string(index + 1) +
                                 ": --match takes too many steps for a text of it");
        if (record[1] == isDamaged)
            result.pagesDamaged.append(index + 1);
        result.isRepaired = result.isRepaired || record[1] == isRepaired;
        result.texts.append(text);
    }
    return result;
}

std::vector<pdf::Fragment> readFragments(pdf::Document &document, int page)
{
    if (page > document.pages().count())
        throw pdf::Error(pdf::ExitCode::Usage, document.file().path() + ": has " +
                                                   std::to_string(document.pages().count()) +
                                                   " pages, no page " + std::to_string(page));
    SharedRecords records(2);
    const auto store = [&](pdf::RepairingReader &reader, int) {
        std::string record;
        for (const pdf::Fragment &fragment : reader.fragments(page - 1)) {
            const int box[] = {fragment.left, fragment.top, fragment.width, fragment.height,
                               static_cast<int>(fragment.text.size())};
            record.append(reinterpret_cast<const char *>(box), sizeof box);
            record += fragment.text;
        }
        records.put(0, std::string{textFound, isSound} + record);
    };
    workInProcesses(document, records, 1, 1, store);
    std::string_view record = recordOf(records, 0);
    const auto giveUp = [&](std::string_view cause) {
        throw pdf::Error(pdf::ExitCode::InputUnreadable, document.file().path() + ": page " +
                                                             std::to_string(page) +
                                                             ": given up: " + std::string(cause));
    };
    if (record[0] == givenUp)
        giveUp(textOf(record));
    std::vector<pdf::Fragment> result;
    for (record.remove_prefix(headSize); !record.empty();) {
        int box[5] = {};
        std::memcpy(box, record.data(), std::min(record.size(), sizeof box));
        record.remove_prefix(std::min(record.size(), sizeof box));
        const auto length = static_cast<std::size_t>(box[4]);
        if (length > record.size())
            giveUp("cannot be read");
        result.push_back({box[0], box[1], box[2], box[3], std::string(record.substr(0, length))});
        record.remove_prefix(length);
    }
    return result;
}
