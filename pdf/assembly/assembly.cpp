// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/assembly.h"

#include "pdf/assembly/annotations.h"
#include "pdf/assembly/catalog.h"
#include "pdf/assembly/destinations.h"
#include "pdf/assembly/formfields.h"
#include "pdf/assembly/layers.h"
#include "pdf/assembly/objectcopier.h"
#include "pdf/assembly/outline.h"
#include "pdf/assembly/outputpipeline.h"
#include "pdf/assembly/pagecopier.h"
#include "pdf/assembly/pagelabels.h"
#include "pdf/assembly/plainobject.h"
#include "pdf/assembly/resourceowners.h"
#include "pdf/assembly/resources.h"
#include "pdf/assembly/structuretree.h"
#include "pdf/error.h"

#include <cstdio>
#include <qpdf/QPDFWriter.hh>
#include <set>
#include <utility>

namespace pdf {

namespace {

/// Builds the new document in memory; the input's streams are read when it is written.
class Assembly
{
public:
    explicit Assembly(Document &input)
        : document(input), target(emptyDocument()), copier(input.qpdf(), *target),
          destinations(input, copier), fields(copier, destinations),
          annotations(copier, destinations, fields), resources(copier),
          pageCopier(input, copier, destinations, resources)
    {
    }

    void addPages(const std::vector<int> &indexes)
    {
        const std::vector<QPDFObjectHandle> pages = announce(indexes);
        QPDFObjectHandle root = target->getRoot().getKey("/Pages");
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const PageEntry &entry = entryOf(indexes[i]);
            QPDFObjectHandle page = pageCopier.copy(entry);
            page.replaceKey("/Parent", root);
            page.replaceKey("/Annots", annotations.copyPage(i));
            if (!isRepetition[i])
                page.replaceKey(
                    "/StructParents",
                    copier.structureKey(
                        document.qpdf().getObject(entry.page).getKey("/StructParents")));
            target->replaceObject(pages[i].getObjGen(), page);
        }
        root.replaceKey("/Kids", QPDFObjectHandle::newArray(pages));
        root.replaceKey("/Count", QPDFObjectHandle::newInteger(static_cast<int>(pages.size())));
        copier.finish();
        addDocumentStructure(indexes);
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
        if (document.qpdf().isEncrypted()) {
            stateKeyLength(document.qpdf());
            writer.copyEncryptionParameters(document.qpdf());
        } else {
            writer.setDeterministicID(true);
        }
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

    /// Where a file leaves the length of its key out, qpdf reads it with the right one but copies
    /// it as zero.
    static void stateKeyLength(QPDF &encrypted)
    {
        const auto bits = static_cast<long long>(encrypted.getEncryptionKey().size() * 8);
        QPDFObjectHandle parameters = encrypted.getTrailer().getKey("/Encrypt");
        if (parameters.isDictionary())
            parameters.replaceKey("/Length", QPDFObjectHandle::newInteger(bits));
    }

    [[nodiscard]] const PageEntry &entryOf(int index) const
    {
        return document.pages().pages[static_cast<std::size_t>(index)];
    }

    /// Sets aside the objects of all pages and annotations, so that links between them can be
    /// copied in any order, and those of shared resources.
    std::vector<QPDFObjectHandle> announce(const std::vector<int> &indexes)
    {
        std::vector<QPDFObjectHandle> pages;
        resources.setOwn(ownResources(document, indexes));
        // As far as to the fonts and graphics states in the resources.
        constexpr int levels = 2;
        AheadReader ahead(document.qpdf(), document.objectBytes());
        for (const int index : indexes) {
            const QPDFObjGen number = entryOf(index).page;
            ahead.read(number, levels);
            const QPDFObjectHandle page = copier.placeholder();
            isRepetition.push_back(copier.isMapped(number));
            if (!isRepetition.back())
                copier.map(number, page);
            pages.push_back(page);
        }
        std::set<std::pair<QPDFObjGen, QPDFObjGen>> announced;
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const PageEntry &entry = entryOf(indexes[i]);
            annotations.announcePage(document.qpdf().getObject(entry.page), pages[i],
                                     isRepetition[i]);
            // In a damaged file a page is below two nodes, which hand down different resources.
            if (announced.emplace(entry.page, entry.parent).second)
                pageCopier.announce(entry);
        }
        if (fields.hasFields())
            resources.addFormDefaults(fields.defaultResources());
        resources.mapShared();
        return pages;
    }

    /// What stands above the pages and is found from them: each part looks at what was copied
    /// before it.
    void addDocumentStructure(const std::vector<int> &indexes)
    {
        QPDFObjectHandle catalog = target->getRoot();
        copyDocumentEntries(copier, destinations);
        catalog.replaceKey("/PageLabels", copyPageLabels(copier, indexes));
        if (fields.hasFields())
            catalog.replaceKey("/AcroForm", fields.formDictionary(resources.copyFormDefaults(
                                                fields.defaultResources())));
        const QPDFObjectHandle structure = StructureCopier(document, copier).copyTree();
        catalog.replaceKey("/StructTreeRoot", structure);
        // Else it would claim tags where there are none.
        if (QPDFObjectHandle(structure).isNull())
            catalog.removeKey("/MarkInfo");
        catalog.replaceKey("/Outlines",
                           OutlineCopier(document, copier, destinations).copyOutline());
        copyNames(copier, destinations);
        copier.finish();
        catalog.replaceKey("/OCProperties", copyLayerProperties(copier));
        copier.finish();
    }

    /// The header's version or the catalog's, whichever is later (ISO 32000-1, 7.7.2).
    PDFVersion documentVersion()
    {
        PDFVersion version = toVersion(document.qpdf().getPDFVersion(), PDFVersion(1, 7));
        QPDFObjectHandle stated = document.qpdf().getTrailer().getKey("/Root").getKey("/Version");
        if (stated.isName())
            version.updateIfGreater(toVersion(stated.getName().substr(1), version));
        return version;
    }

    static PDFVersion toVersion(const std::string &text, const PDFVersion &otherwise)
    {
        int major = 0;
        int minor = 0;
        const bool isVersion = std::sscanf(text.c_str(), "%1d.%1d", &major, &minor) == 2;
        return isVersion ? PDFVersion(major, minor) : otherwise;
    }

    Document &document;
    std::shared_ptr<QPDF> target;
    ObjectCopier copier;
    DestinationCopier destinations;
    FormFieldCopier fields;
    AnnotationCopier annotations;
    ResourceCopier resources;
    PageCopier pageCopier;
    std::vector<bool> isRepetition;
};

} // namespace

void assemblePages(Document &document, const std::vector<int> &indexes, OutputFile &output,
                   const std::function<void()> &written)
{
    const std::string &path = document.file().path();
    if (!document.mayAssemble())
        throw Error(ExitCode::Forbidden, path + ": its permissions forbid taking pages out");
    try {
        Assembly assembly(document);
        assembly.addPages(indexes);
        assembly.write(output);
        written();
    } catch (const QPDFExc &cause) {
        throw Error(ExitCode::InputUnreadable, path + ": is damaged: " + cause.getMessageDetail());
    } catch (const Error &) {
        throw;
    } catch (const std::bad_alloc &) {
        throw Error(ExitCode::InputUnreadable, path + ": needs too much memory");
    } catch (const std::exception &cause) {
        throw Error(ExitCode::InputUnreadable, path + ": is damaged: " + cause.what());
    }
}

} // namespace pdf
