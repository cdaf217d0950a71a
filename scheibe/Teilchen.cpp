#include "scheibe/Teilchen.h"

#include <cmath>

void Teilchen::init() {
    a = {0.0, 0.0, 0.0};
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
