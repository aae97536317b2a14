// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/formfields.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace pdf {

namespace {

/// Field hierarchies are a few levels deep; a damaged one can be a loop.
constexpr int maximalFieldDepth = 64;

/// What says something about a field rather than about one of its widgets (ISO 32000-1, 12.7.3).
constexpr std::array<std::string_view, 18> fieldKeys = {
    "/FT", "/T",  "/TU", "/TM", "/Ff", "/V",      "/DV",  "/AA", "/DA",
    "/Q",  "/DS", "/RV", "/TI", "/I",  "/MaxLen", "/Opt", "/SV", "/Lock"};

bool isFieldKey(const std::string &key)
{
    return std::find(fieldKeys.begin(), fieldKeys.end(), key) != fieldKeys.end();
}

bool isWidget(QPDFObjectHandle object)
{
    return object.getKey("/Subtype").isNameAndEquals("/Widget");
}

/// Whether the widget shows an appearance by itself, in the state that it is in.
bool hasAppearance(QPDFObjectHandle widget)
{
    QPDFObjectHandle appearances = widget.getKey("/AP");
    QPDFObjectHandle normal =
        appearances.isDictionary() ? appearances.getKey("/N") : QPDFObjectHandle::newNull();
    QPDFObjectHandle state = widget.getKey("/AS");
    return normal.isStream() ||
           (normal.isDictionary() && state.isName() && normal.getKey(state.getName()).isStream());
}

/// Whether the widget has appearances, but none for the state that it is in.
bool showsNothing(QPDFObjectHandle widget)
{
    QPDFObjectHandle appearances = widget.getKey("/AP");
    return appearances.isDictionary() && appearances.getKey("/N").isDictionary() &&
           widget.getKey("/AS").isName() && !hasAppearance(widget);
}

bool isField(QPDFObjectHandle dictionary)
{
    return dictionary.hasKey("/T") || dictionary.hasKey("/FT");
}

/// Whether the object can be a field above others. In damaged files /Parent leads anywhere, to
/// pages for instance.
bool isFieldNode(QPDFObjectHandle object)
{
    return object.isIndirect() && object.isDictionary() &&
           (isWidget(object) || (!object.hasKey("/Contents") && !object.hasKey("/Count"))) &&
           (isField(object) || object.hasKey("/Kids"));
}

} // namespace

FormFieldCopier::FormFieldCopier(ObjectCopier &objectCopier, DestinationCopier &destinationCopier)
    : copier(objectCopier), destinations(destinationCopier),
      sourceForm(objectCopier.sourceCatalog().getKey("/AcroForm")),
      rootFields(QPDFObjectHandle::newArray())
{
}

QPDFObjectHandle FormFieldCopier::parentOf(QPDFObjectHandle field)
{
    QPDFObjectHandle parent = field.getKey("/Parent");
    if (!parent.isNull() || field.hasKey("/T") || !field.isIndirect())
        return parent;
    // Neither a field by itself nor below one: some producers leave /Parent out.
    if (!kidsAreKnown)
        readKids();
    const auto found = parents.find(field.getObjGen());
    return found == parents.end() ? parent : found->second;
}

void FormFieldCopier::readKids()
{
    kidsAreKnown = true;
    std::vector<QPDFObjectHandle> waiting;
    const auto addItems = [&waiting](QPDFObjectHandle array) {
        if (array.isArray()) {
            const std::vector<QPDFObjectHandle> items = array.getArrayAsVector();
            waiting.insert(waiting.end(), items.begin(), items.end());
        }
    };
    if (sourceForm.isDictionary())
        addItems(sourceForm.getKey("/Fields"));
    std::set<QPDFObjGen> visited;
    while (!waiting.empty()) {
        QPDFObjectHandle field = waiting.back();
        waiting.pop_back();
        if (!isFieldNode(field) || !visited.insert(field.getObjGen()).second)
            continue;
        const std::size_t first = waiting.size();
        addItems(field.getKey("/Kids"));
        for (std::size_t i = first; i < waiting.size(); ++i)
            parents.emplace(waiting[i].getObjGen(), field);
    }
}

/// The value of a field's attribute, which it may inherit (ISO 32000-1, 12.7.3.1).
QPDFObjectHandle FormFieldCopier::attribute(QPDFObjectHandle field, const char *key)
{
    for (int level = 0; field.isDictionary() && level < maximalFieldDepth; ++level) {
        QPDFObjectHandle value = field.getKey(key);
        if (!value.isNull())
            return value;
        field = parentOf(field);
    }
    return QPDFObjectHandle::newNull();
}

bool FormFieldCopier::isSigned(const QPDFObjectHandle &field)
{
    return attribute(field, "/FT").isNameAndEquals("/Sig") && !attribute(field, "/V").isNull();
}

