#include "strom/Fortschritt.h"

#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "scheibe/Verteilung.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <locale>
#include <ostream>
#include <sstream>

double Fortschritt::wanduhr() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

Fortschritt::Fortschritt(Update& i, AkkScheibe& s, const PhysSystem& p, double ende,
                         std::ostream& a, bool term, Uhr u)
    : innen(&i), scheibe(&s), phys(&p), tEnde(ende), aus(&a), terminal(term), uhr(std::move(u)),
      wandStart(uhr()), tStart(s.t()), wandZuletzt(wandStart) {}

void Fortschritt::update() {
    innen->update();
    ++schritte;
    const double jetzt = uhr();
    // The first step at once, so that even a short run shows that it runs.
    if (!gezeigt || jetzt - wandZuletzt >= 1.0)
        zeige(jetzt);
}

void Fortschritt::processEvents() { innen->processEvents(); }

void Fortschritt::abschluss() {
    zeige(uhr());
    if (terminal)
        *aus << '\n';
    aus->flush();
}

std::string Fortschritt::zeile(double jetzt) const {
    std::ostringstream z;
    z.imbue(std::locale::classic());
    const double t = scheibe->t();
    z << "t " << t << " s (" << t / phys->periode << " Bahnen), " << (scheibe->verteilung ? (long long)scheibe->verteilung->gesamt() : scheibe->tanz())
      << " Teilchen, ";
    // Steps per second over the time since the last refresh: the step size of
    // a disc changes over a run, an average from the start would lag behind.
    const double dauer = jetzt - wandZuletzt;
    char puffer[64];
    if (dauer > 0) {
        std::snprintf(puffer, sizeof puffer, "%.1f", double(schritte - schritteZuletzt) / dauer);
        z << puffer;
    } else {
        z << '-';
    }
    z << " Schritte/s, Rest ";
    // The wall-clock time to the end at the pace of disc time so far.
    const double geschafft = t - tStart, offen = tEnde - t;
    const double rest = (jetzt - wandStart) * (offen / geschafft);
    if (geschafft != 0 && std::isfinite(rest) && rest >= 0 && rest < 1e9) {
        const long long s = std::llround(rest);
        std::snprintf(puffer, sizeof puffer, "%lld:%02lld:%02lld", s / 3600, s / 60 % 60, s % 60);
        z << puffer;
    } else {
        z << '?';
    }
    return z.str();
}

void Fortschritt::zeige(double jetzt) {
    const std::string z = zeile(jetzt);
    if (terminal)
        *aus << '\r' << z << "\033[K"; // back to the line's start, clear what is left
    else
        *aus << z << '\n';
    aus->flush();
    gezeigt = true;
    wandZuletzt = jetzt;
    schritteZuletzt = schritte;
}
