// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pdfobjects.h"

#include <QFile>
#include <QStringList>

#include <functional>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFNameTreeObjectHelper.hh>
#include <qpdf/QPDFNumberTreeObjectHelper.hh>
#include <qpdf/QPDFPageLabelDocumentHelper.hh>
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

/// The destination that a name stands for in the catalog of the file.
QPDFObjectHandle resolved(QPDF &pdf, QPDFObjectHandle destination)
{
    QPDFObjectHandle catalog = pdf.getRoot();
    if (destination.isName())
        destination = catalog.getKey("/Dests").getKey(destination.getName());
    if (destination.isString()) {
        const std::string name = destination.getUTF8Value();
        QPDFNameTreeObjectHelper tree(catalog.getKey("/Names").getKey("/Dests"), pdf);
        tree.findObject(name, destination);
    }
    return destination;
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

bool canBeOpened(const QString &file)
{
    try {
        static_cast<void>(open(file));
        return true;
    } catch (const std::exception &) {
        return false;
    }
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
            destination = resolved(*pdf, destination);
            if (destination.isArray())
                target = pdf->findPage(destination.getArrayItem(0).getObjGen());
        }
        targets.append(QString::number(target));
    }
    return targets.join(QLatin1Char(' '));
}

QStringList labels(const QString &file)
{
    const std::shared_ptr<QPDF> pdf = open(file);
    QPDFPageLabelDocumentHelper helper(*pdf);
    QStringList result;
    for (std::size_t i = 0; i < pdf->getAllPages().size(); ++i) {
        QPDFObjectHandle label = helper.getLabelForPage(static_cast<long long>(i));
        const char *const roman[] = {"", "i", "ii", "iii", "iv", "v"};
        const int number = label.hasKey("/St") ? label.getKey("/St").getIntValueAsInt() : 1;
        const bool isRoman = label.getKey("/S").isNameAndEquals("/r") && number <= 5;
        const std::string prefix =
            label.hasKey("/P") ? label.getKey("/P").getUTF8Value() : std::string();
        result.append(QString::fromStdString(prefix) +
                      (isRoman ? QString(roman[number]) : QString::number(number)));
    }
    return result;
}

int listLength(const QString &file, const char *key)
{
    const std::shared_ptr<QPDF> pdf = open(file);
    QPDFObjectHandle catalog = pdf->getRoot();
    for (QPDFObjectHandle dictionary :
         {catalog.getKey("/AcroForm"), catalog.getKey("/OCProperties").getKey("/D")}) {
        if (dictionary.isDictionary() && dictionary.hasKey(key))
            return dictionary.getKey(key).getArrayNItems();
    }
    return -1;
}

QString fieldNames(const QString &file)
{
    const std::shared_ptr<QPDF> pdf = open(file);
    QPDFAcroFormDocumentHelper form(*pdf);
    QStringList names;
    for (const QPDFObjectHandle &page : pdf->getAllPages()) {
        for (const QPDFAnnotationObjectHelper &widget : form.getWidgetAnnotationsForPage(page))
            names.append(
                QString::fromStdString(form.getFieldForAnnotation(widget).getFullyQualifiedName()));
    }
    return names.join(QLatin1Char(' '));
}

QString structureFaults(const QString &file)
{
    const std::shared_ptr<QPDF> pdf = open(file);
    QPDFObjectHandle root = pdf->getRoot().getKey("/StructTreeRoot");
    if (!root.isDictionary())
        return QStringLiteral("no structure tree");
    QPDFNumberTreeObjectHelper parents(root.getKey("/ParentTree"), *pdf);
    const auto isListed = [](QPDFObjectHandle element) {
        for (QPDFObjectHandle kid : element.getKey("/P").getKey("/K").aitems()) {
            if (kid.getObjGen() == element.getObjGen())
                return true;
        }
        return false;
    };
    QString faults;
    const auto check = [&](QPDFObjectHandle key, const char *kind, auto isRight) {
        QPDFObjectHandle found;
        if (!key.isInteger() || !parents.findObject(key.getIntValue(), found))
            faults += QString(kind) + QStringLiteral(" has no entry\n");
        else if (QPDFObjectHandle element = found.isArray() ? found.getArrayItem(0) : found;
                 !isListed(element) || !isRight(element))
            faults += QString(kind) + QStringLiteral(" leads to a wrong element\n");
    };
    for (QPDFObjectHandle page : pdf->getAllPages()) {
        check(page.getKey("/StructParents"), "page", [&](QPDFObjectHandle element) {
            return element.getKey("/Pg").getObjGen() == page.getObjGen() &&
                   element.getKey("/K").isInteger();
        });
        for (QPDFObjectHandle annotation : page.getKey("/Annots").aitems()) {
            if (annotation.hasKey("/StructParent"))
                check(annotation.getKey("/StructParent"), "annotation",
                      [&](QPDFObjectHandle element) {
                          return element.getKey("/K").getKey("/Obj").getObjGen() ==
                                 annotation.getObjGen();
                      });
        }
    }
    return faults;
}

namespace {

/// The file as qpdf writes it.
QByteArray rewritten(const QByteArray &pdf, const std::function<void(QPDFWriter &)> &set)
{
    QPDF input;
    input.processMemoryFile("input", pdf.constData(), static_cast<std::size_t>(pdf.size()));
    QPDFWriter writer(input);
    writer.setOutputMemory();
    set(writer);
    writer.write();
    const std::shared_ptr<Buffer> output = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char *>(output->getBuffer()),
            static_cast<qsizetype>(output->getSize())};
}

} // namespace

QByteArray encrypted(const QByteArray &pdf, const char *userPassword, const char *ownerPassword,
                     Assembling assembling, int revision)
{
    const bool mayAssemble = assembling == Assembling::Allowed;
    return rewritten(pdf, [&](QPDFWriter &writer) {
        if (revision == 4)
            writer.setR4EncryptionParametersInsecure(userPassword, ownerPassword, true, true,
                                                     mayAssemble, true, true, true, qpdf_r3p_full,
                                                     true, true);
        else
            writer.setR6EncryptionParameters(userPassword, ownerPassword, true, true, mayAssemble,
                                             true, true, true, qpdf_r3p_full, true);
    });
}

QByteArray withObjectStreams(const QByteArray &pdf)
{
    return rewritten(pdf, [](QPDFWriter &writer) { writer.setObjectStreamMode(qpdf_o_generate); });
}

bool isEncryptedWith(const QString &file, Assembling assembling)
{
    const std::shared_ptr<QPDF> pdf = open(file);
    return pdf->isEncrypted() && pdf->allowModifyAssembly() == (assembling == Assembling::Allowed);
}

} // namespace pdfobjects
