// akkscheibe: SPH simulation of the accretion disc around the primary of a
// close binary. Reads ./data/OYCar.parameter and ./data/Akk-OYCar-0 from the
// working directory and writes its snapshots next to the latter.

#include "simulation/SimulationConsole.h"

#include <iostream>

int main() {
    // Console output is large (a line per force evaluation); no need to keep
    // the C++ streams in step with C stdio.
    std::ios::sync_with_stdio(false);
    {
        SimulationConsole console("./data/OYCar.parameter", "./data/Akk-OYCar-0");
        console.run(0, nullptr);
    }
    std::cout.flush();
    return 0;
}
