#include "init/InitOdeint.h"

#include "init/Lesen.h"

#include <fstream>
#include <iostream>
#include <string>

InitOdeint::InitOdeint(const char* parameterDatei) { init(parameterDatei); }

void InitOdeint::init(const char* parameterDatei) {
    std::ifstream datei(parameterDatei);
    if (!datei)
        std::cerr << "error: unable to open parameter file in InitOdeint!\n";
    std::string wort;
    while (datei >> wort) {
        if (wort == "Outputfiles")
            lies(datei, Outputfiles);
        if (wort == "Outputtime")
            lies(datei, Outputtime);
        if (wort == "Anfangsschrittweite")
            lies(datei, Anfangsschrittweite);
        if (wort == "MinSchrittweite")
            lies(datei, MinSchrittweite);
        if (wort == "MaxSchritte")
            lies(datei, MaxSchritte);
        if (wort == "Genauigkeit")
            lies(datei, Genauigkeit);
        if (wort == "RungeKutta")
            odeintArt = 0;
    }
}
