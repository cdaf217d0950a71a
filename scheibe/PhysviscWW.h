#pragma once

#include "scheibe/PressArtviscWW.h"

class Kernel;
class PhysSystem;
class PhysviscTeilchen;

// Pair of a viscous gas disc: adds the pair's share of the shear tensor and
// of the viscous force.
class PhysviscWW : public PressArtviscWW {
public:
    PhysviscTeilchen* pt1 = nullptr;    // first partner, typed
    PhysviscTeilchen* pt2 = nullptr;    // second partner, typed
    Vektor3 physviscVektor{};        // share of the viscous force (w.r.t. pt1)
    Tensor6 sigmaTensor{};           // share of sigma: xx, xy, xz, yy, yz, zz

    void _init(PhysviscTeilchen* p, PhysviscTeilchen* q, const double s[3], double s2,
               const double dv[3], Kernel& kernel);

    // Traceless symmetric shear form of a = dv and b = dW:
    // a_i b_j + a_j b_i - 2/3 delta_ij a.b.
    void sigma(PhysSystem& phys);
    // The same into s[6], leaving the pair unchanged.
    void schertensor(double s[6]) const;
    // sigmaTensor / rho of the partner that is not t.
    Tensor6 sigma(PhysviscTeilchen* t);
    // (sigma_1 / rho_2 + sigma_2 / rho_1) applied to dW.
    void physvisc(PhysSystem& phys);
    // The same into p[3], leaving the pair unchanged.
    void viskosvektor(double p[3]) const;
    // physviscVektor as it acts on t: itself for pt1, negated for pt2.
    Vektor3 physvisc(PhysviscTeilchen* t);

    // The two above without allocating: into s[6] and p[3]. A particle that
    // is neither partner gets a message and zeros.
    void sigma_von(const PhysviscTeilchen* t, double s[6]) const;
    void physvisc_von(const PhysviscTeilchen* t, double p[3]) const;
};
