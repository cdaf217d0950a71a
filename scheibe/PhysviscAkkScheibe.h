#pragma once

#include "scheibe/PhysviscTeilchen.h"
#include "scheibe/PhysviscWW.h"
#include "scheibe/PressArtviscAkkScheibe.h"

#include "scheibe/Paarliste.h"
#include <memory>
#include <vector>

// A viscous gas disc: adds the physical (Navier-Stokes) shear viscosity with
// constant kinematic viscosity nu to the gas disc,
//   a_i = nu m f_grad sum_j (sigma_i/rho_j + sigma_j/rho_i) . grad_i W_ij,
//   sigma_i = f_grad m sum_j (v_ij grad W + grad W v_ij - 2/3 1 v_ij.grad W) / rho_j,
// computed in four passes (pair tensors, particle tensors, pair vectors,
// particle accelerations), each complete before the next.
class PhysviscAkkScheibe : public PressArtviscAkkScheibe {
public:
    std::vector<PhysviscTeilchen> teilchen;
    std::shared_ptr<Gitter<PhysviscTeilchen>> gitter;
    std::shared_ptr<Paarliste<PhysviscWW>> ww;

    PhysviscAkkScheibe();
    PhysviscAkkScheibe(InitAkkScheibe& init, PhysSystem& phys);

    AkkScheibe* clone() override;
    PhysviscTeilchen& operator[](int i) override;
    int tanz() override;
    void entferne_teilchen(int i) override;
    void output(PhysSystem& phys) override;
    void force_init(PhysSystem& phys) override;
    void odeint_init(AkkScheibe& other) override;
    void odeint_assign(AkkScheibe& other) override;
    void fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v) override;
    void ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                        const std::vector<Vektor3>& v) override;
    void add_press(PhysSystem& phys) override;
    void add_artvisc(PhysSystem& phys) override;
    // Adds the viscous acceleration to every particle.
    virtual void add_physvisc(PhysSystem& phys);
};
