#include "strom/StromConsole.h"

#include "odeint/Odeint.h"
#include "scheibe/AkkScheibe.h"
#include "strom/InitStrom.h"
#include "strom/Stromquelle.h"

#include <iostream>
#include <string>

StromConsole::StromConsole(const char* parameterDatei, const char* teilchenDatei)
    : SimulationConsole(parameterDatei, teilchenDatei) {}

// The stream only holds pointers to the disc and the physical system, which
// the base releases afterwards.
StromConsole::~StromConsole() {
    delete quelle;
    delete initStrom;
}

int StromConsole::run(int, char**) {
    // The stream keys first: a run without its stream is not what was asked for.
    initStrom = new InitStrom(parameterDatei);
    if (!initStrom->fehler.empty()) {
        for (const std::string& f : initStrom->fehler)
            std::cout << f << '\n';
        return 1;
    }
    if (!aufbauen())
        return 0;
    quelle = new Stromquelle(*scheibe, *physSystem, *initStrom);
    const std::string fehler = quelle->pruefe(odeint->outputtime);
    if (!fehler.empty()) {
        std::cout << fehler << '\n';
        return 1;
    }
    scheibe->set_update(quelle);
    odeint->odeint(*scheibe, *physSystem, *kraefte);
    return 0;
}
