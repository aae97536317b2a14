// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/memoryinput.h"

#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

MemoryInput::MemoryInput(const std::uint8_t *data, std::size_t size)
    : descriptor(::memfd_create("input", MFD_CLOEXEC))
{
    if (descriptor < 0 || ::write(descriptor, data, size) != static_cast<ssize_t>(size))
        std::abort();
}

MemoryInput::~MemoryInput()
{
    ::close(descriptor);
}

std::string MemoryInput::path() const
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}
