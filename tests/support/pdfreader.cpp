// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfreader.h"

#include <QFile>

#include <mupdf/fitz.h>

namespace {

void collect(void *user, const char *message)
{
    static_cast<QString *>(user)->append(QString::fromUtf8(message) + QLatin1Char('\n'));
}

/// An open file with everything that has to be dropped afterwards.
class Reader
{
public:
    explicit Reader(const QString &file) : name(QFile::encodeName(file))
    {
        context = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
        fz_set_warning_callback(context, collect, &messages);
        fz_set_error_callback(context, collect, &messages);
        fz_try(context)
        {
            fz_register_document_handlers(context);
            document = fz_open_document(context, name.constData());
            isUsable = fz_needs_password(context, document) == 0;
            pages = isUsable ? fz_count_pages(context, document) : -1;
        }
        fz_catch(context)
        {
            collect(&messages, fz_caught_message(context));
            isUsable = false;
        }
    }
    ~Reader()
    {
        fz_drop_document(context, document);
        fz_drop_context(context);
    }
    Q_DISABLE_COPY_MOVE(Reader)

    [[nodiscard]] int pageCount() const { return isUsable ? pages : -1; }

    fz_stext_page *textPage(int index)
    {
        fz_stext_page *volatile result = nullptr;
        fz_try(context)
        {
            result = fz_new_stext_page_from_page_number(context, document, index, nullptr);
        }
        fz_catch(context)
        {
            collect(&messages, fz_caught_message(context));
        }
        return result;
    }

    fz_pixmap *pixmap(int index, int dpi)
    {
        if (!isUsable)
            return nullptr;
        fz_pixmap *volatile result = nullptr;
        const float scale = static_cast<float>(dpi) / 72;
        fz_try(context)
        {
            result = fz_new_pixmap_from_page_number(
                context, document, index, fz_scale(scale, scale), fz_device_rgb(context), 0);
        }
        fz_catch(context)
        {
            collect(&messages, fz_caught_message(context));
        }
        return result;
    }

    QImage image(int index, int dpi)
    {
        fz_pixmap *drawn = pixmap(index, dpi);
        if (drawn == nullptr)
            return {};
        const QImage shared(fz_pixmap_samples(context, drawn), fz_pixmap_width(context, drawn),
                            fz_pixmap_height(context, drawn), fz_pixmap_stride(context, drawn),
                            QImage::Format_RGB888);
        QImage copy = shared.copy();
        fz_drop_pixmap(context, drawn);
        return copy;
    }

    fz_context *context = nullptr;
    QString messages;

private:
    QByteArray name;
    fz_document *document = nullptr;
    int pages = -1;
    bool isUsable = false;
};

QString textOf(const fz_stext_page *page)
{
    QStringList lines;
    for (const fz_stext_block *block = page->first_block; block != nullptr; block = block->next) {
        if (block->type != FZ_STEXT_BLOCK_TEXT)
            continue;
        for (const fz_stext_line *line = block->u.t.first_line; line != nullptr;
             line = line->next) {
            QString text;
            for (const fz_stext_char *c = line->first_char; c != nullptr; c = c->next)
                text += QString::fromUcs4(reinterpret_cast<const char32_t *>(&c->c), 1);
            lines.append(text);
        }
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

namespace pdfreader {

int pageCount(const QString &file)
{
    return Reader(file).pageCount();
}

QStringList pageTexts(const QString &file)
{
    Reader reader(file);
    QStringList texts;
    for (int i = 0; i < reader.pageCount(); ++i) {
        fz_stext_page *page = reader.textPage(i);
        texts.append(page != nullptr ? textOf(page) : QString());
        fz_drop_stext_page(reader.context, page);
    }
    return texts;
}

QImage renderPage(const QString &file, int index, int dpi)
{
    Reader reader(file);
    return reader.image(index, dpi);
}

Drawing drawPages(const QString &file, const QList<int> &indexes)
{
    Reader reader(file);
    Drawing drawing;
    for (const int index : indexes)
        drawing.pages.append(reader.image(index, 96));
    drawing.complaints = reader.messages;
    return drawing;
}

QString complaints(const QString &file)
{
    Reader reader(file);
    for (int i = 0; i < reader.pageCount(); ++i)
        fz_drop_pixmap(reader.context, reader.pixmap(i, 20));
    return reader.messages;
}

} // namespace pdfreader
