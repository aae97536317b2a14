// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tools/quillrend/quillrend.h"

#include "pdf/document/abandonedoutputs.h"
#include "pdf/document/document.h"
#include "pdf/document/outputfile.h"
#include "pdf/document/pageranges.h"
#include "pdf/document/utf8.h"
#include "pdf/isolation/sandbox.h"
#include "pdf/isolation/sharedmemory.h"
#include "pdf/isolation/supervision.h"
#include "pdf/layout/layoutfile.h"
#include "pdf/layout/pageworkers.h"
#include "pdf/layout/repairingreader.h"
#include "pdf/layout/unknownglyphs.h"
#include "tools/toolmain.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <unistd.h>

namespace {

const char usage[] =
    "quillrend: the text of PDF pages with its places\n"
    "\n"
    "  quillrend -htmlformat [-f FIRST] [-l LAST] [--] IN OUT\n"
    "      writes one layout file for each page of IN. OUT without its suffix, \"_pg_\", a number\n"
    "      of at least four digits and \".htm\" make their names; the number is 0001 for the "
    "first\n"
    "      page converted. With -f or -l only the pages FIRST to LAST (counted from 1) are\n"
    "      converted, and each one's image at 96 dpi is written beside it (\".png\").\n"
    "  quillrend -help\n"
    "  quillrend -version\n"
    "\n"
    "Layout files: one line for each piece of text,\n"
    "  <span style=\"left:64;top:118;width:93;height:15\">INV-0042</span>\n"
    "in pixels at 96 dpi from the top left corner of the page as a viewer shows it. A page "
    "without\n"
    "text gives an empty file. A page is given up after 20 s or 1 GiB; when only its image is "
    "lost,\n"
    "its layout file stays.\n";

struct Request
{
    std::string input;
    std::string outputStem;
    int first = 0; ///< 0 when not given
    int last = 0;  ///< 0 when not given
    [[nodiscard]] bool hasRange() const { return first > 0 || last > 0; }
};

[[noreturn]] void refuse(const std::string &cause)
{
    throw pdf::Error(pdf::ExitCode::Usage, cause + " (quillrend -help tells the usage)");
}

/// The path without the last suffix of its file name.
std::string withoutSuffix(const std::string &path)
{
    const std::size_t name = path.rfind('/') + 1;
    const std::size_t dot = path.rfind('.');
    return dot == std::string::npos || dot <= name ? path : path.substr(0, dot);
}

Request parse(const std::vector<std::string> &arguments)
{
    if (arguments.empty() || arguments[0] != "-htmlformat")
        refuse("-htmlformat must come first");
    Request request;
    std::size_t i = 1;
    for (; i + 1 < arguments.size() && (arguments[i] == "-f" || arguments[i] == "-l"); i += 2) {
        int &page = arguments[i] == "-f" ? request.first : request.last;
        page = pdf::parsePageNumber(arguments[i + 1]);
    }
    if (i < arguments.size() && arguments[i] == "--")
        ++i;
    else if (i < arguments.size() && arguments[i].substr(0, 1) == "-")
        refuse("\"" + arguments[i] + "\" is not an option");
    if (i + 2 != arguments.size())
        refuse("IN and OUT must come last");
    request.input = arguments[i];
    request.outputStem = withoutSuffix(arguments[i + 1]);
    return request;
}

/// Names of the files of one page; number counts from 1 at the first page converted.
struct PageFiles
{
    PageFiles(const std::string &stem, int number)
    {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%04d", number);
        layout = stem + "_pg_" + digits + ".htm";
        image = stem + "_pg_" + digits + ".png";
    }
    std::string layout;
    std::string image;
};

bool exists(const std::string &file)
{
    return ::access(file.c_str(), F_OK) == 0;
}

void removePage(const Request &request, int number)
{
    const PageFiles files(request.outputStem, number);
    if (pdf::isSameFile(files.layout, request.input) || pdf::isSameFile(files.image, request.input))
        throw pdf::Error(pdf::ExitCode::Usage, request.input + ": would be an output, too");
    pdf::removeStaleOutput(files.layout);
    if (request.hasRange())
        pdf::removeStaleOutput(files.image);
}

/// Removes what an earlier run left when it is not known how many pages there are: as many pages as
/// have files without a gap. A page that was given up may have left its image alone.
void removeEarlierPages(const Request &request)
{
    for (int number = 1;; ++number) {
        const PageFiles files(request.outputStem, number);
        if (!exists(files.layout) && !(request.hasRange() && exists(files.image)))
            return;
        removePage(request, number);
    }
}

/// Whether the text has letters without characters among others. One that stands alone is the mark
/// of a check box or an icon, which many forms have.
bool hasUnreadableWord(std::string_view text)
{
    constexpr std::size_t loneBytes = 8; // of two private characters in UTF-8
    for (std::size_t end = 0; !text.empty(); text.remove_prefix(std::min(end + 1, text.size()))) {
        end = std::min(text.find(' '), text.size());
        if (end > loneBytes && pdf::hasUnknownLetters(text.substr(0, end)))
            return true;
    }
    return false;
}

/// Converts the pages of one request in worker processes.
class Conversion
{
public:
    Conversion(const Request &conversionRequest, pdf::Document &document)
        : request(conversionRequest), pages(document)
    {
        first = request.first > 0 ? request.first : 1;
        const int last = request.last > 0 ? std::min(request.last, pages.count()) : pages.count();
        if (request.hasRange() && (first > pages.count() || last < first))
            throw pdf::Error(pdf::ExitCode::Usage, request.input + ": has " +
                                                       std::to_string(pages.count()) +
                                                       " pages, none of those asked for");
        count = std::max(0, last - first + 1);
    }

