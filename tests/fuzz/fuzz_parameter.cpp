// The four readers on arbitrary text, then kernel, binary and one evaluation of all four forces on
// a small gas disc under whatever they read: nothing may crash, hang or leak.
#include "Hilfe.h"
#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "init/InitRechteSeiteDG.h"
#include "kraefte/Artvisc.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "kraefte/Physvisc.h"
#include "kraefte/Pressure.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"

// Twelve particles of the shipped disc, some of them within 0.03 of each other.
static const char scheibe[] = "Teilchenanzahl 12\nZeit 0\nTeilchendaten:\n"
                              "0.131 0.0865 0.0016 -0.00106 0.00092 0\n"
                              "0.140 0.0800 0.0010 -0.00100 0.00090 0\n"
                              "0.150 0.0850 0.0000 -0.00110 0.00095 0\n"
                              "0.197 -0.0875 0.0015 0.00057 0.00092 0\n"
                              "0.205 -0.0800 0.0005 0.00050 0.00090 0\n"
                              "-0.084 -0.160 -0.0006 0.00066 -0.00058 0\n"
                              "-0.070 -0.150 0.0000 0.00060 -0.00060 0\n"
                              "0.0563 0.1 0 -0.0011 0 0\n"
                              "0.0563 0.11 0 -0.0011 0 0\n"
                              "0.0563 0.1 0.001 -0.0011 0 0\n"
                              "0.0563 0 0 0 0 0\n"
                              "0.3 0 0 0 0.001 0\n";

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* daten, std::size_t n) {
    static const std::string disc = fuzzVerzeichnis() + "/Akk-fuzz-0";
    static const char* d = schreibe(disc, scheibe, sizeof scheibe - 1);
    const std::string datei = fuzzVerzeichnis() + "/OYCar.parameter";
    const char* p = schreibe(datei, daten, n);
    InitOdeint odeint(p);
    InitPhysSystem physInit(p, p); // the file is its own disc file: both scans run
    InitRechteSeiteDG rechteSeite(p);
    InitAkkScheibe akk(p, p);
    Kernel1 kernel(physInit);
    PhysSystem phys(physInit, &kernel);

    Kraefte kraefte;
    kraefte.add(new Externforce());
    kraefte.add(new Pressure());
    kraefte.add(new Artvisc());
    kraefte.add(new Physvisc());
    InitAkkScheibe init(p, d);
    AkkScheibe* s = kraefte.createAkkScheibe(init, phys);
    kraefte.derivatives(*s, phys);
    delete s;
    return 0;
}
