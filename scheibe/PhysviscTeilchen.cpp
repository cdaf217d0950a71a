#include "scheibe/PhysviscTeilchen.h"

#include "scheibe/PressArtviscTemplates.h"

void PhysviscTeilchen::_force_init(PhysSystem& phys) {
    dichte(pvww.paarliste() ? pvww.paarliste()->summeW(pvww.slot(), scheibe::kernel1(phys)) : 1.0,
           phys);
}

void PhysviscTeilchen::sigma(PhysSystem& phys) {
    sigmaTensor = {0, 0, 0, 0, 0, 0};
    if (Partnerliste* ww = pvww.paarliste()) {
        if (ww->sigma.size() < ww->gas.size())
            ww->sigma.resize(ww->gas.size());
        scheibe::_gasterme(*ww, pvww.slot(), scheibe::scherung, phys);
        sigmaTensor = ww->sigma[pvww.slot()];
    }
}

// A = m nu f_grad sum over the pairs of (sigma_self / rho_partner +
// sigma_partner / rho_self) g, g the gradient seen from this particle: the
// pair's viscous vector for its first partner, negated for its second.
Vektor3 PhysviscTeilchen::beschleunigung(const Partnerliste& ww, std::uint32_t x,
                                         const PhysSystem& phys) {
    double A[3] = {0, 0, 0};
    const Partnerliste::Block& b = ww.block(x);
    const std::uint32_t k0 = ww.erster(x), m = ww.anzahl(x);
    // Each pair's vector in the lanes of the vector unit, then the sum in
    // list order.
    static thread_local Paarpuffer puffer;
    double* const* P = puffer.spalten(m, 3);
    double *P0 = P[0], *P1 = P[1], *P2 = P[2];
    const std::uint32_t* partner = b.partner.data() + k0;
    const double *gx = b.gx.data() + k0, *gy = b.gy.data() + k0, *gz = b.gz.data() + k0;
    const double* sigma = reinterpret_cast<const double*>(ww.sigma.data()); // six per slot
    const Partnerliste::Gas* gas = ww.gas.data();
    const scheibe::Schertensor ich = scheibe::tensor(sigma + 6 * std::size_t(x));
    const double rho = gas[x].rho;
#pragma omp simd
    for (std::size_t k = 0; k < m; ++k) {
        const std::size_t q = partner[k] & ~Partnerliste::naehert;
        const scheibe::Schertensor du = {sigma[6 * q],     sigma[6 * q + 1], sigma[6 * q + 2],
                                         sigma[6 * q + 3], sigma[6 * q + 4], sigma[6 * q + 5]};
        const scheibe::Vektor p =
            scheibe::viskosvektor(ich, rho, du, gas[q].rho, gx[k], gy[k], gz[k]);
        P0[k] = p.x, P1[k] = p.y, P2[k] = p.z;
    }
    for (std::uint32_t k = 0; k < m; ++k) {
        A[0] += P0[k];
        A[1] += P1[k];
        A[2] += P2[k];
    }
    const double faktor = phys.mTeilchen * phys.viskositaet * scheibe::kernel1(phys).dfak;
    return {A[0] * faktor, A[1] * faktor, A[2] * faktor};
}

void PhysviscTeilchen::add_physvisc(PhysSystem& phys) {
    Vektor3 A{0, 0, 0};
    const Partnerliste* ww = pvww.paarliste();
    if (ww && ww->sigma.size() > pvww.slot()) {
        A = beschleunigung(*ww, pvww.slot(), phys);
    } else {
        const double faktor = phys.mTeilchen * phys.viskositaet * scheibe::kernel1(phys).dfak;
        for (int c = 0; c < 3; ++c)
            A[c] = A[c] * faktor;
    }
    aPhysvisc = A;
    for (int c = 0; c < 3; ++c)
        a[c] = a[c] + A[c];
}
