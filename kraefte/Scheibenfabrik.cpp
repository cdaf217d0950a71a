#include "kraefte/Scheibenfabrik.h"

#include "scheibe/PhysviscAkkScheibe.h"

#include <iostream>

AkkScheibe* erzeugeScheibe(int art, InitAkkScheibe& init, PhysSystem& phys) {
    switch (art) {
    case 0:
        return new AkkScheibe(init, phys);
    case 1:
        return new SphAkkScheibe(init, phys);
    case 2:
        return new PressArtviscAkkScheibe(init, phys);
    case 3:
        return new PhysviscAkkScheibe(init, phys);
    default:
        std::cout << "Fehler in Kraefte::createAkkScheibe !\n";
        return nullptr;
    }
}
