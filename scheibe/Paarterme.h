#pragma once
// The terms of one pair, written once for the pair records and for the
// passes that form them where they are used. Operation order and grouping
// are those of the definitions; both partners of a pair get the same bits.

namespace scheibe {

// Pressure term (P_i + P_j) / (rho_i rho_j).
inline double pressterm(double p1, double rho1, double p2, double rho2) {
    return (p1 + p2) / (rho1 * rho2);
}

// mu = h v.r / (d^2 + 0.01 h^2) of approaching partners (v.r = sp < 0).
inline double mu(double h, double sp, double d) {
    return h * sp / (d * d + 0.01 * (h * h));
}

// Artificial viscosity Pi_ij = mu (-alpha (c_i + c_j) + 2 beta mu) / (rho_i + rho_j).
inline double piterm(double mu, double cs1, double rho1, double cs2, double rho2, double alpha,
                     double beta) {
    return mu * (-alpha * (cs1 + cs2) + 2 * beta * mu) / (rho1 + rho2);
}

// Traceless symmetric shear form of a = velocity difference and b = kernel
// gradient: a_i b_j + a_j b_i - 2/3 delta_ij a.b, as xx, xy, xz, yy, yz, zz.
inline void schertensor(const double* a, const double* b, double* s) {
    s[0] = 1.3333333333333333 * a[0] * b[0] - 0.6666666666666666 * (a[1] * b[1] + a[2] * b[2]);
    s[1] = a[0] * b[1] + a[1] * b[0];
    s[2] = a[0] * b[2] + a[2] * b[0];
    s[3] = 1.3333333333333333 * a[1] * b[1] - 0.6666666666666666 * (a[0] * b[0] + a[2] * b[2]);
    s[4] = a[1] * b[2] + a[2] * b[1];
    s[5] = 1.3333333333333333 * a[2] * b[2] - 0.6666666666666666 * (a[0] * b[0] + a[1] * b[1]);
}

// (sigma_1 / rho_2 + sigma_2 / rho_1) applied to the gradient b.
inline void viskosvektor(const double* sigma1, double rho1, const double* sigma2, double rho2,
                         const double* b, double* p) {
    double T[6];
    for (int c = 0; c < 6; ++c)
        T[c] = sigma1[c] / rho2 + sigma2[c] / rho1;
    p[0] = T[0] * b[0] + T[1] * b[1] + T[2] * b[2];
    p[1] = T[1] * b[0] + T[3] * b[1] + T[4] * b[2];
    p[2] = T[2] * b[0] + T[4] * b[1] + T[5] * b[2];
}

} // namespace scheibe
