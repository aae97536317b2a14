// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <string>

namespace pdf {

/// Rows of an image in memory: three bytes a pixel, red, green and blue.
struct RgbImage
{
    const unsigned char *samples = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0; ///< bytes from one row to the next
};

/// The image as a PNG file (ISO/IEC 15948), packed fast rather than tightly: somebody is waiting
/// for the page. Throws std::bad_alloc, and Error for an image that PNG cannot hold.
[[nodiscard]] std::string pngFile(const RgbImage &image);

} // namespace pdf
