// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/layers.h"

#include <string>

namespace pdf {

namespace {

/// Layer trees are a few levels deep; a damaged one can be a loop.
constexpr int maximalDepth = 32;

/// The array without the layers that are not copied, and without groups in which none is left.
QPDFObjectHandle filtered(ObjectCopier &copier, QPDFObjectHandle array, int depth)
{
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    bool hasLayer = false;
    if (!array.isArray() || depth > maximalDepth)
        return QPDFObjectHandle::newNull();
    for (QPDFObjectHandle &item : array.getArrayAsVector()) {
        QPDFObjectHandle kept = QPDFObjectHandle::newNull();
        if (item.isDictionary())
            kept = copier.mapped(item.getObjGen());
        else if (item.isArray())
            kept = filtered(copier, item, depth + 1);
        else if (item.isString())
            result.appendItem(QPDFObjectHandle::newString(item.getStringValue()));
        if (kept.isDictionary() || kept.isArray()) {
            result.appendItem(kept);
            hasLayer = true;
        }
    }
    return hasLayer ? result : QPDFObjectHandle::newNull();
}

QPDFObjectHandle usageApplications(ObjectCopier &copier, QPDFObjectHandle array)
{
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    if (!array.isArray())
        return QPDFObjectHandle::newNull();
    for (QPDFObjectHandle &usage : array.getArrayAsVector()) {
        if (!usage.isDictionary())
            continue;
        QPDFObjectHandle layers = filtered(copier, usage.getKey("/OCGs"), 0);
        if (layers.isNull())
            continue;
        QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
        copied.replaceKey("/Event", copier.copy(usage.getKey("/Event")));
        copied.replaceKey("/Category", copier.copy(usage.getKey("/Category")));
        copied.replaceKey("/OCGs", layers);
        result.appendItem(copied);
    }
    return result.getArrayNItems() > 0 ? result : QPDFObjectHandle::newNull();
}

QPDFObjectHandle configuration(ObjectCopier &copier, QPDFObjectHandle original)
{
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    if (!original.isDictionary())
        return copied;
    for (const char *key : {"/Name", "/Creator", "/BaseState", "/Intent", "/ListMode"})
        copied.replaceKey(key, copier.copy(original.getKey(key)));
    for (const char *key : {"/ON", "/OFF", "/Order", "/RBGroups", "/Locked"})
        copied.replaceKey(key, filtered(copier, original.getKey(key), 0));
    copied.replaceKey("/AS", usageApplications(copier, original.getKey("/AS")));
    return copied;
}

bool saysAnything(QPDFObjectHandle copiedConfiguration)
{
    for (const char *key : {"/BaseState", "/ON", "/OFF", "/Order"}) {
        if (copiedConfiguration.hasKey(key))
            return true;
    }
    return false;
}

/// The other states that a reader can choose; those that say nothing of copied layers are left out.
QPDFObjectHandle alternatives(ObjectCopier &copier, QPDFObjectHandle array)
{
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    if (!array.isArray())
        return QPDFObjectHandle::newNull();
    for (const QPDFObjectHandle &original : array.getArrayAsVector()) {
        const QPDFObjectHandle copied = configuration(copier, original);
        if (saysAnything(copied))
            result.appendItem(copied);
    }
    return result.getArrayNItems() > 0 ? result : QPDFObjectHandle::newNull();
}

} // namespace

QPDFObjectHandle copyLayerProperties(ObjectCopier &copier)
{
    QPDFObjectHandle catalog = copier.sourceDocument().getTrailer().getKey("/Root");
    QPDFObjectHandle original = catalog.getKey("/OCProperties");
    if (!original.isDictionary())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle layers = filtered(copier, original.getKey("/OCGs"), 0);
    if (layers.isNull())
        return layers;
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    copied.replaceKey("/OCGs", layers);
    copied.replaceKey("/D", configuration(copier, original.getKey("/D")));
    copied.replaceKey("/Configs", alternatives(copier, original.getKey("/Configs")));
    return copied;
}

} // namespace pdf
