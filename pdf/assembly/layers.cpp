// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/layers.h"

#include <set>

namespace pdf {

namespace {

/// Layer trees are a few levels deep; a damaged one can be a loop.
constexpr int maximalDepth = 32;
/// More than any document says of its layers; few objects can be made to say it again and again.
constexpr int maximalItems = 1 << 20;

class LayerCopier
{
public:
    explicit LayerCopier(ObjectCopier &objectCopier) : copier(objectCopier) {}

    /// The array without the layers that are not copied, and without groups in which none is left.
    QPDFObjectHandle filtered(const QPDFObjectHandle &array)
    {
        visited.clear();
        return filtered(array, 0);
    }
    QPDFObjectHandle configuration(QPDFObjectHandle original);
    QPDFObjectHandle alternatives(QPDFObjectHandle array);

private:
    QPDFObjectHandle filtered(QPDFObjectHandle array, int depth);
    QPDFObjectHandle usageApplications(QPDFObjectHandle array);

    ObjectCopier &copier;
    std::set<QPDFObjGen> visited; ///< of the arrays in the one that is filtered
    int items = 0;                ///< looked at so far
};

QPDFObjectHandle LayerCopier::filtered(QPDFObjectHandle array, int depth)
{
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    bool hasLayer = false;
    if (!array.isArray() || depth > maximalDepth ||
        (array.isIndirect() && !visited.insert(array.getObjGen()).second))
        return QPDFObjectHandle::newNull();
    for (QPDFObjectHandle &item : array.getArrayAsVector()) {
        if (++items > maximalItems)
            break;
        QPDFObjectHandle kept = QPDFObjectHandle::newNull();
        if (item.isDictionary())
            kept = copier.mapped(item.getObjGen());
        else if (item.isArray())
            kept = filtered(item, depth + 1);
        else if (item.isString())
            result.appendItem(QPDFObjectHandle::newString(item.getStringValue()));
        if (kept.isDictionary() || kept.isArray()) {
            result.appendItem(kept);
            hasLayer = true;
        }
    }
    return hasLayer ? result : QPDFObjectHandle::newNull();
}

QPDFObjectHandle LayerCopier::usageApplications(QPDFObjectHandle array)
{
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    if (!array.isArray())
        return QPDFObjectHandle::newNull();
    for (QPDFObjectHandle &usage : array.getArrayAsVector()) {
        if (!usage.isDictionary())
            continue;
        QPDFObjectHandle layers = filtered(usage.getKey("/OCGs"));
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

QPDFObjectHandle LayerCopier::configuration(QPDFObjectHandle original)
{
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    if (!original.isDictionary())
        return copied;
    for (const char *key : {"/Name", "/Creator", "/BaseState", "/Intent", "/ListMode"})
        copied.replaceKey(key, copier.copy(original.getKey(key)));
    for (const char *key : {"/ON", "/OFF", "/Order", "/RBGroups", "/Locked"})
        copied.replaceKey(key, filtered(original.getKey(key)));
    copied.replaceKey("/AS", usageApplications(original.getKey("/AS")));
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
QPDFObjectHandle LayerCopier::alternatives(QPDFObjectHandle array)
{
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    if (!array.isArray())
        return QPDFObjectHandle::newNull();
    for (const QPDFObjectHandle &original : array.getArrayAsVector()) {
        const QPDFObjectHandle copied = configuration(original);
        if (saysAnything(copied))
            result.appendItem(copied);
    }
    return result.getArrayNItems() > 0 ? result : QPDFObjectHandle::newNull();
}

} // namespace

QPDFObjectHandle copyLayerProperties(ObjectCopier &copier)
{
    QPDFObjectHandle original = copier.sourceCatalog().getKey("/OCProperties");
    if (!original.isDictionary())
        return QPDFObjectHandle::newNull();
    LayerCopier layerCopier(copier);
    QPDFObjectHandle layers = layerCopier.filtered(original.getKey("/OCGs"));
    if (layers.isNull())
        return layers;
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    copied.replaceKey("/OCGs", layers);
    copied.replaceKey("/D", layerCopier.configuration(original.getKey("/D")));
    copied.replaceKey("/Configs", layerCopier.alternatives(original.getKey("/Configs")));
    return copied;
}

} // namespace pdf
