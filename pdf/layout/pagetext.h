// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/layout/contentscheck.h"
#include "pdf/layout/textinterpreter.h"

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

namespace pdf {

/// Lets the interpreter follow a page's contents and the appearances of its annotations and form
/// fields. Contents that cannot be decoded give the text before the damage, which is noted.
///
/// Throws MuPDF exceptions only: call it inside fz_try.
void interpretPage(fz_context *context, pdf_page *page, TextInterpreter *interpreter,
                   ReadingNotes *notes);

} // namespace pdf
