#pragma once
// A viscous ring of SPH particles around the primary and the Lynden-Bell &
// Pringle (1974) Green's function it should follow (Pringle 1981, ARA&A 19,
// 137, eq. 3.13), with x = R/R0 and tau = 12 nu t / R0^2:
//   Sigma(x, tau) = M / (pi R0^2) tau^-1 x^-1/4 exp(-(1 + x^2)/tau) I_1/4(2x/tau).
// Shared by the validation test (tests/validation/RingValidierung.cpp, where
// the set-up and its reasons are described) and the experiment
// (experimente/ring/). Units: solar masses, solar radii, seconds.

#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "kraefte/Kraefte.h"
#include "odeint/RungeKutta.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/PhysviscAkkScheibe.h"

#include <memory>
#include <string>
#include <vector>

namespace ring {

// e^-z I_nu(z) for z >= 0.
double besselIskaliert(double nu, double z);
// The Green's function in units of M / (pi R0^2); 0 for x <= 0.
double sigmaLBP(double x, double tau);

struct Einstellung {
    double R0 = 0.13;            // ring radius around the primary, R_sun
    double tau0 = 0.05;          // the profile at the start
    double h = 0.01;             // Smoothinglength, R_sun
    double abstand = 0.01 / 3;   // particle spacing at the profile's peak, R_sun
    double nu = 8e-8;            // Viskositaet, R_sun^2/s
    double nuStart = -1;         // nu of the start's LBP radial drift (below 0: nu)
    double alpha = 0, beta = 0;  // ArtVisk_alpha, ArtVisk_beta
    double genauigkeit = 1e-8;   // Genauigkeit, R_sun/s
    double abgeschnitten = 0.01; // mass left out at the two edges together
    bool druck = true, artvisc = false, physvisc = true; // forces beside Externforce
    unsigned saat = 1;                                   // random phases of the rows
};

// The ring as an SPH disc of the simulator, with its forces and stepper. The
// parameter file and an empty disc file are written into `ordner`; the disc's
// snapshots (`output`) go there too, named Akk-Ring-<seconds>.
class Ring {
public:
    Ring(const Einstellung& e, const std::string& ordner);
    ~Ring();
    Ring(const Ring&) = delete;
    Ring& operator=(const Ring&) = delete;

    // Distance of particle i from the primary's axis, in units of R0.
    double x(int i) const;
    int anzahl() const { return int(s.teilchen.size()); }
    // Integrates to time t (absolute) as the driver does, without removing
    // particles; returns the number of steps, or -1 past `maxSchritte`.
    int laufeBis(double t, int maxSchritte = 100000);
    // Densities, pressures and sound speeds of the present positions (as the
    // forces' preparation computes them).
    void bereite();

    const Einstellung e;
    const std::string parameterDatei, scheibenDatei;
    InitPhysSystem ip;
    Kernel1 kernel;
    PhysSystem phys;
    InitAkkScheibe ia;
    InitOdeint io;
    PhysviscAkkScheibe s;
    Kraefte kraefte;
    std::unique_ptr<RungeKutta> rk;
    double teilchenmasse = 0; // one particle's share of the ring's mass M
    int zeilen = 0;           // rows
    std::vector<int> zeile;   // each particle's row

private:
    void setzeZeile(double xr, int k, double phi0);
    void gleichgewicht();
};

// Least-squares fit of tau: each particle's radius as a Gaussian of rms width
// h (so that neither the rows nor bins enter), against 2 pi R Sigma(R, tau) of
// the given mass smoothed by the same Gaussian, over |x - 1| < `fenster`.
class Anpassung {
public:
    Anpassung(double R0, double h, double masse, double fenster);
    void messe(const Ring& r);
    double quadratsumme(double tau) const;
    // Golden-section search in ln tau between tau/5 and 5 tau.
    double tau(double schaetzung) const;
    // Root-mean-square misfit over the observed peak.
    double restRelativ(double tau) const;
    // The grid, the observed and the model's smoothed mass per radius (units of M / R0).
    const std::vector<double>& gitter() const { return xg; }
    const std::vector<double>& beobachtet() const { return beob; }
    std::vector<double> modell(double tau) const;

private:
    static constexpr int ng = 150, nq = 600;
    double b, masse, q0 = 0, dq = 0;
    std::vector<double> xg, falte, beob;
};

// nu_eff = R0^2/12 times the slope of the least-squares line through tau(t).
double nuAusGerade(const std::vector<double>& t, const std::vector<double>& tau, double R0);

} // namespace ring
