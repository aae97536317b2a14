// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/memoryinput.h"
#include "pdf/assembly/assembly.h"
#include "pdf/document/document.h"
#include "pdf/document/outputfile.h"
#include "pdf/error.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace {

/// More pages than this take long without showing more.
constexpr int maximalPages = 50;

std::string outputPath()
{
    static const std::string path =
        std::filesystem::temp_directory_path() / ("sendrivo-fuzz-" + std::to_string(::getpid()));
    return path;
}

} // namespace

/// stavekit -merge of all pages, the first one repeated: any input gives an Error or a file with as
/// many pages, which is sound when the input is.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const MemoryInput input(data, size);
    std::vector<int> indexes;
    bool isSound = false;
    try {
        pdf::Document document(input.path());
        for (int i = 0; i < std::min(document.pages().count(), maximalPages); ++i)
            indexes.push_back(i);
        if (indexes.empty())
            return 0;
        indexes.push_back(0);
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
