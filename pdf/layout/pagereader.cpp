// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/pagereader.h"

#include "pdf/error.h"
#include "pdf/layout/fragments.h"
#include "pdf/layout/glyphcollector.h"
#include "pdf/layout/pagetext.h"
#include "pdf/layout/pngfile.h"
#include "pdf/layout/twopartstream.h"

#include <cstdlib>
#include <malloc.h>
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
#include <new>
#include <optional>
#include <utility>

// MuPDF reports errors by longjmp. Between fz_try and fz_catch therefore stand only C functions and
// plain values; objects with destructors live outside, and C++ exceptions start after fz_catch.

namespace pdf {

namespace {

/// Fonts and images kept for the next page.
constexpr std::size_t storeBytes = std::size_t{32} << 20;
/// Pages after which the objects read for them are forgotten. Without that a worker's memory would
/// grow by some kilobytes a page up to its limit.
constexpr int pagesRemembered = 500;
/// Growth after which they are forgotten earlier, so that no page lacks memory because of what the
/// pages before it needed.
constexpr std::size_t bytesRemembered = std::size_t{64} << 20;
/// Largest page image, 200 MB in memory: a side of 2 m at 96 dpi.
constexpr double largestImagePixels = 64e6;
constexpr float layoutScale = static_cast<float>(layoutDpi / 72);

void ignoreMessage(void * /*user*/, const char * /*message*/)
{
}

/// The memory that MuPDF gets. Whenever there is none the notes, which are `user`, tell it.
void *allocate(void *user, std::size_t size)
{
    void *memory = std::malloc(size);
    if (memory == nullptr && size > 0)
        ++static_cast<ReadingNotes *>(user)->lackOfMemory;
    return memory;
}

void *reallocate(void *user, void *old, std::size_t size)
{
    void *memory = std::realloc(old, size);
    if (memory == nullptr && size > 0)
        ++static_cast<ReadingNotes *>(user)->lackOfMemory;
    return memory;
}

void release(void * /*user*/, void *memory)
{
    std::free(memory);
}

std::size_t bytesInUse()
{
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Throws for the last failed fz_try, with its cause in one line.
[[noreturn]] void fail(fz_context *context)
{
    if (fz_caught(context) == FZ_ERROR_MEMORY)
        throw std::bad_alloc();
    const char *cause = fz_caught_message(context);
    throw Error(ExitCode::InputUnreadable,
                *cause != '\0' ? std::string("damaged: ") + cause : "damaged");
}

struct ContextDeleter
{
    void operator()(fz_context *context) const { fz_drop_context(context); }
};

/// A page that is dropped at the end of its use.
class LoadedPage
{
public:
    LoadedPage(fz_context *usedContext, pdf_document *usedDocument)
        : context(usedContext), document(usedDocument)
    {
    }
    ~LoadedPage()
    {
        if (page != nullptr)
            fz_drop_page(context, &page->super);
    }
    LoadedPage(const LoadedPage &) = delete;
    LoadedPage &operator=(const LoadedPage &) = delete;

    fz_context *context;
    pdf_document *document;
    pdf_page *page = nullptr;
    fz_rect bounds = {};
    fz_irect imageBox = {};
    bool isTooLarge = false; ///< for an image
    fz_matrix toPage = {};   ///< from the coordinates of the contents to the displayed page's
};

/// Takes the links off a page in memory. They show nothing, and loading a page resolves each one's
/// target by a search through the page tree.
void removeLinks(fz_context *context, pdf_obj *page)
{
    pdf_obj *annotations = pdf_dict_get(context, page, PDF_NAME(Annots));
    for (int i = pdf_array_len(context, annotations) - 1; i >= 0; --i) {
        pdf_obj *annotation = pdf_array_get(context, annotations, i);
        if (pdf_name_eq(context, pdf_dict_get(context, annotation, PDF_NAME(Subtype)),
                        PDF_NAME(Link)))
            pdf_array_delete(context, annotations, i);
    }
}

/// Makes the page object the only page of the document in memory. MuPDF loads pages by their place
/// in the page tree, and walks the tree from the start each time.
void makeOnlyPage(fz_context *context, pdf_document *document, int number, int parent)
{
    pdf_obj *page = nullptr;
    pdf_obj *kids = nullptr;
    fz_var(page);
    fz_var(kids);
    fz_try(context)
    {
        page = pdf_new_indirect(context, document, number, 0);
        if (!pdf_is_dict(context, page))
            fz_throw(context, FZ_ERROR_GENERIC, "page object is not readable");
        if (!pdf_name_eq(context, pdf_dict_get(context, page, PDF_NAME(Type)), PDF_NAME(Page)))
            pdf_dict_put(context, page, PDF_NAME(Type), PDF_NAME(Page));
        if (parent != 0 &&
            pdf_to_num(context, pdf_dict_get(context, page, PDF_NAME(Parent))) != parent)
            pdf_dict_put_drop(context, page, PDF_NAME(Parent),
                              pdf_new_indirect(context, document, parent, 0));
        removeLinks(context, page);
        kids = pdf_new_array(context, document, 1);
        pdf_array_push(context, kids, page);
        pdf_obj *root = pdf_dict_get(context, pdf_trailer(context, document), PDF_NAME(Root));
        pdf_obj *tree = pdf_dict_put_dict(context, root, PDF_NAME(Pages), 3);
        pdf_dict_put(context, tree, PDF_NAME(Type), PDF_NAME(Pages));
        pdf_dict_put_int(context, tree, PDF_NAME(Count), 1);
        pdf_dict_put(context, tree, PDF_NAME(Kids), kids);
    }
    fz_always(context)
    {
        pdf_drop_obj(context, kids);
        pdf_drop_obj(context, page);
    }
    fz_catch(context)
    {
        fz_rethrow(context);
    }
}

void load(LoadedPage *loaded, const PageEntry *entry)
{
    makeOnlyPage(loaded->context, loaded->document, entry->page.getObj(), entry->parent.getObj());
    loaded->page = pdf_load_page(loaded->context, loaded->document, 0);
    loaded->bounds = pdf_bound_page(loaded->context, loaded->page);
    const fz_irect box =
        fz_round_rect(fz_transform_rect(loaded->bounds, fz_scale(layoutScale, layoutScale)));
    loaded->imageBox = box;
    loaded->isTooLarge =
        static_cast<double>(box.x1 - box.x0) * (box.y1 - box.y0) > largestImagePixels;
    fz_rect mediaBox = {};
    pdf_page_transform(loaded->context, loaded->page, &mediaBox, &loaded->toPage);
}

void run(LoadedPage *loaded, fz_device *device)
{
    fz_cookie cookie = {};
    pdf_run_page(loaded->context, loaded->page, device, fz_scale(layoutScale, layoutScale),
                 &cookie);
    fz_close_device(loaded->context, device);
}

/// The page drawn on white. The caller drops the pixmap.
fz_pixmap *draw(LoadedPage *loaded)
{
    fz_context *context = loaded->context;
    fz_pixmap *pixmap = nullptr;
    fz_device *device = nullptr;
    fz_var(pixmap);
    fz_var(device);
    fz_try(context)
    {
        pixmap =
            fz_new_pixmap_with_bbox(context, fz_device_rgb(context), loaded->imageBox, nullptr, 0);
        fz_clear_pixmap_with_value(context, pixmap, 0xFF);
        device = fz_new_draw_device(context, fz_identity, pixmap);
        run(loaded, device);
    }
    fz_always(context)
    {
        fz_drop_device(context, device);
    }
    fz_catch(context)
    {
        fz_drop_pixmap(context, pixmap);
        fz_rethrow(context);
    }
    return pixmap;
}

pdf_document *openDocument(fz_context *context, std::string_view bytes, std::string_view appendix)
{
    fz_stream *stream = nullptr;
    pdf_document *document = nullptr;
    fz_var(stream);
    fz_var(document);
    fz_try(context)
    {
        stream = openTwoParts(context, bytes, appendix);
        document = pdf_open_document_with_stream(context, stream);
        if (pdf_needs_password(context, document) != 0)
            fz_throw(context, FZ_ERROR_GENERIC, "needs a password");
    }
    fz_always(context)
    {
        fz_drop_stream(context, stream);
    }
    fz_catch(context)
    {
        pdf_drop_document(context, document);
        fz_rethrow(context);
    }
    return document;
}

/// Reads the node and those above it. What stops that is told when a page needs them.
void readNodes(fz_context *context, pdf_document *document, int number)
{
    constexpr int levels = 50; // a damaged file can hold nodes that are each other's parents
    pdf_obj *node = nullptr;
    fz_var(node);
    fz_try(context)
    {
        node = pdf_load_object(context, document, number);
        pdf_obj *above = node;
        for (int i = 0; i < levels && pdf_is_dict(context, above); ++i)
            above = pdf_dict_get(context, above, PDF_NAME(Parent));
    }
    fz_always(context)
    {
        pdf_drop_obj(context, node);
    }
    fz_catch(context)
    {
        if (fz_caught(context) == FZ_ERROR_MEMORY)
            fz_rethrow(context);
    }
}

/// Number of the page object at the index of a page tree that is one node.
int flatPageNumber(fz_context *context, pdf_document *document, int index)
{
    pdf_obj *root = pdf_dict_get(context, pdf_trailer(context, document), PDF_NAME(Root));
    pdf_obj *tree = pdf_dict_get(context, root, PDF_NAME(Pages));
    pdf_obj *kids = pdf_dict_get(context, tree, PDF_NAME(Kids));
    return pdf_to_num(context, pdf_array_get(context, kids, index));
}

} // namespace

struct PageReader::Engine
{
    explicit Engine(const ReadablePages &readablePages)
        : pages(readablePages), allocations{&notes, allocate, reallocate, release},
          context(fz_new_context(&allocations, nullptr, storeBytes))
    {
        fonts.emplace(context.get());
    }
    ~Engine()
    {
        if (document != nullptr)
            pdf_drop_document(context.get(), document);
    }
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;

