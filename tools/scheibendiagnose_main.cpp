// scheibendiagnose: a table of diagnostics of an akkscheibe run; see --help.

#include "tools/Scheibendiagnose.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::vector<std::string> argumente(argv + (argc > 0 ? 1 : 0), argv + argc);
    return diagnose::programm(argumente, std::cout, std::cerr);
}
