// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

namespace pdf {

/// What MuPDF meets while it reads pages. It goes on after most of it, as a viewer should, and says
/// so in a warning; who splits by a page's text has to know that some of it is missing.
struct ReadingNotes
{
    int warnings = 0;       ///< that may be about the data of a stream
    int earlyEnds = 0;      ///< compressed data without the mark of its end
    int lackOfMemory = 0;   ///< times that the system gave no memory
    bool isDamaged = false; ///< contents were met that cannot be decoded as a whole
};

/// For fz_set_warning_callback(): counts in the notes, which are `user`.
void noteWarning(void *user, const char *message);

/// Notes whether the contents (a stream or an array of streams) cannot be decoded as a whole. To be
/// called when they were processed, with the notes as they were before: looks only when something
/// was noted meanwhile, because fonts cause warnings as well and contents are decoded once more.
///
/// Throws MuPDF exceptions only.
void checkContents(fz_context *context, pdf_obj *contents, const ReadingNotes &before,
                   ReadingNotes *notes);

} // namespace pdf
