// scheibengenerator: writes an initial disc file for akkscheibe; see --help.

#include "tools/Scheibengenerator.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::vector<std::string> argumente(argv + (argc > 0 ? 1 : 0), argv + argc);
    return generator::programm(argumente, std::cout, std::cerr);
}
