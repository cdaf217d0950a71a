#pragma once

#include "scheibe/Update.h"

#include <functional>
#include <iosfwd>
#include <string>

class AkkScheibe;
class PhysSystem;

// Progress of a long run for the person watching it: the disc's time, the
// binary orbits done, the particle count, the steps per second and the
// wall-clock time still to go, refreshed at most once a second. It wraps the
// disc's update hook (the stream), which the driver calls after every step,
// so the driver and its lines on standard output stay untouched.
class Fortschritt : public Update {
public:
    // Wall-clock seconds from an arbitrary origin.
    using Uhr = std::function<double()>;
    static double wanduhr();

    // `innen` is called first on every hook call; `aus` is normally standard
    // error. On a terminal the line is rewritten in place, otherwise each
    // refresh is a line of its own (for a log file).
    Fortschritt(Update& innen, AkkScheibe& scheibe, const PhysSystem& phys, double tEnde,
                std::ostream& aus, bool terminal, Uhr uhr = wanduhr);

    void update() override;
    void processEvents() override;

    // After the run: the last state once more, and the line ended on a terminal.
    void abschluss();

    // The line shown at wall-clock time `jetzt` (without line end or control bytes).
    std::string zeile(double jetzt) const;

private:
    void zeige(double jetzt);

    Update* innen;
    AkkScheibe* scheibe;
    const PhysSystem* phys;
    double tEnde;
    std::ostream* aus;
    bool terminal;
    Uhr uhr;
    double wandStart, tStart; // wall clock and disc time when the run began
    double wandZuletzt;       // wall clock of the last refresh
    long long schritte = 0;   // steps since the run began
    long long schritteZuletzt = 0;
    bool gezeigt = false;
};
