#include "scheibe/Teilchen.h"

#include <cmath>

Teilchen::Teilchen() : r(0.0, 3), v(0.0, 3), a(0.0, 3) {}

void Teilchen::init() {
    a = 0.0;
}

double Teilchen::max_v_koord() const {
    double m = 0.0;
    for (int i = 0; i < 3; ++i) {
        double b = std::fabs(v[i]);
        if (b > m)
            m = b;
    }
    return m;
}
