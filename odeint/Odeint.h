#pragma once

class AkkScheibe;
class InitOdeint;
class PhysSystem;
class RechteSeiteDG;

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

    explicit Odeint(InitOdeint& init);
    virtual ~Odeint() = default;

    // One adaptive step of the disc from its time with the member h; stores
    // the step done and the proposal for the next one.
    virtual void stepper(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte,
                         double* hdid, double* hnext) = 0;

    // Runs the whole integration.
    void odeint(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte);
};
