#include "scheibe/PhysviscTeilchen.h"

#include "scheibe/PressArtviscTemplates.h"

void PhysviscTeilchen::_force_init(PhysSystem& phys) {
    scheibe::_force_init(*this, pvww, phys);
}

void PhysviscTeilchen::sigma(PhysSystem& phys) {
    double s[6] = {0, 0, 0, 0, 0, 0};
    for (PhysviscWW* w : pvww) {
        double beitrag[6];
        w->sigma_von(this, beitrag);
        for (int c = 0; c < 6; ++c)
            s[c] += beitrag[c];
    }
    const double faktor = scheibe::kernel1(phys).dfak * phys.mTeilchen;
    for (int c = 0; c < 6; ++c)
        sigmaTensor[c] = s[c] * faktor;
}

void PhysviscTeilchen::add_physvisc(PhysSystem& phys) {
    double A[3] = {0, 0, 0};
    for (PhysviscWW* w : pvww) {
        double beitrag[3];
        w->physvisc_von(this, beitrag);
        for (int k = 0; k < 3; ++k)
            A[k] += beitrag[k];
    }
    const double faktor = phys.mTeilchen * phys.viskositaet * scheibe::kernel1(phys).dfak;
    for (int k = 0; k < 3; ++k) {
        A[k] = A[k] * faktor;
        aPhysvisc[k] = A[k];
        a[k] = a[k] + A[k];
    }
}
