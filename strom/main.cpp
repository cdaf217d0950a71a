// akkstrom: akkscheibe with the gas stream from the secondary. Reads
// ./data/OYCar.parameter (with the stream keys) and ./data/Akk-OYCar-0 from
// the working directory, feeds the disc through L1 after every step and
// writes its snapshots next to the initial disc. --fortschritt shows the
// progress on standard error also when it is not a terminal. Started with
// mpirun -np N, the N processes share the disc (the same output and
// checkpoints).

#include "strom/StromConsole.h"
#include "verteilt/Prozesse.h"

#include <iostream>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    Prozesse prozesse(argc, argv);
    if (!prozesse.bereit())
        return 2;
    int status = 0;
    {
        StromConsole console("./data/OYCar.parameter", "./data/Akk-OYCar-0");
        console.verteilung = prozesse.verteilung();
        status = console.run(argc, argv);
        // A disc that cannot be split over the processes: nothing was integrated.
        if (status == 0 && console.verteilung && console.scheibe && !prozesse.verteilt())
            status = 2;
    }
    std::cout.flush();
    return status;
}
