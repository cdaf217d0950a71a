#include "strom/StromConsole.h"

#include "scheibe/Verteilung.h"

#include "odeint/Odeint.h"
#include "scheibe/AkkScheibe.h"
#include "strom/Fortschritt.h"
#include "strom/InitStrom.h"
#include "strom/Leapfrog.h"
#include "strom/Lichtkurve.h"
#include "strom/Sicherung.h"
#include "strom/Stromquelle.h"

#include <cerrno>
#include <cmath>
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
    delete lichtkurve;
    delete sicherung;
    delete anzeige;
    delete quelle;
    delete initStrom;
}

namespace {

const char* const bekannt = "--fortschritt, --weiter, --sicherung DATEI, --sicherung-schritte N, "
                            "--sicherung-minuten M, --halt-nach N, --integrator cashkarp|leapfrog, "
                            "--lichtkurve DATEI";

// A whole number from 1 up, as an option's value.
bool positiv(const char* text, long long& n) {
    errno = 0;
    char* ende = nullptr;
    n = std::strtoll(text, &ende, 10);
    return errno == 0 && ende != text && *ende == '\0' && n >= 1;
}

// The folder of a file's path, for the default checkpoint beside the snapshots.
std::string ordnerVon(const std::string& pfad) {
    const std::size_t s = pfad.rfind('/');
    return s == std::string::npos ? "." : pfad.substr(0, s == 0 ? 1 : s);
}

} // namespace

