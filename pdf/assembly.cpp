// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly.h"

#include "pdf/annotations.h"
#include "pdf/destinations.h"
#include "pdf/error.h"
#include "pdf/formfields.h"
#include "pdf/layers.h"
#include "pdf/objectcopier.h"

#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFWriter.hh>

namespace pdf {

namespace {

/// Hands what the writer produces to an OutputFile.
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

/// Builds the new document in memory; the input's streams are read when it is written.
class Assembly
{
public:
    explicit Assembly(Document &input)
        : document(input), target(emptyDocument()), copier(input.qpdf(), *target),
          destinations(input, copier), fields(copier), annotations(copier, destinations, fields)
    {
    }

    void addPages(const std::vector<int> &indexes)
    {
        const std::vector<QPDFObjectHandle> pages = announce(indexes);
        QPDFObjectHandle root = target->getRoot().getKey("/Pages");
        for (std::size_t i = 0; i < pages.size(); ++i) {
            QPDFObjectHandle page = copyPage(entryOf(indexes[i]));
            page.replaceKey("/Parent", root);
            page.replaceKey("/Annots", annotations.copyPage(i));
            target->replaceObject(pages[i].getObjGen(), page);
        }
        root.replaceKey("/Kids", QPDFObjectHandle::newArray(pages));
        root.replaceKey("/Count", QPDFObjectHandle::newInteger(static_cast<int>(pages.size())));
        copier.finish();
        copyDocumentEntries();
    }

    void write(OutputFile &output)
    {
        OutputPipeline pipeline(output);
        QPDFWriter writer(*target);
        writer.setOutputPipeline(&pipeline);
        writer.setStreamDataMode(qpdf_s_preserve);
        const PDFVersion version = documentVersion();
        writer.setMinimumPDFVersion(version);
        // Object streams came with PDF 1.5; a file for older readers stays one.
        const bool isForOldReaders = version < PDFVersion(1, 5);
        writer.setObjectStreamMode(isForOldReaders ? qpdf_o_disable : qpdf_o_generate);
        if (document.qpdf().isEncrypted())
            writer.copyEncryptionParameters(document.qpdf());
        else
            writer.setDeterministicID(true);
        writer.write();
    }

private:
    static std::shared_ptr<QPDF> emptyDocument()
    {
        std::shared_ptr<QPDF> result = QPDF::create();
        result->setSuppressWarnings(true);
        result->emptyPDF();
        return result;
    }

    [[nodiscard]] const PageEntry &entryOf(int index) const
    {
        return document.pages().pages[static_cast<std::size_t>(index)];
    }

    /// Sets aside the objects of all pages and annotations, so that links between them can be
    /// copied in any order.
    std::vector<QPDFObjectHandle> announce(const std::vector<int> &indexes)
    {
        std::vector<QPDFObjectHandle> pages;
        std::vector<bool> isRepetition;
        for (const int index : indexes) {
            const QPDFObjGen number = entryOf(index).page;
            const QPDFObjectHandle page = copier.placeholder();
            isRepetition.push_back(copier.isMapped(number));
            if (!isRepetition.back())
                copier.map(number, page);
            pages.push_back(page);
        }
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const QPDFObjectHandle original = document.qpdf().getObject(entryOf(indexes[i]).page);
            annotations.announcePage(original, pages[i], isRepetition[i]);
        }
        return pages;
    }

    QPDFObjectHandle copyPage(const PageEntry &entry)
    {
        // Everything else a page can hold leads to other pages, to the structure tree or into
        // applications' private data.
        static const char *const keys[] = {"/Contents", "/BleedBox", "/TrimBox",      "/ArtBox",
                                           "/UserUnit", "/Group",    "/Trans",        "/Dur",
                                           "/Tabs",     "/Metadata", "/LastModified", "/VP"};
        QPDFObjectHandle original = document.qpdf().getObject(entry.page);
        QPDFObjectHandle page = QPDFObjectHandle::newDictionary();
        page.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
        for (const char *key : keys)
            page.replaceKey(key, copier.copy(original.getKey(key)));
        copyBox(page, entry, "/MediaBox");
        copyBox(page, entry, "/CropBox");
        page.replaceKey("/Rotate", copier.copy(inherited(entry, "/Rotate")));
        if (!page.hasKey("/MediaBox"))
            page.replaceKey("/MediaBox", QPDFObjectHandle::parse("[0 0 612 792]"));
        page.replaceKey("/Resources", copyResources(entry));
        return page;
    }

