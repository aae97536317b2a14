// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <qpdf/QPDFLogger.hh>
#include <string_view>

namespace pdf {

/// Takes what qpdf has to say about a file, shows nothing of it, and notes whether qpdf could not
/// rely on the file's cross-reference table. Most other warnings are about deviations that change
/// neither pages nor contents, and that viewers read without a word.
class RebuildNotes
{
public:
    RebuildNotes();

    /// For QPDF::setLogger(). It may outlive this object.
    [[nodiscard]] const std::shared_ptr<QPDFLogger> &logger() const { return qpdfLogger; }
    [[nodiscard]] bool wasRebuilt() const { return *isRebuilt; }

private:
    std::shared_ptr<bool> isRebuilt;
    std::shared_ptr<QPDFLogger> qpdfLogger;
};

/// Whether the file goes on behind its last table with objects that no table knows, as when an
/// update that was appended is still being copied.
[[nodiscard]] bool endsInUpdate(std::string_view file);

} // namespace pdf
