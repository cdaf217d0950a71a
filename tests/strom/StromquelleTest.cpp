// The stream's keys and messages; as update hook, its particles for each disc class, their seed and
// its checks against the binary. The progress line: at most once a second, in place on a terminal.

#include "strom/Stromquelle.h"
#include "kraefte/Scheibenfabrik.h"
#include "scheibe/AkkScheibe.h"
#include "scheibe/PressArtviscTeilchen.h"
#include "strom/Fortschritt.h"
#include "strom/InitStrom.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <tuple>
#include <vector>

namespace {

const std::string f = "Strom: Fehler: ";
const std::string alle = "Stromrate 3.2e-17 Stromgeschwindigkeit 7e-6 Stromstreuung 7e-7\n"
                         "Stromabstand 0.005 Strombreite 0.006 Stromsaat 18446744073709551615\n";

InitStrom lies(const std::string& zusatz) {
    return InitStrom(hilfen::Dateien(zusatz).param.c_str());
}

TEST(InitStrom, LiestJedenSchluessel) {
    // A key counts wherever it stands, also in a comment; the last value wins;
    // "Rate" is another key, and zero rate and widths are allowed.
    InitStrom s = lies("% Stromrate 1e-20\n" + alle + "Rate 5 Stromrate 0 Strombreite 0\n");
    EXPECT_EQ(s.fehler, std::vector<std::string>{});
    EXPECT_EQ(std::make_tuple(s.Stromrate, s.Stromgeschwindigkeit, s.Stromstreuung, s.Stromabstand,
                              s.Strombreite, s.Stromsaat),
              std::make_tuple(0.0, 7e-6, 7e-7, 0.005, 0.0, 18446744073709551615ull));
}

TEST(InitStrom, MeldetFehlendeUndSchlechteWerte) {
    const std::string saat = "braucht eine ganze Zahl von 0 bis 18446744073709551615, nicht '";
    const std::string licht = " ist nicht unter der Lichtgeschwindigkeit, 0.430922 Sonnenradien "
                              "pro Sekunde !";
    // A bad value after the good ones: each is reported, even where a good value stands.
    const std::pair<std::string, std::string> faelle[] = {
        {"Stromrate -1e-17", "Stromrate muss mindestens 0 sein, nicht '-1e-17' !"},
        {"Stromgeschwindigkeit nan",
         "Stromgeschwindigkeit braucht eine endliche Zahl, nicht 'nan' !"},
        {"Stromstreuung 1e999", "Stromstreuung braucht eine endliche Zahl, nicht '1e999' !"},
        {"Strombreite 0.1x", "Strombreite braucht eine endliche Zahl, nicht '0.1x' !"},
        // 5 km/s entered as 5 solar radii per second; the speed of light is 0.430922.
        {"Stromgeschwindigkeit 5", "Stromgeschwindigkeit 5" + licht},
        {"Stromstreuung 0.431", "Stromstreuung 0.431" + licht},
        {"Stromabstand 0", "Stromabstand muss gr\xf6\xdf"
                           "er als 0 sein, nicht '0' !"},
        {"Stromsaat -1", "Stromsaat " + saat + "-1' !"},
        {"Stromsaat 18446744073709551616", "Stromsaat " + saat + "18446744073709551616' !"},
        {"Stromsaat", "Stromsaat ohne Wert am Ende der Parameterdatei !"},
    };
    for (const auto& [zusatz, meldung] : faelle)
        EXPECT_EQ(lies(alle + zusatz).fehler, std::vector<std::string>{f + meldung}) << zusatz;

    // Missing keys, each named with its meaning and unit, in the order of the keys.
    const std::vector<std::string> fehlen = lies("Stromrate 1e-17 Strombreite 0\n").fehler;
    ASSERT_EQ(fehlen.size(), 4u);
    EXPECT_EQ(fehlen[0], f + "Stromgeschwindigkeit fehlt (mittlere Geschwindigkeit von L1 zum "
                             "Prim\xe4rstern, Sonnenradien pro Sekunde) !");
    EXPECT_EQ(fehlen[3], f + "Stromsaat fehlt (Startwert der Zufallszahlen, ganze Zahl von 0 "
                             "bis 18446744073709551615) !");
}

// The default binary (5453.6 s; L1 at x = -0.378) plus `zusatz`, two particles of disc class `art`.
struct Zwei : hilfen::Aufbau {
    std::unique_ptr<AkkScheibe> scheibe;
    Zwei(const std::string& zusatz, int art, const std::string& zeit)
        : Aufbau(zusatz, "Teilchenanzahl 2 Zeit " + zeit +
                             " Teilchendaten:\n0.2 0 0 0 1e-3 0\n-0.1 0.05 0 1e-4 -1e-3 0\n"),
          scheibe(erzeugeScheibe(art, ia, phys)) {}
    void schritt(double t) {
        scheibe->t(t);
        scheibe->update();
    }
};

// 0.26 particle masses per second; counts at 5, 20, 40 s stay clear of whole numbers.
const std::string rate026 = "Stromrate 4.49320066e-17 ";

// Fed by the stream from time 100.
struct Strom : Zwei {
    InitStrom init{param.c_str()};
    Stromquelle quelle{*scheibe, phys, init};
    explicit Strom(const std::string& strom, int art = 0) : Zwei(strom, art, "100") {
        scheibe->set_update(&quelle);
    }
    std::vector<Teilchen> schritte(std::initializer_list<double> zeiten) {
        for (double t : zeiten)
            schritt(t);
        std::vector<Teilchen> alle;
        for (int i = 0; i < scheibe->tanz(); ++i)
            alle.push_back((*scheibe)[i]);
        return alle;
    }
};

TEST(Stromquelle, HaengtDieTeilchenDerMassenrateHinterL1AnJedeScheibenklasseAn) {
    for (int art = 0; art <= 3; ++art) {
        Strom s(rate026 + "Stromgeschwindigkeit 1e-5 Stromstreuung 0 Stromabstand 0.004 "
                          "Strombreite 0 Stromsaat 1",
                art);
        ASSERT_TRUE(s.init.fehler.empty());
        AkkScheibe& disc = *s.scheibe;
        const Teilchen erstes = disc[0], zweites = disc[1];
        // From t0 = 100: floor(0.26 * 5) = 1 by 105, floor(0.26 * 20) = 5 by 120,
        // floor(0.26 * 40.5) = 10 by 140.5; going back in time adds none.
        const std::pair<double, int> soll[] = {{100, 2},  {105, 3},  {120, 7},
                                               {140, 12}, {130, 12}, {140.5, 12}};
        for (auto [t, n] : soll) {
            s.schritt(t);
            disc.processEvents(); // before each evaluation of the forces: nothing
            EXPECT_EQ(disc.tanz(), n) << "class " << art << " at " << t;
        }
        EXPECT_EQ(disc[0].r, erstes.r);
        EXPECT_EQ(disc[1].v, zweites.v);
        // Without spreads every particle lies on the axis, moving at 1e-5 toward the primary.
        // Particle k crossed x = xL1 + 0.004 at 100 + (k + 1) / 0.26 s and drifted on: particle 0
        // from 103.846154 to 105, particles 1 to 4 from 107.692308, ..., 119.230769 to 120.
        const double alter[] = {1.153846, 12.307692, 8.461538, 4.615385, 0.769231};
        for (int k = 0; k < 5; ++k) {
            const Teilchen& t = disc[2 + k];
            EXPECT_NEAR(t.r[0] - s.phys.xL1, 0.004 + 1e-5 * alter[k], 1e-11) << k;
            EXPECT_EQ(t.r, (Vektor3{t.r[0], 0, 0}));
            EXPECT_EQ(t.v, (Vektor3{1e-5, 0, 0}));
        }
        if (art == 0)
            continue;
        // The first evaluation gives them their class's state: own kernel value in rho, a sound
        // speed.
        hilfen::Mitschnitt still(std::cout);
        disc.force_init(s.phys);
        for (int i = 2; i < disc.tanz(); ++i) {
            EXPECT_GE(static_cast<SphTeilchen&>(disc[i]).rho, 1.7281541e-16 * s.kernel.fak);
            EXPECT_TRUE(art < 2 || static_cast<PressArtviscTeilchen&>(disc[i]).cs > 0) << i;
        }
    }
}

TEST(Stromquelle, StreutNormalverteiltUmDieStromachse) {
    // One particle mass per second for 4000 s in steps of 10 s: N = 4000 particles. A mean is
    // within 4 sigma / sqrt(N), a standard deviation within 5 % (4.5 sqrt(1 / 2N)); a standard
    // normal lies within 1 and 2 of 0 with probability 0.6827 and 0.9545.
    Strom s("Stromrate 1.7281541e-16 Stromgeschwindigkeit 7e-6 Stromstreuung 2e-6 "
            "Stromabstand 0.005 Strombreite 0.003 Stromsaat 42");
    for (int i = 1; i <= 400; ++i)
        s.schritt(100 + 10 * i + 0.5);
    AkkScheibe& disc = *s.scheibe;
    const int n = disc.tanz() - 2;
    ASSERT_EQ(n, 4000);
    const double mitte[5] = {0, 0, 7e-6, 0, 0}, breite[5] = {0.003, 0.003, 2e-6, 2e-6, 2e-6};
    double summe[5] = {}, quadrate[5] = {}, yz = 0;
    int innen1 = 0, innen2 = 0;
    for (int i = 2; i < disc.tanz(); ++i) {
        const Teilchen& t = disc[i];
        // On the primary's side of L1, at most 10.5 s of drift beyond the plane.
        const double x = t.r[0] - s.phys.xL1;
        EXPECT_TRUE(x >= 0.005 && x <= 0.005 + 7e-6 * 10.5) << x;
        const double w[5] = {t.r[1], t.r[2], t.v[0], t.v[1], t.v[2]};
        for (int c = 0; c < 5; ++c) {
            const double g = (w[c] - mitte[c]) / breite[c];
            summe[c] += g;
            quadrate[c] += g * g;
            innen1 += std::fabs(g) < 1;
            innen2 += std::fabs(g) < 2;
        }
        yz += t.r[1] * t.r[2] / (0.003 * 0.003);
    }
    for (int c = 0; c < 5; ++c) {
        EXPECT_NEAR(summe[c] / n, 0, 4 / std::sqrt(n)) << c;
        EXPECT_NEAR(std::sqrt(quadrate[c] / n), 1, 0.05) << c;
    }
    // y and z independent: their correlation within 4 / sqrt(N).
    EXPECT_NEAR(yz / n, 0, 4 / std::sqrt(n));
    // 5N values: 4 sigma of a proportion p is 4 sqrt(p (1 - p) / 5N).
    EXPECT_NEAR(innen1 / (5.0 * n), 0.6827, 0.013);
    EXPECT_NEAR(innen2 / (5.0 * n), 0.9545, 0.006);
}

TEST(Stromquelle, GleicheSaatGibtGleicheTeilchen) {
    const std::string rest = rate026 + "Stromgeschwindigkeit 1e-5 Stromstreuung 1e-6 "
                                       "Stromabstand 0.004 Strombreite 0.003 Stromsaat ";
    const std::vector<Teilchen> a = Strom(rest + "7").schritte({105, 120, 140.5}),
                                b = Strom(rest + "7").schritte({105, 120, 140.5}),
                                c = Strom(rest + "7").schritte({140.5}),
                                d = Strom(rest + "8").schritte({105, 120, 140.5});
    ASSERT_EQ(a.size(), 12u);
    ASSERT_EQ(c.size(), 12u);
    for (std::size_t i = 2; i < 12; ++i) {
        // The same seed and steps: the same particles, bit for bit.
        EXPECT_TRUE(a[i].r == b[i].r && a[i].v == b[i].v) << i;
        // Other steps: the same draws for particle k; only the drift along x differs.
        EXPECT_TRUE(a[i].r[1] == c[i].r[1] && a[i].r[2] == c[i].r[2] && a[i].v == c[i].v) << i;
        // Another seed: other draws.
        EXPECT_NE(a[i].r[1], d[i].r[1]);
    }
}

TEST(Stromquelle, PrueftDenStromGegenDasDoppelsternsystem) {
    const std::string rest = "Stromgeschwindigkeit 1e-5 Stromstreuung 1e-6 Strombreite 0.003 "
                             "Stromsaat 1 ";
    const std::pair<std::string, std::string> faelle[] = {
        // L1 lies 0.43467 from the primary: the injection must stay outside eta = 0.05.
        {"Stromabstand 0.38", ""},
        {"Stromabstand 0.39",
         f + "Stromabstand 0.39 reicht von L1 bis an eta um den Prim\xe4rstern: "
             "L1 liegt 0.43467 vom Prim\xe4rstern, eta ist 0.05 !"},
        // The width must stay below the way from the injection to eta, 0.43467 - 0.005 - 0.05.
        {"Stromabstand 0.005 Strombreite 0.38",
         f + "Strombreite 0.38 ist nicht kleiner als der Abstand der Einspeisung von eta um den "
             "Prim\xe4rstern, 0.37967 !"},
        // A period of 0 leaves the stars no separation and no L1 to stream through.
        {"Stromabstand 0.005 Bahnperiode 0",
         f + "die Bahndaten geben keinen Lagrangepunkt L1 au\xdf"
             "erhalb von eta 0.05 um den "
             "Prim\xe4rstern !"},
    };
    for (const auto& [zusatz, meldung] : faelle)
        EXPECT_EQ(Strom(rate026 + rest + zusatz).quelle.pruefe(1100), meldung) << zusatz;
    // A rate per year given as per second: 1e-9 for 1000 s is 5.78652e9 particle masses.
    // 5e5 particles (8.6407705e-14 for 1000 s) are allowed, and so is any rate backwards in time.
    Strom jahr("Stromrate 1e-9 Stromabstand 0.005 " + rest);
    Stromquelle& q = jahr.quelle;
    EXPECT_EQ(q.pruefe(1100), f + "Stromrate 1e-09 Sonnenmassen pro Sekunde br\xe4"
                                  "chte bis "
                                  "Outputtime 5.78652e+09 Teilchen, mehr als 1000000 !");
    EXPECT_EQ(q.pruefe(50), "");
    q.rate = 8.6407705e-14;
    EXPECT_EQ(q.pruefe(1100), "");
    // Whatever the time, the count stays between 0 and the most a run may bring.
    q.rate = 1e-9;
    EXPECT_EQ(q.soll(1e12), strom::hoechstens);
    EXPECT_EQ(q.soll(50), 0);
    EXPECT_EQ(q.soll(std::numeric_limits<double>::quiet_NaN()), 0);
}

// Counts the calls it passes on.
struct Zaehler : Update {
    int updates = 0, events = 0;
    void update() override { ++updates; }
    void processEvents() override { ++events; }
};

// The progress of a run from time 0, on a wall clock `uhr`.
struct Lauf : Zwei {
    Lauf() : Zwei("", 0, "0") {}
    double uhr = 10;
    Zaehler innen;
    std::ostringstream aus;
    std::unique_ptr<Fortschritt> fortschritt(double tEnde, bool terminal) {
        auto f = std::make_unique<Fortschritt>(innen, *scheibe, phys, tEnde, aus, terminal,
                                               [this] { return uhr; });
        scheibe->set_update(f.get());
        return f;
    }
    void schritt(double t, double wand) {
        uhr = wand;
        Zwei::schritt(t);
    }
};

TEST(Fortschritt, ZeigtHoechstensEinmalProSekundeZeileFuerZeile) {
    Lauf l;
    auto f = l.fortschritt(2 * 5453.6, false); // two orbits
    // First step, half an orbit in one second: shown at once; a quarter of the way in a second
    // leaves three seconds. Half a second later: not shown. A second after the first line, two
    // steps in it; one orbit in two seconds leaves two.
    l.schritt(2726.8, 11);
    l.schritt(3000, 11.5);
    l.schritt(5453.6, 12);
    f->processEvents();
    // The end: no time since the last line, nothing left.
    l.scheibe->t(2 * 5453.6);
    f->abschluss();
    EXPECT_EQ(l.aus.str(), "t 2726.8 s (0.5 Bahnen), 2 Teilchen, 1.0 Schritte/s, Rest 0:00:03\n"
                           "t 5453.6 s (1 Bahnen), 2 Teilchen, 2.0 Schritte/s, Rest 0:00:02\n"
                           "t 10907.2 s (2 Bahnen), 2 Teilchen, - Schritte/s, Rest 0:00:00\n");
    EXPECT_EQ(l.innen.updates, 3);
    EXPECT_EQ(l.innen.events, 1);
}

TEST(Fortschritt, SchreibtAufEinemTerminalDieZeileNeu) {
    // 2726.8 s of disc time in the first wall second, 10906 times that to go: 3 h 1 min 46 s.
    Lauf l;
    auto f = l.fortschritt(2726.8 * 10907, true);
    l.schritt(2726.8, 11);
    f->abschluss();
    EXPECT_EQ(l.aus.str(),
              "\rt 2726.8 s (0.5 Bahnen), 2 Teilchen, 1.0 Schritte/s, Rest 3:01:46\033[K"
              "\rt 2726.8 s (0.5 Bahnen), 2 Teilchen, - Schritte/s, Rest 3:01:46\033[K\n");
    // No disc time gone yet: no estimate.
    Lauf n;
    auto g = n.fortschritt(100, true);
    g->abschluss();
    EXPECT_EQ(n.aus.str(), "\rt 0 s (0 Bahnen), 2 Teilchen, - Schritte/s, Rest ?\033[K\n");
}

} // namespace