    pdf::ExitCode run()
    {
        for (int i = 0; i < count; ++i)
            removePage(request, i + 1);
        pdf::PageWork work;
        work.pageCount = count;
        work.workerCount = pdf::usefulWorkerCount(count);
        work.secondsInAll = request.hasRange() ? pdf::allResultsTimeLimitSeconds(count)
                                               : pdf::allTextsTimeLimitSeconds(count);
        work.permissions.writableFolders = {pdf::folderOf(request.outputStem)};
        work.startWorker = [this] { return startWorker(); };
        work.report = [this](int index, const std::string &cause) {
            printFailure("quillrend", request.input + ": " + lossAt(index) + cause);
        };
        const pdf::ExitCode code = pdf::workOnPages(work);
        if (code != pdf::ExitCode::Done && code != pdf::ExitCode::DoneInPart) {
            for (int i = 0; i < count; ++i)
                removePage(request, i + 1);
        }
        return code;
    }

private:
    /// What is lost at the page, for the line that tells it; nothing where there is no page.
    [[nodiscard]] std::string lossAt(int index) const
    {
        if (index < 0)
            return "";
        const bool hasText = exists(PageFiles(request.outputStem, index + 1).layout);
        return "page " + std::to_string(first + index) +
               (request.hasRange() && hasText ? ": has no image: " : ": given up: ");
    }

    std::function<void(int)> startWorker()
    {
        reader = std::make_unique<pdf::RepairingReader>(pages);
        return [this](int index) { convert(index); };
    }

    void convert(int index)
    {
        const PageFiles files(request.outputStem, index + 1);
        const int page = first - 1 + index;
        // First, so that it is there also when the image cannot be drawn.
        const std::vector<pdf::Fragment> fragments = reader->fragments(page);
        pdf::writeOutputFile(files.layout, pdf::layoutFileText(fragments));
        tellMissingFont();
        tellUnknownLetters(fragments);
        if (request.hasRange())
            pdf::writeOutputFile(files.image, reader->image(page));
    }

    /// No fault of the page, but its image shows other letters than its author saw. Once for the
    /// whole input: documents without their fonts usually lack them on every page.
    void tellMissingFont()
    {
        const std::string font = reader->missingFont();
        if (!font.empty() && !hasToldMissingFont->exchange(true))
            printFailure("quillrend", request.input + ": does not bring along its font " +
                                          pdf::singleLineUtf8(font) + "; another one stands in");
    }

    /// Nor is this: the texts tell such letters apart, but nobody can read them in a name.
    void tellUnknownLetters(const std::vector<pdf::Fragment> &fragments)
    {
        const auto isUnreadable = [](const pdf::Fragment &fragment) {
            return pdf::hasUnknownLetters(fragment.text) && hasUnreadableWord(fragment.text);
        };
        if (std::any_of(fragments.begin(), fragments.end(), isUnreadable) &&
            !hasToldUnknownLetters->exchange(true))
            printFailure("quillrend", request.input +
                                          ": has letters without characters; names will show each "
                                          "of them as \xEF\xBF\xBD");
    }

    const Request &request;
    pdf::SharedMemory<std::atomic<bool>> hasToldMissingFont; ///< one of the workers has
    pdf::SharedMemory<std::atomic<bool>> hasToldUnknownLetters;
    pdf::ReadablePages pages;
    std::unique_ptr<pdf::RepairingReader> reader;
    int first = 1;
    int count = 0;
};

pdf::ExitCode convert(const Request &request)
{
    pdf::Document document(request.input);
    return Conversion(request, document).run();
}

pdf::ExitCode run(const std::vector<std::string> &arguments)
{
    const Request request = parse(arguments);
    const std::string folder = pdf::folderOf(request.outputStem);
    const auto fail = [&request](const std::string &cause) {
        printFailure("quillrend", request.input + ": " + cause);
        removeEarlierPages(request);
    };
    try {
        pdf::removeAbandonedOutputs(folder);
        pdf::continueInChild(fail);
        pdf::confine({{request.input}, {folder}, true});
        return convert(request);
    } catch (const pdf::NoProcess &error) {
        fail(error.what());
        return error.exitCode();
    } catch (const pdf::Error &) {
        removeEarlierPages(request);
        throw;
    }
}

} // namespace

int runQuillrend(int argc, char *argv[])
{
    return toolMain({"quillrend", usage, run}, argc, argv);
}
