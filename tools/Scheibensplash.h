#pragma once
// Snapshots for splash, the SPH visualisation tool: every particle with its
// position, velocity, smoothing length, mass and SPH density in an ASCII
// table that splash reads, with the column labels in a `columns` file. With
// h, m and the density known, splash renders column densities with the SPH
// kernel itself.

#include <iosfwd>
#include <string>
#include <vector>

class PhysSystem;

namespace splash {

// Labels of the table's columns, in order: the content of the `columns`
// file. splash knows the coordinates, h, the mass and the density by them.
const std::vector<std::string>& spalten();

// One particle of the table.
struct Zeile {
    double r[3], v[3]; // position and velocity in the co-rotating frame
    double h;          // smoothing length in splash's convention: half the simulator's
    double m;          // particle mass
    double rho;        // SPH density
};

// What one snapshot gives.
struct Tabelle {
    double zeit = 0;
    std::vector<Zeile> zeilen; // in file order
    long weggelassen = 0;      // particles dropped: a coordinate is not a finite number
};

// Reads a snapshot as the simulator's SPH disc and computes every particle's
// density as the simulator does before each evaluation of the forces: the
// disc's own cell grid and pair search, and rho = m fak (1 + sum W) with the
// cubic spline kernel of `phys` (which must be set). Particles with a
// coordinate that is not a finite number are dropped before the search.
// False when the file cannot be read or is no snapshot; the reader's
// complaints go to `meldungen`, prefixed with the file name.
bool lies(const std::string& datei, PhysSystem& phys, Tabelle& tabelle, std::ostream& meldungen);

// Writes the table: header lines beginning with "#" (the source, the time on
// the second line, the labels on the last), then one line per particle.
void schreibe(std::ostream& aus, const Tabelle& tabelle, const std::string& quelle);

const char* hilfetext();

// The whole program; returns the exit status (0 success, 1 an unreadable or
// unwritable file, 2 bad options).
int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err);

} // namespace splash
