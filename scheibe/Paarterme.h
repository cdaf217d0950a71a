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
// gradient: a_i b_j + a_j b_i - 2/3 delta_ij a.b. Scalars in and out, so
// that the loops over pairs keep everything in the lanes of the vector unit.
struct Schertensor {
    double xx, xy, xz, yy, yz, zz;
};
inline Schertensor schertensor(double a0, double a1, double a2, double b0, double b1, double b2) {
    return {1.3333333333333333 * a0 * b0 - 0.6666666666666666 * (a1 * b1 + a2 * b2),
            a0 * b1 + a1 * b0,
            a0 * b2 + a2 * b0,
            1.3333333333333333 * a1 * b1 - 0.6666666666666666 * (a0 * b0 + a2 * b2),
            a1 * b2 + a2 * b1,
            1.3333333333333333 * a2 * b2 - 0.6666666666666666 * (a0 * b0 + a1 * b1)};
}
// The same into s[6] as xx, xy, xz, yy, yz, zz.
inline void schertensor(const double* a, const double* b, double* s) {
    const Schertensor t = schertensor(a[0], a[1], a[2], b[0], b[1], b[2]);
    s[0] = t.xx, s[1] = t.xy, s[2] = t.xz, s[3] = t.yy, s[4] = t.yz, s[5] = t.zz;
}

// (sigma_1 / rho_2 + sigma_2 / rho_1) applied to the gradient b.
struct Vektor {
    double x, y, z;
};
inline Vektor viskosvektor(const Schertensor& s1, double rho1, const Schertensor& s2, double rho2,
                           double b0, double b1, double b2) {
    const double T0 = s1.xx / rho2 + s2.xx / rho1, T1 = s1.xy / rho2 + s2.xy / rho1,
                 T2 = s1.xz / rho2 + s2.xz / rho1, T3 = s1.yy / rho2 + s2.yy / rho1,
                 T4 = s1.yz / rho2 + s2.yz / rho1, T5 = s1.zz / rho2 + s2.zz / rho1;
    return {T0 * b0 + T1 * b1 + T2 * b2, T1 * b0 + T3 * b1 + T4 * b2, T2 * b0 + T4 * b1 + T5 * b2};
}
// The tensor at s[0 .. 5] (xx, xy, xz, yy, yz, zz).
inline Schertensor tensor(const double* s) {
    return {s[0], s[1], s[2], s[3], s[4], s[5]};
}
inline void viskosvektor(const double* sigma1, double rho1, const double* sigma2, double rho2,
                         const double* b, double* p) {
    const Vektor v = viskosvektor(tensor(sigma1), rho1, tensor(sigma2), rho2, b[0], b[1], b[2]);
    p[0] = v.x, p[1] = v.y, p[2] = v.z;
}

} // namespace scheibe
