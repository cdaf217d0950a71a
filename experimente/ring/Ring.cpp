#include "experimente/ring/Ring.h"

#include "kraefte/Artvisc.h"
#include "kraefte/Externforce.h"
#include "kraefte/Physvisc.h"
#include "kraefte/Pressure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <random>
#include <streambuf>

namespace ring {

namespace {

const double G = 3.9371199385708905e-7, pi = std::acos(-1.0); // R_sun^3 / (M_sun s^2)

// Swallows what the disc prints at every force evaluation ("Anzahl WWPartnern").
class Stumm {
public:
    Stumm() : alt(std::cout.rdbuf(&nichts)) {}
    ~Stumm() { std::cout.rdbuf(alt); }

private:
    struct Nichts : std::streambuf {
        int overflow(int c) override { return traits_type::not_eof(c); }
    } nichts;
    std::streambuf* alt;
};

std::string schreibe(const std::string& datei, const std::string& inhalt) {
    std::ofstream(datei, std::ios::binary) << inhalt;
    return datei;
}

std::string parameter(const Einstellung& e) {
    char text[1000];
    std::snprintf(text, sizeof text,
                  "Outputfiles 1\nOutputtime 1e9\nAnfangsschrittweite 5\nMinSchrittweite 1e-6\n"
                  "MaxSchritte 1000000\nGenauigkeit %.17g\nRungeKutta\n"
                  "Primaersternmasse 0.685\nSekundaersternmasse 0.07\nBahnperiode 5453.6\n"
                  "Viskositaet %.17g\nArtVisk_alpha %.17g\nArtVisk_beta %.17g\n"
                  "Smoothinglength %.17g\nKern1\n",
                  e.genauigkeit, e.nu, e.alpha, e.beta, e.h);
    return text;
}

} // namespace

double besselIskaliert(double nu, double z) {
    // The power series below z = 25 (positive terms), the asymptotic series above
    // (its terms fall below 1e-16 of the first long before the 15th).
    if (z < 25) {
        double term = std::pow(z / 2, nu) / std::tgamma(nu + 1), summe = term;
        for (int k = 1; term > 1e-17 * summe; ++k) {
            term *= (z / 2) * (z / 2) / (k * (k + nu));
            summe += term;
        }
        return summe * std::exp(-z);
    }
    double term = 1, summe = 1;
    for (int k = 1; k <= 15; ++k) {
        term *= -(4 * nu * nu - (2 * k - 1) * (2 * k - 1)) / (k * 8 * z);
        summe += term;
    }
    return summe / std::sqrt(2 * pi * z);
}

double sigmaLBP(double x, double tau) {
    // exp(-(1+x^2)/tau) I(2x/tau) written as exp(-(1-x)^2/tau) e^-z I(z): no overflow.
    if (x <= 0)
        return 0;
    return std::pow(x, -0.25) / tau * std::exp(-(1 - x) * (1 - x) / tau) *
           besselIskaliert(0.25, 2 * x / tau);
}

Ring::Ring(const Einstellung& einst, const std::string& ordner)
    : e(einst), parameterDatei(schreibe(ordner + "/ring.parameter", parameter(einst))),
      scheibenDatei(schreibe(ordner + "/Akk-Ring-0", "Teilchenanzahl 0 Zeit 0 Teilchendaten:\n")),
      ip(parameterDatei.c_str(), scheibenDatei.c_str()), kernel(ip), phys(ip, &kernel),
      ia(parameterDatei.c_str(), scheibenDatei.c_str()), io(parameterDatei.c_str()), s(ia, phys) {
    kraefte.add(new Externforce);
    if (e.druck)
        kraefte.add(new Pressure);
    if (e.artvisc)
        kraefte.add(new Artvisc);
    if (e.physvisc)
        kraefte.add(new Physvisc);

    // Cumulative mass F(x) of the profile at tau0 on a fine grid, and its inverse.
    const double w = std::sqrt(e.tau0 / 2), xa = std::max(1e-3, 1 - 8 * w), xb = 1 + 8 * w;
    const int n = 20000;
    std::vector<double> xs(n + 1), F(n + 1, 0.0);
    double sigMax = 0;
    for (int i = 0; i <= n; ++i) {
        xs[i] = xa + (xb - xa) * i / n;
        sigMax = std::max(sigMax, sigmaLBP(xs[i], e.tau0));
    }
    for (int i = 1; i <= n; ++i) { // Simpson on each cell
        const double l = xs[i - 1], r = xs[i], m = (l + r) / 2;
        F[i] = F[i - 1] + (r - l) / 6 *
                              (2 * l * sigmaLBP(l, e.tau0) + 8 * m * sigmaLBP(m, e.tau0) +
                               2 * r * sigmaLBP(r, e.tau0));
    }
    const auto xVonF = [&](double f) {
        const int i = std::clamp(int(std::upper_bound(F.begin(), F.end(), f) - F.begin()), 1, n);
        return xs[i - 1] + (f - F[i - 1]) / (F[i] - F[i - 1]) * (xs[i] - xs[i - 1]);
    };
    // Rows of equal-mass particles, each row as wide as the local spacing
    // d = d0 (Sigma_peak/Sigma)^1/2 and its particles as far apart: a particle of
    // area d^2 holds Sigma d^2 / pi of M (x units), the same everywhere.
    const double d0 = e.abstand / e.R0;
    teilchenmasse = sigMax * d0 * d0 / pi;
    const double fEnde = 1 - e.abgeschnitten / 2;
    std::mt19937 zufall(e.saat);
    double fa = e.abgeschnitten / 2, unten = xVonF(fa);
    while (fa < fEnde - teilchenmasse / 2) {
        const double d = d0 * std::sqrt(sigMax / sigmaLBP(unten, e.tau0));
        int k = std::max(1, int(std::lround(2 * pi * (unten + d / 2) / d)));
        if (fa + k * teilchenmasse > fEnde)
            k = std::max(1, int(std::lround((fEnde - fa) / teilchenmasse)));
        const double fb = fa + k * teilchenmasse;
        setzeZeile(xVonF((fa + fb) / 2), k, // at the row's median radius
                   std::uniform_real_distribution<double>(0, 2 * pi)(zufall));
        fa = fb;
        unten = xVonF(fb);
    }
    gleichgewicht();
    s.t(0);
    rk = std::make_unique<RungeKutta>(s, io);
}

Ring::~Ring() = default;

double Ring::x(int i) const {
    const auto& r = s.teilchen[i].r;
    return std::hypot(r[0] - phys.x1[0], r[1] - phys.x1[1]) / e.R0;
}

void Ring::setzeZeile(double xr, int k, double phi0) {
    const double R = xr * e.R0, tau0 = e.tau0, nuStart = e.nuStart < 0 ? e.nu : e.nuStart;
    // LBP radial drift, v_R = -3/(Sigma R^1/2) d/dR (nu Sigma R^1/2).
    const double dx = 1e-5;
    const auto g = [tau0](double x) { return sigmaLBP(x, tau0) * std::sqrt(x); };
    const double vR = -3 * nuStart / (g(xr) * e.R0) * (g(xr + dx) - g(xr - dx)) / (2 * dx);
    const double vPhi = std::sqrt(G * phys.m1 / R), om = phys.omega;
    for (int j = 0; j < k; ++j) {
        const double phi = phi0 + 2 * pi * j / k, c = std::cos(phi), si = std::sin(phi);
        PhysviscTeilchen t;
        t.r = {phys.x1[0] + R * c, phys.x1[1] + R * si, 0};
        // Kepler about the primary plus the drift, minus Omega x (r - x1): the
        // co-rotating frame, in which the primary is at rest.
        t.v = {vR * c - vPhi * si + om * R * si, vR * si + vPhi * c - om * R * c, 0};
        s.teilchen.push_back(t);
        zeile.push_back(zeilen);
    }
    ++zeilen;
}

void Ring::gleichgewicht() {
    // Radial equilibrium with the gas forces: v_phi^2 = v_K^2 - R a_R, a_R the row's
    // mean radial acceleration of the forces beside Externforce at the start.
    {
        Stumm still;
        s.force_init(phys);
        if (e.druck)
            s.add_press(phys);
        if (e.artvisc)
            s.add_artvisc(phys);
        if (e.physvisc)
            s.add_physvisc(phys);
    }
    std::vector<double> aR(zeilen, 0.0), k(zeilen, 0.0);
    for (size_t i = 0; i < s.teilchen.size(); ++i) {
        const auto& t = s.teilchen[i];
        const double dx = t.r[0] - phys.x1[0], dy = t.r[1] - phys.x1[1];
        aR[zeile[i]] += (dx * t.a[0] + dy * t.a[1]) / std::hypot(dx, dy);
        k[zeile[i]] += 1;
    }
    for (size_t i = 0; i < s.teilchen.size(); ++i) {
        auto& t = s.teilchen[i];
        const double dx = t.r[0] - phys.x1[0], dy = t.r[1] - phys.x1[1];
        const double R = std::hypot(dx, dy), vK2 = G * phys.m1 / R;
        const double dv = std::sqrt(vK2 - R * aR[zeile[i]] / k[zeile[i]]) - std::sqrt(vK2);
        t.v[0] -= dv * dy / R;
        t.v[1] += dv * dx / R;
    }
}

int Ring::laufeBis(double t, int maxSchritte) {
    Stumm still;
    int schritte = 0;
    while (s.t() < t) {
        if (schritte >= maxSchritte)
            return -1;
        kraefte.derivatives(s, phys);
        rk->h = std::fmin(rk->h, t - s.t());
        double hdid, hnext;
        rk->stepper(s, phys, kraefte, &hdid, &hnext);
        rk->h = hnext;
        ++schritte;
    }
    return schritte;
}

void Ring::bereite() {
    Stumm still;
    s.force_init(phys);
}

Anpassung::Anpassung(double R0, double h, double masse, double fenster)
    : b(h / R0), masse(masse), xg(ng) {
    for (int i = 0; i < ng; ++i)
        xg[i] = 1 - fenster + 2 * fenster * i / (ng - 1);
    q0 = 1 - fenster - 6 * b;
    dq = (2 * fenster + 12 * b) / nq;
    falte.assign(ng * (nq + 1), 0.0);
    for (int i = 0; i < ng; ++i)
        for (int j = 0; j <= nq; ++j) { // trapezoidal weights times the Gaussian
            const double u = (xg[i] - (q0 + j * dq)) / b;
            falte[i * (nq + 1) + j] = std::exp(-0.5 * u * u) / (std::sqrt(2 * pi) * b) * dq *
                                      ((j == 0 || j == nq) ? 0.5 : 1.0);
        }
}

void Anpassung::messe(const Ring& r) {
    beob.assign(ng, 0.0);
    for (int i = 0; i < r.anzahl(); ++i) {
        const double x = r.x(i);
        for (int k = 0; k < ng; ++k) {
            const double u = (xg[k] - x) / b;
            if (std::fabs(u) < 7)
                beob[k] += r.teilchenmasse * std::exp(-0.5 * u * u) / (std::sqrt(2 * pi) * b);
        }
    }
}

std::vector<double> Anpassung::modell(double tau) const {
    std::vector<double> q(nq + 1), m(ng, 0.0);
    for (int j = 0; j <= nq; ++j) {
        const double x = q0 + j * dq;
        q[j] = 2 * x * sigmaLBP(x, tau) * masse;
    }
    for (int i = 0; i < ng; ++i)
        for (int j = 0; j <= nq; ++j)
            m[i] += falte[i * (nq + 1) + j] * q[j];
    return m;
}

double Anpassung::quadratsumme(double tau) const {
    const auto m = modell(tau);
    double summe = 0;
    for (int i = 0; i < ng; ++i)
        summe += (beob[i] - m[i]) * (beob[i] - m[i]);
    return summe;
}

double Anpassung::tau(double schaetzung) const {
    double a = std::log(schaetzung / 5), e = std::log(schaetzung * 5);
    const double g = (std::sqrt(5.0) - 1) / 2;
    double c1 = e - g * (e - a), c2 = a + g * (e - a);
    double f1 = quadratsumme(std::exp(c1)), f2 = quadratsumme(std::exp(c2));
    while (e - a > 1e-7) {
        if (f1 < f2) {
            e = c2, c2 = c1, f2 = f1, c1 = e - g * (e - a), f1 = quadratsumme(std::exp(c1));
        } else {
            a = c1, c1 = c2, f1 = f2, c2 = a + g * (e - a), f2 = quadratsumme(std::exp(c2));
        }
    }
    return std::exp((a + e) / 2);
}

double Anpassung::restRelativ(double tau) const {
    return std::sqrt(quadratsumme(tau) / ng) / *std::max_element(beob.begin(), beob.end());
}

double nuAusGerade(const std::vector<double>& t, const std::vector<double>& tau, double R0) {
    const double n = double(t.size());
    double tm = 0, taum = 0;
    for (size_t i = 0; i < t.size(); ++i)
        tm += t[i] / n, taum += tau[i] / n;
    double sxy = 0, sxx = 0;
    for (size_t i = 0; i < t.size(); ++i)
        sxy += (t[i] - tm) * (tau[i] - taum), sxx += (t[i] - tm) * (t[i] - tm);
    return sxy / sxx * R0 * R0 / 12;
}

} // namespace ring
