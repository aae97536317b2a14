// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/layout/pngfile.h"

#include "pdf/error.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <png.h>

namespace pdf {

std::string pngFile(const RgbImage &image)
{
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(image.width);
    header.height = static_cast<png_uint_32>(image.height);
    header.format = PNG_FORMAT_RGB;
    header.flags = PNG_IMAGE_FLAG_FAST;

    char *bytes = nullptr;
    std::size_t size = 0;
    std::FILE *memory = ::open_memstream(&bytes, &size);
    if (memory == nullptr)
        throw std::bad_alloc();
    const bool isWritten =
        png_image_write_to_stdio(&header, memory, 0, image.samples,
                                 static_cast<png_int_32>(image.stride), nullptr) != 0;
    const bool isClosed = std::fclose(memory) == 0;
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
    if (!isWritten || !isClosed)
        throw Error(ExitCode::InputUnreadable, std::string("page image: ") + header.message);
    return std::string(bytes, size);
}

} // namespace pdf
