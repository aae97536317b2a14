// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/isolation/sharedmemory.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// A record of bytes for each of a fixed number of places, written by forks of this process and
/// read by this one. There is no lock: a record takes its room with one atomic addition and becomes
/// visible when it is whole, so a writer that is killed leaves no half record.
class SharedRecords
{
public:
    explicit SharedRecords(int count);

    /// Writes the record of an index; the first one written stays. Throws pdf::Error when all
    /// records together are too long.
    void put(int index, std::string_view bytes);
    /// The record, or nothing when none was written that can be read. What it says is not to be
    /// trusted.
    [[nodiscard]] std::optional<std::string_view> at(int index) const;

private:
    struct Header
    {
        std::atomic<std::uint64_t> used{0};
    };
    struct Place
    {
        std::uint64_t offset;
        std::uint64_t size;
        std::atomic<bool> isWritten;
    };
    [[nodiscard]] Place &place(int index) const;
    [[nodiscard]] char *arena() const;
    [[nodiscard]] bool isInArena(std::uint64_t offset, std::uint64_t size) const;

    std::size_t places;
    std::size_t capacity;
    pdf::SharedMemory<Header> memory;
};
