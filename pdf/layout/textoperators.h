// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/contentscheck.h"
#include "pdf/layout/textinterpreter.h"

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

namespace pdf {

/// What MuPDF's reader of content streams calls for each operator. Operators that text does not
/// depend on are left out, and with them the loading of images, colour spaces and patterns. What
/// optional content hides from viewers is left out as well.
struct TextProcessor
{
    pdf_processor base;
    TextInterpreter *interpreter;
    pdf_document *document;
    pdf_cycle_list *runningForms; ///< innermost first
    int formDepth;
    bool isOutOfMemory; ///< MuPDF goes on after most errors, this one must end the page
    ReadingNotes *notes;
};

/// Throws MuPDF exceptions only, and so do the operators. To be dropped with pdf_drop_processor();
/// interpreter, document and notes must outlive it.
[[nodiscard]] TextProcessor *newTextProcessor(fz_context *context, pdf_document *document,
                                              TextInterpreter *interpreter, ReadingNotes *notes);

/// Makes the processor ready for a page's next stream, whatever the last one left open.
void startNextStream(TextProcessor *processor);

} // namespace pdf
