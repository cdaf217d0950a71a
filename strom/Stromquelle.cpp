#include "strom/Stromquelle.h"

#include "init/Text.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "strom/InitStrom.h"

#include <cmath>

namespace strom {

double gleichverteilt(std::mt19937_64& zufall) {
    return static_cast<double>(zufall() >> 11) * (1.0 / 9007199254740992.0); // 2^-53
}

double normalverteilt(std::mt19937_64& zufall) {
    const double pi = 3.141592653589793;
    double u1 = 1.0 - gleichverteilt(zufall); // in (0, 1], so the logarithm is finite
    double u2 = gleichverteilt(zufall);
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * pi * u2);
}

} // namespace strom

Stromquelle::Stromquelle(AkkScheibe& s, const PhysSystem& p, const InitStrom& init)
    : scheibe(&s), phys(&p), rate(init.Stromrate), geschwindigkeit(init.Stromgeschwindigkeit),
      streuung(init.Stromstreuung), abstand(init.Stromabstand), breite(init.Strombreite),
      zufall(init.Stromsaat), t0(s.t()) {}

std::string Stromquelle::pruefe(double tEnde) const {
    const std::string vorsatz = "Strom: Fehler: ";
    // Distance from L1 to the primary; the injection plane must lie between
    // them and outside the inner removal radius eta.
    const double b1 = phys->x1[0] - phys->xL1;
    if (!(b1 > phys->eta) || !std::isfinite(b1))
        return vorsatz +
               "die Bahndaten geben keinen Lagrangepunkt L1 au\xdf"
               "erhalb von eta " +
               zahl(phys->eta) + " um den Prim\xe4rstern !";
    if (!(abstand < b1 - phys->eta))
        return vorsatz + "Stromabstand " + zahl(abstand) + " reicht von L1 bis an eta um den " +
               "Prim\xe4rstern: L1 liegt " + zahl(b1) + " vom Prim\xe4rstern, eta ist " +
               zahl(phys->eta) + " !";
    // A stream wider than the way to the primary is none; far out, particles
    // would meet centrifugal accelerations that shrink the step to nothing
    // before they are removed.
    const double weg = b1 - abstand - phys->eta;
    if (!(breite < weg))
        return vorsatz + "Strombreite " + zahl(breite) + " ist nicht kleiner als der Abstand der " +
               "Einspeisung von eta um den Prim\xe4rstern, " + zahl(weg) + " !";
    const double dauer = tEnde > t0 ? tEnde - t0 : 0.0;
    const double anzahl = rate * dauer / phys->mTeilchen;
    if (!(anzahl <= double(strom::hoechstens)))
        return vorsatz + "Stromrate " + zahl(rate) +
               " Sonnenmassen pro Sekunde br\xe4"
               "chte bis " +
               "Outputtime " + zahl(anzahl) + " Teilchen, mehr als " +
               std::to_string(strom::hoechstens) + " !";
    return "";
}

long long Stromquelle::soll(double t) const {
    const double n = std::floor(rate * (t - t0) / phys->mTeilchen);
    if (!(n > 0))
        return 0; // before the first particle, backwards in time, or not a number
    if (n >= double(strom::hoechstens))
        return strom::hoechstens;
    return static_cast<long long>(n);
}

void Stromquelle::neuesTeilchen(long long k, double t, Vektor3& r, Vektor3& v) {
    const double y = breite * strom::normalverteilt(zufall);
    const double z = breite * strom::normalverteilt(zufall);
    const double vx = streuung * strom::normalverteilt(zufall);
    const double vy = streuung * strom::normalverteilt(zufall);
    const double vz = streuung * strom::normalverteilt(zufall);
    // Time since the particle crossed the injection plane; rounding may
    // put the crossing a hair after t.
    double alter = t - (t0 + double(k + 1) * (phys->mTeilchen / rate));
    if (!(alter > 0))
        alter = 0;
    r = {phys->xL1 + abstand + geschwindigkeit * alter, y, z};
    v = {geschwindigkeit + vx, vy, vz};
}

void Stromquelle::update() {
    const double t = scheibe->t();
    for (const long long ziel = soll(t); eingespeist < ziel; ++eingespeist) {
        Vektor3 r, v;
        neuesTeilchen(eingespeist, t, r, v);
        scheibe->fuege_teilchen_hinzu(r, v);
    }
}

void Stromquelle::processEvents() {}
