#include "kraefte/Pressure.h"

#include "kraefte/Scheibenfabrik.h"
#include "scheibe/PressArtviscAkkScheibe.h"

void Pressure::deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) {
    dynamic_cast<PressArtviscAkkScheibe&>(scheibe).add_press(phys);
}

AkkScheibe* Pressure::createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) {
    return erzeugeScheibe(scheibe(), init, phys);
}
