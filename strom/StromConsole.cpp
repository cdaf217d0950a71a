#include "strom/StromConsole.h"

#include "odeint/Odeint.h"
#include "scheibe/AkkScheibe.h"
#include "strom/Fortschritt.h"
#include "strom/InitStrom.h"
#include "strom/Stromquelle.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include <unistd.h>

StromConsole::StromConsole(const char* parameterDatei, const char* teilchenDatei)
    : SimulationConsole(parameterDatei, teilchenDatei) {}

// The stream only holds pointers to the disc and the physical system, which
// the base releases afterwards.
StromConsole::~StromConsole() {
    delete anzeige;
    delete quelle;
    delete initStrom;
}

int StromConsole::run(int argc, char** argv) {
    const char* umgebung = std::getenv("AKKSTROM_FORTSCHRITT");
    bool fortschritt = umgebung && *umgebung && std::strcmp(umgebung, "0") != 0;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--fortschritt") == 0) {
            fortschritt = true;
        } else {
            std::cerr << "akkstrom: unbekannte Option '" << argv[i]
                      << "' (bekannt: --fortschritt)\n";
            return 2;
        }
    }
    const bool terminal = isatty(2) == 1;
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
    if (fortschritt || terminal) {
        anzeige = new Fortschritt(*quelle, *scheibe, *physSystem, odeint->outputtime, std::cerr,
                                  terminal);
        scheibe->set_update(anzeige);
    } else {
        scheibe->set_update(quelle);
    }
    odeint->odeint(*scheibe, *physSystem, *kraefte);
    if (anzeige) {
        std::cout.flush(); // the driver's lines before the last progress line
        anzeige->abschluss();
    }
    return 0;
}
