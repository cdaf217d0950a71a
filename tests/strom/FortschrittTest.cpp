// The progress line: what it shows, at most once a wall-clock second, in
// place on a terminal and line by line elsewhere; the stream still runs.

#include "strom/Fortschritt.h"
#include "kraefte/Scheibenfabrik.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

namespace {

// Counts the calls it passes on.
struct Zaehler : Update {
    int updates = 0, events = 0;
    void update() override { ++updates; }
    void processEvents() override { ++events; }
};

// The default binary (period 5453.6 s) and a disc of two particles at time 0.
struct Lauf : hilfen::Aufbau {
    Lauf()
        : Aufbau("", "Teilchenanzahl 2 Zeit 0 Teilchendaten:\n"
                     "0.2 0 0 0 1e-3 0\n-0.1 0.05 0 1e-4 -1e-3 0\n") {}
    std::unique_ptr<AkkScheibe> scheibe{erzeugeScheibe(0, ia, phys)};
    double uhr = 10; // the wall clock the progress reads
    Zaehler innen;
    std::ostringstream aus;
    std::unique_ptr<Fortschritt> fortschritt(double tEnde, bool terminal) {
        auto f = std::make_unique<Fortschritt>(innen, *scheibe, phys, tEnde, aus, terminal,
                                               [this] { return uhr; });
        scheibe->set_update(f.get());
        return f;
    }
    // A step of the driver ending at disc time t and wall time `wand`.
    void schritt(double t, double wand) {
        scheibe->t(t);
        uhr = wand;
        scheibe->update();
    }
};

TEST(Fortschritt, ZeigtHoechstensEinmalProSekundeZeileFuerZeile) {
    Lauf l;
    auto f = l.fortschritt(2 * 5453.6, false); // two orbits
    // First step, half an orbit in one second: shown at once; a quarter of
    // the way in a second leaves three seconds.
    l.schritt(2726.8, 11);
    // Half a second later: not shown.
    l.schritt(3000, 11.5);
    // A second after the first line, two steps in it; one orbit in two
    // seconds leaves two.
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
    {
        // 2726.8 s of disc time in the first wall second, 10906 times as much
        // to go: 10906 s = 3 h 1 min 46 s.
        Lauf l;
        auto f = l.fortschritt(2726.8 * 10907, true);
        l.schritt(2726.8, 11);
        f->abschluss();
        EXPECT_EQ(l.aus.str(),
                  "\rt 2726.8 s (0.5 Bahnen), 2 Teilchen, 1.0 Schritte/s, Rest 3:01:46\033[K"
                  "\rt 2726.8 s (0.5 Bahnen), 2 Teilchen, - Schritte/s, Rest 3:01:46\033[K\n");
    }
    {
        // No disc time gone yet: no estimate.
        Lauf l;
        auto f = l.fortschritt(100, true);
        f->abschluss();
        EXPECT_EQ(l.aus.str(), "\rt 0 s (0 Bahnen), 2 Teilchen, - Schritte/s, Rest ?\033[K\n");
    }
}

} // namespace
