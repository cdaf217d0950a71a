#pragma once

#include "physik/Vektor.h"
#include "scheibe/Update.h"

#include <cstdint>
#include <random>
#include <string>

class AkkScheibe;
class InitStrom;
class PhysSystem;

namespace strom {

// Uniform number in [0, 1) from the top 53 bits of one raw draw. Written out
// here because the standard distributions differ between libraries.
double gleichverteilt(std::mt19937_64& zufall);

// Standard normal number by the Box-Muller transform (two raw draws).
double normalverteilt(std::mt19937_64& zufall);

// Most particles a stream may bring in one run: a rate beyond it is taken
// for a slip of units (a rate per year given per second is 3e7 times too high).
constexpr long long hoechstens = 1000000;

} // namespace strom

// The gas stream from the secondary through the inner Lagrange point L1: the
// disc's update hook, which after every accepted step appends the particles
// that the mass transfer rate has brought through L1 since the stream began.
//
// Up to time t the stream has carried Stromrate (t - t0) of mass, that is
// floor(Stromrate (t - t0) / mTeilchen) particles; each step adds those still
// missing, so the count does not depend on the steps. Particle k crossed the
// injection plane x = xL1 + Stromabstand (between L1 and the primary, which
// lies on +x) at t_k = t0 + (k + 1) mTeilchen / Stromrate, when the (k + 1)-th
// particle mass had passed, and has since moved on with the mean speed. In the
// co-rotating frame it gets
//   r = (xL1 + Stromabstand + Stromgeschwindigkeit (t - t_k), Strombreite g1, Strombreite g2),
//   v = (Stromgeschwindigkeit + Stromstreuung g3, Stromstreuung g4, Stromstreuung g5),
// with standard normal g1 ... g5 drawn in this order for every particle (ten
// raw draws), so particle k gets the same draws whatever the steps.
class Stromquelle : public Update {
public:
    AkkScheibe* scheibe;       // the disc fed; not owned
    const PhysSystem* phys;    // the binary; not owned
    double rate;               // solar masses / s
    double geschwindigkeit;    // mean speed toward the primary, solar radii / s
    double streuung;           // standard deviation of each velocity component
    double abstand;            // injection plane: distance from L1 toward the primary
    double breite;             // standard deviation of y and z
    std::mt19937_64 zufall;    // seeded with Stromsaat
    double t0;                 // the disc's time when the stream began
    long long eingespeist = 0; // particles appended so far

    // The stream begins at the disc's present time.
    Stromquelle(AkkScheibe& scheibe, const PhysSystem& phys, const InitStrom& init);

    // Empty when the stream suits the binary and a run to the time tEnde
    // (L1 outside eta, the injection plane and the stream's width between L1
    // and eta, at most strom::hoechstens particles); else the message
    // (without line end) that says why not.
    std::string pruefe(double tEnde) const;

    // Particles the stream has brought by time t, at most strom::hoechstens.
    long long soll(double t) const;

    // Position and velocity of particle k of the stream at time t (k counts
    // from 0, in order; each call takes the particle's draws).
    void neuesTeilchen(long long k, double t, Vektor3& r, Vektor3& v);

    // After each accepted step: appends the particles still missing at the disc's time.
    void update() override;
    // Before each evaluation of the forces: nothing.
    void processEvents() override;
};
