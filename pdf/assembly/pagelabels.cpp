// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/pagelabels.h"

#include "pdf/assembly/keytree.h"

namespace pdf {

namespace {

/// The label of one page: its range in the source and its number within it.
struct Label
{
    long long rangeStart = -1;
    long long number = 0;
    QPDFObjectHandle range;
};

Label labelOf(KeyTree &tree, int index)
{
    if (const auto found = tree.findLast(index)) {
        int first = 1;
        QPDFObjectHandle range = found->second;
        if (range.isDictionary())
            range.getKey("/St").getValueAsInt(first);
        return {found->first, first + (index - found->first), range};
    }
    // Pages before the first range are numbered as they would be without labels.
    return {-1, index + 1, QPDFObjectHandle::parse("<< /S /D >>")};
}

QPDFObjectHandle rangeFrom(ObjectCopier &copier, const Label &label)
{
    QPDFObjectHandle original = label.range;
    QPDFObjectHandle copied = QPDFObjectHandle::newDictionary();
    if (!original.isDictionary())
        return copied;
    for (const char *key : {"/Type", "/S", "/P"})
        copied.replaceKey(key, copier.copy(original.getKey(key)));
    if (copied.hasKey("/S") && label.number != 1)
        copied.replaceKey("/St", QPDFObjectHandle::newInteger(label.number));
    return copied;
}

} // namespace

QPDFObjectHandle copyPageLabels(ObjectCopier &copier, const std::vector<int> &indexes)
{
    QPDFObjectHandle root = copier.sourceCatalog().getKey("/PageLabels");
    if (!root.isDictionary())
        return QPDFObjectHandle::newNull();
    KeyTree tree(root, KeyTree::Kind::Numbers);
    QPDFObjectHandle ranges = QPDFObjectHandle::newArray();
    Label previous;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        const Label label = labelOf(tree, indexes[i]);
        const bool goesOn =
            i > 0 && label.rangeStart == previous.rangeStart && label.number == previous.number + 1;
        if (!goesOn) {
            ranges.appendItem(QPDFObjectHandle::newInteger(static_cast<long long>(i)));
            ranges.appendItem(rangeFrom(copier, label));
        }
        previous = label;
    }
    QPDFObjectHandle labels = QPDFObjectHandle::newDictionary();
    labels.replaceKey("/Nums", ranges);
    return labels;
}

} // namespace pdf
