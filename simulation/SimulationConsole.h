#pragma once

#include "simulation/Simulation.h"

class Verteilung;

// The console program: builds the run from the parameter file and the
// initial disc file and integrates it.
class SimulationConsole : public Simulation {
public:
    const char* parameterDatei; // not copied: must outlive the console
    const char* teilchenDatei;  // initial disc file, likewise
    // The processes the disc is spread over; not owned. Null: one process.
    Verteilung* verteilung = nullptr;

    SimulationConsole(const char* parameterDatei, const char* teilchenDatei);

    // Builds every object of the run from the two files (readers, kernel,
    // physical system, forces, disc, integrator); false, after a message,
    // when there is nothing to integrate.
    bool aufbauen();

    // Builds the run and integrates it. The arguments are not read.
    void run(int argc, char** argv);
};
