#include "scheibe/SphTeilchen.h"

#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/SphWW.h"

void SphTeilchen::_force_init(PhysSystem& phys) {
    double s = 1.0;
    for (const SphWW* w : ww)
        s += w->W;
    _dichte(s, phys);
}

void SphTeilchen::_dichte(double summe, PhysSystem& phys) {
    rho = summe * phys.mTeilchen * static_cast<Kernel1*>(phys.kernel)->fak;
}
