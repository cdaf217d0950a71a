#pragma once

#include "scheibe/AkkScheibe.h"
#include "scheibe/Gitter.h"
#include "scheibe/SphTeilchen.h"
#include "scheibe/SphWW.h"

#include "scheibe/Paarliste.h"
#include <memory>
#include <vector>

// A disc of SPH particles. Before every evaluation of the forces it finds all
// pairs closer than the smoothing length through a cell grid over a fixed box
// around the primary and computes the densities. Copies (the integrator's
// stage discs) share the grid and the pair list with their source; whoever
// uses pairs runs force_init on its own disc first.
class SphAkkScheibe : public AkkScheibe {
public:
    std::vector<SphTeilchen> teilchen;           // the particles (the base's vector stays empty)
    std::shared_ptr<Gitter<SphTeilchen>> gitter; // cell grid
    std::shared_ptr<Paarliste<SphWW>> ww;        // all pairs; addresses stable while appending
    std::vector<double> min;                     // lower corner of the grid box
    std::vector<double> max;                     // upper corner of the grid box
    double h = 0;                                // cell edge = smoothing length
    double h2 = 0;                               // h^2, the pair criterion

    // No particles, no grid, no pair list.
    SphAkkScheibe();
    // Reads the initial disc and lays out the grid.
    SphAkkScheibe(InitAkkScheibe& init, PhysSystem& phys);

    AkkScheibe* clone() override;
    SphTeilchen& operator[](int i) override;
    int tanz() override;
    void entferne_teilchen(int i) override;
    void output(PhysSystem& phys) override;
    void force_init(PhysSystem& phys) override;
    void odeint_init(AkkScheibe& other) override;
    void odeint_assign(AkkScheibe& other) override;
    void fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v) override;
    void ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                        const std::vector<Vektor3>& v) override;
};
