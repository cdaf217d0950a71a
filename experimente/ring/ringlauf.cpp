// ringlauf: one run of the viscous ring (experimente/ring/Ring.h) with the
// simulator's disc, forces and stepper; writes the fitted tau(t) and the
// smoothed profiles as tables. Driven by ring.py; --help lists the options.

#include "experimente/ring/Ring.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

const char* hilfe =
    "Usage: ringlauf [options] --ausgabe FOLDER\n"
    "\n"
    "Runs a ring of SPH particles around the primary of the default binary (OY Car:\n"
    "0.685 + 0.07 Msun, 5453.6 s), started as the Lynden-Bell & Pringle profile at\n"
    "tau0, and fits that profile's tau at evenly spaced times. Units: Msun, Rsun, s.\n"
    "Writes FOLDER/verlauf.tsv (one row per time: t_s, tau, misfit over the peak,\n"
    "steps, smallest and largest R/R0, mass-weighted sound speed and density,\n"
    "angular momentum change) and FOLDER/profil.tsv (per time and grid point:\n"
    "t_s, x = R/R0, the observed, the fitted and the reference model's mass per\n"
    "unit x in units of M, all smoothed by a Gaussian of rms width h), and keeps\n"
    "the parameter file there.\n"
    "\n"
    "Options (defaults those of the validation test):\n"
    "  --R0 R          ring radius [Rsun] (0.13)\n"
    "  --tau0 T        tau at the start (0.05)\n"
    "  --h H           Smoothinglength [Rsun] (0.01)\n"
    "  --abstand D     particle spacing at the peak [Rsun] (h/3)\n"
    "  --nu NU         Viskositaet [Rsun^2/s] (8e-8)\n"
    "  --alpha A       ArtVisk_alpha (0); with A or B above 0 Artvisc is on\n"
    "  --beta B        ArtVisk_beta (0)\n"
    "  --ohne-physvisc without Physvisc\n"
    "  --ohne-druck    without Pressure\n"
    "  --nu-ref NU     viscosity of the start's radial drift, of the reference\n"
    "                  model and of the fit's window (default: --nu)\n"
    "  --zeit T        end time [s] (900)\n"
    "  --intervalle K  fits at K+1 evenly spaced times (6)\n"
    "  --genauigkeit E Genauigkeit [Rsun/s] (1e-8)\n";

double zahl(const char* s) {
    char* ende = nullptr;
    const double w = std::strtod(s, &ende);
    if (ende == s || *ende != '\0' || !std::isfinite(w)) {
        std::cerr << "ringlauf: not a number: " << s << '\n';
        std::exit(2);
    }
    return w;
}

} // namespace