    /// Throws MuPDF exceptions only.
    void open()
    {
        document = openDocument(context.get(), pages.bytes(), pages.appendix());
        int index = 0;
        for (int &number : copiedPages)
            number = flatPageNumber(context.get(), document, index++);
        // MuPDF does so, too, about tables that qpdf understands.
        wasRepairedAtStart = document->repair_attempted != 0;
        readLargeNodes();
        pdf_mark_xref(context.get(), document);
        bytesAtStart = bytesInUse();
    }

    /// Reads the nodes in which each page looks for what it inherits, where they list so many pages
    /// that reading them anew whenever pages are forgotten would take longer than the pages.
    /// Throws MuPDF exceptions only.
    void readLargeNodes() const
    {
        int listed = 0;
        for (int index = 0; index < pages.count(); ++index) {
            const QPDFObjGen parent = entry(index).parent;
            const bool isSame = index > 0 && parent == entry(index - 1).parent;
            listed = isSame ? listed + 1 : 1;
            if (listed == pagesRemembered && parent.isIndirect())
                readNodes(context.get(), document, parent.getObj());
        }
    }

    /// Throws MuPDF exceptions only.
    void forgetPages()
    {
        if (++pagesRead % pagesRemembered != 0 && bytesInUse() < bytesAtStart + bytesRemembered)
            return;
        fonts.emplace(context.get());
        pdf_clear_xref_to_mark(context.get(), document);
        bytesAtStart = bytesInUse();
    }

