// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <mupdf/fitz.h>

namespace pdf {

/// A transformation of PDF coordinates, [a b c d e f] of ISO 32000-1, 8.3.3. In double precision:
/// a page's text is placed by hundreds of small steps, whose errors would add up to differences
/// between pages that show a field in the same place.
struct Matrix
{
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    [[nodiscard]] static Matrix of(fz_matrix matrix)
    {
        return {static_cast<double>(matrix.a), static_cast<double>(matrix.b),
                static_cast<double>(matrix.c), static_cast<double>(matrix.d),
                static_cast<double>(matrix.e), static_cast<double>(matrix.f)};
    }
    /// First this one, then the other.
    [[nodiscard]] Matrix followedBy(const Matrix &other) const
    {
        return {a * other.a + b * other.c,           a * other.b + b * other.d,
                c * other.a + d * other.c,           c * other.b + d * other.d,
                e * other.a + f * other.c + other.e, e * other.b + f * other.d + other.f};
    }
    /// Moves the origin by a distance in its own, untransformed coordinates.
    void moveBy(double x, double y)
    {
        e += x * a + y * c;
        f += x * b + y * d;
    }
};

} // namespace pdf
