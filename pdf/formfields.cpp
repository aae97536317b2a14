// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/formfields.h"

namespace pdf {

namespace {

/// Field hierarchies are a few levels deep; a damaged one can be a loop.
constexpr int maximalFieldDepth = 64;

bool isSignature(QPDFObjectHandle field)
{
    for (int level = 0; field.isDictionary() && level < maximalFieldDepth; ++level) {
        QPDFObjectHandle type = field.getKey("/FT");
        if (type.isName())
            return type.getName() == "/Sig";
        field = field.getKey("/Parent");
    }
    return false;
}

bool isField(QPDFObjectHandle dictionary)
{
    return dictionary.hasKey("/T") || dictionary.hasKey("/FT");
}

} // namespace

FormFieldCopier::FormFieldCopier(ObjectCopier &objectCopier)
    : copier(objectCopier), rootFields(QPDFObjectHandle::newArray())
{
    QPDFObjectHandle catalog = copier.sourceDocument().getTrailer().getKey("/Root");
    sourceForm = catalog.getKey("/AcroForm");
}

void FormFieldCopier::attach(QPDFObjectHandle original, QPDFObjectHandle widget,
                             const QPDFObjectHandle &reference)
{
    if (!sourceForm.isDictionary())
        return;
    if (isSignature(original)) {
        widget.removeKey("/V");
        widget.removeKey("/Lock");
    }
    widget.removeKey("/Parent");
    QPDFObjectHandle lower = widget;
    QPDFObjectHandle lowerReference = reference;
    QPDFObjectHandle above = original.getKey("/Parent");
    for (int level = 0; above.isDictionary() && level < maximalFieldDepth; ++level) {
        if (!above.isIndirect())
            return;
        const Ancestor parent = ancestor(above);
        QPDFObjectHandle dictionary = parent.reference;
        lower.replaceKey("/Parent", parent.reference);
        dictionary.getKey("/Kids").appendItem(lowerReference);
        if (!parent.isNew)
            return;
        lower = dictionary;
        lowerReference = parent.reference;
        above = above.getKey("/Parent");
    }
    if (isField(lower))
        rootFields.appendItem(lowerReference);
}

FormFieldCopier::Ancestor FormFieldCopier::ancestor(QPDFObjectHandle original)
{
    const QPDFObjGen number = original.getObjGen();
    QPDFObjectHandle known = copier.mapped(number);
    if (known.isDictionary() && known.hasKey("/Kids"))
        return {known, false};
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    const bool isVoidSignature = isSignature(original);
    for (const auto &[key, value] : original.getDictAsMap()) {
        const bool isLink = key == "/Kids" || key == "/Parent" || key == "/P";
        const bool isVoid = isVoidSignature && (key == "/V" || key == "/Lock");
        if (!isLink && !isVoid)
            copied.replaceKey(key, copier.copy(value));
    }
    copied.replaceKey("/Kids", QPDFObjectHandle::newArray());
    QPDFObjectHandle reference = copier.targetDocument().makeIndirectObject(copied);
    copier.map(number, reference);
    return {reference, true};
}

void FormFieldCopier::detach(QPDFObjectHandle widget)
{
    for (const char *key : {"/Parent", "/T", "/TM", "/TU", "/A", "/AA"})
        widget.removeKey(key);
}

QPDFObjectHandle FormFieldCopier::calculationOrder()
{
    QPDFObjectHandle order = sourceForm.getKey("/CO");
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    if (!order.isArray())
        return QPDFObjectHandle::newNull();
    for (const QPDFObjectHandle &field : order.getArrayAsVector()) {
        QPDFObjectHandle copied = copier.mapped(field.getObjGen());
        if (copied.isDictionary())
            result.appendItem(copied);
    }
    return result.getArrayNItems() > 0 ? result : QPDFObjectHandle::newNull();
}

QPDFObjectHandle FormFieldCopier::formDictionary()
{
    if (rootFields.getArrayNItems() == 0)
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle form = QPDFObjectHandle::newDictionary();
    for (const char *key : {"/DR", "/DA", "/Q", "/NeedAppearances"})
        form.replaceKey(key, copier.copy(sourceForm.getKey(key)));
    form.replaceKey("/CO", calculationOrder());
    form.replaceKey("/Fields", rootFields);
    return form;
}

} // namespace pdf
