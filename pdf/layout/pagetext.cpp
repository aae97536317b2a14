// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/pagetext.h"

#include "pdf/layout/textoperators.h"

namespace pdf {

namespace {

/// What MuPDF does not overcome by itself ends the page: a page without its text would pass for one
/// that has none.
[[noreturn]] void giveUp(fz_context *context, const TextProcessor *processor)
{
    if (processor->isOutOfMemory)
        fz_throw(context, FZ_ERROR_MEMORY, "needs too much memory");
    fz_rethrow(context);
}

void processContents(fz_context *context, TextProcessor *processor, pdf_page *page)
{
    fz_cookie cookie = {};
    const ReadingNotes before = *processor->notes;
    pdf_obj *contents = pdf_page_contents(context, page);
    fz_try(context)
    {
        pdf_process_contents(context, &processor->base, page->doc,
                             pdf_page_resources(context, page), contents, &cookie);
        checkContents(context, contents, before, processor->notes);
    }
    fz_catch(context)
    {
        giveUp(context, processor);
    }
    startNextStream(processor);
}

/// The turn that keeps an annotation upright on a rotated page: about the upper left corner of its
/// rectangle (ISO 32000-1, 12.5.3, NoRotate).
fz_matrix uprightTurn(fz_context *context, pdf_page *page, pdf_annot *annotation)
{
    pdf_obj *object = pdf_annot_obj(context, annotation);
    const int flags = pdf_dict_get_int(context, object, PDF_NAME(F));
    if ((flags & PDF_ANNOT_IS_NO_ROTATE) == 0)
        return fz_identity;
    const int degrees =
        pdf_to_int(context, pdf_dict_get_inheritable(context, page->obj, PDF_NAME(Rotate)));
    const fz_rect box = pdf_dict_get_rect(context, object, PDF_NAME(Rect));
    const fz_matrix turned =
        fz_concat(fz_translate(-box.x0, -box.y1), fz_rotate(static_cast<float>(degrees)));
    return fz_concat(turned, fz_translate(box.x0, box.y1));
}

void processAnnotation(fz_context *context, TextProcessor *processor, pdf_page *page,
                       pdf_annot *annotation)
{
    fz_cookie cookie = {};
    // Appearances that the document lacks are made up by MuPDF, apart from its objects.
    pdf_annot_push_local_xref(context, annotation);
    fz_try(context)
    {
        processor->interpreter->transform(Matrix::of(uprightTurn(context, page, annotation)));
        pdf_process_annot(context, &processor->base, annotation, &cookie);
    }
    fz_always(context)
    {
        pdf_annot_pop_local_xref(context, annotation);
    }
    fz_catch(context)
    {
        giveUp(context, processor);
    }
    startNextStream(processor);
}

void process(fz_context *context, TextProcessor *processor, pdf_page *page)
{
    processContents(context, processor, page);
    for (pdf_annot *next = pdf_first_annot(context, page); next != nullptr;
         next = pdf_next_annot(context, next))
        processAnnotation(context, processor, page, next);
    for (pdf_annot *next = pdf_first_widget(context, page); next != nullptr;
         next = pdf_next_widget(context, next))
        processAnnotation(context, processor, page, next);
}

} // namespace

void interpretPage(fz_context *context, pdf_page *page, TextInterpreter *interpreter,
                   ReadingNotes *notes)
{
    const int failuresBefore = notes->lackOfMemory;
    TextProcessor *processor = newTextProcessor(context, page->doc, interpreter, notes);
    fz_try(context)
    {
        process(context, processor, page);
        // MuPDF takes what it has no memory for as damaged, for example a font, and goes on.
        if (processor->isOutOfMemory || notes->lackOfMemory != failuresBefore)
            fz_throw(context, FZ_ERROR_MEMORY, "needs too much memory");
        pdf_close_processor(context, &processor->base);
    }
    fz_always(context)
    {
        pdf_drop_processor(context, &processor->base);
    }
    fz_catch(context)
    {
        fz_rethrow(context);
    }
}

} // namespace pdf
