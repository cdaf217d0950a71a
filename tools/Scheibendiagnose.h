#pragma once
// Diagnostics of a run: per snapshot the particle count, the angular momentum
// about the primary, the radii, the Jacobi energy and the eccentric (m = 1)
// mode of the disc, as one tab-separated table.

#include <iosfwd>
#include <string>
#include <vector>

class AkkScheibe;
class PhysSystem;

namespace diagnose {

struct Werte {
    double zeit = 0;       // s
    long anzahl = 0;       // particles in the snapshot
    long nichtEndlich = 0; // of these, left out: a coordinate is not a finite number
    // Sum over the particles of the specific angular momentum about the axis
    // through the primary parallel to z, seen from a non-rotating frame that
    // moves with the primary; solar radii^2 / s (times mTeilchen: the total).
    double Lz = 0;
    double Rmittel = 0; // mean distance from that axis, solar radii
    double R90 = 0;     // radius within which 90 % of the particles lie
    // Sum of the specific Jacobi energies, solar radii^2 / s^2.
    double EJ = 0;
    double A1 = 0;    // |sum exp(i phi)| / N, phi the azimuth around the primary
    double phase = 0; // arg of that sum in degrees; 0 points away from the secondary
    // Sum of the secondary's tidal torques about that axis (its pull on the
    // particle minus its pull on the primary), solar radii^2 / s^2.
    double T2 = 0;
};

// The diagnostics of one disc. Radii, A1 and phase are NaN for an empty disc.
Werte werte(const AkkScheibe& scheibe, const PhysSystem& phys);

// Particle counts in `anzahl` rings of width `breite` around the primary's axis.
std::vector<long> ringe(const AkkScheibe& scheibe, const PhysSystem& phys, double breite,
                        int anzahl);

const char* hilfetext();

// The whole program; returns the exit status (0 success, 1 an unreadable
// file, 2 bad options).
int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err);

} // namespace diagnose
