// akkstrom: akkscheibe with the gas stream from the secondary. Reads
// ./data/OYCar.parameter (with the stream keys) and ./data/Akk-OYCar-0 from
// the working directory, feeds the disc through L1 after every step and
// writes its snapshots next to the initial disc. --fortschritt shows the
// progress on standard error also when it is not a terminal.

#include "strom/StromConsole.h"

#include <iostream>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    int status = 0;
    {
        StromConsole console("./data/OYCar.parameter", "./data/Akk-OYCar-0");
        status = console.run(argc, argv);
    }
    std::cout.flush();
    return status;
}
