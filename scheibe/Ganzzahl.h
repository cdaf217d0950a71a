#pragma once

#include <climits>

// Truncates toward zero like a plain double-to-int conversion on x86-64, where
// NaN and values outside the range of int give INT_MIN, but without the
// undefined behaviour of that conversion.
inline int zuInt(double x) {
    if (x > -2147483649.0 && x < 2147483648.0)
        return static_cast<int>(x);
    return INT_MIN;
}
