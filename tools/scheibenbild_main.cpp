// scheibenbild: draws snapshots of an akkscheibe run as PNG pictures; see --help.

#include "tools/Scheibenbild.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::vector<std::string> argumente(argv + (argc > 0 ? 1 : 0), argv + argc);
    return bild::programm(argumente, std::cout, std::cerr);
}
