#pragma once

#include "physik/Vektor.h"

class Kernel;
class SphTeilchen;

// Interaction pair of two SPH particles closer than the smoothing length.
// Each pair is stored once in the disc's pair list and referenced by both
// partners.
class SphWW {
public:
    SphTeilchen* t1 = nullptr; // first partner (outer loop of the pair search)
    SphTeilchen* t2 = nullptr; // second partner
    double d = 0;              // distance |r|
    Vektor3 r{};               // t2.r - t1.r
    Vektor3 dv{};              // t2.v - t1.v
    double W = 0;              // kernel value without its normalisation
    Vektor3 dW{};              // kernel gradient w.r.t. t1.r without its normalisation

    // Fills the pair of p (first) and q (second) from their separation
    // s = q.r - p.r, s2 = |s|^2, and velocity difference dv = q.v - p.v.
    void _init(SphTeilchen* p, SphTeilchen* q, const double s[3], double s2, const double dv[3],
               Kernel& kernel);

    // The gradient as seen from particle p: dW for t1, -dW for t2.
    Vektor3 _dW_ohne_fak(SphTeilchen* p) const;
    // The same into g, without allocating; a particle that is neither
    // partner gets a message and zeros.
    void dW_von(const SphTeilchen* p, double g[3]) const;
};
