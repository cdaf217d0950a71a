#include "strom/Leapfrog.h"

#include "kraefte/RechteSeiteDG.h"
#include "physik/PhysSystem.h"
#include "scheibe/PhysviscAkkScheibe.h"
#include "scheibe/Verteilung.h"

#include <algorithm>
#include <cmath>
#include <limits>

Leapfrog::Leapfrog(InitOdeint& init) : Odeint(init) {}

void Leapfrog::verteilt(Verteilung& v) {
    verteilung = &v;
    v.begleite(&g, 3);
}

void Leapfrog::auswerten(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte) {
    kraefte.derivatives(scheibe, phys);
    ++auswertungen;
    const double omega = phys.omega;
    const std::size_t n = static_cast<std::size_t>(scheibe.tanz());
    g.resize(3 * n);
    for (std::size_t i = 0; i < n; ++i) {
        const Teilchen& t = scheibe[int(i)];
        g[3 * i] = t.a[0] - 2.0 * (t.v[1] * omega);
        g[3 * i + 1] = t.a[1] + 2.0 * (t.v[0] * omega);
        g[3 * i + 2] = t.a[2];
    }
    // A power of two seconds: the step then keeps its size over many steps,
    // where a size that followed the conditions' every change would break
    // the leapfrog's time symmetry and let the orbits' energies drift.
    const double b = schrittweite(scheibe, phys);
    grenze = std::isfinite(b) && b > 0 ? std::exp2(std::floor(std::log2(b))) : b;
    frisch = true;
    marke = aenderungen();
}

void Leapfrog::ersteStufe(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte) {
    bool alt = !(frisch && marke == aenderungen() && g.size() == 3 * std::size_t(scheibe.tanz()));
    if (verteilung) // all processes evaluate, or none
        alt = verteilung->maximum(alt ? 1.0 : 0.0) > 0;
    if (!alt)
        return; // the last step's closing evaluation is this state's
    auswerten(scheibe, phys, kraefte);
}

namespace {

// The Courant condition over a gas disc's pair list, slot by slot in the
// list's own order: each particle's sound speed and the largest |mu| among
// its partners (mu is 0 for receding ones). A ghost of a distributed run
// (a slot without a list) gives a bound no smaller than its owner's.
double courant(const Partnerliste* l, const PhysSystem& phys) {
    double dt = std::numeric_limits<double>::infinity();
    if (!l)
        return dt;
    for (std::uint32_t s = 0; s < l->gas.size(); ++s) {
        const auto& b = l->block(s);
        double m = 0;
        for (std::uint32_t k = l->erster(s), e = k + l->anzahl(s); k < e; ++k)
            m = std::max(m, std::fabs(b.mu[k]));
        const double c = l->gas[s].cs;
        dt = std::min(dt, phys.h / (c + 0.6 * (phys.alpha * c + phys.beta * m)));
    }
    return dt;
}

} // namespace

double Leapfrog::schrittweite(AkkScheibe& scheibe, const PhysSystem& phys) const {
    double kraft = std::numeric_limits<double>::infinity();
    for (int i = 0; i < scheibe.tanz(); ++i) {
        const Vektor3& a = scheibe[i].a;
        const double b = std::sqrt((a[0] * a[0] + a[1] * a[1]) + a[2] * a[2]);
        if (b > 0)
            kraft = std::min(kraft, std::sqrt(phys.h / b));
    }
    double dt = cKraft * kraft;
    if (auto* p = dynamic_cast<PhysviscAkkScheibe*>(&scheibe)) {
        dt = std::min(dt, cCourant * courant(p->ww.get(), phys));
        if (phys.viskositaet > 0 && !p->teilchen.empty())
            dt = std::min(dt, (phys.h * phys.h) / (8.0 * phys.viskositaet));
    } else if (auto* q = dynamic_cast<PressArtviscAkkScheibe*>(&scheibe)) {
        dt = std::min(dt, cCourant * courant(q->ww.get(), phys));
    }
    // The smallest of the processes' (a minimum: exact in any order).
    return verteilung ? verteilung->minimum(dt) : dt;
}

