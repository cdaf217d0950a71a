#include "strom/InitStrom.h"

#include "init/Text.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>

namespace {

// The whole word as a finite real number: "nan", "inf", "1e999", "2x" are not.
bool alsReal(const std::string& text, double& wert) {
    char* ende = nullptr;
    errno = 0;
    const double w = std::strtod(text.c_str(), &ende);
    if (text.empty() || ende != text.c_str() + text.size() || errno == ERANGE || !std::isfinite(w))
        return false;
    wert = w;
    return true;
}

struct Schluessel {
    const char* name;
    const char* bedeutung; // named in the message for a missing key
    double* wert;          // null: the seed
    bool positiv;          // must be above 0 (else at least 0)
    bool geschwindigkeit;  // must be below the speed of light
};

// Speed of light in solar radii per second (299792.458 km/s over the nominal
// solar radius of 695700 km). A speed in km/s entered as solar radii per
// second exceeds it for any gas stream.
const double licht = 299792.458 / 695700.0;

const std::string vorsatz = "Strom: Fehler: ";
const char* const saatBereich = "ganze Zahl von 0 bis 18446744073709551615";

} // namespace

InitStrom::InitStrom(const char* parameterDatei) {
    init(parameterDatei);
}

void InitStrom::init(const char* parameterDatei) {
    const Schluessel schluessel[] = {
        {"Stromrate", "Massenrate durch L1, Sonnenmassen pro Sekunde", &Stromrate, false, false},
        {"Stromgeschwindigkeit",
         "mittlere Geschwindigkeit von L1 zum Prim\xe4rstern, Sonnenradien pro Sekunde",
         &Stromgeschwindigkeit, false, true},
        {"Stromstreuung",
         "Standardabweichung jeder Geschwindigkeitskomponente, Sonnenradien pro Sekunde",
         &Stromstreuung, false, true},
        {"Stromabstand", "Abstand der Einspeisung von L1 zum Prim\xe4rstern hin, Sonnenradien",
         &Stromabstand, true, false},
        {"Strombreite", "Standardabweichung von y und z um die x-Achse, Sonnenradien", &Strombreite,
         false, false},
        {"Stromsaat", "Startwert der Zufallszahlen", nullptr, false, false},
    };
    constexpr int anzahl = sizeof schluessel / sizeof schluessel[0];
    bool gesehen[anzahl] = {};
    std::vector<std::string> meldungen[anzahl]; // per key, in file order

    std::ifstream datei(parameterDatei);
    if (!datei)
        std::cerr << "error: unable to open parameter file in InitStrom!\n";
    std::string wort;
    while (datei >> wort) {
        for (int i = 0; i < anzahl; ++i) {
            const Schluessel& s = schluessel[i];
            if (wort != s.name)
                continue;
            gesehen[i] = true;
            std::string text;
            if (!(datei >> text)) {
                meldungen[i].push_back(vorsatz + s.name +
                                       " ohne Wert am Ende der Parameterdatei !");
                break;
            }
            if (!s.wert) {
                unsigned long long saat = 0;
                if (alsGanz(text, saat))
                    Stromsaat = saat;
                else
                    meldungen[i].push_back(vorsatz + s.name + " braucht eine " + saatBereich +
                                           ", nicht '" + text + "' !");
                break;
            }
            double w = 0;
            if (!alsReal(text, w))
                meldungen[i].push_back(vorsatz + s.name + " braucht eine endliche Zahl, nicht '" +
                                       text + "' !");
            else if (s.positiv && !(w > 0))
                meldungen[i].push_back(vorsatz + s.name +
                                       " muss gr\xf6\xdf"
                                       "er als 0 sein, nicht '" +
                                       text + "' !");
            else if (!(w >= 0))
                meldungen[i].push_back(vorsatz + s.name + " muss mindestens 0 sein, nicht '" +
                                       text + "' !");
            else if (s.geschwindigkeit && !(w < licht))
                meldungen[i].push_back(vorsatz + s.name + " " + text +
                                       " ist nicht unter der Lichtgeschwindigkeit, 0.430922 "
                                       "Sonnenradien pro Sekunde !");
            else
                *s.wert = w;
            break;
        }
    }

    fehler.clear();
    for (int i = 0; i < anzahl; ++i) {
        if (!gesehen[i])
            fehler.push_back(vorsatz + schluessel[i].name + " fehlt (" + schluessel[i].bedeutung +
                             (schluessel[i].wert ? "" : std::string(", ") + saatBereich) + ") !");
        fehler.insert(fehler.end(), meldungen[i].begin(), meldungen[i].end());
    }
}