int main(int argc, char** argv) {
    ring::Einstellung e;
    std::string ausgabe;
    double tEnde = 900, abstand = -1, nuRef = -1;
    int intervalle = 6;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const auto wert = [&]() -> const char* {
            if (i + 1 >= argc) {
                std::cerr << "ringlauf: " << a << " needs a value\n";
                std::exit(2);
            }
            return argv[++i];
        };
        if (a == "--help" || a == "-h") {
            std::cout << hilfe;
            return 0;
        } else if (a == "--R0")
            e.R0 = zahl(wert());
        else if (a == "--tau0")
            e.tau0 = zahl(wert());
        else if (a == "--h")
            e.h = zahl(wert());
        else if (a == "--abstand")
            abstand = zahl(wert());
        else if (a == "--nu")
            e.nu = zahl(wert());
        else if (a == "--alpha")
            e.alpha = zahl(wert());
        else if (a == "--beta")
            e.beta = zahl(wert());
        else if (a == "--ohne-physvisc")
            e.physvisc = false;
        else if (a == "--ohne-druck")
            e.druck = false;
        else if (a == "--nu-ref")
            nuRef = zahl(wert());
        else if (a == "--zeit")
            tEnde = zahl(wert());
        else if (a == "--intervalle")
            intervalle = int(zahl(wert()));
        else if (a == "--genauigkeit")
            e.genauigkeit = zahl(wert());
        else if (a == "--ausgabe")
            ausgabe = wert();
        else {
            std::cerr << "ringlauf: unknown option " << a << " (--help lists them)\n";
            return 2;
        }
    }
    if (ausgabe.empty() || intervalle < 1) {
        std::cerr << hilfe;
        return 2;
    }
    e.abstand = abstand > 0 ? abstand : e.h / 3;
    // Sensible rings only: the profile's rows need a positive spacing below h, and a
    // spacing that would make more than some ten million particles is refused.
    const double teilchen =
        2 * 3.141592653589793 * e.R0 * 5 * e.R0 * std::sqrt(e.tau0 / 2) / (e.abstand * e.abstand);
    const char* fehler = nullptr;
    if (!(e.R0 > 0 && e.tau0 > 0 && e.h > 0 && tEnde > 0 && e.genauigkeit > 0))
        fehler = "--R0, --tau0, --h, --zeit and --genauigkeit must be above 0";
    else if (!(e.nu >= 0 && e.alpha >= 0 && e.beta >= 0))
        fehler = "--nu, --alpha and --beta must not be negative";
    else if (!(e.abstand > 0 && e.abstand <= e.h))
        fehler = "--abstand must be above 0 and at most h";
    else if (!(teilchen < 1e7))
        fehler = "the ring would have more than 1e7 particles";
    if (fehler) {
        std::cerr << "ringlauf: " << fehler << '\n';
        return 2;
    }
    e.artvisc = e.alpha > 0 || e.beta > 0;
    if (nuRef < 0)
        nuRef = e.nu;
    e.nuStart = nuRef;
    std::filesystem::create_directories(ausgabe);

    ring::Ring r(e, ausgabe);
    const double tauEnde = e.tau0 + 12 * nuRef * tEnde / (e.R0 * e.R0);
    ring::Anpassung fit(e.R0, e.h, r.anzahl() * r.teilchenmasse, 3 * std::sqrt(tauEnde / 2));
    // The ring's mass M, of which the particles hold all but the cut edges.
    std::printf("ringlauf: %d particles in %d rows, M = %.6g Msun, h %g, spacing %g, nu %g, "
                "alpha %g, beta %g%s%s\n",
                r.anzahl(), r.zeilen, r.phys.mTeilchen / r.teilchenmasse, e.h, e.abstand,
                e.physvisc ? e.nu : 0.0, e.alpha, e.beta, e.druck ? ", pressure" : "",
                e.physvisc ? ", Physvisc" : "");

    std::ofstream verlauf(ausgabe + "/verlauf.tsv"), profil(ausgabe + "/profil.tsv");
    verlauf << "t_s\ttau\trest\tschritte\tx_min\tx_max\tcs\trho\tdJ\n";
    profil << "t_s\tx\tbeobachtet\tangepasst\treferenz\n";
    verlauf.precision(10);
    profil.precision(8);
    const auto drehimpuls = [&] {
        double J = 0;
        for (const auto& t : r.s.teilchen) {
            const double dx = t.r[0] - r.phys.x1[0], dy = t.r[1] - r.phys.x1[1];
            J += dx * (t.v[1] + r.phys.omega * dx) - dy * (t.v[0] - r.phys.omega * dy);
        }
        return J;
    };
    const double J0 = drehimpuls();
    int schritte = 0;
    for (int k = 0; k <= intervalle; ++k) {
        const int n = r.laufeBis(tEnde * k / intervalle);
        if (n < 0) {
            std::cerr << "ringlauf: step limit reached at t = " << r.s.t() << '\n';
            return 1;
        }
        schritte += n;
        r.bereite();
        double xMin = 1e300, xMax = 0, cs = 0, rho = 0;
        for (int i = 0; i < r.anzahl(); ++i) {
            xMin = std::min(xMin, r.x(i));
            xMax = std::max(xMax, r.x(i));
            cs += r.s.teilchen[i].cs / r.anzahl();
            rho += r.s.teilchen[i].rho / r.anzahl();
        }
        fit.messe(r);
        const double tauRef = e.tau0 + 12 * nuRef * r.s.t() / (e.R0 * e.R0);
        const double tau = fit.tau(tauRef);
        verlauf << r.s.t() << '\t' << tau << '\t' << fit.restRelativ(tau) << '\t' << schritte
                << '\t' << xMin << '\t' << xMax << '\t' << cs << '\t' << rho << '\t'
                << drehimpuls() / J0 - 1 << '\n'
                << std::flush;
        const auto angepasst = fit.modell(tau), referenz = fit.modell(tauRef);
        for (size_t i = 0; i < fit.gitter().size(); ++i)
            profil << r.s.t() << '\t' << fit.gitter()[i] << '\t' << fit.beobachtet()[i] << '\t'
                   << angepasst[i] << '\t' << referenz[i] << '\n';
        std::printf("t %6.0f s  tau %.5f (reference %.5f)  misfit %.4f  steps %d\n", r.s.t(), tau,
                    tauRef, fit.restRelativ(tau), schritte);
        std::fflush(stdout);
    }
    return 0;
}
