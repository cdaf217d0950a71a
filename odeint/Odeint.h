#pragma once

class AkkScheibe;
class InitOdeint;
class PhysSystem;
class RechteSeiteDG;

class Odeint;

// The driver's loop state between two steps: with the disc and the step size
// h, everything a run needs to go on exactly where it stood.
struct Laufstand {
    double t0 = 0;        // start time of the run, s; the output times are spaced from it
    int kout = 0;         // index of the next output time
    int nstp = 1;         // number of the next step
    int remove_count = 0; // particles removed so far
    int nok = 0;          // steps done with the size tried (kept for a debugger)
    int nbad = 0;         // steps that had to shrink it
};

// A stop between two steps, asked after each step's output, update and new
// step size, when `stand` and h describe the next step; true ends the run there.
class Zwischenhalt {
public:
    virtual ~Zwischenhalt() = default;
    virtual bool anhalten(Odeint& odeint, AkkScheibe& scheibe) = 0;
};

// Base of the integrators and the main loop of a run: adaptive steps up to
// the end time, removal of particles outside the allowed shell around the
// primary, and snapshots at evenly spaced output times.
class Odeint {
public:
    double h;          // step size to try next, s
    double eps;        // absolute tolerance of the velocity error of a step
    int outputfiles;   // number of snapshots
    double outputtime; // end time (absolute), s
    double hmin;       // step size at or below which a warning is printed, s
    double maxstp;     // step limit
    bool abbruch;      // request to stop from outside the loop
    Laufstand stand;   // loop state of the run
    Zwischenhalt* zwischenhalt = nullptr; // asked between steps; not owned, null by default

    explicit Odeint(InitOdeint& init);
    virtual ~Odeint() = default;

    // One adaptive step of the disc from its time with the member h; stores
    // the step done and the proposal for the next one.
    virtual void stepper(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte,
                         double* hdid, double* hnext) = 0;
    // The evaluation of the forces on the disc that each step starts from
    // (its first stage). An integrator that already holds the accelerations
    // of the disc's present state may skip it.
    virtual void ersteStufe(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte);

    // Runs the whole integration from the disc's time.
    void odeint(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte);
    // Goes on from `stand`, h and the disc, as the loop of odeint would have
    // after the step before stand.nstp.
    void fortsetzen(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte);
};
