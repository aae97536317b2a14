// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/pngfile.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>
#include <zlib.h>

namespace pdf {

namespace {

void appendNumber(std::string &bytes, std::uint32_t number)
{
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(number >> shift & 0xFF);
}

void appendChunk(std::string &file, std::string_view type, std::string_view data)
{
    appendNumber(file, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = file.size();
    file += type;
    file += data;
    const auto *checked = reinterpret_cast<const Bytef *>(file.data() + start);
    appendNumber(file, static_cast<std::uint32_t>(
                           crc32(0, checked, static_cast<uInt>(file.size() - start))));
}

/// Packs rows, each as its difference from the row above: what is white or drawn straight down
/// becomes zeros.
class RowPacker
{
public:
    RowPacker()
    {
        if (deflateInit(&stream, Z_BEST_SPEED) != Z_OK)
            throw std::bad_alloc();
    }
    ~RowPacker() { deflateEnd(&stream); }
    RowPacker(const RowPacker &) = delete;
    RowPacker &operator=(const RowPacker &) = delete;

    std::string pack(const RgbImage &image)
    {
        constexpr char differenceFromAbove = 2;
        const auto length = static_cast<std::size_t>(image.width) * 3;
        std::vector<unsigned char> row(length + 1);
        std::vector<unsigned char> blank(length);
        const unsigned char *above = blank.data();
        row[0] = differenceFromAbove;
        for (int y = 0; y < image.height; ++y) {
            const unsigned char *samples = image.samples + y * image.stride;
            for (std::size_t i = 0; i < length; ++i)
                row[i + 1] = static_cast<unsigned char>(samples[i] - above[i]);
            above = samples;
            add(row, Z_NO_FLUSH);
        }
        row.clear();
        add(row, Z_FINISH);
        return std::move(packed);
    }

private:
    void add(std::vector<unsigned char> &bytes, int flush)
    {
        stream.next_in = bytes.data();
        stream.avail_in = static_cast<uInt>(bytes.size());
        unsigned char buffer[1 << 14];
        do {
            stream.next_out = buffer;
            stream.avail_out = sizeof buffer;
            deflate(&stream, flush);
            packed.append(reinterpret_cast<const char *>(buffer), sizeof buffer - stream.avail_out);
        } while (stream.avail_out == 0);
    }

    z_stream stream = {};
    std::string packed;
};

} // namespace

std::string pngFile(const RgbImage &image, double dpi)
{
    std::string header;
    appendNumber(header, static_cast<std::uint32_t>(image.width));
    appendNumber(header, static_cast<std::uint32_t>(image.height));
    header += std::string_view("\x08\x02\x00\x00\x00", 5); // 8 bits, RGB, no interlacing

    constexpr double inchesPerMetre = 1 / 0.0254;
    const auto dotsPerMetre = static_cast<std::uint32_t>(std::lround(dpi * inchesPerMetre));
    std::string resolution;
    appendNumber(resolution, dotsPerMetre);
    appendNumber(resolution, dotsPerMetre);
    resolution += '\x01';

    std::string file("\x89PNG\r\n\x1A\n");
    appendChunk(file, "IHDR", header);
    appendChunk(file, "pHYs", resolution);
    appendChunk(file, "IDAT", RowPacker().pack(image));
    appendChunk(file, "IEND", {});
    return file;
}

} // namespace pdf
