// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace pdf {

/// Largest amount of memory a tool's process may ask for, in bytes (files are mapped and do not
/// count).
constexpr long long memoryLimitBytes = 1LL << 30;

/// Longest processor time one page may take before it is given up.
constexpr int pageTimeLimitSeconds = 20;

/// Longest time a process may stand still without using the processor: a disk that has to be
/// fetched from a shelf is no fault of the document.
constexpr int stallTimeLimitSeconds = 600;

/// Longest processor time that reading or assembling one document may take.
constexpr int documentTimeLimitSeconds = 60;

/// The same for all pages of a document, which processes of their own read: so many short files
/// with long pages keep nobody waiting for hours, and a file of many pages has what they usually
/// need a hundred times over.
constexpr int allTextsTimeLimitSeconds(int pages)
{
    constexpr int pagesASecond = 20;
    return documentTimeLimitSeconds + pages / pagesASecond;
}
/// The same for the images of pages, or for so many documents that are written.
constexpr int allResultsTimeLimitSeconds(int count)
{
    return documentTimeLimitSeconds + count;
}

/// Makes further allocations beyond memoryLimitBytes fail, in this process and its children, and
/// keeps a crash from leaving a core file in the user's folder and an exception that nothing can
/// catch from leaving the runtime's words on standard error. Writing beyond a file size limit
/// becomes an ordinary error.
void limitResources();

} // namespace pdf
