// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/namecollector.h"

#include "pdf/document/syntax.h"

#include <cstring>
#include <stdexcept>

namespace pdf {

namespace {

/// More decoded data than any page needs; a few kilobytes can be made to decode to terabytes.
constexpr std::size_t maximalContents = std::size_t{1} << 28;
/// Longest name a file may hold is 127 bytes (ISO 32000-1, annex C), each possibly written as
/// three.
constexpr std::size_t maximalName = 1024;

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

void NameCollector::write(const unsigned char *data, std::size_t length)
{
    received += length;
    if (received > maximalContents)
        throw std::runtime_error("contents are too long");
    const char *at = reinterpret_cast<const char *>(data);
    const char *const end = at + length;
    while (at < end) {
        if (!isInName) {
            const void *slash = std::memchr(at, '/', static_cast<std::size_t>(end - at));
            if (slash == nullptr)
                return;
            at = static_cast<const char *>(slash) + 1;
            isInName = true;
        }
        while (at < end && isRegular(*at))
            current += *at++;
        if (at < end || current.size() > maximalName)
            endName();
    }
}

void NameCollector::finish()
{
    endName();
}

void NameCollector::endName()
{
    if (isInName && current.size() <= maximalName) {
        std::string name = "/";
        for (std::size_t i = 0; i < current.size(); ++i) {
            const bool isEscape = current[i] == '#' && i + 2 < current.size() &&
                                  hexDigit(current[i + 1]) >= 0 && hexDigit(current[i + 2]) >= 0;
            if (isEscape) {
                name += static_cast<char>(hexDigit(current[i + 1]) * 16 + hexDigit(current[i + 2]));
                i += 2;
            } else {
                // qpdf's own mark of a number sign that begins no escape.
                name += current[i] == '#' ? '\0' : current[i];
            }
        }
        names.insert(name);
    }
    current.clear();
    isInName = false;
}

std::set<std::string> namesIn(const std::string &operators)
{
    NameCollector collector;
    collector.write(reinterpret_cast<const unsigned char *>(operators.data()), operators.size());
    collector.finish();
    return std::move(collector.names);
}

std::optional<std::set<std::string>> namesInContents(const std::vector<QPDFObjectHandle> &streams)
{
    NameCollector collector;
    for (QPDFObjectHandle stream : streams) {
        if (!stream.isStream())
            continue;
        try {
            bool isDecoded = false;
            const bool isComplete =
                stream.pipeStreamData(&collector, &isDecoded, 0, qpdf_dl_specialized, true, false);
            if (!isComplete || !isDecoded)
                return std::nullopt;
        } catch (const std::exception &) {
            return std::nullopt;
        }
    }
    return std::move(collector.names);
}

} // namespace pdf
