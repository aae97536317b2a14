// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/memoryinput.h"
#include "pdf/assembly/documentinfo.h"
#include "pdf/document/document.h"
#include "pdf/error.h"

#include <cstdlib>

/// stavekit -getinfo: any input gives information or an Error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const MemoryInput input(data, size);
    try {
        pdf::Document document(input.path());
        const std::string info = pdf::documentInfo(document);
        if (info.rfind("NumberOfPages: " + std::to_string(document.pages().count()) + "\n", 0) != 0)
            std::abort();
    } catch (const pdf::Error &) {
        return 0;
    }
    return 0;
}
