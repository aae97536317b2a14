// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/memoryinput.h"
#include "pdf/assembly/assembly.h"
#include "pdf/document/document.h"
#include "pdf/document/outputfile.h"
#include "pdf/error.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace {

/// More pages than this take long without showing more.
constexpr int maximalPages = 50;

std::string outputPath()
{
    static const std::string path =
        std::filesystem::temp_directory_path() / ("sendrivo-fuzz-" + std::to_string(::getpid()));
    return path;
}

/// About half of the pages, which ones is up to the input: much of the work is to leave out what
/// goes with the others. The first one comes twice.
std::vector<int> choosePages(int count, const std::uint8_t *data, std::size_t size)
{
    std::uint64_t hash = 14695981039346656037U; // FNV-1a
    for (std::size_t i = 0; i < size; ++i)
        hash = (hash ^ data[i]) * 1099511628211U;
    std::vector<int> indexes;
    for (int i = 0; i < std::min(count, maximalPages); ++i) {
        if ((hash >> i & 1) != 0)
            indexes.push_back(i);
    }
    if (indexes.empty() && count > 0)
        indexes.push_back(0);
    if (!indexes.empty())
        indexes.push_back(indexes.front());
    return indexes;
}

} // namespace

/// stavekit -merge of some pages: any input gives an Error or a file with as many pages, which is
/// sound when the input is.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const MemoryInput input(data, size);
    std::vector<int> indexes;
    bool isSound = false;
    try {
        pdf::Document document(input.path());
        indexes = choosePages(document.pages().count(), data, size);
        if (indexes.empty())
            return 0;
        pdf::OutputFile output(outputPath());
        pdf::assemblePages(document, indexes, output);
        output.publish();
        isSound = !document.isDamaged();
    } catch (const pdf::Error &) {
        return 0;
    }
    pdf::Document written(outputPath());
    const bool isWorse = isSound && written.isDamaged();
    if (isWorse || written.pages().count() != static_cast<int>(indexes.size()))
        std::abort();
    std::filesystem::remove(outputPath());
    return 0;
}
