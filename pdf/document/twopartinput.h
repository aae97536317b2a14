// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <qpdf/InputSource.hh>
#include <string>
#include <string_view>

namespace pdf {

/// Lets qpdf read a mapped file as if something were appended to it.
class TwoPartInput : public InputSource
{
public:
    /// The file must stay mapped.
    TwoPartInput(std::string path, std::string_view mappedFile, std::string appended);

    qpdf_offset_t findAndSkipNextEOL() override;
    std::string const &getName() const override { return name; }
    qpdf_offset_t tell() override { return static_cast<qpdf_offset_t>(position); }
    void seek(qpdf_offset_t offset, int whence) override;
    void rewind() override { position = 0; }
    size_t read(char *bytes, size_t length) override;
    void unreadCh(char ch) override;

private:
    [[nodiscard]] std::size_t size() const { return file.size() + tail.size(); }
    [[nodiscard]] std::string_view rest() const;

    std::string name;
    std::string_view file;
    std::string tail;
    std::size_t position = 0;
};

} // namespace pdf
