#include "simulation/SimulationConsole.h"

#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "init/InitRechteSeiteDG.h"
#include "kraefte/Artvisc.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "kraefte/Physvisc.h"
#include "kraefte/Pressure.h"
#include "odeint/RungeKutta.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "scheibe/Verteilung.h"

#include <iostream>
#include <vector>

SimulationConsole::SimulationConsole(const char* parameterDatei, const char* teilchenDatei)
    : parameterDatei(parameterDatei), teilchenDatei(teilchenDatei) {}

bool SimulationConsole::aufbauen() {
    initAkkScheibe = new InitAkkScheibe(parameterDatei, teilchenDatei);
    initPhysSystem = new InitPhysSystem(parameterDatei, teilchenDatei);
    initOdeint = new InitOdeint(parameterDatei);
    initRechteSeiteDG = new InitRechteSeiteDG(parameterDatei);

    if (initPhysSystem->kernelArt == 0)
        kernel = new Kernel1(*initPhysSystem);
    else
        std::cout << "Kein Kernel initialisiert !\n" << std::endl;

    physSystem = new PhysSystem(*initPhysSystem, kernel);

    kraefte = new Kraefte();
    std::vector<Forces> liste = initRechteSeiteDG->kraefte();
    for (std::size_t i = 0; i < liste.size(); ++i) {
        switch (liste[i]) {
        case externforce:
            kraefte->add(new Externforce());
            break;
        case pressure:
            kraefte->add(new Pressure());
            break;
        case artvisc:
            kraefte->add(new Artvisc());
            break;
        case physvisc:
            kraefte->add(new Physvisc());
            break;
        default:
            std::cout << "Falsche Kraft in InitRechteSeiteDG !" << std::endl;
            break;
        }
    }

    // In a run over several processes only process 0 reads the particles;
    // the others start from an empty disc and receive their slab.
    if (verteilung && !verteilung->liest())
        initAkkScheibe->dateiname = "/dev/null";
    scheibe = kraefte->createAkkScheibe(*initAkkScheibe, *physSystem);
    if (!scheibe)
        return false;
    // Every disc kind above the plain one works with pairs and needs the kernel.
    if (kraefte->scheibe() >= 1 && !kernel) {
        std::cout << "Fehler: SPH-Kr\xe4" "fte brauchen einen Kernel (Kern1) !\n";
        return false;
    }
    // Each process keeps its slab, before the stepper copies the disc.
    if (verteilung && !verteilung->verteilen(*scheibe))
        return false;

    if (initOdeint->odeintArt == 0) {
        odeint = new RungeKutta(*scheibe, *initOdeint);
    } else {
        std::cout << "Kein Odeint initialisiert !\n" << std::endl;
        return false;
    }
    return true;
}

void SimulationConsole::run(int, char**) {
    if (aufbauen())
        odeint->odeint(*scheibe, *physSystem, *kraefte);
}
