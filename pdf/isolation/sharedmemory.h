// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <new>
#include <sys/mman.h>

namespace pdf {

/// A T in memory that this process and its forks share, zeroed and constructed once. The kernel
/// gives the pages as they are touched, so a large T costs nothing until it is used.
template <typename T>
class SharedMemory
{
public:
    explicit SharedMemory(std::size_t extraBytes = 0) : size(sizeof(T) + extraBytes)
    {
        void *memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        object = ::new (memory) T;
    }
    ~SharedMemory() { ::munmap(object, size); }
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

    T *operator->() const { return object; }
    T &operator*() const { return *object; }
    /// The first of the extra bytes behind the object.
    [[nodiscard]] char *extra() const { return reinterpret_cast<char *>(object + 1); }

private:
    std::size_t size;
    T *object = nullptr;
};

} // namespace pdf