int StromConsole::run(int argc, char** argv) {
    const char* umgebung = std::getenv("AKKSTROM_FORTSCHRITT");
    bool fortschritt = umgebung && *umgebung && std::strcmp(umgebung, "0") != 0;
    bool weiter = false;
    std::string datei = ordnerVon(teilchenDatei) + "/akkstrom.sicherung";
    bool dateiGenannt = false;
    long long schritte = 0, haltNach = 0;
    // A checkpoint every half hour by default: a run killed without warning
    // (power, memory) loses at most that.
    double minuten = 30;
    bool minutenGenannt = false;
    bool mitLeapfrog = false;
    std::string lichtkurveDatei;
    for (int i = 1; i < argc; ++i) {
        const std::string o = argv[i];
        const bool mitWert = o == "--sicherung" || o == "--sicherung-schritte" ||
                             o == "--sicherung-minuten" || o == "--halt-nach" ||
                             o == "--integrator" || o == "--lichtkurve";
        if (o == "--fortschritt") {
            fortschritt = true;
            continue;
        }
        if (o == "--weiter") {
            weiter = true;
            continue;
        }
        if (!mitWert) {
            std::cerr << "akkstrom: unbekannte Option '" << o << "' (bekannt: " << bekannt << ")\n";
            return 2;
        }
        if (i + 1 >= argc) {
            std::cerr << "akkstrom: Option " << o << " ohne Wert\n";
            return 2;
        }
        const char* wert = argv[++i];
        if (o == "--integrator") {
            if (std::strcmp(wert, "leapfrog") != 0 && std::strcmp(wert, "cashkarp") != 0) {
                std::cerr << "akkstrom: Option --integrator braucht cashkarp oder leapfrog, nicht '"
                          << wert << "'\n";
                return 2;
            }
            mitLeapfrog = std::strcmp(wert, "leapfrog") == 0;
        } else if (o == "--lichtkurve") {
            lichtkurveDatei = wert;
            if (lichtkurveDatei.empty()) {
                std::cerr << "akkstrom: Option --lichtkurve braucht einen Dateinamen\n";
                return 2;
            }
        } else if (o == "--sicherung") {
            datei = wert;
            dateiGenannt = true;
            if (datei.empty()) {
                std::cerr << "akkstrom: Option --sicherung braucht einen Dateinamen\n";
                return 2;
            }
        } else if (o == "--sicherung-minuten") {
            char* ende = nullptr;
            minuten = std::strtod(wert, &ende);
            minutenGenannt = true;
            if (ende == wert || *ende != '\0' || !(minuten >= 0) || !std::isfinite(minuten)) {
                std::cerr << "akkstrom: Option --sicherung-minuten braucht eine Zahl ab 0 (0: "
                             "keine), nicht '" << wert << "'\n";
                return 2;
            }
        } else if (!positiv(wert, o == "--halt-nach" ? haltNach : schritte)) {
            std::cerr << "akkstrom: Option " << o << " braucht eine ganze Zahl ab 1, nicht '"
                      << wert << "'\n";
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
    // Checkpoints that were asked for must have a place to go before hours
    // of computing depend on them.
    if ((schritte > 0 || (minutenGenannt && minuten > 0) || haltNach > 0) &&
        ::access(ordnerVon(datei).c_str(), W_OK) != 0) {
        std::cerr << "akkstrom: in den Ordner der Sicherung '" << datei
                  << "' l\xe4sst sich nicht schreiben: " << std::strerror(errno) << '\n';
        return 1;
    }
    if (!aufbauen())
        return 0;
    quelle = new Stromquelle(*scheibe, *physSystem, *initStrom);
    sicherung = new Sicherung();
    sicherung->datei = datei;
    sicherung->alleSchritte = schritte;
    sicherung->alleSekunden = minuten * 60.0;
    sicherung->haltNach = haltNach;
    sicherung->quelle = quelle;
    if (dateiGenannt)
        sicherung->weiterBefehl += " --sicherung '" + datei + "'";
    RechteSeiteDG* rechts = kraefte;
    if (mitLeapfrog) {
        // In place of the Cash-Karp stepper and its stage copies.
        leapfrog = new Leapfrog(*initOdeint);
        delete odeint;
        odeint = leapfrog;
        leapfrog->aenderungen = [this] {
            return static_cast<long long>(odeint->stand.remove_count) + quelle->eingespeist;
        };
        sicherung->teile.push_back(leapfrog);
        if (verteilung)
            leapfrog->verteilt(*verteilung);
        sicherung->weiterBefehl += " --integrator leapfrog";
    }
    if (!lichtkurveDatei.empty()) {
        lichtkurve = new Lichtkurve(*kraefte, *scheibe, *physSystem, lichtkurveDatei);
        sicherung->teile.push_back(lichtkurve);
        sicherung->weiterBefehl += " --lichtkurve '" + lichtkurveDatei + "'";
        rechts = lichtkurve;
    }
    if (!Sicherung::pruefsumme(parameterDatei, sicherung->parameterPruefsumme) ||
        !Sicherung::pruefsumme(teilchenDatei, sicherung->scheibenPruefsumme)) {
        std::cerr << "akkstrom: Parameterdatei oder Anfangsscheibe lassen sich f\xfcr die "
                     "Sicherung nicht lesen\n";
        return 1;
    }
    if (weiter) {
        const std::string fehler = sicherung->lies(*odeint, *scheibe);
        if (!fehler.empty()) {
            std::cerr << "akkstrom: " << fehler << "; nichts gerechnet\n";
            return 1;
        }
    }
    const std::string fehler = quelle->pruefe(odeint->outputtime);
    if (!fehler.empty()) {
        std::cout << fehler << '\n';
        return 1;
    }
    if (lichtkurve && !weiter) {
        std::string f;
        if (!lichtkurve->beginne(f)) {
            std::cerr << "akkstrom: " << f << "; nichts gerechnet\n";
            return 1;
        }
    }
    if (fortschritt || terminal) {
        anzeige = new Fortschritt(*quelle, *scheibe, *physSystem, odeint->outputtime, std::cerr,
                                  terminal);
        scheibe->set_update(anzeige);
    } else {
        scheibe->set_update(quelle);
    }
    Sicherung::fangeSignale();
    odeint->zwischenhalt = sicherung;
    if (weiter)
        odeint->fortsetzen(*scheibe, *physSystem, *rechts);
    else
        odeint->odeint(*scheibe, *physSystem, *rechts);
    if (lichtkurve && !lichtkurve->abschluss())
        std::cerr << "akkstrom: Lichtkurve '" << lichtkurveDatei << "' unvollst\xe4ndig geschrieben\n";
    if (anzeige) {
        std::cout.flush(); // the driver's lines before the last progress line
        anzeige->abschluss();
    }
    if (sicherung->angehalten)
        return sicherung->signal != 0 ? 128 + sicherung->signal : 3;
    return 0;
}
