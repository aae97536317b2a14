// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/sharedrecords.h"

#include "pdf/error.h"

#include <cstring>

namespace {

/// Room for all records: what a page's text usually takes many times over, and a base that lets a
/// small file have a few very long ones.
std::size_t arenaBytes(std::size_t places)
{
    constexpr std::size_t base = std::size_t{64} << 20;
    constexpr std::size_t eachPlace = 4096;
    return base + places * eachPlace;
}

} // namespace

SharedRecords::SharedRecords(int count)
    : places(static_cast<std::size_t>(count)), capacity(arenaBytes(places)),
      memory(places * sizeof(Place) + capacity)
{
}

SharedRecords::Place &SharedRecords::place(int index) const
{
    return reinterpret_cast<Place *>(memory.extra())[index];
}

char *SharedRecords::arena() const
{
    return memory.extra() + places * sizeof(Place);
}

/// A writer that a file took over may have written any number.
bool SharedRecords::isInArena(std::uint64_t offset, std::uint64_t size) const
{
    return offset <= capacity && size <= capacity - offset;
}

void SharedRecords::put(int index, std::string_view bytes)
{
    Place &target = place(index);
    if (target.isWritten.load(std::memory_order_acquire))
        return;
    const std::uint64_t offset = memory->used.fetch_add(bytes.size());
    if (!isInArena(offset, bytes.size()))
        throw pdf::Error(pdf::ExitCode::InputUnreadable, "has more text than can be handled");
    std::memcpy(arena() + offset, bytes.data(), bytes.size());
    target.offset = offset;
    target.size = bytes.size();
    target.isWritten.store(true, std::memory_order_release);
}

std::optional<std::string_view> SharedRecords::at(int index) const
{
    const Place &source = place(index);
    if (!source.isWritten.load(std::memory_order_acquire))
        return std::nullopt;
    const std::uint64_t offset = source.offset;
    const std::uint64_t size = source.size;
    if (!isInArena(offset, size))
        return std::nullopt;
    return std::string_view(arena() + offset, static_cast<std::size_t>(size));
}
