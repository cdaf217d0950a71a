#include "scheibe/SphTeilchen.h"

#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"

void SphTeilchen::_force_init(PhysSystem& phys) {
    const Kernel1& kern = *static_cast<const Kernel1*>(phys.kernel);
    dichte(ww.paarliste() ? ww.paarliste()->summeW(ww.slot(), kern) : 1.0, phys);
}

void SphTeilchen::dichte(double S, PhysSystem& phys) {
    rho = dichteAus(S, phys);
}

double SphTeilchen::dichteAus(double S, const PhysSystem& phys) {
    return S * phys.mTeilchen * static_cast<const Kernel1*>(phys.kernel)->fak;
}
