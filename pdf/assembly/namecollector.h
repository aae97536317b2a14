// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <set>
#include <string>

namespace pdf {

/// Takes a content stream's decoded data and gathers everything that can be a name in it: whatever
/// follows a slash, also in strings and inline images. So damaged or unusual contents yield a name
/// too many rather than one too few. Memory does not grow with the data.
class NameCollector : public Pipeline
{
public:
    NameCollector() : Pipeline("names", nullptr) {}

    void write(const unsigned char *data, std::size_t length) override;
    void finish() override;

    /// With slash and without escapes, as qpdf gives dictionary keys.
    std::set<std::string> names;

private:
    void endName();

    bool isInName = false;
    std::string current;
    std::size_t received = 0;
};

/// The names in the streams' data one after another, no value when one of them cannot be decoded
/// in full.
[[nodiscard]] std::optional<std::set<std::string>>
namesInContents(const std::vector<QPDFObjectHandle> &streams);

/// The names in a string of operators.
[[nodiscard]] std::set<std::string> namesIn(const std::string &operators);

} // namespace pdf
