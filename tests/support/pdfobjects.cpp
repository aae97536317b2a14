// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfobjects.h"

#include <QFile>
#include <QStringList>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

namespace pdfobjects {

namespace {

std::shared_ptr<QPDF> open(const QString &file)
{
    std::shared_ptr<QPDF> pdf = QPDF::create();
    pdf->setSuppressWarnings(true);
    pdf->processFile(QFile::encodeName(file).constData());
    return pdf;
}

QByteArray syntaxOf(QPDFObjectHandle object)
{
    return QByteArray::fromStdString(object.isStream() ? object.getDict().unparseResolved()
                                                       : object.unparseResolved());
}

QByteArray dataOf(QPDFObjectHandle stream)
{
    const std::shared_ptr<Buffer> data = stream.getStreamData(qpdf_dl_specialized);
    return {reinterpret_cast<const char *>(data->getBuffer()),
            static_cast<qsizetype>(data->getSize())};
}

} // namespace

QByteArray decoded(const QString &file)
{
    QByteArray result;
    const std::shared_ptr<QPDF> pdf = open(file);
    for (QPDFObjectHandle &object : pdf->getAllObjects()) {
        result += syntaxOf(object) + '\n';
        if (object.isStream())
            result += dataOf(object) + '\n';
    }
    return result + syntaxOf(pdf->getTrailer());
}

int count(const QString &file, const QByteArray &text)
{
    int found = 0;
    const std::shared_ptr<QPDF> pdf = open(file);
    for (const QPDFObjectHandle &object : pdf->getAllObjects())
        found += syntaxOf(object).contains(text) ? 1 : 0;
    return found;
}

QString complaints(const QString &file)
{
    QString result;
    try {
        const std::shared_ptr<QPDF> pdf = open(file);
        for (QPDFObjectHandle &object : pdf->getAllObjects()) {
            if (object.isStream())
                dataOf(object);
        }
        pdf->getAllPages();
        for (const QPDFExc &warning : pdf->getWarnings())
            result += QString::fromUtf8(warning.what()) + QLatin1Char('\n');
    } catch (const std::exception &error) {
        result += QString::fromUtf8(error.what()) + QLatin1Char('\n');
    }
    return result;
}

QString linkTargets(const QString &file)
{
    const std::shared_ptr<QPDF> pdf = open(file);
    const std::vector<QPDFObjectHandle> &pages = pdf->getAllPages();
    QStringList targets;
    for (QPDFObjectHandle page : pages) {
        int target = -1;
        for (QPDFObjectHandle &annotation : page.getKey("/Annots").aitems()) {
            QPDFObjectHandle destination = annotation.getKey("/Dest");
            if (annotation.getKey("/A").isDictionary())
                destination = annotation.getKey("/A").getKey("/D");
            if (destination.isArray())
                target = pdf->findPage(destination.getArrayItem(0).getObjGen());
        }
        targets.append(QString::number(target));
    }
    return targets.join(QLatin1Char(' '));
}

QByteArray encrypted(const QByteArray &pdf, const char *userPassword, const char *ownerPassword,
                     Assembling assembling)
{
    QPDF input;
    input.processMemoryFile("input", pdf.constData(), static_cast<std::size_t>(pdf.size()));
    QPDFWriter writer(input);
    writer.setOutputMemory();
    writer.setR6EncryptionParameters(userPassword, ownerPassword, true, true,
                                     assembling == Assembling::Allowed, true, true, true,
                                     qpdf_r3p_full, true);
    writer.write();
    const std::shared_ptr<Buffer> output = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char *>(output->getBuffer()),
            static_cast<qsizetype>(output->getSize())};
}

bool isEncryptedWith(const QString &file, Assembling assembling)
{
    const std::shared_ptr<QPDF> pdf = open(file);
    return pdf->isEncrypted() && pdf->allowModifyAssembly() == (assembling == Assembling::Allowed);
}

} // namespace pdfobjects
