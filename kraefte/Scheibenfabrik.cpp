#include "kraefte/Scheibenfabrik.h"

#include "scheibe/AkkScheibe.h"

#include <iostream>

AkkScheibe* erzeugeScheibe(int art, InitAkkScheibe& init, PhysSystem& phys) {
    switch (art) {
    case 0:
        return new AkkScheibe(init, phys);
    default:
        std::cout << "Fehler in Kraefte::createAkkScheibe !\n";
        return nullptr;
    }
}
