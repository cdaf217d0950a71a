#include "scheibe/SphTeilchen.h"

#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/SphWW.h"

void SphTeilchen::_force_init(PhysSystem& phys) {
    double s = 1.0;
    for (const SphWW* w : ww)
        s += w->W;
    rho = s * phys.mTeilchen * static_cast<Kernel1*>(phys.kernel)->fak;
}
