#include "odeint/Odeint.h"

#include "init/InitOdeint.h"
#include "kraefte/RechteSeiteDG.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "scheibe/Verteilung.h"

#include <cmath>
#include <iostream>

Odeint::Odeint(InitOdeint& init)
    : h(init.Anfangsschrittweite), eps(init.Genauigkeit), outputfiles(init.Outputfiles),
      outputtime(init.Outputtime), hmin(init.MinSchrittweite), maxstp(init.MaxSchritte),
      abbruch(false) {}

void Odeint::ersteStufe(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte) {
    kraefte.derivatives(scheibe, phys);
}

void Odeint::odeint(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte) {
    if (scheibe.t() >= outputtime)
        std::cout << "Odeint: Fehler: Anfangszeitpunkt ist gr\xf6\xdf" "er als Endzeitpunkt der "
                     "Simulation !\n";
    if (outputfiles < 1) {
        std::cout << "Odeint: Fehler: Outputfiles muss mindestens 1 sein !\n";
        return;
    }
    stand = Laufstand{};
    stand.t0 = scheibe.t();
    fortsetzen(scheibe, phys, kraefte);
}

void Odeint::fortsetzen(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte) {
    std::ostream& aus = std::cout;
    if (outputfiles < 1)
        return;
    const double t0 = stand.t0;
    // Evenly spaced output times; the last one is the end time. Formed when
    // needed rather than tabulated: the count comes from a hand-edited file.
    auto tout = [&](int k) { return ((k + 1) * (outputtime - t0)) / outputfiles + t0; };

    int& kout = stand.kout;
    const double rmin2 = phys.eta * phys.eta;
    const double rmax2 = phys.rMax * phys.rMax;
    int& remove_count = stand.remove_count;
    int& nstp = stand.nstp;
    if (!(nstp <= maxstp))
        return;
    double hdid = 0, hnext = 0;
    for (;;) {
        ersteStufe(scheibe, phys, kraefte);
        if (scheibe.t() + h - tout(kout) > 0)
            h = tout(kout) - scheibe.t();
        stepper(scheibe, phys, kraefte, &hdid, &hnext);
        aus << "step: " << nstp << " akk.t: " << scheibe.t() << '\n';
        if (hdid == h)
            ++stand.nok;
        else
            ++stand.nbad;

        // Particles that came closer to the primary than eta or strayed
        // beyond rMax leave the simulation, one message each, numbered in the
        // particle order after the removals before it.
        auto abstand = [&](const Teilchen& t) {
            const Vektor3& r = t.r;
            double d0 = r[0] - phys.x1[0];
            double d1 = r[1] - phys.x1[1];
            double d2 = r[2] - phys.x1[2];
            return d0 * d0 + d1 * d1 + d2 * d2;
        };
        auto raus = [&](double abst_sqr) { return abst_sqr < rmin2 || abst_sqr > rmax2; };
        auto meldung = [&](long long i, long long von, double abst_sqr) {
            aus << " Entferne Teilchen : " << i << " von " << von << " Teilchen "
                << " zur Zeit: " << scheibe.t() << " : " << rmin2 << " < abst_sqr < " << rmax2
                << "ist : " << abst_sqr << "\n\n";
            ++remove_count;
        };
        if (Verteilung* vt = scheibe.verteilung) {
            const long long vorher = static_cast<long long>(vt->gesamt());
            const auto weg = vt->entferne(scheibe, [&](const Teilchen& t, double& abst_sqr) {
                abst_sqr = abstand(t);
                return raus(abst_sqr);
            });
            for (std::size_t k = 0; k < weg.size(); ++k)
                meldung(static_cast<long long>(weg[k].index) - static_cast<long long>(k),
                        vorher - static_cast<long long>(k), weg[k].abstand);
        } else {
            int i = 0;
            while (i < scheibe.tanz()) {
                const double abst_sqr = abstand(scheibe[i]);
                if (raus(abst_sqr)) {
                    scheibe.entferne_teilchen(i);
                    meldung(i, scheibe.tanz() + 1, abst_sqr);
                } else {
                    ++i; // also a NaN distance stays
                }
            }
        }

        // Output time reached, whichever the direction of integration.
        auto ausgeben = [&] {
            if (scheibe.verteilung)
                scheibe.verteilung->ausgeben(scheibe, phys);
            else
                scheibe.output(phys);
        };
        bool ausgegeben = false;
        if ((scheibe.t() - tout(kout)) * (tout(kout) - t0) >= 0) {
            if (kout >= outputfiles - 1) {
                ausgeben();
                aus << "remove_count :" << remove_count << '\n';
                aus.flush();
                return;
            }
            ausgeben();
            ++kout;
            ausgegeben = true;
        }
        scheibe.update();
        // Particles that crossed into another process's slab go there; at
        // output times the slabs are redrawn from the particle counts.
        if (scheibe.verteilung)
            scheibe.verteilung->umverteilen(scheibe, ausgegeben);
        if (abbruch)
            return;
        if (std::fabs(hnext) <= hmin)
            aus << "Step size too small in odeint\n";
        h = hnext;
        aus.flush(); // one visible progress line per step
        // The next step number must not exceed the limit; tested before
        // counting, so a limit of INT_MAX cannot overflow the counter.
        if (!(nstp + 1.0 <= maxstp))
            return;
        ++nstp;
        if (zwischenhalt && zwischenhalt->anhalten(*this, scheibe))
            return;
    }
}
