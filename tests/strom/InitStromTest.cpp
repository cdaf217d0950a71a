// The stream keys: all six must be present with usable values, and every
// missing or bad one is named in its own message.

#include "strom/InitStrom.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

const std::string alle = "Stromrate 3.2e-17 Stromgeschwindigkeit 7e-6 Stromstreuung 7e-7\n"
                         "Stromabstand 0.005 Strombreite 0.006 Stromsaat 18446744073709551615\n";

InitStrom lies(const std::string& inhalt) {
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("p"), inhalt);
    return InitStrom(o.datei("p").c_str());
}

TEST(InitStrom, LiestJedenSchluessel) {
    // A key counts wherever it stands, also in a comment; the last value wins;
    // "Rate" is another key, and zero rate and widths are allowed.
    InitStrom s = lies("% Stromrate 1e-20\n" + alle + "Rate 5 Stromrate 0 Strombreite 0\n");
    EXPECT_EQ(s.fehler, std::vector<std::string>{});
    EXPECT_EQ(std::make_tuple(s.Stromrate, s.Stromgeschwindigkeit, s.Stromstreuung, s.Stromabstand,
                              s.Strombreite, s.Stromsaat),
              std::make_tuple(0.0, 7e-6, 7e-7, 0.005, 0.0, 18446744073709551615ull));
}

TEST(InitStrom, MeldetFehlendeUndSchlechteWerte) {
    const std::string f = "Strom: Fehler: ";
    const std::string saat = "braucht eine ganze Zahl von 0 bis 18446744073709551615, nicht '";
    // A bad value after the good ones: each is reported, even where a good value stands.
    const std::pair<std::string, std::string> faelle[] = {
        {"Stromrate -1e-17", "Stromrate muss mindestens 0 sein, nicht '-1e-17' !"},
        {"Stromgeschwindigkeit nan",
         "Stromgeschwindigkeit braucht eine endliche Zahl, nicht 'nan' !"},
        {"Stromstreuung 1e999", "Stromstreuung braucht eine endliche Zahl, nicht '1e999' !"},
        {"Strombreite 0.1x", "Strombreite braucht eine endliche Zahl, nicht '0.1x' !"},
        // 5 km/s entered as 5 solar radii per second; the speed of light is 0.430922.
        {"Stromgeschwindigkeit 5", "Stromgeschwindigkeit 5 ist nicht unter der "
                                   "Lichtgeschwindigkeit, 0.430922 Sonnenradien pro Sekunde !"},
        {"Stromstreuung 0.431", "Stromstreuung 0.431 ist nicht unter der "
                                "Lichtgeschwindigkeit, 0.430922 Sonnenradien pro Sekunde !"},
        {"Stromabstand 0", "Stromabstand muss gr\xf6\xdf"
                           "er als 0 sein, nicht '0' !"},
        {"Stromsaat -1", "Stromsaat " + saat + "-1' !"},
        {"Stromsaat 18446744073709551616", "Stromsaat " + saat + "18446744073709551616' !"},
        {"Stromsaat", "Stromsaat ohne Wert am Ende der Parameterdatei !"},
    };
    for (const auto& [zusatz, meldung] : faelle)
        EXPECT_EQ(lies(alle + zusatz).fehler, std::vector<std::string>{f + meldung}) << zusatz;

    // Missing keys, each named with its meaning and unit, in the order of the keys.
    const std::vector<std::string> fehlen = lies("Stromrate 1e-17 Strombreite 0\n").fehler;
    ASSERT_EQ(fehlen.size(), 4u);
    EXPECT_EQ(fehlen[0], f + "Stromgeschwindigkeit fehlt (mittlere Geschwindigkeit von L1 zum "
                             "Prim\xe4rstern, Sonnenradien pro Sekunde) !");
    EXPECT_EQ(fehlen[3], f + "Stromsaat fehlt (Startwert der Zufallszahlen, ganze Zahl von 0 "
                             "bis 18446744073709551615) !");
}

} // namespace