bool FormFieldCopier::canBeCopied(const QPDFObjectHandle &annotation, bool isRepetition)
{
    if (!isWidget(annotation) || hasAppearance(annotation))
        return true;
    return !isSigned(annotation) &&
           !(isRepetition && showsNothing(annotation) && !readerDrawsFields());
}

bool FormFieldCopier::canBePicture(const QPDFObjectHandle &widget)
{
    return hasAppearance(widget) && (isSigned(widget) || !readerDrawsFields());
}

bool FormFieldCopier::readerDrawsFields()
{
    QPDFObjectHandle isWanted = sourceForm.isDictionary() ? sourceForm.getKey("/NeedAppearances")
                                                          : QPDFObjectHandle::newNull();
    return isWanted.isBool() && isWanted.getBoolValue();
}

void FormFieldCopier::announce(const QPDFObjectHandle &widget, bool isFirst)
{
    if (isSigned(widget))
        return;
    hasAnnounced = true;
    const bool isSplit = !isFirst && isFieldNode(widget) && QPDFObjectHandle(widget).hasKey("/T");
    QPDFObjectHandle above = isSplit ? widget : parentOf(widget);
    for (int level = 0; isFieldNode(above) && level < maximalFieldDepth; ++level) {
        const QPDFObjGen number = above.getObjGen();
        // The number of a field that is a widget, too, is the widget's.
        if (ancestors.count(number) > 0 || (copier.isMapped(number) && !isWidget(above)))
            return;
        const QPDFObjectHandle copied = copier.placeholder();
        if (!isWidget(above))
            copier.map(number, copied);
        ancestors[number].copied = copied;
        above = parentOf(above);
    }
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
    QPDFObjectHandle above = original;
    if (ancestor(original) != nullptr)
        removeFieldKeys(widget);
    else
        above = parentOf(original);
    while (Ancestor *parent = ancestor(above)) {
        lower.replaceKey("/Parent", parent->copied);
        const bool isNew = !parent->isFilled;
        if (isNew)
            fill(above, *parent);
        parent->copied.getKey("/Kids").appendItem(lowerReference);
        if (!isNew)
            return;
        lower = parent->copied;
        lowerReference = parent->copied;
        above = parentOf(above);
    }
    if (isField(lower))
        rootFields.appendItem(lowerReference);
}

FormFieldCopier::Ancestor *FormFieldCopier::ancestor(const QPDFObjectHandle &field)
{
    const auto found = ancestors.find(field.getObjGen());
    return found == ancestors.end() ? nullptr : &found->second;
}

void FormFieldCopier::fill(const QPDFObjectHandle &original, Ancestor &field)
{
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    for (const auto &[key, value] : QPDFObjectHandle(original).getDictAsMap()) {
        if (key == "/AA")
            copied.replaceKey(key, destinations.copyAdditionalActions(value));
        else if (isWidget(original) ? isFieldKey(key)
                                    : key != "/Kids" && key != "/Parent" && key != "/P")
            ObjectCopier::setEntry(copied, key, copier.copy(value));
    }
    copied.replaceKey("/Kids", QPDFObjectHandle::newArray());
    copier.targetDocument().replaceObject(field.copied.getObjGen(), copied);
    field.isFilled = true;
}

void FormFieldCopier::removeFieldKeys(QPDFObjectHandle widget)
{
    for (const std::string_view key : fieldKeys) {
        if (key != "/AA")
            widget.removeKey(std::string(key));
    }
    // What a field does when it is typed into, shown, checked and calculated; the rest is what a
    // widget does under the mouse.
    QPDFObjectHandle actions = widget.getKey("/AA");
    if (actions.isDictionary()) {
        for (const char *event : {"/K", "/F", "/V", "/C"})
            actions.removeKey(event);
    }
}

void FormFieldCopier::makePicture(QPDFObjectHandle widget)
{
    // A stamp is what shows an appearance and nothing else.
    removeFieldKeys(widget);
    for (const char *key : {"/Parent", "/AA", "/A", "/MK", "/H"})
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
        const Ancestor *above = ancestor(field);
        QPDFObjectHandle copied =
            above != nullptr ? above->copied : copier.mapped(field.getObjGen());
        if (copied.isDictionary())
            result.appendItem(copied);
    }
    return result.getArrayNItems() > 0 ? result : QPDFObjectHandle::newNull();
}

QPDFObjectHandle FormFieldCopier::formDictionary(const QPDFObjectHandle &copiedResources)
{
    if (!sourceForm.isDictionary() || rootFields.getArrayNItems() == 0)
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle form = QPDFObjectHandle::newDictionary();
    for (const char *key : {"/DA", "/Q", "/NeedAppearances"})
        form.replaceKey(key, copier.copy(sourceForm.getKey(key)));
    form.replaceKey("/DR", copiedResources);
    form.replaceKey("/CO", calculationOrder());
    form.replaceKey("/Fields", rootFields);
    return form;
}

} // namespace pdf
