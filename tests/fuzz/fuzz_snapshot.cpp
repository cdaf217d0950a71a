// Arbitrary text as a disc file of each class: read, prepare forces, write, read back, compare.
#include "Hilfe.h"
#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/PhysviscAkkScheibe.h"
#include "scheibe/ScheibenTemplates.h"
#include <cmath>
#include <type_traits>

static PhysSystem& phys() {
    static const std::string datei = fuzzVerzeichnis() + "/fest.parameter";
    static const char text[] = "Primaersternmasse 0.685 Sekundaersternmasse 0.07 "
                               "Bahnperiode 5453.6 Smoothinglength 0.02 Kern1\n";
    static InitPhysSystem init(schreibe(datei, text, sizeof text - 1), datei.c_str());
    static Kernel1 kernel(init);
    static PhysSystem system(init, &kernel);
    return system;
}

// A snapshot keeps six digits (the stream default, printf's %g): read back is the %g rounding.
static bool gerundet(double geschrieben, double gelesen) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", geschrieben);
    return !std::isfinite(geschrieben) || std::strtod(text, nullptr) == gelesen;
}

template <class D> static void rundreise(const std::string& ein) {
    InitAkkScheibe init(nullptr, ein.c_str());
    D disc(init, phys());
    if (std::is_base_of_v<SphAkkScheibe, D>)
        disc.force_init(phys());
    disc.output(phys());
    const std::string aus = scheibe::ausgabeName(disc.name, disc.zeit);
    InitAkkScheibe initAus(nullptr, aus.c_str());
    D zurueck(initAus, phys());
    std::remove(aus.c_str());
    bool gleich = zurueck.tanz() == disc.tanz() && gerundet(disc.zeit, zurueck.zeit);
    for (int i = 0; i < disc.tanz() && gleich; ++i)
        for (int k = 0; k < 3; ++k)
            gleich = gleich && gerundet(disc[i].r[k], zurueck[i].r[k]) &&
                     gerundet(disc[i].v[k], zurueck[i].v[k]);
    if (!gleich)
        __builtin_trap();
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* daten, std::size_t n) {
    // The name ends in "-x", so no snapshot name (digits after the "-") hits it.
    const std::string ein = fuzzVerzeichnis() + "/Akk-fuzz-x";
    schreibe(ein, daten, n);
    rundreise<AkkScheibe>(ein);
    rundreise<SphAkkScheibe>(ein);
    rundreise<PressArtviscAkkScheibe>(ein);
    rundreise<PhysviscAkkScheibe>(ein);
    return 0;
}
