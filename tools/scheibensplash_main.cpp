// scheibensplash: writes snapshots of an akkscheibe run as tables for splash; see --help.

#include "tools/Scheibensplash.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::vector<std::string> argumente(argv + (argc > 0 ? 1 : 0), argv + argc);
    return splash::programm(argumente, std::cout, std::cerr);
}
