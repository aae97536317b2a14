// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/document.h"

#include "pdf/document/referencetable.h"
#include "pdf/document/salvage.h"
#include "pdf/document/twopartinput.h"
#include "pdf/error.h"

#include <new>
#include <utility>

namespace pdf {

namespace {

Error openError(const MappedFile &input, const QPDFExc &cause)
{
    const std::string path = input.path() + ": ";
    if (cause.getErrorCode() == qpdf_e_password)
        return {ExitCode::Forbidden, path + "needs a password"};
    if (cause.getErrorCode() == qpdf_e_unsupported)
        return {ExitCode::Forbidden,
                path + "is encrypted in a way that needs more than a password"};
    if (input.bytes().find("%PDF-") == std::string_view::npos)
        return {ExitCode::InputUnreadable, path + "is not a PDF file"};
    return {ExitCode::InputUnreadable, path + "is damaged beyond repair"};
}

} // namespace

Document::Document(const std::string &path) : input(path)
{
    try {
        open();
    } catch (const QPDFExc &cause) {
        throw openError(input, cause);
    } catch (const Error &) {
        throw;
    } catch (const std::bad_alloc &) {
        throw Error(ExitCode::InputUnreadable, path + ": needs too much memory");
    } catch (const std::exception &) {
        throw Error(ExitCode::InputUnreadable, path + ": is damaged beyond repair");
    }
}

void Document::open()
{
    try {
        read(input.bytes());
    } catch (const QPDFExc &cause) {
        if (cause.getErrorCode() != qpdf_e_damaged_pdf || !salvage())
            throw;
    }
    if (hadWarnings && pageList.pages.empty() && !salvage())
        throw Error(ExitCode::InputUnreadable, input.path() + ": is damaged: it has no pages");
}

void Document::read(std::string_view bytes)
{
    pdf = QPDF::create();
    pdf->setLogger(notes.logger());
    Appendix appendix = appendixFor(bytes);
    if (appendix.isWholeTable)
        wholeReferenceTable = appendix.bytes;
    pdf->processInputSource(
        std::make_shared<TwoPartInput>(input.path(), bytes, std::move(appendix.bytes)), "");
    if (!salvaged.empty())
        findLostObjects(*pdf);
    bytesOfObjects =
        std::make_unique<ObjectBytes>(*pdf, salvaged.empty() ? bytes : std::string_view());
    pageList = readPageList(*pdf, *bytesOfObjects);
    hadWarnings = !salvaged.empty() || pdf->anyWarnings();
    isCutOff = bytesOfObjects->reachBeyondEnd() || endsInUpdate(input.bytes());
}

std::string Document::damage() const
{
    if (isCutOff)
        return "it is cut off";
    if (notes.wasRebuilt() || !salvaged.empty())
        return "its table of objects had to be rebuilt";
    return pageList.isRepaired ? "its page tree had to be repaired" : "";
}

bool Document::salvage()
{
    if (!salvaged.empty())
        return false;
    salvaged = salvagedFile(input.bytes());
    if (salvaged.empty())
        return false;
    read(salvaged);
    return !pageList.pages.empty();
}

bool Document::mayAssemble()
{
    return !pdf->isEncrypted() || pdf->ownerPasswordMatched() || pdf->allowModifyAssembly();
}

} // namespace pdf
