// akkscheibe: SPH simulation of the accretion disc around the primary of a
// close binary. Reads ./data/OYCar.parameter and ./data/Akk-OYCar-0 from the
// working directory and writes its snapshots next to the latter. Started
// with mpirun -np N, the N processes share the disc (the same output).

#include "simulation/SimulationConsole.h"
#include "verteilt/Prozesse.h"

#include <iostream>

int main(int argc, char** argv) {
    // Console output is large (a line per force evaluation); no need to keep
    // the C++ streams in step with C stdio.
    std::ios::sync_with_stdio(false);
    Prozesse prozesse(argc, argv);
    if (!prozesse.bereit())
        return 2;
    bool geteilt = true;
    {
        SimulationConsole console("./data/OYCar.parameter", "./data/Akk-OYCar-0");
        console.verteilung = prozesse.verteilung();
        console.run(0, nullptr);
        geteilt = !console.verteilung || prozesse.verteilt() || !console.scheibe;
    }
    std::cout.flush();
    // A disc that cannot be split over the processes: nothing was integrated.
    return geteilt ? 0 : 2;
}
