// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "pdf/assembly/destinations.h"
#include "pdf/assembly/objectcopier.h"

#include <map>

namespace pdf {

/// Copies the form fields (ISO 32000-1, 12.7) whose widgets are on the copied pages, with the
/// fields above them in the hierarchy; of a field's widgets only those on the copied pages.
/// Signatures, void in a part of the document, become pictures of themselves: without its value a
/// signature field would show as one still to be signed.
class FormFieldCopier
{
public:
    FormFieldCopier(ObjectCopier &objectCopier, DestinationCopier &destinationCopier);

    /// Whether anything of the annotation can be in the target: what would become a picture but
    /// shows nothing cannot, like a signature without appearance or, on a page written a second
    /// time, a button that is off.
    [[nodiscard]] bool canBeCopied(const QPDFObjectHandle &annotation, bool isRepetition);
    /// Whether makePicture() leaves what the widget shows; else the reader draws it from the field.
    [[nodiscard]] bool canBePicture(const QPDFObjectHandle &widget);
    /// Sets aside objects of the target for the fields above the widget, which actions can name. To
    /// be called for all widgets before the first attach(). Where one object is a field and its
    /// widget, the field gets an object of its own when it has a second widget: one that is listed
    /// below it, or another copy of this one (isFirst is false).
    void announce(const QPDFObjectHandle &widget, bool isFirst);
    /// Whether a widget was announced whose field remains one.
    [[nodiscard]] bool hasFields() const { return hasAnnounced; }
    /// The source's resources for the appearances of all fields.
    [[nodiscard]] QPDFObjectHandle defaultResources()
    {
        return sourceForm.isDictionary() ? sourceForm.getKey("/DR") : QPDFObjectHandle::newNull();
    }
    /// Ties the copied widget to copies of the fields above it. widget is the copied dictionary
    /// still to be put at the place of reference.
    void attach(QPDFObjectHandle original, QPDFObjectHandle widget,
                const QPDFObjectHandle &reference);
    /// Makes the copied widget a mere picture of what it shows, for a page that is written a second
    /// time: two fields of one name would be one field.
    static void makePicture(QPDFObjectHandle widget);
    /// The value of the catalog's /AcroForm with these default resources, null when no field was
    /// copied. To be called when all widgets are attached.
    [[nodiscard]] QPDFObjectHandle formDictionary(const QPDFObjectHandle &copiedResources);

private:
    /// The target's object for a field of the source above a widget.
    struct Ancestor
    {
        QPDFObjectHandle copied;
        bool isFilled = false;
    };

    QPDFObjectHandle parentOf(QPDFObjectHandle field);
    void readKids();
    QPDFObjectHandle attribute(QPDFObjectHandle field, const char *key);
    bool isSigned(const QPDFObjectHandle &field);
    bool readerDrawsFields();
    static void removeFieldKeys(QPDFObjectHandle widget);
    Ancestor *ancestor(const QPDFObjectHandle &field);
    void fill(const QPDFObjectHandle &original, Ancestor &field);
    QPDFObjectHandle calculationOrder();

    ObjectCopier &copier;
    DestinationCopier &destinations;
    std::map<QPDFObjGen, Ancestor> ancestors;
    bool hasAnnounced = false;
    bool kidsAreKnown = false;
    std::map<QPDFObjGen, QPDFObjectHandle> parents; ///< of what is listed as a field's kid
    QPDFObjectHandle sourceForm;
    QPDFObjectHandle rootFields;
};

} // namespace pdf
