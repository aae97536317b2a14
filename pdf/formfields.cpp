// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/formfields.h"

namespace pdf {

namespace {

/// Field hierarchies are a few levels deep; a damaged one can be a loop.
constexpr int maximalFieldDepth = 64;

/// The value of a field's attribute, which it may inherit (ISO 32000-1, 12.7.3.1).
QPDFObjectHandle fieldAttribute(QPDFObjectHandle field, const char *key)
{
    for (int level = 0; field.isDictionary() && level < maximalFieldDepth; ++level) {
        QPDFObjectHandle value = field.getKey(key);
        if (!value.isNull())
            return value;
        field = field.getKey("/Parent");
    }
    return QPDFObjectHandle::newNull();
}

bool isSigned(const QPDFObjectHandle &field)
{
    return fieldAttribute(field, "/FT").isNameAndEquals("/Sig") &&
           !fieldAttribute(field, "/V").isNull();
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
    if (isSigned(original)) {
        makePicture(widget);
        return;
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
    for (const auto &[key, value] : original.getDictAsMap()) {
        if (key != "/Kids" && key != "/Parent" && key != "/P")
            copied.replaceKey(key, copier.copy(value));
    }
    copied.replaceKey("/Kids", QPDFObjectHandle::newArray());
    QPDFObjectHandle reference = copier.targetDocument().makeIndirectObject(copied);
    copier.map(number, reference);
    return {reference, true};
}

void FormFieldCopier::makePicture(QPDFObjectHandle widget)
{
    // A stamp is what shows an appearance and nothing else.
    static const char *const fieldKeys[] = {"/Parent", "/FT", "/T",  "/TU",   "/TM",     "/Ff",
                                            "/V",      "/DV", "/AA", "/Lock", "/MaxLen", "/Opt",
                                            "/A",      "/MK", "/SV", "/H",    "/TI",     "/I"};
    for (const char *key : fieldKeys)
        widget.removeKey(key);
    widget.replaceKey("/Subtype", QPDFObjectHandle::newName("/Stamp"));
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
    if (!sourceForm.isDictionary() || rootFields.getArrayNItems() == 0)
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle form = QPDFObjectHandle::newDictionary();
    for (const char *key : {"/DR", "/DA", "/Q", "/NeedAppearances"})
        form.replaceKey(key, copier.copy(sourceForm.getKey(key)));
    form.replaceKey("/CO", calculationOrder());
    form.replaceKey("/Fields", rootFields);
    return form;
}

} // namespace pdf
