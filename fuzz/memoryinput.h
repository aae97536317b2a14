// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// A file that exists in memory only, to hand bytes to code that opens files.
class MemoryInput
{
public:
    MemoryInput(const std::uint8_t *data, std::size_t size);
    ~MemoryInput();
    MemoryInput(const MemoryInput &) = delete;
    MemoryInput &operator=(const MemoryInput &) = delete;

    [[nodiscard]] std::string path() const;

private:
    int descriptor;
};
