// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/document/damage.h"

#include <qpdf/Pipeline.hh>
#include <utility>

namespace pdf {

namespace {

/// qpdf tells by words alone what it does about a damaged table.
class NotePipeline : public Pipeline
{
public:
    explicit NotePipeline(std::shared_ptr<bool> flag)
        : Pipeline("notes", nullptr), isRebuilt(std::move(flag))
    {
    }
    void write(unsigned char const *data, size_t size) override
    {
        const std::string_view words(reinterpret_cast<const char *>(data), size);
        if (words.find("reconstruct cross-reference table") != words.npos)
            *isRebuilt = true;
    }
    void finish() override {}

private:
    std::shared_ptr<bool> isRebuilt;
};

} // namespace

RebuildNotes::RebuildNotes()
    : isRebuilt(std::make_shared<bool>(false)), qpdfLogger(QPDFLogger::create())
{
    qpdfLogger->setInfo(qpdfLogger->discard());
    qpdfLogger->setError(qpdfLogger->discard());
    qpdfLogger->setWarn(std::make_shared<NotePipeline>(isRebuilt));
}

bool endsInUpdate(std::string_view file)
{
    const std::size_t last = file.rfind("startxref");
    return last != file.npos && file.substr(last).find(" obj") != file.npos;
}

} // namespace pdf
