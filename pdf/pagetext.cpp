// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/pagetext.h"

#include "pdf/textdevice.h"

#include <exception>
#include <string>
#include <utility>

namespace pdf {

namespace {

/// Where the interpreter stands in nested marked content. The operators' functions find it as the
/// context's user pointer, since a processor has no room for it.
struct MarkedContent
{
    GlyphCollector *collector;
    int depth;
    int replacedDepth; ///< depth of the content whose text is stated, 0 outside of such
};

MarkedContent *markedContent(fz_context *context)
{
    return static_cast<MarkedContent *>(fz_user_context(context));
}

/// Keeps C++ exceptions from passing through MuPDF's frames.
bool beginReplacement(GlyphCollector *collector, const char *utf8) noexcept
{
    try {
        std::u32string text;
        while (*utf8 != '\0') {
            int character = 0;
            utf8 += fz_chartorune(&character, utf8);
            text += static_cast<char32_t>(character);
        }
        collector->beginReplacement(std::move(text));
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

bool endReplacement(GlyphCollector *collector) noexcept
{
    try {
        collector->endReplacement();
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

/// Hands the device what has been shown so far: the interpreter gathers text until something else
/// than text comes, and a change of the matrix is such a thing.
void flushText(fz_context *context, pdf_processor *processor)
{
    processor->op_cm(context, processor, 1, 0, 0, 1, 0, 0);
}

void begin(fz_context *context, pdf_processor * /*processor*/, const char * /*tag*/)
{
    ++markedContent(context)->depth;
}

void beginWithProperties(fz_context *context, pdf_processor *processor, const char * /*tag*/,
                         pdf_obj * /*raw*/, pdf_obj *properties)
{
    MarkedContent *content = markedContent(context);
    ++content->depth;
    pdf_obj *text = pdf_dict_gets(context, properties, "ActualText");
    if (content->replacedDepth != 0 || !pdf_is_string(context, text))
        return;
    flushText(context, processor);
    content->replacedDepth = content->depth;
    if (!beginReplacement(content->collector, pdf_to_text_string(context, text)))
        fz_throw(context, FZ_ERROR_MEMORY, "out of memory");
}

void end(fz_context *context, pdf_processor *processor)
{
    MarkedContent *content = markedContent(context);
    if (content->depth == 0)
        return;
    const bool isReplaced = content->depth-- == content->replacedDepth;
    if (!isReplaced)
        return;
    flushText(context, processor);
    content->replacedDepth = 0;
    if (!endReplacement(content->collector))
        fz_throw(context, FZ_ERROR_MEMORY, "out of memory");
}

/// Runs the page's own contents; the device gets its text.
void runContents(fz_context *context, pdf_page *page, fz_device *device, fz_matrix transform)
{
    fz_rect mediaBox = {};
    fz_matrix toPage = {};
    fz_cookie cookie = {};
    pdf_page_transform(context, page, &mediaBox, &toPage);
    pdf_processor *processor = pdf_new_run_processor(context, device, fz_concat(toPage, transform),
                                                     "View", nullptr, nullptr, &cookie);
    processor->op_Do_image = nullptr;
    processor->op_BI = nullptr;
    processor->op_sh = nullptr;
    processor->op_BMC = begin;
    processor->op_BDC = beginWithProperties;
    processor->op_EMC = end;
    fz_try(context)
    {
        pdf_process_contents(context, processor, page->doc, pdf_page_resources(context, page),
                             pdf_page_contents(context, page), &cookie);
        pdf_close_processor(context, processor);
    }
    fz_always(context)
    {
        pdf_drop_processor(context, processor);
    }
    fz_catch(context)
    {
        fz_rethrow(context);
    }
}

} // namespace

void collectPageText(fz_context *context, pdf_page *page, fz_matrix transform,
                     GlyphCollector *collector)
{
    MarkedContent content = {collector, 0, 0};
    fz_device *device = newTextDevice(context, collector);
    fz_set_user_context(context, &content);
    fz_try(context)
    {
        runContents(context, page, device, transform);
        fz_cookie cookie = {};
        pdf_run_page_annots(context, page, device, transform, &cookie);
        pdf_run_page_widgets(context, page, device, transform, &cookie);
        fz_close_device(context, device);
    }
    fz_always(context)
    {
        fz_set_user_context(context, nullptr);
        fz_drop_device(context, device);
    }
    fz_catch(context)
    {
        fz_rethrow(context);
    }
}

} // namespace pdf
