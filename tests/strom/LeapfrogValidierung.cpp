// The leapfrog integrator and the light curve against conservation laws: test particles keep
// their Jacobi constants over 100 binary orbits, and a viscous disc without pressure loses
// Jacobi energy at the rate the light curve reports.

#include "odeint/RungeKutta.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "simulation/SimulationConsole.h"
#include "strom/Leapfrog.h"
#include "strom/Lichtkurve.h"
#include "tests/Hilfen.h"
#include "tools/Scheibengenerator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

// A run of the simulator on a disc of n particles on circular orbits from `innen` to `aussen`
// around the primary (flat), with the parameters hilfen::parameter(zusatz).
struct Scheibenlauf {
    hilfen::Dateien dateien;
    SimulationConsole konsole{dateien.param.c_str(), dateien.disc.c_str()};
    hilfen::Mitschnitt still{std::cout};

    Scheibenlauf(const std::string& zusatz, long n, double innen, double aussen)
        : dateien(zusatz) {
        hilfen::Aufbau a(zusatz);
        generator::Optionen o;
        o.anzahl = n;
        o.innen = innen;
        o.aussen = aussen;
        o.hoehe = 0;
        std::ostringstream s;
        s.precision(17);
        generator::schreibe(s, generator::erzeuge(o, a.phys), a.phys.mTeilchen);
        hilfen::schreibe(dateien.disc, s.str());
        EXPECT_TRUE(konsole.aufbauen());
    }
    // The integrator in place of the Cash-Karp stepper.
    Leapfrog& leapfrog() {
        auto* lf = new Leapfrog(*konsole.initOdeint);
        delete konsole.odeint;
        konsole.odeint = lf;
        return *lf;
    }
};

// Records every particle's Jacobi constant after every step.
struct Jacobi : Zwischenhalt {
    PhysSystem* phys;
    std::vector<double> t;
    std::vector<std::vector<double>> c; // per particle
    bool anhalten(Odeint&, AkkScheibe& s) override {
        c.resize(std::size_t(s.tanz()));
        t.push_back(s.t());
        for (int i = 0; i < s.tanz(); ++i)
            c[std::size_t(i)].push_back(jacobiKonstante(s[i], *phys));
        return false;
    }
};

TEST(LeapfrogValidierung, TestteilchenBehaltenIhreJacobiKonstantenUeberHundertUmlaeufe) {
    // Eight test particles from 0.1 to 0.25 Rsun around OY Car's primary (inside the tidal radius,
    // 0.315), 100 binary orbits (545 360 s), about 60 000 steps of ~9 s.
    const double P = 5453.6;
    Scheibenlauf lauf("Externforce Outputtime 545360 Outputfiles 1 MaxSchritte 1000000 "
                      "Smoothinglength 0.03\n",
                      8, 0.1, 0.25);
    Leapfrog& lf = lauf.leapfrog();
    Jacobi j;
    j.phys = lauf.konsole.physSystem;
    lf.zwischenhalt = &j;
    lf.odeint(*lauf.konsole.scheibe, *lauf.konsole.physSystem, *lauf.konsole.kraefte);
    ASSERT_EQ(lauf.konsole.scheibe->tanz(), 8);
    ASSERT_GT(j.t.back(), 99.99 * P);
    // Mean over the first and over the last orbit, and the largest excursion from the start.
    auto mittel = [&](const std::vector<double>& c, double von, double bis) {
        double s = 0;
        int n = 0;
        for (std::size_t k = 0; k < c.size(); ++k)
            if (j.t[k] >= von && j.t[k] < bis) {
                s += c[k];
                ++n;
            }
        return s / n;
    };
    for (const std::vector<double>& c : j.c) {
        const double c0 = c.front();
        double ausschlag = 0;
        for (double x : c)
            ausschlag = std::max(ausschlag, std::fabs(x - c0));
        const double drift = mittel(c, 99 * P, 100 * P) - mittel(c, 0, P);
        // Leapfrog's error oscillates with the orbit and stays bounded, ~(omega dt)^2 / 24 of
        // the orbital energy at 45-200 steps an orbit.
        EXPECT_LT(ausschlag, 1e-4 * std::fabs(c0));
        // A drift would grow over the 100 orbits (some 1400 of the innermost particle's own):
        // measured below 2e-7 of C_J, against an excursion of 1.2-1.8e-5.
        EXPECT_LT(std::fabs(drift), 1e-6 * std::fabs(c0)) << "drift " << drift / c0;
    }
}

