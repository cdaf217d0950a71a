#include "scheibe/PressArtviscTeilchen.h"

#include "scheibe/PressArtviscTemplates.h"

PressArtviscTeilchen::PressArtviscTeilchen() : aPress(3, 0.0), aArtvisc(3, 0.0) {}

void PressArtviscTeilchen::_force_init(PhysSystem& phys) {
    scheibe::_force_init(*this, paww, phys);
}

void PressArtviscTeilchen::_dichte(double summe, PhysSystem& phys) {
    scheibe::_zustand(*this, summe, phys);
}
