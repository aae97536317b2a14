// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/objectbytes.h"

#include <algorithm>

namespace pdf {

ObjectBytes::ObjectBytes(QPDF &document, std::string_view file) : pdf(document), bytes(file)
{
    // Offsets count from the header, which may stand behind other bytes (ISO 32000-1, annex H).
    const std::size_t header = bytes.substr(0, 1024).find("%PDF-");
    if (header != std::string_view::npos)
        bytes.remove_prefix(header);
    offsets = pdf.getXRefTable();
}

std::optional<std::size_t> ObjectBytes::offsetOf(QPDFObjGen object) const
{
    // Damage that shows only now makes qpdf find all objects anew.
    const auto entry = pdf.anyWarnings() ? offsets.end() : offsets.find(object);
    if (entry == offsets.end() || entry->second.getType() != 1)
        return std::nullopt;
    return static_cast<std::size_t>(entry->second.getOffset());
}

std::optional<PeekedNode> ObjectBytes::peekNode(QPDFObjGen object) const
{
    const std::optional<std::size_t> offset = offsetOf(object);
    return offset ? peekIndirectObject(bytes, *offset, object) : std::nullopt;
}

std::optional<RawEntries> ObjectBytes::peekEntries(QPDFObjGen object) const
{
    const std::optional<std::size_t> offset = offsetOf(object);
    return offset ? peekIndirectEntries(bytes, *offset, object) : std::nullopt;
}

std::string_view ObjectBytes::from(QPDFObjGen object) const
{
    const std::size_t offset = offsetOf(object).value_or(bytes.size());
    return offset < bytes.size() ? bytes.substr(offset) : std::string_view();
}

bool ObjectBytes::reachBeyondEnd() const
{
    return !bytes.empty() && std::any_of(offsets.begin(), offsets.end(), [this](const auto &entry) {
        return entry.second.getType() == 1 &&
               static_cast<std::size_t>(entry.second.getOffset()) >= bytes.size();
    });
}

} // namespace pdf
