#include "scheibe/SphWW.h"

#include "physik/Kernel.h"
#include "scheibe/SphTeilchen.h"

#include <cmath>
#include <iostream>

void SphWW::_init(SphTeilchen* p, SphTeilchen* q, const double s[3], double s2,
                  const double geschwDiff[3], Kernel& kernel) {
    t1 = p;
    t2 = q;
    d = std::sqrt(s2);
    for (int k = 0; k < 3; ++k) {
        r[k] = s[k];
        dv[k] = geschwDiff[k];
        dW[k] = -s[k];
    }
    W = kernel.W_ohne_fak(d, dW);
}

void SphWW::dW_von(const SphTeilchen* p, double g[3]) const {
    if (p == t1) {
        for (int k = 0; k < 3; ++k)
            g[k] = dW[k];
    } else if (p == t2) {
        for (int k = 0; k < 3; ++k)
            g[k] = -dW[k];
    } else {
        std::cout << "Angegebenes Teilchen geh\xf6rt nicht zu dieser WW !\n";
        g[0] = g[1] = g[2] = 0.0;
    }
}

Vektor3 SphWW::_dW_ohne_fak(SphTeilchen* p) const {
    Vektor3 g;
    dW_von(p, g.data());
    return g;
}