    [[nodiscard]] PageEntry entry(int index) const
    {
        if (copiedPages.empty())
            return pages.entry(index);
        return {QPDFObjGen(copiedPages[static_cast<std::size_t>(index)], 0), QPDFObjGen()};
    }

    const ReadablePages &pages;
    ReadingNotes notes;
    fz_alloc_context allocations;
    std::unique_ptr<fz_context, ContextDeleter> context;
    std::optional<FontStore> fonts;
    pdf_document *document = nullptr;
    bool wasRepairedAtStart = false;
    int pagesRead = 0;
    std::size_t bytesAtStart = 0; ///< in use when pages were last forgotten
    std::vector<int> copiedPages; ///< page objects of a copy, which has numbers of its own
};

PageReader::PageReader(const ReadablePages &pages) : engine(std::make_unique<Engine>(pages))
{
    fz_context *context = engine->context.get();
    if (context == nullptr)
        throw std::bad_alloc();
    fz_set_warning_callback(context, noteWarning, &engine->notes);
    fz_set_error_callback(context, ignoreMessage, nullptr);
    if (pages.isCopy())
        engine->copiedPages.resize(static_cast<std::size_t>(pages.count()));
    fz_try(context)
    {
        engine->open();
    }
    fz_catch(context)
    {
        fail(context);
    }
}

PageReader::~PageReader() = default;

std::vector<Fragment> PageReader::fragments(int index)
{
    fz_context *context = engine->context.get();
    const PageEntry entry = engine->entry(index);
    LoadedPage loaded(context, engine->document);
    engine->notes.isDamaged = false;
    fz_try(context)
    {
        engine->forgetPages();
        load(&loaded, &entry);
    }
    fz_catch(context)
    {
        fail(context);
    }
    const double scale = static_cast<double>(layoutScale);
    const Matrix toPixels = Matrix::of(loaded.toPage).followedBy({scale, 0, 0, scale, 0, 0});
    GlyphCollector collector(static_cast<double>(loaded.bounds.x1 - loaded.bounds.x0) * scale,
                             static_cast<double>(loaded.bounds.y1 - loaded.bounds.y0) * scale);
    engine->fonts->forgetUnused();
    TextInterpreter interpreter(context, &*engine->fonts, &collector, toPixels);
    fz_try(context)
    {
        interpretPage(context, loaded.page, &interpreter, &engine->notes);
    }
    fz_catch(context)
    {
        fail(context);
    }
    std::vector<GlyphRun> runs = collector.takeRuns();
    return makeFragments(std::move(runs), collector.takeMarks());
}

bool PageReader::hasDamagedContents() const
{
    return engine->notes.isDamaged;
}

bool PageReader::wasRepaired() const
{
    return engine->document->repair_attempted != 0 && !engine->wasRepairedAtStart;
}

std::string PageReader::image(int index)
{
    fz_context *context = engine->context.get();
    const PageEntry entry = engine->entry(index);
    LoadedPage loaded(context, engine->document);
    fz_pixmap *pixmap = nullptr;
    fz_var(pixmap);
    fz_try(context)
    {
        load(&loaded, &entry);
        if (!loaded.isTooLarge)
            pixmap = draw(&loaded);
    }
    fz_catch(context)
    {
        fail(context);
    }
    if (loaded.isTooLarge)
        throw PageTooLarge();
    const auto drop = [context](fz_pixmap *drawn) { fz_drop_pixmap(context, drawn); };
    const std::unique_ptr<fz_pixmap, decltype(drop)> guard(pixmap, drop);
    const RgbImage image{fz_pixmap_samples(context, pixmap), fz_pixmap_width(context, pixmap),
                         fz_pixmap_height(context, pixmap), fz_pixmap_stride(context, pixmap)};
    return pngFile(image);
}

std::string PageReader::missingFont() const
{
    return engine->fonts->missingFont();
}

} // namespace pdf