// The light curve of a run, read back: time and dissipation of each row.
std::vector<std::pair<double, double>> liesLichtkurve(const std::string& datei) {
    std::ifstream ein(datei);
    std::vector<std::pair<double, double>> z;
    std::string zeile;
    while (std::getline(ein, zeile)) {
        if (zeile.empty() || zeile[0] == '#')
            continue;
        std::istringstream s(zeile);
        double t = 0, l = 0;
        s >> t >> l;
        z.emplace_back(t, l);
    }
    return z;
}

// Jacobi energy lost over a run and the trapezoidal integral of the light curve, relative
// difference; with either integrator.
double energiebilanz(bool mitLeapfrog) {
    // A ring of 400 particles from 0.14 to 0.2 Rsun with artificial and physical viscosity and no
    // pressure, for 2000 s (a third of an orbit at the outer edge): nothing leaves, nothing comes.
    Scheibenlauf lauf("Externforce Artvisc Physvisc Outputtime 500 Outputfiles 1 MaxSchritte 100000 "
                      "Smoothinglength 0.03 Genauigkeit 1e-9 Viskositaet 1.5e-9\n",
                      400, 0.14, 0.2);
    SimulationConsole& k = lauf.konsole;
    if (mitLeapfrog)
        lauf.leapfrog();
    const std::string datei = lauf.dateien.datei("lichtkurve");
    Lichtkurve licht(*k.kraefte, *k.scheibe, *k.physSystem, datei);
    std::string fehler;
    EXPECT_TRUE(licht.beginne(fehler)) << fehler;
    const double e0 = jacobiEnergie(*k.scheibe, *k.physSystem);
    k.odeint->odeint(*k.scheibe, *k.physSystem, licht);
    EXPECT_EQ(k.odeint->stand.remove_count, 0);
    // The end state's row, for the last step's share of the integral.
    licht.derivatives(*k.scheibe, *k.physSystem);
    licht.abschluss();
    const double e1 = jacobiEnergie(*k.scheibe, *k.physSystem);
    const auto z = liesLichtkurve(datei);
    EXPECT_DOUBLE_EQ(z.back().first, 500.0);
    // Each step's share from the cubic through the four nearest rows, by two-point
    // Gauss-Legendre (exact for a cubic): an error of order dt^4, where the trapezoidal rule's
    // dt^2 would be 1e-3 at these steps of 5-20 s.
    double integral = 0;
    for (std::size_t i = 0; i + 1 < z.size(); ++i) {
        const std::size_t a = std::min(i > 0 ? i - 1 : 0, z.size() - 4);
        auto kubisch = [&](double t) {
            double s = 0;
            for (std::size_t j = a; j < a + 4; ++j) {
                double l = z[j].second;
                for (std::size_t k = a; k < a + 4; ++k)
                    if (k != j)
                        l *= (t - z[k].first) / (z[j].first - z[k].first);
                s += l;
            }
            return s;
        };
        const double m = 0.5 * (z[i].first + z[i + 1].first), d = 0.5 * (z[i + 1].first - z[i].first);
        const double x = d / std::sqrt(3.0);
        integral += d * (kubisch(m - x) + kubisch(m + x));
    }
    EXPECT_GT(integral, 0.0);
    return (integral - (e0 - e1)) / (e0 - e1);
}

TEST(LichtkurveValidierung, DasIntegralDerDissipationIstDerVerlustAnJacobiEnergie) {
    const double ck = energiebilanz(false);
    const double lf = energiebilanz(true);
    // Cash-Karp at Genauigkeit 1e-9: -2.4e-5 (1e-7: -8.9e-4, 1e-8: -4.2e-4, 1e-10: -1.2e-6),
    // shrinking with the tolerance: what is left is the integrator's error. The leapfrog:
    // 2.7e-3, its energy error of order (omega dt)^2 at the step its conditions allow.
    EXPECT_LT(std::fabs(ck), 1e-4) << ck;
    EXPECT_LT(std::fabs(lf), 1e-2) << lf;
}

} // namespace
