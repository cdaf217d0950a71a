#include "kraefte/Artvisc.h"

#include "kraefte/Scheibenfabrik.h"
#include "scheibe/PressArtviscAkkScheibe.h"

void Artvisc::deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) {
    dynamic_cast<PressArtviscAkkScheibe&>(scheibe).add_artvisc(phys);
}

AkkScheibe* Artvisc::createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) {
    return erzeugeScheibe(scheibe(), init, phys);
}
