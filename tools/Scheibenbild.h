#pragma once
// Pictures of snapshots: the column density of the particles seen face-on
// (x-y) and edge-on (x-z), with the primary, the direction of the secondary,
// L1, the removal radii and the primary's Roche lobe, written as PNG.

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

class AkkScheibe;
class PhysSystem;

namespace bild {

struct Punkt2 {
    double x, y;
};

// Roche potential in the orbital plane of the co-rotating frame:
// -G m1/|r-x1| - G m2/|r-x2| - omega^2 (x^2 + y^2)/2, per unit mass.
double rochePotential(const PhysSystem& phys, double x, double y);

// The Roche lobe of the primary in the orbital plane: the closed contour of
// the potential through L1, as `winkel` points at equal angles around the
// primary, counter-clockwise from +x. `winkel` even puts one point on the
// ray towards the secondary, which is the lobe's tip at L1.
std::vector<Punkt2> rocheLappen(const PhysSystem& phys, int winkel);

// Column density (mass per area) of the particles on a grid of `spalten` x
// `zeilen` cells covering [xmin, xmax] x [vmin, vmax], row 0 at vmax. The
// second coordinate is y (`achse` 1) or z (`achse` 2). Particles with a
// non-finite coordinate or outside the grid are skipped. With `glaettung` > 0
// the histogram is smoothed by a Gaussian of that many cells (standard deviation).
std::vector<double> saeulendichte(const AkkScheibe& scheibe, double mTeilchen, int achse,
                                  double xmin, double xmax, double vmin, double vmax, int spalten,
                                  int zeilen, double glaettung);

// An image of palette indices, written as an 8-bit palette PNG.
struct Bild {
    int breite = 0, hoehe = 0;
    std::vector<std::uint8_t> punkte; // row by row from the top
};
// Returns an empty string on success, else a message.
std::string schreibePng(const std::string& datei, const Bild& bild);

const char* hilfetext();

// The whole program; returns the exit status (0 success, 1 an unreadable or
// unwritable file, 2 bad options).
int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err);

} // namespace bild