    void copyBox(QPDFObjectHandle &page, const PageEntry &entry, const char *key)
    {
        QPDFObjectHandle box = inherited(entry, key);
        if (box.isRectangle())
            page.replaceKey(key, copier.copy(box));
    }

    QPDFObjectHandle inherited(const PageEntry &entry, const char *key)
    {
        return inheritedAttribute(document.qpdf(), document.pages(), entry, key);
    }

    /// Resources that stand directly in a node of the page tree serve all pages below it and are
    /// written once.
    QPDFObjectHandle copyResources(const PageEntry &entry)
    {
        QPDFObjectHandle resources = inherited(entry, "/Resources");
        if (!resources.isDictionary())
            return QPDFObjectHandle::newDictionary();
        if (resources.isIndirect() || document.qpdf().getObject(entry.page).hasKey("/Resources"))
            return copier.copy(resources);
        for (const auto &[original, copied] : nodeResources) {
            if (original.isSameObjectAs(resources))
                return copied;
        }
        nodeResources.emplace_back(resources, copier.copyAsIndirect(resources));
        return nodeResources.back().second;
    }

    void copyDocumentEntries()
    {
        QPDFObjectHandle from = document.qpdf().getTrailer().getKey("/Root");
        QPDFObjectHandle to = target->getRoot();
        for (const char *key :
             {"/Lang", "/PageLayout", "/Metadata", "/OutputIntents", "/Extensions"})
            to.replaceKey(key, copier.copy(from.getKey(key)));
        QPDFObjectHandle preferences = copier.copy(from.getKey("/ViewerPreferences"));
        if (preferences.isDictionary()) {
            preferences.removeKey("/PrintPageRange");
            to.replaceKey("/ViewerPreferences", preferences);
        }
        to.replaceKey("/AcroForm", fields.formDictionary());
        QPDFObjectHandle info = document.qpdf().getTrailer().getKey("/Info");
        if (info.isDictionary())
            target->getTrailer().replaceKey(
                "/Info", info.isIndirect() ? copier.copy(info) : copier.copyAsIndirect(info));
        copier.finish();
        to.replaceKey("/OCProperties", copyLayerProperties(copier));
        copier.finish();
    }

    /// The header's version or the catalog's, whichever is later (ISO 32000-1, 7.7.2).
    PDFVersion documentVersion()
    {
        PDFVersion version = document.qpdf().getVersionAsPDFVersion();
        QPDFObjectHandle stated = document.qpdf().getTrailer().getKey("/Root").getKey("/Version");
        int major = 0;
        int minor = 0;
        if (stated.isName() &&
            std::sscanf(stated.getName().c_str(), "/%1d.%1d", &major, &minor) == 2)
            version.updateIfGreater(PDFVersion(major, minor));
        return version;
    }

    Document &document;
    std::shared_ptr<QPDF> target;
    ObjectCopier copier;
    DestinationCopier destinations;
    FormFieldCopier fields;
    AnnotationCopier annotations;
    std::vector<std::pair<QPDFObjectHandle, QPDFObjectHandle>> nodeResources;
};

} // namespace

void assemblePages(Document &document, const std::vector<int> &indexes, OutputFile &output)
{
    const std::string &path = document.file().path();
    if (!document.mayAssemble())
        throw Error(ExitCode::Forbidden, path + ": its permissions forbid taking pages out");
    try {
        Assembly assembly(document);
        assembly.addPages(indexes);
        assembly.write(output);
    } catch (const QPDFExc &cause) {
        throw Error(ExitCode::InputUnreadable, path + ": is damaged: " + cause.getMessageDetail());
    } catch (const std::logic_error &cause) {
        throw Error(ExitCode::InputUnreadable, path + ": is damaged: " + cause.what());
    }
}

} // namespace pdf
