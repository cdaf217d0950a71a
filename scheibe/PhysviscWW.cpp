#include "scheibe/PhysviscWW.h"

#include "scheibe/Paarterme.h"
#include "scheibe/PhysviscTeilchen.h"

#include <iostream>

namespace {
void fremdesTeilchen() {
    std::cout << "Angegebenes Teilchen geh\xf6rt nicht zu dieser PhysviscWW !\n";
}
} // namespace

void PhysviscWW::_init(PhysviscTeilchen* p, PhysviscTeilchen* q, const double s[3], double s2,
                       const double dv[3], Kernel& kernel) {
    PressArtviscWW::_init(p, q, s, s2, dv, kernel);
    pt1 = p;
    pt2 = q;
}

void PhysviscWW::schertensor(double s[6]) const {
    scheibe::schertensor(dv.data(), dW.data(), s);
}

void PhysviscWW::sigma(PhysSystem&) {
    schertensor(sigmaTensor.data());
}

void PhysviscWW::sigma_von(const PhysviscTeilchen* t, double s[6]) const {
    const PhysviscTeilchen* anderer = t == pt1 ? pt2 : t == pt2 ? pt1 : nullptr;
    if (!anderer) {
        fremdesTeilchen();
        for (int c = 0; c < 6; ++c)
            s[c] = 0.0;
        return;
    }
    for (int c = 0; c < 6; ++c)
        s[c] = sigmaTensor[c] / anderer->rho;
}

Tensor6 PhysviscWW::sigma(PhysviscTeilchen* t) {
    Tensor6 s;
    sigma_von(t, s.data());
    return s;
}

void PhysviscWW::viskosvektor(double p[3]) const {
    scheibe::viskosvektor(pt1->sigmaTensor.data(), pt1->rho, pt2->sigmaTensor.data(), pt2->rho,
                          dW.data(), p);
}

void PhysviscWW::physvisc(PhysSystem&) {
    viskosvektor(physviscVektor.data());
}

void PhysviscWW::physvisc_von(const PhysviscTeilchen* t, double p[3]) const {
    if (t == pt1) {
        for (int k = 0; k < 3; ++k)
            p[k] = physviscVektor[k];
    } else if (t == pt2) {
        for (int k = 0; k < 3; ++k)
            p[k] = -physviscVektor[k];
    } else {
        fremdesTeilchen();
        p[0] = p[1] = p[2] = 0.0;
    }
}

Vektor3 PhysviscWW::physvisc(PhysviscTeilchen* t) {
    Vektor3 p;
    physvisc_von(t, p.data());
    return p;
}
