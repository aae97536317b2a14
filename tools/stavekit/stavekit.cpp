// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tools/stavekit/stavekit.h"

#include "pdf/assembly/assembly.h"
#include "pdf/assembly/documentinfo.h"
#include "pdf/document/abandonedoutputs.h"
#include "pdf/document/document.h"
#include "pdf/document/mappedfile.h"
#include "pdf/document/outputfile.h"
#include "pdf/document/pageranges.h"
#include "pdf/isolation/sandbox.h"
#include "pdf/isolation/supervision.h"
#include "split/inputstate.h"
#include "tools/toolmain.h"

#include <cstdlib>
#include <optional>

namespace {

const char usage[] =
    "stavekit: page count and page ranges of a PDF file\n"
    "\n"
    "  stavekit IN -getinfo -outfile FILE\n"
    "      writes the page count and further facts about IN into FILE, one \"Key: value\" a line;\n"
    "      the first line is \"NumberOfPages: \" and the count. When IN cannot be read the count\n"
    "      is missing and a line \"Error: \" gives the cause.\n"
    "  stavekit IN -merge RANGE... -outfile OUT\n"
    "      writes the pages of the ranges to the new PDF file OUT, in the order given. A range is\n"
    "      a page number or two joined by a hyphen (7 or 3-5), counted from 1.\n"
    "  stavekit -help\n"
    "  stavekit -version\n"
    "\n"
    "The first argument is always IN, whatever it begins with. OUT and FILE are replaced; they\n"
    "must not be IN.\n";

struct Request
{
    std::string input;
    bool isInfo = false;
    std::vector<std::string> ranges;
    std::string output;
};

[[noreturn]] void refuse(const std::string &cause)
{
    throw pdf::Error(pdf::ExitCode::Usage, cause + " (stavekit -help tells the usage)");
}

Request parse(const std::vector<std::string> &arguments)
{
    if (arguments.size() < 4)
        refuse("too few arguments");
    Request request;
    request.input = arguments[0];
    request.isInfo = arguments[1] == "-getinfo";
    if (!request.isInfo && arguments[1] != "-merge")
        refuse("\"" + arguments[1] + "\" is neither -getinfo nor -merge");
    std::size_t i = 2;
    while (i < arguments.size() && arguments[i] != "-outfile")
        request.ranges.push_back(arguments[i++]);
    if (i + 2 != arguments.size())
        refuse("-outfile and one file name must come last");
    request.output = arguments[i + 1];
    if (request.isInfo && !request.ranges.empty())
        refuse("-getinfo takes no page ranges");
    if (!request.isInfo && request.ranges.empty())
        refuse("-merge needs a page range");
    return request;
}

/// What is left to do when the process that reads the input is lost.
void fail(const Request &request, const std::string &cause)
{
    printFailure("stavekit", request.input + ": " + cause);
    if (request.isInfo)
        pdf::writeOutputFile(request.output, pdf::failureInfo(request.input + ": " + cause));
}

pdf::ExitCode getInfo(const Request &request)
{
    std::string info;
    try {
        pdf::Document document(request.input);
        info = pdf::documentInfo(document);
    } catch (const pdf::Error &error) {
        pdf::writeOutputFile(request.output, pdf::failureInfo(error.what()));
        throw;
    }
    pdf::writeOutputFile(request.output, info);
    return pdf::ExitCode::Done;
}

/// The state in which the input's pages were read, where the window recorded it.
std::optional<InputState> expectedState(const Request &request)
{
    const char *folder = std::getenv("TMPDIR");
    if (folder == nullptr || request.isInfo)
        return std::nullopt;
    return recordedInputState(folder, request.input);
}

/// Throws Error unless the state is the one that was expected, if any was.
void checkState(const Request &request, const std::optional<InputState> &expected,
                const std::optional<InputState> &state)
{
    if (expected && state != expected)
        throw pdf::Error(pdf::ExitCode::InputUnreadable,
                         request.input + ": changed since its pages were read");
}

pdf::ExitCode merge(const Request &request, const std::optional<InputState> &expected)
{
    pdf::Document document(request.input);
    checkState(request, expected, inputState(document.file().descriptor()));
    std::vector<pdf::PageRange> ranges;
    for (const std::string &text : request.ranges)
        ranges.push_back(pdf::parsePageRange(text, document.pages().count()));
    pdf::OutputFile output(request.output);
    pdf::assemblePages(document, pdf::pageIndexes(ranges), output, [&] {
        // Meanwhile it may have been written to, or replaced.
        checkState(request, expected, inputState(document.file().descriptor()));
        checkState(request, expected, inputState(request.input));
        output.publish();
        // The output is in place and nothing is buffered: giving back every object of a large input
        // one by one would only keep the caller waiting.
        std::_Exit(static_cast<int>(pdf::ExitCode::Done));
    });
    return pdf::ExitCode::Done;
}

pdf::ExitCode run(const std::vector<std::string> &arguments)
{
    const Request request = parse(arguments);
    if (pdf::isSameFile(request.input, request.output))
        throw pdf::Error(pdf::ExitCode::Usage, request.output + ": is the input file itself");
    pdf::removeStaleOutput(request.output);
    pdf::removeAbandonedOutputs(pdf::folderOf(request.output));
    const std::optional<InputState> expected = expectedState(request);
    // Soon, before other pages or damage get the blame. A missing file is one for the reader.
    if (const std::optional<InputState> state = inputState(request.input))
        checkState(request, expected, state);
    try {
        pdf::continueInChild([&request](const std::string &cause) { fail(request, cause); });
    } catch (const pdf::NoProcess &error) {
        fail(request, error.what());
        return error.exitCode();
    }
    pdf::confine({{request.input}, {pdf::folderOf(request.output)}});
    return request.isInfo ? getInfo(request) : merge(request, expected);
}

} // namespace

int runStavekit(int argc, char *argv[])
{
    return toolMain({"stavekit", usage, run}, argc, argv);
}
