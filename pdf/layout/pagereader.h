// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/document.h"
#include "pdf/error.h"
#include "pdf/layout/fragment.h"

#include <memory>
#include <string>
#include <vector>

namespace pdf {

/// A document's bytes in the form that MuPDF reads, with the page objects' numbers in it. For a
/// damaged file this is a sound copy in memory, so that both libraries see the same pages.
class ReadablePages
{
public:
    /// Throws Error(InputUnreadable) when the damage is beyond repair.
    explicit ReadablePages(Document &inputDocument);

    [[nodiscard]] std::string_view bytes() const { return view; }
    /// What is to be read behind the bytes; usually nothing.
    [[nodiscard]] std::string_view appendix() const
    {
        return isCopy() ? std::string_view() : document.wholeTable();
    }
    [[nodiscard]] int count() const { return static_cast<int>(entries.size()); }
    /// The page object and the node above it, as numbered in the file (not in a copy).
    [[nodiscard]] const PageEntry &entry(int index) const
    {
        return entries[static_cast<std::size_t>(index)];
    }
    /// Whether bytes() is a copy, whose page tree is one node that lists all pages.
    [[nodiscard]] bool isCopy() const { return !copy.empty(); }
    /// Whether the document has turned out to be damaged so far, see Document::damage().
    [[nodiscard]] bool isDamaged() const { return !document.damage().empty(); }
    /// Goes over to a copy, for a file that only one of the two libraries understands. Throws as
    /// the constructor does, and leaves everything as it was then.
    void makeCopy();

private:
    Document &document;
    std::string copy;
    std::string_view view;
    std::vector<PageEntry> entries;
};

/// The cause why a page has no image that no repair removes.
class PageTooLarge : public Error
{
public:
    PageTooLarge() : Error(ExitCode::InputUnreadable, "is too large to be drawn") {}
};

/// Reads the text and draws the image of single pages. Not for use by several threads. All
/// functions throw std::bad_alloc when memory is short, and can be called again then.
class PageReader
{
public:
    /// The pages must outlive the reader. Throws Error(InputUnreadable).
    explicit PageReader(const ReadablePages &pages);
    ~PageReader();
    PageReader(const PageReader &) = delete;
    PageReader &operator=(const PageReader &) = delete;

    /// The text of the page with this index (from 0), see fragment.h.
    /// Throws Error(InputUnreadable) when the page cannot be loaded; contents that cannot be
    /// decoded give the text before the damage.
    [[nodiscard]] std::vector<Fragment> fragments(int index);
    /// Whether the contents that fragments() read last cannot be decoded as a whole.
    [[nodiscard]] bool hasDamagedContents() const;
    /// Whether objects that the pages read so far need were not where the file says.
    [[nodiscard]] bool wasRepaired() const;
    /// The page at layoutDpi as a PNG file: what a viewer shows, annotations included.
    /// Throws Error(InputUnreadable), PageTooLarge.
    [[nodiscard]] std::string image(int index);
    /// The name of a font that the pages read so far use and the file does not bring along, so that
    /// another one stands in for it; empty when there was none.
    [[nodiscard]] std::string missingFont() const;

private:
    struct Engine;
    std::unique_ptr<Engine> engine;
};

} // namespace pdf
