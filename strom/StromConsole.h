#pragma once

#include "simulation/SimulationConsole.h"

class Fortschritt;
class InitStrom;
class Leapfrog;
class Lichtkurve;
class Sicherung;
class Stromquelle;

// The console program with the gas stream: the run of akkscheibe, built from
// the same files, whose disc is fed through L1 after every step.
class StromConsole : public SimulationConsole {
public:
    InitStrom* initStrom = nullptr; // reader of the stream keys
    Stromquelle* quelle = nullptr;  // the disc's update hook
    Fortschritt* anzeige = nullptr; // progress on standard error, wrapping the stream
    Sicherung* sicherung = nullptr; // checkpoints, and the stop on a signal
    Lichtkurve* lichtkurve = nullptr; // the forces, measuring the disc's light (--lichtkurve)
    Leapfrog* leapfrog = nullptr;   // the integrator when --integrator leapfrog; owned as odeint

    StromConsole(const char* parameterDatei, const char* teilchenDatei);
    StromConsole(const StromConsole&) = delete;
    StromConsole& operator=(const StromConsole&) = delete;
    ~StromConsole();

    // Reads the options and the stream keys, builds the run (or takes it up
    // from its checkpoint with --weiter), sets the stream as the disc's
    // update hook and integrates. Returns the exit status: 2 for an unknown
    // or bad option, 1 when the stream keys are missing or bad or do not suit
    // the binary, or the checkpoint cannot be used (nothing is integrated
    // then), 3 when the run stopped with --halt-nach, 128 + the signal when
    // SIGINT or SIGTERM stopped it, else 0.
    //
    // --integrator leapfrog integrates with one evaluation a step instead
    // of the Cash-Karp stepper; --lichtkurve DATEI writes the viscous
    // dissipation of every step to DATEI. Both change neither a snapshot
    // nor standard output of a run without them.
    //
    // Progress goes to standard error when it is a terminal, or always with
    // the option --fortschritt or AKKSTROM_FORTSCHRITT set (not to 0).
    int run(int argc, char** argv);
};
