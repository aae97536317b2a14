// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/document/outputfile.h"

#include <qpdf/Pipeline.hh>

namespace pdf {

/// Hands what qpdf's writer produces to an OutputFile.
class OutputPipeline : public Pipeline
{
public:
    explicit OutputPipeline(OutputFile &outputFile) : Pipeline("output", nullptr), file(outputFile)
    {
    }
    void write(const unsigned char *data, std::size_t length) override
    {
        file.write({reinterpret_cast<const char *>(data), length});
    }
    void finish() override {}

private:
    OutputFile &file;
};

} // namespace pdf
