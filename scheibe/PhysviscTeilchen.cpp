#include "scheibe/PhysviscTeilchen.h"

#include "scheibe/PressArtviscTemplates.h"

void PhysviscTeilchen::_force_init(PhysSystem& phys) {
    dichte(pvww.paarliste() ? pvww.paarliste()->summeW(pvww.slot(), scheibe::kernel1(phys)) : 1.0,
           phys);
}

void PhysviscTeilchen::sigma(PhysSystem& phys) {
    if (pvww.paarliste())
        scheibe::_gasterme(*this, *pvww.paarliste(), pvww.slot(), scheibe::scherung, phys);
    else
        sigmaTensor = {0, 0, 0, 0, 0, 0};
}

// A = m nu f_grad sum over the pairs of (sigma_self / rho_partner +
// sigma_partner / rho_self) g, g the gradient seen from this particle: the
// pair's viscous vector for its first partner, negated for its second.
void PhysviscTeilchen::add_physvisc(PhysSystem& phys) {
    double A[3] = {0, 0, 0};
    if (Partnerliste* ww = pvww.paarliste()) {
        const std::uint32_t x = pvww.slot();
        const Partnerliste::Block& b = ww->block(x);
        const double* ich = ww->sigma[x].data();
        const double rho = ww->gas[x].rho;
        for (std::uint32_t k = ww->erster(x), e = k + ww->anzahl(x); k < e; ++k) {
            const std::uint32_t q = b.partner[k] & ~Partnerliste::naehert;
            const double g[3] = {b.gx[k], b.gy[k], b.gz[k]};
            double p[3];
            scheibe::viskosvektor(ich, rho, ww->sigma[q].data(), ww->gas[q].rho, g, p);
            for (int c = 0; c < 3; ++c)
                A[c] += p[c];
        }
    }
    const double faktor = phys.mTeilchen * phys.viskositaet * scheibe::kernel1(phys).dfak;
    for (int c = 0; c < 3; ++c) {
        A[c] = A[c] * faktor;
        aPhysvisc[c] = A[c];
        a[c] = a[c] + A[c];
    }
}
