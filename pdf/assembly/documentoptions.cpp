// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/documentoptions.h"

#include "pdf/assembly/outputpipeline.h"
#include "pdf/error.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

#include <array>
#include <cstdio>
#include <sys/random.h>

namespace pdf {

namespace {

void setInformation(QPDF &document, const std::map<std::string, std::string> &information)
{
    if (information.empty())
        return;
    QPDFObjectHandle trailer = document.getTrailer();
    if (!trailer.getKey("/Info").isDictionary())
        trailer.replaceKey("/Info", document.makeIndirectObject(QPDFObjectHandle::newDictionary()));
    QPDFObjectHandle info = trailer.getKey("/Info");
    for (const auto &[key, value] : information)
        info.replaceKey(key, QPDFObjectHandle::newUnicodeString(value));
    QPDFObjectHandle metadata = document.getRoot().getKey("/Metadata");
    if (!metadata.isStream())
        return;
    const auto buffer = metadata.getStreamData();
    const std::string xmp(reinterpret_cast<const char *>(buffer->getBuffer()), buffer->getSize());
    metadata.replaceStreamData(xmpWithInformation(xmp, information), QPDFObjectHandle::newNull(),
                               QPDFObjectHandle::newNull());
}

/// A password that nobody knows.
std::string randomPassword()
{
    std::array<unsigned char, 24> bytes = {};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw Error(ExitCode::OutputUnwritable, "no random numbers for a password");
    std::string result;
    for (const unsigned char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", byte);
        result += digits;
    }
    return result;
}

/// What the document forbids stays forbidden, unless who applies the options is its owner.
void encrypt(QPDFWriter &writer, QPDF &document, const DocumentOptions &options)
{
    const bool isOwner = document.ownerPasswordMatched();
    const bool mayPrintWell = isOwner || document.allowPrintHighRes();
    const bool mayPrint = mayPrintWell || document.allowPrintLowRes();
    const qpdf_r3_print_e print = !options.mayPrint || !mayPrint ? qpdf_r3p_none
                                  : mayPrintWell                 ? qpdf_r3p_full
                                                                 : qpdf_r3p_low;
    const std::string owner =
        options.ownerPassword.empty() ? randomPassword() : options.ownerPassword;
    writer.setR6EncryptionParameters(
        options.userPassword.c_str(), owner.c_str(),
        /*allow_accessibility=*/isOwner || document.allowAccessibility(),
        options.mayCopy && (isOwner || document.allowExtractAll()),
        /*allow_assemble=*/options.mayModify && (isOwner || document.allowModifyAssembly()),
        options.mayAnnotate && (isOwner || document.allowModifyAnnotation()),
        /*allow_form_filling=*/options.mayAnnotate && (isOwner || document.allowModifyForm()),
        options.mayModify && (isOwner || document.allowModifyOther()), print,
        /*encrypt_metadata_aes=*/true);
}

} // namespace

void applyOptions(const std::string &source, const DocumentOptions &options, OutputFile &output)
{
    try {
        const std::shared_ptr<QPDF> document = QPDF::create();
        document->setSuppressWarnings(true);
        document->processFile(source.c_str(), "");
        setInformation(*document, options.information);
        OutputPipeline pipeline(output);
        QPDFWriter writer(*document);
        writer.setOutputPipeline(&pipeline);
        writer.setStreamDataMode(qpdf_s_preserve);
        writer.setObjectStreamMode(qpdf_o_preserve);
        if (options.isEncrypting())
            encrypt(writer, *document, options);
        else if (!document->isEncrypted())
            writer.setDeterministicID(true);
        writer.write();
    } catch (const QPDFExc &cause) {
        throw Error(ExitCode::InputUnreadable, cause.getMessageDetail());
    }
}

} // namespace pdf
