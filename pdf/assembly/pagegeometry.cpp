// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/assembly/pagegeometry.h"

#include <algorithm>
#include <utility>

namespace pdf {

namespace {

struct Box
{
    double left = 0;
    double bottom = 0;
    double right = 612;
    double top = 792;
    [[nodiscard]] bool isEmpty() const { return right - left < 1 || top - bottom < 1; }
};

/// The rectangle with its corners in order (ISO 32000-1, 7.9.5), or the other box.
Box boxOr(const QPDFObjectHandle &value, const Box &other)
{
    QPDFObjectHandle array = value;
    if (!array.isRectangle())
        return other;
    const auto rectangle = array.getArrayAsRectangle();
    const Box box{std::min(rectangle.llx, rectangle.urx), std::min(rectangle.lly, rectangle.ury),
                  std::max(rectangle.llx, rectangle.urx), std::max(rectangle.lly, rectangle.ury)};
    return box.isEmpty() ? other : box;
}

Box intersection(const Box &a, const Box &b)
{
    return {std::max(a.left, b.left), std::max(a.bottom, b.bottom), std::min(a.right, b.right),
            std::min(a.top, b.top)};
}

} // namespace

PageSize displayedPageSize(QPDF &pdf, const PageList &list, const PageEntry &entry)
{
    const auto attribute = [&](const char *key) {
        return inheritedAttribute(pdf, list, entry, key);
    };
    const Box media = boxOr(attribute("/MediaBox"), Box());
    const Box cropped = intersection(media, boxOr(attribute("/CropBox"), media));
    const Box &shown = cropped.isEmpty() ? media : cropped;

    double unit = 1;
    QPDFObjectHandle userUnit = pdf.getObject(entry.page).getKey("/UserUnit");
    if (userUnit.isNumber() && userUnit.getNumericValue() > 0)
        unit = userUnit.getNumericValue();
    PageSize size{(shown.right - shown.left) * unit, (shown.top - shown.bottom) * unit};

    QPDFObjectHandle rotate = attribute("/Rotate");
    int quarterTurns = 0;
    if (int degrees = 0; rotate.getValueAsInt(degrees))
        quarterTurns = degrees / 90;
    if (quarterTurns % 2 != 0)
        std::swap(size.width, size.height);
    return size;
}

} // namespace pdf
