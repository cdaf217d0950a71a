#include "simulation/Simulation.h"

#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "init/InitRechteSeiteDG.h"
#include "kraefte/RechteSeiteDG.h"
#include "odeint/Odeint.h"
#include "physik/Kernel.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"

Simulation::~Simulation() {
    delete scheibe;
    delete physSystem;
    delete kraefte;
    delete odeint;
    delete kernel;
    delete initAkkScheibe;
    delete initPhysSystem;
    delete initOdeint;
    delete initRechteSeiteDG;
}
