#include "strom/Lichtkurve.h"

#include "physik/PhysSystem.h"
#include "scheibe/PhysviscAkkScheibe.h"
#include "scheibe/Verteilung.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <type_traits>
#include <utility>

namespace {

// v . a, in the order of the components.
double skalar(const Vektor3& v, const Vektor3& a) {
    return (v[0] * a[0] + v[1] * a[1]) + v[2] * a[2];
}

template <class T> Dissipation summe(const std::vector<T>& teilchen, double m, Verteilung* vt) {
    double art = 0, phys = 0;
    if (vt) {
        // Each particle's two terms, summed by process 0 in global order.
        std::vector<double> terme(2 * teilchen.size());
        for (std::size_t i = 0; i < teilchen.size(); ++i) {
            terme[2 * i] = skalar(teilchen[i].v, teilchen[i].aArtvisc);
            if constexpr (std::is_same_v<T, PhysviscTeilchen>)
                terme[2 * i + 1] = skalar(teilchen[i].v, teilchen[i].aPhysvisc);
        }
        const std::vector<double> alle = vt->sammleWerte(terme, 2);
        for (std::size_t i = 0; i + 1 < alle.size(); i += 2) {
            art += alle[i];
            if constexpr (std::is_same_v<T, PhysviscTeilchen>)
                phys += alle[i + 1];
        }
        return {-(art * m), -(phys * m)};
    }
    for (const T& t : teilchen) {
        art += skalar(t.v, t.aArtvisc);
        if constexpr (std::is_same_v<T, PhysviscTeilchen>)
            phys += skalar(t.v, t.aPhysvisc);
    }
    return {-(art * m), -(phys * m)};
}

} // namespace

Dissipation dissipation(AkkScheibe& scheibe, const PhysSystem& phys) {
    if (auto* p = dynamic_cast<PhysviscAkkScheibe*>(&scheibe))
        return summe(p->teilchen, phys.mTeilchen, scheibe.verteilung);
    if (auto* p = dynamic_cast<PressArtviscAkkScheibe*>(&scheibe))
        return summe(p->teilchen, phys.mTeilchen, scheibe.verteilung);
    return {};
}

double jacobiKonstante(const Teilchen& t, const PhysSystem& phys) {
    const double G = 3.9371199385708905e-7; // Rsun^3 / (Msun s^2), as the external force
    double d1[3], d2[3];
    for (int k = 0; k < 3; ++k) {
        d1[k] = t.r[k] - phys.x1[k];
        d2[k] = t.r[k] - phys.x2[k];
    }
    const double r1 = std::sqrt((d1[0] * d1[0] + d1[1] * d1[1]) + d1[2] * d1[2]);
    const double r2 = std::sqrt((d2[0] * d2[0] + d2[1] * d2[1]) + d2[2] * d2[2]);
    const double rr = (t.r[0] * t.r[0] + t.r[1] * t.r[1]) + t.r[2] * t.r[2];
    return 0.5 * skalar(t.v, t.v) - G * phys.m1 / r1 - G * phys.m2 / r2 -
           0.5 * (phys.omega * phys.omega) * rr;
}

double jacobiEnergie(AkkScheibe& scheibe, const PhysSystem& phys) {
    double e = 0;
    for (int i = 0; i < scheibe.tanz(); ++i)
        e += jacobiKonstante(scheibe[i], phys);
    return e * phys.mTeilchen;
}

Lichtkurve::Lichtkurve(RechteSeiteDG& kraefte, AkkScheibe& haupt, PhysSystem& phys,
                       std::string datei)
    : kraefte(kraefte), haupt(haupt), phys(phys), datei(std::move(datei)) {}

// In a distributed run process 0 alone writes the table.
bool Lichtkurve::schreibt() const {
    return !haupt.verteilung || haupt.verteilung->rang() == 0;
}

