#include "kraefte/RechteSeiteDG.h"

#include "scheibe/AkkScheibe.h"

#include <iostream>

void RechteSeiteDG::add(RechteSeiteDG*) { std::cout << "add in leaf geht nicht!\n"; }

void RechteSeiteDG::derivatives(AkkScheibe& scheibe, PhysSystem& phys) {
    scheibe.force_init(phys);
    scheibe.processEvents();
    deriv_ohne_init(scheibe, phys);
}
