#pragma once
// The peer of the benchmarks: one evaluation of the four forces on a viscous
// gas disc as a straightforward reading of the data model writes it, with
// nothing made fast: valarrays for every vector, a grid of nested vectors of
// particle pointers, a linked list of pair records that the particles point
// into, and the passes one after the other (pairs, then particles). Its
// accelerations are compared bit for bit with the program's.

#include "physik/PhysSystem.h"
#include "physik/Vektor.h"

#include <list>
#include <valarray>
#include <vector>

namespace woertlich {

struct WW;

struct Teilchen {
    std::valarray<double> r = std::valarray<double>(3), v = std::valarray<double>(3),
                          a = std::valarray<double>(3);
    std::vector<WW*> ww;
    double rho = 0, p = 0, temperatur = 0, cs = 0;
    std::valarray<double> aPress = std::valarray<double>(3), aArtvisc = std::valarray<double>(3),
                          aPhysvisc = std::valarray<double>(3),
                          sigmaTensor = std::valarray<double>(6);
};

struct WW {
    Teilchen *t1 = nullptr, *t2 = nullptr;
    double d = 0;
    std::valarray<double> r = std::valarray<double>(3), dv = std::valarray<double>(3);
    double W = 0;
    std::valarray<double> dW = std::valarray<double>(3);
    double press = 3.0, pi = 0;
    std::valarray<double> physviscVektor = std::valarray<double>(3),
                          sigmaTensor = std::valarray<double>(6);
};

class Scheibe {
public:
    std::vector<Teilchen> teilchen;

    // The particles at r with velocities v, the grid over the box of phys.
    Scheibe(const std::vector<Vektor3>& r, const std::vector<Vektor3>& v, const PhysSystem& phys);
    // Externforce, Pressure, Artvisc and Physvisc, after the pair search.
    void auswerten(const PhysSystem& phys);
    std::size_t paare() const { return ww.size(); }

private:
    std::vector<std::vector<std::vector<std::vector<Teilchen*>>>> gitter;
    std::list<WW> ww;
    std::vector<double> min, max;
    double h = 0, h2 = 0;
    void paar(Teilchen* p, Teilchen* q, const PhysSystem& phys);
};

} // namespace woertlich
