// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/textoperators.h"

#include <exception>
#include <string>

namespace pdf {

namespace {

TextProcessor *textProcessor(pdf_processor *processor)
{
    return reinterpret_cast<TextProcessor *>(processor);
}

TextInterpreter &interpreterOf(pdf_processor *processor)
{
    return *textProcessor(processor)->interpreter;
}

/// Keeps C++ exceptions from passing through MuPDF's frames. MuPDF's own jump over this frame and
/// find nothing to destroy in it.
template <typename Action>
bool succeeds(const Action &action) noexcept
{
    try {
        action();
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

template <typename Action>
void perform(fz_context *context, pdf_processor *processor, const Action &action)
{
    if (succeeds(action))
        return;
    textProcessor(processor)->isOutOfMemory = true;
    fz_throw(context, FZ_ERROR_ABORT, "out of memory");
}

// One function an operator, named as in ISO 32000-1, Annex A.

void q(fz_context *context, pdf_processor *processor)
{
    perform(context, processor, [&] { interpreterOf(processor).save(); });
}

void Q(fz_context * /*context*/, pdf_processor *processor)
{
    interpreterOf(processor).restore();
}

void cm(fz_context * /*context*/, pdf_processor *processor, float a, float b, float c, float d,
        float e, float f)
{
    interpreterOf(processor).transform(Matrix::of({a, b, c, d, e, f}));
}

void BT(fz_context * /*context*/, pdf_processor *processor)
{
    interpreterOf(processor).setTextMatrix(Matrix());
}

void Tc(fz_context * /*context*/, pdf_processor *processor, float spacing)
{
    interpreterOf(processor).text().characterSpacing = static_cast<double>(spacing);
}

void Tw(fz_context * /*context*/, pdf_processor *processor, float spacing)
{
    interpreterOf(processor).text().wordSpacing = static_cast<double>(spacing);
}

void Tz(fz_context * /*context*/, pdf_processor *processor, float percent)
{
    interpreterOf(processor).text().horizontalScale = static_cast<double>(percent) / 100;
}

void TL(fz_context * /*context*/, pdf_processor *processor, float leading)
{
    interpreterOf(processor).text().leading = static_cast<double>(leading);
}

void Tf(fz_context *context, pdf_processor *processor, const char * /*name*/, pdf_font_desc *font,
        float size)
{
    perform(context, processor,
            [&] { interpreterOf(processor).setFont(font, static_cast<double>(size)); });
}

void Ts(fz_context * /*context*/, pdf_processor *processor, float rise)
{
    interpreterOf(processor).text().rise = static_cast<double>(rise);
}

void Td(fz_context * /*context*/, pdf_processor *processor, float x, float y)
{
    interpreterOf(processor).moveLine(static_cast<double>(x), static_cast<double>(y));
}

void TD(fz_context *context, pdf_processor *processor, float x, float y)
{
    TL(context, processor, -y);
    Td(context, processor, x, y);
}

void Tm(fz_context * /*context*/, pdf_processor *processor, float a, float b, float c, float d,
        float e, float f)
{
    interpreterOf(processor).setTextMatrix(Matrix::of({a, b, c, d, e, f}));
}

void nextLine(fz_context * /*context*/, pdf_processor *processor)
{
    interpreterOf(processor).moveToNextLine();
}

void Tj(fz_context *context, pdf_processor *processor, char *string, std::size_t length)
{
    const bool isHidden = processor->hidden != 0;
    perform(context, processor, [&] { interpreterOf(processor).show({string, length}, isHidden); });
}

void TJ(fz_context *context, pdf_processor *processor, pdf_obj *array)
{
    const int count = pdf_array_len(context, array);
    for (int i = 0; i < count; ++i) {
        pdf_obj *item = pdf_array_get(context, array, i);
        if (pdf_is_string(context, item) != 0)
            Tj(context, processor, pdf_to_str_buf(context, item), pdf_to_str_len(context, item));
        else
            interpreterOf(processor).moveBack(static_cast<double>(pdf_to_real(context, item)));
    }
}

void quote(fz_context *context, pdf_processor *processor, char *string, std::size_t length)
{
    nextLine(context, processor);
    Tj(context, processor, string, length);
}

void doubleQuote(fz_context *context, pdf_processor *processor, float wordSpacing,
                 float characterSpacing, char *string, std::size_t length)
{
    Tw(context, processor, wordSpacing);
    Tc(context, processor, characterSpacing);
    quote(context, processor, string, length);
}

void runForm(fz_context *context, pdf_processor *processor, pdf_obj *form, pdf_obj *pageResources)
{
    TextProcessor *text = textProcessor(processor);
    pdf_obj *ownResources = pdf_xobject_resources(context, form);
    const int hidden = processor->hidden;
    const Matrix matrix = Matrix::of(pdf_xobject_matrix(context, form));
    const fz_rect box = pdf_xobject_bbox(context, form);
    const ReadingNotes before = *text->notes;
    TextInterpreter::Surroundings around;
    perform(context, processor, [&] { around = text->interpreter->enterForm(matrix, box); });
    fz_try(context)
    {
        pdf_process_contents(context, processor, text->document,
                             ownResources != nullptr ? ownResources : pageResources, form, nullptr);
        checkContents(context, form, before, text->notes);
    }
    fz_always(context)
    {
        processor->hidden = hidden;
        if (!succeeds([&] { text->interpreter->leaveForm(around); }))
            text->isOutOfMemory = true;
    }
    fz_catch(context)
    {
        fz_rethrow(context);
    }
}

void DoForm(fz_context *context, pdf_processor *processor, const char * /*name*/, pdf_obj *form,
            pdf_obj *pageResources)
{
    constexpr int deepestForm = 100;
    TextProcessor *text = textProcessor(processor);
    pdf_cycle_list *around = text->runningForms;
    pdf_cycle_list running;
    if (processor->hidden != 0 || text->formDepth == deepestForm ||
        pdf_cycle(context, &running, around, form) != 0)
        return;
    text->runningForms = &running;
    ++text->formDepth;
    fz_try(context)
    {
        runForm(context, processor, form, pageResources);
    }
    fz_always(context)
    {
        text->runningForms = around;
        --text->formDepth;
    }
    fz_catch(context)
    {
        fz_rethrow(context);
    }
}

void BMC(fz_context * /*context*/, pdf_processor *processor, const char * /*tag*/)
{
    interpreterOf(processor).beginMarked();
}

std::u32string charactersOf(const char *utf8)
{
    std::u32string text;
    while (*utf8 != '\0') {
        int character = 0;
        utf8 += fz_chartorune(&character, utf8);
        text += static_cast<char32_t>(character);
    }
    return text;
}

void BDC(fz_context *context, pdf_processor *processor, const char *tag, pdf_obj * /*raw*/,
         pdf_obj *properties)
{
    pdf_obj *stated = pdf_dict_gets(context, properties, "ActualText");
    if (!pdf_is_string(context, stated)) {
        BMC(context, processor, tag);
        return;
    }
    const char *utf8 = pdf_to_text_string(context, stated);
    perform(context, processor,
            [&] { interpreterOf(processor).beginReplaced(charactersOf(utf8)); });
}

void EMC(fz_context *context, pdf_processor *processor)
{
    perform(context, processor, [&] { interpreterOf(processor).endMarked(); });
}

} // namespace

TextProcessor *newTextProcessor(fz_context *context, pdf_document *document,
                                TextInterpreter *interpreter, ReadingNotes *notes)
{
    auto *text = static_cast<TextProcessor *>(
        pdf_new_processor(context, static_cast<int>(sizeof(TextProcessor))));
    text->interpreter = interpreter;
    text->document = document;
    text->notes = notes;
    pdf_processor &processor = text->base;
    processor.usage = "View";
    processor.op_q = q;
    processor.op_Q = Q;
    processor.op_cm = cm;
    processor.op_BT = BT;
    processor.op_Tc = Tc;
    processor.op_Tw = Tw;
    processor.op_Tz = Tz;
    processor.op_TL = TL;
    processor.op_Tf = Tf;
    processor.op_Ts = Ts;
    processor.op_Td = Td;
    processor.op_TD = TD;
    processor.op_Tm = Tm;
    processor.op_Tstar = nextLine;
    processor.op_Tj = Tj;
    processor.op_TJ = TJ;
    processor.op_squote = quote;
    processor.op_dquote = doubleQuote;
    processor.op_Do_form = DoForm;
    processor.op_BMC = BMC;
    processor.op_BDC = BDC;
    processor.op_EMC = EMC;
    return text;
}

void startNextStream(TextProcessor *processor)
{
    processor->base.hidden = 0;
    if (!succeeds([processor] { processor->interpreter->startOver(); }))
        processor->isOutOfMemory = true;
}

} // namespace pdf
