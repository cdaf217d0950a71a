#include "scheibe/PressArtviscTeilchen.h"

#include "scheibe/PressArtviscTemplates.h"

void PressArtviscTeilchen::_force_init(PhysSystem& phys) {
    dichte(paww.paarliste() ? paww.paarliste()->summeW(paww.slot(), scheibe::kernel1(phys)) : 1.0,
           phys);
}

void PressArtviscTeilchen::dichte(double S, PhysSystem& phys) {
    scheibe::_zustand(*this, S, phys);
}
