#pragma once
// Generator of initial discs: particles on prograde circular Kepler orbits
// around the primary, written as a snapshot file that the simulator reads.

#include <cstdint>
#include <iosfwd>
#include <random>
#include <string>
#include <vector>

class InitPhysSystem;
class PhysSystem;

namespace generator {

struct Optionen {
    long anzahl = 3000;       // number of particles
    double innen = 0.08;      // inner radius around the primary, solar radii
    double aussen = 0.3;      // outer radius around the primary, solar radii
    double hoehe = 0.0015;    // Gaussian scale height (standard deviation) in z
    double steigung = 0.75;   // p in Sigma ~ R^-p
    std::uint64_t seed = 1;   // seed of the random number generator
    std::string ausgabe;      // output file; empty or "-" means standard output
    std::string parameter = "./data/OYCar.parameter";
    bool hilfe = false;       // --help was given
};

// Position and velocity of one particle in the co-rotating frame.
struct Punkt {
    double r[3];
    double v[3];
};

// Parses the command line (without the program name) into `o`. Returns an
// empty string on success, else a message that names the offending option.
std::string leseOptionen(const std::vector<std::string>& argumente, Optionen& o);

// Checks the binary read from the parameter file; empty string when usable.
std::string pruefeBinaer(const InitPhysSystem& init);

// Checks that the disc lies between the removal radii of the binary.
std::string pruefeScheibe(const Optionen& o, const PhysSystem& phys);

// Uniform number in [0, 1) from the top 53 bits of one raw draw. Written out
// here because the standard distributions may differ between libraries.
double gleichverteilt(std::mt19937_64& zufall);

// Standard normal number by the Box-Muller transform (two raw draws).
double normalverteilt(std::mt19937_64& zufall);

// The particles, in generation order. Per particle the draws are: radius,
// azimuth, then the two of the normal height.
std::vector<Punkt> erzeuge(const Optionen& o, const PhysSystem& phys);

// Writes a snapshot file with time 0 in the simulator's format.
void schreibe(std::ostream& aus, const std::vector<Punkt>& teilchen, double mTeilchen);

const char* hilfetext();

// The whole program: options, parameter file, generation, output. Returns
// the exit status (0 success, 1 unusable input or output file, 2 bad options).
int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err);

} // namespace generator
