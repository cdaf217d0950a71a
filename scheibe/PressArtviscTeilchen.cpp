#include "scheibe/PressArtviscTeilchen.h"

#include "scheibe/PressArtviscTemplates.h"

void PressArtviscTeilchen::_force_init(PhysSystem& phys) {
    scheibe::_force_init(*this, paww, phys);
}
