#pragma once

#include "odeint/Odeint.h"
#include "strom/Sicherung.h"

#include <cstdint>
#include <functional>
#include <vector>

class Verteilung;

// Kick-drift-kick leapfrog with one evaluation of the forces a step, the
// integrator SPH disc codes use for long runs (Monaghan 1992, ARA&A 30, 543;
// Springel 2005, MNRAS 364, 1105), as the alternative to the Cash-Karp
// stepper for runs of many orbits:
//
//     v+ = v_n + dt/2 a_n,   x_n+1 = x_n + dt v+,
//     a_n+1 = a(x_n+1, v*),  v* = v+ + dt/2 a_n  (predicted velocity),
//     v_n+1 = v+ + dt/2 a_n+1.
//
// The viscous forces depend on the velocity and take the predicted one. The
// Coriolis term, 2 omega (v_y, -v_x, 0), is taken apart from the rest g of
// the acceleration: explicit in the first kick, implicit in the second,
// which makes the pair of kicks a Cayley rotation of the velocity that keeps
// its length exactly, so the frame's rotation does no work on a test
// particle and its Jacobi constant does not drift.
//
// One global step from the Courant and force conditions (Monaghan 1992,
// sec. 10): dt = min(cKraft min_i sqrt(h/|a_i|), cCourant min_i h/(c_i +
// 0.6 (alpha c_i + beta max_j |mu_ij|)), h^2/(8 nu)), the last for explicit
// shear diffusion, rounded down to a power of two seconds and capped by the
// driver's step (clipped to the next output).
//
// The accelerations at the end of a step are those the next one starts
// from: the driver's evaluation at the start of a step is skipped unless
// particles were removed or added since (a counter the run supplies), so a
// step costs one evaluation.
class Leapfrog : public Odeint, public Sicherungsteil {
public:
    double cKraft = 0.25;   // force condition's factor
    double cCourant = 0.4;  // Courant condition's factor
    // Particles removed or added so far; unchanged since the last
    // evaluation means the stored accelerations are those of the disc.
    std::function<long long()> aenderungen = [] { return 0LL; };
    long long auswertungen = 0; // evaluations of the forces by this process
    // The processes of a distributed run (null: one); not owned. The
    // accelerations go with their particles, the step is the smallest of
    // the processes' and the checkpoint holds them in global order.
    Verteilung* verteilung = nullptr;

    explicit Leapfrog(InitOdeint& init);
    // Joins the processes of a distributed run.
    void verteilt(Verteilung& v);

    void ersteStufe(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte) override;
    void stepper(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte, double* hdid,
                 double* hnext) override;

    // The step the conditions allow for the disc's present accelerations
    // (infinite for a disc without particles).
    double schrittweite(AkkScheibe& scheibe, const PhysSystem& phys) const;

    const char* name() const override { return "leapfrog"; }
    std::string zustand() override;
    std::string lies(const std::string& bytes, std::size_t n, bool setzen) override;

private:
    // Evaluates the forces on the disc and keeps g = a - Coriolis(v).
    void auswerten(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte);

    std::vector<double> g;     // 3 a particle: acceleration without the Coriolis term, Rsun/s^2
    std::vector<double> halb;  // 3 a particle: velocity after the first kick, Rsun/s
    bool frisch = false;       // g belongs to the disc's present state
    long long marke = 0;       // aenderungen() at that evaluation
    double grenze = 0;         // the conditions' step at that evaluation, s
};
