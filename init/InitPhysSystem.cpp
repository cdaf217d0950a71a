#include "init/InitPhysSystem.h"

#include "init/Lesen.h"

#include <fstream>
#include <iostream>
#include <string>

InitPhysSystem::InitPhysSystem(const char* parameterDatei, const char* teilchenDatei) {
    init(parameterDatei, teilchenDatei);
}

void InitPhysSystem::init(const char* parameterDatei, const char* teilchenDatei) {
    {
        std::ifstream datei(parameterDatei);
        if (!datei)
            std::cerr << "error: unable to open parameterfile in InitPhysSystem!\n";
        std::string wort;
        while (datei >> wort) {
            if (wort == "Primaersternmasse")
                lies(datei, Primaersternmasse);
            if (wort == "Sekundaersternmasse")
                lies(datei, Sekundaersternmasse);
            if (wort == "Bahnperiode")
                lies(datei, Bahnperiode);
            if (wort == "Viskositaet")
                lies(datei, Viskositaet);
            if (wort == "ArtVisk_alpha")
                lies(datei, ArtVisk_alpha);
            if (wort == "ArtVisk_beta")
                lies(datei, ArtVisk_beta);
            if (wort == "Smoothinglength")
                lies(datei, Smoothinglength);
            if (wort == "Rate")
                lies(datei, Rate);
            if (wort == "MinAbstand")
                lies(datei, MinAbstand);
            if (wort == "MaxAbstand")
                lies(datei, MaxAbstand);
            if (wort == "Kern1")
                kernelArt = 0;
        }
    }
    // The disc file's header: only the particle mass, and never the particle
    // lines that follow "Teilchendaten:".
    std::ifstream datei(teilchenDatei);
    if (!datei)
        std::cerr << "error: unable to open teilchenfile in InitPhysSystem!\n";
    std::string wort;
    while (datei >> wort) {
        if (wort == "Teilchenmasse")
            lies(datei, Teilchenmasse);
        if (wort == "Teilchendaten:")
            break;
    }
}
