#pragma once

#include "kraefte/RechteSeiteDG.h"
#include "strom/Sicherung.h"

#include <cstdint>
#include <fstream>
#include <string>

class AkkScheibe;
class PhysSystem;
class Teilchen;

// The light of the disc: the rate at which artificial and physical viscosity
// turn the disc's orbital energy into heat,
//     L = -sum_i m v_i . (a_artvisc,i + a_physvisc,i),
// with v the velocities (rotating frame) at which the forces were evaluated.
// It is the stand-in for the luminosity of an SPH disc in superhump work
// (Murray 1996, MNRAS 279, 402; Smith et al. 2007, MNRAS 378, 785): the heat
// is radiated where it is made. The stars' gravity and the frame's
// centrifugal term have a potential and the Coriolis term does no work, so a
// disc without pressure, injection or removal loses Jacobi energy at the
// rate L: dE_J/dt = -L.
struct Dissipation {
    double artvisc = 0;  // Msun Rsun^2 / s^3
    double physvisc = 0; // Msun Rsun^2 / s^3
    double summe() const { return artvisc + physvisc; }
};

// One Msun Rsun^2 / s^3 in erg/s, with the solar mass and radius behind the
// program's gravitational constant (1.989e33 g, 6.96e10 cm).
constexpr double ergProSekunde = 1.989e33 * (6.96e10 * 6.96e10);

// Of the last evaluation of the forces on the disc; zero for a disc class
// without viscous accelerations.
Dissipation dissipation(AkkScheibe& scheibe, const PhysSystem& phys);

// The disc's Jacobi energy in the rotating frame, Msun Rsun^2 / s^2:
// sum_i m (v_i^2 / 2 + Phi(r_i)), Phi = -G m1/r1 - G m2/r2 - omega^2 r^2 / 2,
// the potential of the external force (whose centrifugal term acts on all
// three coordinates, so r^2 here is x^2 + y^2 + z^2).
double jacobiEnergie(AkkScheibe& scheibe, const PhysSystem& phys);
// The same of one particle, per unit mass (its Jacobi constant, up to the
// factor -2 of the usual definition), Rsun^2 / s^2.
double jacobiKonstante(const Teilchen& t, const PhysSystem& phys);

// The light curve of a run: the forces of the run, measuring the
// dissipation whenever they are evaluated on the disc itself (not on an
// integrator's stage copy), and a table with a row per step: the
// dissipation of the state the step starts from.
//
// Table: tab-separated, '#' header lines with the units; columns time (s),
// L, L_artvisc, L_physvisc (Msun Rsun^2/s^3), L (erg/s), particles. Numbers
// with ten significant digits: the times of neighbouring steps differ in
// the sixth.
//
// A row is written once the next step has begun at a later time: a disc
// evaluated twice at one time (after particles were added or removed) gives
// the row of its last evaluation. The table's length and the row in hand go
// into the checkpoint, so a run taken up again goes on with the same rows.
class Lichtkurve : public RechteSeiteDG, public Sicherungsteil {
public:
    Lichtkurve(RechteSeiteDG& kraefte, AkkScheibe& haupt, PhysSystem& phys, std::string datei);

    // A new table (header only); false with the message when it cannot be
    // written. A run taken up from its checkpoint does not call it.
    bool beginne(std::string& fehler);
    // Writes the row in hand and flushes; false when writing failed.
    bool abschluss();

    void deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) override;
    AkkScheibe* createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) override;
    int scheibe() override;

    const char* name() const override { return "lichtkurve"; }
    std::string zustand() override;
    std::string lies(const std::string& bytes, std::size_t n, bool setzen) override;

    long long zeilen = 0; // rows written by this process

private:
    bool schreibt() const; // this process writes the table
    struct Zeile {
        double t = 0;
        Dissipation l;
        std::int64_t n = 0;
    };
    void schreibeZeile(const Zeile& z);

    RechteSeiteDG& kraefte;
    AkkScheibe& haupt;
    PhysSystem& phys;
    std::string datei;
    std::ofstream aus;
    bool offen = false;
    bool gemeldet = false; // a failed write said once
    bool inHand = false;
    Zeile zeile;
};