void Leapfrog::stepper(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte, double* hdid,
                       double* hnext) {
    // The driver's step (clipped to the next output time), unless the
    // conditions ask for less.
    const double dt = h >= 0 ? std::min(h, grenze) : -std::min(-h, grenze);
    const double halbDt = 0.5 * dt;
    const double omega = phys.omega;
    const std::size_t n = static_cast<std::size_t>(scheibe.tanz());
    halb.resize(3 * n);
    // First kick with the Coriolis term of the present velocity, drift, and
    // the predicted velocity for the velocity-dependent forces.
    for (std::size_t i = 0; i < n; ++i) {
        Teilchen& t = scheibe[int(i)];
        const double a[3] = {g[3 * i] + 2.0 * (t.v[1] * omega),
                             g[3 * i + 1] - 2.0 * (t.v[0] * omega), g[3 * i + 2]};
        for (int k = 0; k < 3; ++k) {
            const double vh = t.v[k] + halbDt * a[k];
            halb[3 * i + k] = vh;
            t.r[k] = t.r[k] + dt * vh;
            t.v[k] = vh + halbDt * a[k];
        }
    }
    scheibe.t(dt + scheibe.t());
    auswerten(scheibe, phys, kraefte);
    // Second kick, the Coriolis term implicit: v = A + k (v_y, -v_x) with
    // A = v+ + dt/2 g and k = omega dt.
    const double k = omega * dt;
    const double nenner = 1.0 + k * k;
    for (std::size_t i = 0; i < n; ++i) {
        Teilchen& t = scheibe[int(i)];
        const double A0 = halb[3 * i] + halbDt * g[3 * i];
        const double A1 = halb[3 * i + 1] + halbDt * g[3 * i + 1];
        t.v[0] = (A0 + k * A1) / nenner;
        t.v[1] = (A1 - k * A0) / nenner;
        t.v[2] = halb[3 * i + 2] + halbDt * g[3 * i + 2];
    }
    *hdid = dt;
    *hnext = std::isfinite(grenze) ? grenze : dt;
}

// The accelerations only while they are the disc's (else none: the next
// step evaluates anyway), in the disc's order; a distributed run's gathered
// in global order (all its processes call this, process 0 writes it).
std::string Leapfrog::zustand() {
    const bool aktuell = frisch && marke == aenderungen();
    std::vector<double> alle;
    if (aktuell && verteilung)
        alle = verteilung->sammleWerte(g, 3);
    const std::vector<double>& werte = aktuell && !verteilung ? g : alle;
    std::string b;
    anhaengen(b, static_cast<std::uint8_t>(aktuell));
    anhaengen(b, static_cast<std::int64_t>(marke));
    anhaengen(b, grenze);
    anhaengen(b, static_cast<std::uint64_t>(werte.size()));
    b.append(reinterpret_cast<const char*>(werte.data()), werte.size() * sizeof(double));
    return b;
}

// The stored accelerations may belong to fewer particles than the disc has
// (particles came after the last evaluation); the next step then evaluates.
std::string Leapfrog::lies(const std::string& b, std::size_t, bool setzen) {
    std::size_t pos = 0;
    std::uint8_t f = 0;
    std::int64_t m = 0;
    std::uint64_t laenge = 0;
    double gr = 0;
    if (!nimm(b, pos, f) || !nimm(b, pos, m) || !nimm(b, pos, gr) || !nimm(b, pos, laenge) ||
        f > 1 || !(gr > 0) || laenge % 3 != 0 || laenge != (b.size() - pos) / sizeof(double) ||
        (b.size() - pos) % sizeof(double) != 0)
        return "unvollst\xe4ndig";
    if (!setzen)
        return "";
    g.resize(static_cast<std::size_t>(laenge));
    for (double& x : g)
        nimm(b, pos, x);
    frisch = f != 0;
    marke = m;
    grenze = gr;
    return "";
}
