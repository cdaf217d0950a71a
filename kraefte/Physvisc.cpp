#include "kraefte/Physvisc.h"

#include "kraefte/Scheibenfabrik.h"
#include "scheibe/PhysviscAkkScheibe.h"

void Physvisc::deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) {
    dynamic_cast<PhysviscAkkScheibe&>(scheibe).add_physvisc(phys);
}

AkkScheibe* Physvisc::createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) {
    return erzeugeScheibe(scheibe(), init, phys);
}