bool Lichtkurve::beginne(std::string& fehler) {
    if (!schreibt())
        return true;
    aus.open(datei, std::ios::binary | std::ios::trunc);
    if (!aus) {
        fehler = "Lichtkurve '" + datei + "' l\xe4sst sich nicht anlegen: " + std::strerror(errno);
        return false;
    }
    aus.imbue(std::locale::classic());
    aus << "# akkstrom Lichtkurve: viskose Dissipation L = -sum m v.(a_artvisc + a_physvisc) des "
           "Zustands, mit dem jeder Schritt beginnt\n"
           "# Einheiten: Zeit in s, L in Sonnenmassen Sonnenradien^2 / s^3 (1 = "
        << ergProSekunde << " erg/s) und in erg/s\n"
        << "# Zeit_s\tL\tL_artvisc\tL_physvisc\tL_erg_s\tTeilchen\n";
    aus.flush();
    offen = true;
    return true;
}

void Lichtkurve::schreibeZeile(const Zeile& z) {
    if (!offen)
        return;
    aus.precision(10);
    aus << z.t << '\t' << z.l.summe() << '\t' << z.l.artvisc << '\t' << z.l.physvisc << '\t'
        << z.l.summe() * ergProSekunde << '\t' << z.n << '\n';
    ++zeilen;
    if (!aus && !gemeldet) {
        gemeldet = true;
        std::cerr << "akkstrom: Lichtkurve '" << datei
                  << "' l\xe4sst sich nicht schreiben; der "
                     "Lauf geht ohne sie weiter\n";
    }
}

bool Lichtkurve::abschluss() {
    if (inHand)
        schreibeZeile(zeile);
    inHand = false;
    if (offen)
        aus.flush();
    return !offen || static_cast<bool>(aus);
}

void Lichtkurve::deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& p) {
    kraefte.deriv_ohne_init(scheibe, p);
    if (&scheibe != &haupt)
        return; // a stage of the integrator
    if (inHand && zeile.t != scheibe.t())
        schreibeZeile(zeile);
    const int n =
        scheibe.verteilung ? static_cast<int>(scheibe.verteilung->gesamt()) : scheibe.tanz();
    zeile = {scheibe.t(), dissipation(scheibe, phys), n};
    inHand = true;
}

AkkScheibe* Lichtkurve::createAkkScheibe(InitAkkScheibe& init, PhysSystem& p) {
    return kraefte.createAkkScheibe(init, p);
}

int Lichtkurve::scheibe() {
    return kraefte.scheibe();
}

std::string Lichtkurve::zustand() {
    std::string b;
    aus.flush();
    const std::int64_t laenge = offen && aus ? static_cast<std::int64_t>(aus.tellp()) : -1;
    anhaengen(b, laenge);
    anhaengen(b, static_cast<std::uint8_t>(inHand));
    anhaengen(b, zeile.t);
    anhaengen(b, zeile.l.artvisc);
    anhaengen(b, zeile.l.physvisc);
    anhaengen(b, zeile.n);
    return b;
}

std::string Lichtkurve::lies(const std::string& b, std::size_t, bool setzen) {
    std::size_t pos = 0;
    std::int64_t laenge = 0;
    std::uint8_t hand = 0;
    Zeile z;
    if (!nimm(b, pos, laenge) || !nimm(b, pos, hand) || !nimm(b, pos, z.t) ||
        !nimm(b, pos, z.l.artvisc) || !nimm(b, pos, z.l.physvisc) || !nimm(b, pos, z.n) ||
        pos != b.size() || hand > 1)
        return "unvollst\xe4ndig";
    if (laenge < 0)
        return "die Lichtkurve lie\xdf sich beim Sichern nicht schreiben";
    std::error_code f;
    const auto groesse = std::filesystem::file_size(datei, f);
    if (f || groesse < static_cast<std::uintmax_t>(laenge))
        return "die Lichtkurve '" + datei + "' fehlt oder ist k\xfcrzer als beim Sichern";
    if (!setzen)
        return "";
    inHand = hand != 0;
    zeile = z;
    if (!schreibt())
        return "";
    // The rows written after the checkpoint come again.
    std::filesystem::resize_file(datei, static_cast<std::uintmax_t>(laenge), f);
    aus.open(datei, std::ios::binary | std::ios::app);
    aus.imbue(std::locale::classic());
    offen = !f && static_cast<bool>(aus);
    if (!offen)
        std::cerr << "akkstrom: Lichtkurve '" << datei << "' l\xe4sst sich nicht fortschreiben\n";
    return "";
}
