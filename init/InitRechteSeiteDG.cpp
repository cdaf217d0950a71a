#include "init/InitRechteSeiteDG.h"

#include <fstream>
#include <iostream>
#include <string>

InitRechteSeiteDG::InitRechteSeiteDG(const char* parameterDatei) { init(parameterDatei); }

void InitRechteSeiteDG::init(const char* parameterDatei) {
    std::ifstream datei(parameterDatei);
    if (!datei)
        std::cerr << "error: unable to open parameter file in InitRechteSeiteDG!\n";
    std::string wort;
    while (datei >> wort) {
        if (wort == "Externforce")
            liste.push_back(externforce);
        if (wort == "Pressure")
            liste.push_back(pressure);
        if (wort == "Artvisc")
            liste.push_back(artvisc);
        if (wort == "Physvisc")
            liste.push_back(physvisc);
    }
}
