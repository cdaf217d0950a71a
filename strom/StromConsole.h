#pragma once

#include "simulation/SimulationConsole.h"

class Fortschritt;
class InitStrom;
class Stromquelle;

// The console program with the gas stream: the run of akkscheibe, built from
// the same files, whose disc is fed through L1 after every step.
class StromConsole : public SimulationConsole {
public:
    InitStrom* initStrom = nullptr; // reader of the stream keys
    Stromquelle* quelle = nullptr;  // the disc's update hook
    Fortschritt* anzeige = nullptr; // progress on standard error, wrapping the stream

    StromConsole(const char* parameterDatei, const char* teilchenDatei);
    StromConsole(const StromConsole&) = delete;
    StromConsole& operator=(const StromConsole&) = delete;
    ~StromConsole();

    // Reads the options and the stream keys, builds the run, sets the stream
    // as the disc's update hook and integrates. Returns the exit status: 2 for
    // an unknown option, 1 when the stream keys are missing or bad or do not
    // suit the binary (nothing is integrated then), else 0.
    //
    // Progress goes to standard error when it is a terminal, or always with
    // the option --fortschritt or AKKSTROM_FORTSCHRITT set (not to 0).
    int run(int argc, char** argv);
};
