#include "tools/Scheibenbild.h"

#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "tools/Schnappschuesse.h"

#include <png.h>
#include <stb/stb_easy_font.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>

namespace bild {

namespace {

const double G = 3.9371199385708905e-7; // gravitational constant, R_sun^3 / (M_sun s^2)
const double pi = 3.141592653589793;

// Palette: a colour map of `stufen` levels from faint to dense, then the
// colours of the drawing.
const int stufen = 200;
enum Farbe : std::uint8_t {
    HINTERGRUND = stufen, // around the panels
    SCHRIFT,              // text, axes
    KREIS,                // removal radii
    LAPPEN,               // Roche lobe
    LPUNKT,               // L1
    STERN,                // primary
    BEGLEITER,            // direction of the secondary
    FARBEN
};

// A dark-to-bright colour map (black, purple, red, orange, pale yellow), even
// in lightness so that equal steps in log Sigma look equal.
void farbskala(double t, png_color& c) {
    static const double stuetz[][3] = {{0, 0, 4},      {31, 12, 72},   {85, 15, 109},
                                       {136, 34, 106}, {186, 54, 85},  {227, 89, 51},
                                       {249, 140, 10}, {249, 201, 50}, {252, 255, 164}};
    const double s = std::min(std::max(t, 0.0), 1.0) * 8;
    const int i = std::min(static_cast<int>(s), 7);
    const double f = s - i;
    auto kanal = [&](int k) {
        return static_cast<png_byte>(
            std::lround(stuetz[i][k] + f * (stuetz[i + 1][k] - stuetz[i][k])));
    };
    c = {kanal(0), kanal(1), kanal(2)};
}

// Drawing on a palette image, clipped to a rectangle.
struct Leinwand {
    Bild& b;
    int cx0 = 0, cy0 = 0, cx1 = 0, cy1 = 0; // clip: [cx0, cx1) x [cy0, cy1)

    explicit Leinwand(Bild& bild) : b(bild) { ganz(); }
    void ganz() { cx0 = 0, cy0 = 0, cx1 = b.breite, cy1 = b.hoehe; }
    void punkt(int x, int y, std::uint8_t f) {
        if (x >= cx0 && x < cx1 && y >= cy0 && y < cy1)
            b.punkte[static_cast<std::size_t>(y) * static_cast<std::size_t>(b.breite) +
                     static_cast<std::size_t>(x)] = f;
    }
    void rechteck(double x0, double y0, double x1, double y1, std::uint8_t f) {
        if (!(x1 > cx0 && x0 < cx1 && y1 > cy0 && y0 < cy1)) // also false for NaN
            return;
        const int ix0 = static_cast<int>(std::floor(std::max<double>(x0, cx0)));
        const int iy0 = static_cast<int>(std::floor(std::max<double>(y0, cy0)));
        const int ix1 = static_cast<int>(std::ceil(std::min<double>(x1, cx1)));
        const int iy1 = static_cast<int>(std::ceil(std::min<double>(y1, cy1)));
        for (int y = iy0; y < iy1; ++y)
            for (int x = ix0; x < ix1; ++x)
                punkt(x, y, f);
    }
    // A polyline of the given thickness; dashed with dash length `strich` > 0.
    void linie(const std::vector<Punkt2>& p, std::uint8_t f, double dicke, double strich = 0) {
        double weg = 0;
        for (std::size_t i = 1; i < p.size(); ++i) {
            const double dx = p[i].x - p[i - 1].x, dy = p[i].y - p[i - 1].y;
            const double l = std::hypot(dx, dy);
            if (!std::isfinite(l) || l > 1e5)
                continue;
            const int n = std::max(1, static_cast<int>(std::ceil(l * 2)));
            for (int k = 0; k <= n; ++k) {
                const double s = static_cast<double>(k) / n;
                if (strich > 0 && std::fmod(weg + s * l, 2 * strich) > strich)
                    continue;
                const double x = p[i - 1].x + s * dx, y = p[i - 1].y + s * dy;
                rechteck(x - dicke / 2, y - dicke / 2, x + dicke / 2, y + dicke / 2, f);
            }
            weg += l;
        }
    }
    // Text with the top left corner at (x, y), `skala` pixels per font unit;
    // with `rand` on a dark outline, readable over the colour map and lines.
    void text(double x, double y, const std::string& s, std::uint8_t f, int skala,
              bool rand = false) {
        std::string sauber = s; // the font knows printable ASCII only
        for (char& c : sauber)
            if (c < 32 || c > 126)
                c = '?';
        std::vector<float> puffer(sauber.size() * 256 +
                                  16); // 64 bytes a stroke, 16 strokes a glyph
        const int quads = stb_easy_font_print(0, 0, &sauber[0], nullptr, puffer.data(),
                                              static_cast<int>(puffer.size() * sizeof(float)));
        for (int runde = rand ? 0 : 1; runde < 2; ++runde) {
            const double r = runde == 0 ? std::max(1, skala / 2) : 0;
            for (int q = 0; q < quads; ++q) {
                const float* v =
                    &puffer[static_cast<std::size_t>(q) * 16]; // 4 vertices of x, y, z, colour
                rechteck(x + skala * std::min(v[0], v[8]) - r, y + skala * std::min(v[1], v[9]) - r,
                         x + skala * std::max(v[0], v[8]) + r, y + skala * std::max(v[1], v[9]) + r,
                         runde == 0 ? 0 : f);
            }
        }
    }
};

// The name of frame k of a film.
std::string bildName(std::size_t k) {
    char name[32];
    std::snprintf(name, sizeof name, "bild-%04zu.png", k);
    return name;
}

int textbreite(const std::string& s, int skala) {
    std::string sauber = s;
    for (char& c : sauber)
        if (c < 32 || c > 126)
            c = '?';
    return stb_easy_font_width(&sauber[0]) * skala;
}

std::string zahl(double x, int stellen = 6) {
    std::ostringstream s;
    s.imbue(std::locale::classic());
    s.precision(stellen);
    s << x;
    return s.str();
}

// A round tick spacing giving about `ziel` ticks over `spanne`.
double tickweite(double spanne, double ziel) {
    const double roh = spanne / ziel;
    const double mag = std::pow(10.0, std::floor(std::log10(roh)));
    const double n = roh / mag;
    return (n < 1.5 ? 1 : n < 3.5 ? 2 : n < 7.5 ? 5 : 10) * mag;
}

// The multiples of `schritt` in [von, bis]; none when there would be more
// than a hundred or the numbers are too large to count in steps.
std::vector<double> vielfache(double von, double bis, double schritt) {
    std::vector<double> v;
    const double k0 = std::ceil(von / schritt - 1e-9), k1 = std::floor(bis / schritt + 1e-9);
    if (k1 - k0 < 100 && std::fabs(k0) < 1e9 && std::fabs(k1) < 1e9)
        for (double k = k0; k <= k1; ++k)
            v.push_back(std::fabs(k) < 0.5 ? 0.0 : k * schritt);
    return v;
}

// One panel: its place in the picture and the region of space it shows.
struct Panel {
    int x0, y0, b, h;              // pixels
    double xmin, xmax, vmin, vmax; // solar radii; v is y or z
    int achse;                     // 1: y, 2: z
    double px(double x) const { return x0 + (x - xmin) / (xmax - xmin) * b; }
    double py(double v) const { return y0 + (vmax - v) / (vmax - vmin) * h; }
    Punkt2 p(double x, double v) const { return {px(x), py(v)}; }
};

struct Optionen {
    std::string parameter = "./data/OYCar.parameter";
    std::string ausgabe;
    int pixel = 800;
    std::string ansicht = "beide";
    double ausdehnung = 0; // 0: 1.05 rMax
    double zstreckung = 16;
    double glaettung = -1; // < 0: h / 4
    double dekaden = 3;
    bool film = false; // numbered frames bild-0000.png, ... in order of time
};

struct Lage { // what every picture of a run shares
    const PhysSystem* phys;
    Optionen o;
    std::vector<Panel> panels;
    int breite, hoehe, skala;
    double dicke;
    double glaettungZellen[2];
    double maximum[2] = {0, 0}; // largest column density of each panel over the run
    std::vector<Punkt2> lappen;
    std::vector<std::string> legende; // lines under the panels
};

Lage plane(const PhysSystem& phys, const Optionen& o) {
    Lage l;
    l.phys = &phys;
    l.o = o;
    const int s = std::max(1, (o.pixel + 200) / 400);
    l.skala = s;
    l.dicke = std::max(1.0, std::round(o.pixel / 400.0));
    const double w = o.ausdehnung > 0 ? o.ausdehnung : 1.05 * phys.rMax;
    const double xc = phys.x1[0], yc = phys.x1[1], zc = phys.x1[2];
    const int links = 40 * s, oben = 48 * s, balken = 92 * s, unten = 56 * s;
    int x = links;
    if (o.ansicht != "seite") {
        l.panels.push_back({x, oben, o.pixel, o.pixel, xc - w, xc + w, yc - w, yc + w, 1});
        x += o.pixel + balken + links;
    }
    if (o.ansicht != "oben") {
        const double wz = w / o.zstreckung;
        l.panels.push_back({x, oben, o.pixel, o.pixel, xc - w, xc + w, zc - wz, zc + wz, 2});
        x += o.pixel + balken + links;
    }
    l.breite = x - links + 8 * s;
    // The legend, its items flowed into lines as wide as the picture.
    const std::string teile[] = {
        "cyan: Roche lobe of the primary",
        "grey dashed: removal radii eta = " + zahl(phys.eta) + ", rMax = " + zahl(phys.rMax, 4),
        "red: secondary at x = " + zahl(phys.x2[0], 4) + " (an arrow when out of view)"};
    for (const std::string& t : teile) {
        const std::string neu = l.legende.empty() ? t : l.legende.back() + "    " + t;
        if (!l.legende.empty() && textbreite(neu, s) <= l.breite - links)
            l.legende.back() = neu;
        else
            l.legende.push_back(t);
    }
    l.hoehe = oben + o.pixel + unten + 12 * s * static_cast<int>(l.legende.size() - 1);
    // Even sizes: video encoders with half-resolution chroma (yuv420p) need them.
    l.breite += l.breite % 2;
    l.hoehe += l.hoehe % 2;
    const double sigma = o.glaettung >= 0 ? o.glaettung : (phys.h > 0 ? phys.h / 4 : 0);
    for (std::size_t i = 0; i < l.panels.size(); ++i)
        l.glaettungZellen[i] = sigma / (2 * w) * o.pixel; // same in x and in the (stretched) z
    l.lappen = rocheLappen(phys, 720);
    return l;
}

std::vector<double> dichte(const Lage& l, std::size_t i, const AkkScheibe& s) {
    const Panel& p = l.panels[i];
    return saeulendichte(s, l.phys->mTeilchen, p.achse, p.xmin, p.xmax, p.vmin, p.vmax, p.b, p.h,
                         l.glaettungZellen[i]);
}

void zeichnePanel(Leinwand& c, const Lage& l, std::size_t i, const std::vector<double>& sigma) {
    const Panel& p = l.panels[i];
    const PhysSystem& phys = *l.phys;
    const int s = l.skala;
    const double d = l.dicke;
    // The colour range: the run's largest value and `dekaden` decades below;
    // an empty run gets one particle per cell as its top.
    double oben = l.maximum[i];
    if (!(oben > 0))
        oben = phys.mTeilchen * p.b * p.h / ((p.xmax - p.xmin) * (p.vmax - p.vmin));
    const double lgOben = std::log10(oben), lgUnten = lgOben - l.o.dekaden;
    for (int y = 0; y < p.h; ++y)
        for (int x = 0; x < p.b; ++x) {
            const double w = sigma[static_cast<std::size_t>(y) * static_cast<std::size_t>(p.b) +
                                   static_cast<std::size_t>(x)];
            double t = w > 0 ? (std::log10(w) - lgUnten) / l.o.dekaden : 0;
            t = std::min(std::max(t, 0.0), 1.0);
            c.punkt(p.x0 + x, p.y0 + y, static_cast<std::uint8_t>(std::lround(t * (stufen - 1))));
        }

    c.cx0 = p.x0, c.cy0 = p.y0, c.cx1 = p.x0 + p.b, c.cy1 = p.y0 + p.h;
    // Removal spheres around the primary, cut by the panel's plane.
    const double x1 = phys.x1[0], v1 = phys.x1[p.achse];
    for (double r : {phys.eta, phys.rMax}) {
        std::vector<Punkt2> kreis;
        for (int k = 0; k <= 720; ++k)
            kreis.push_back(p.p(x1 + r * std::cos(k * pi / 360), v1 + r * std::sin(k * pi / 360)));
        c.linie(kreis, KREIS, d, 6 * d);
    }
    if (p.achse == 1) {
        std::vector<Punkt2> lappen;
        for (const Punkt2& q : l.lappen)
            lappen.push_back(p.p(q.x, q.y));
        lappen.push_back(lappen.front());
        c.linie(lappen, LAPPEN, d);
        const Punkt2 e = p.p(x1 + phys.eta * 0.7071, v1 + phys.eta * 0.7071);
        c.text(e.x + 2 * s, e.y - 9 * s, "eta", KREIS, s, true);
    }
    const Punkt2 rm = p.p(x1 + phys.rMax * 0.7071, v1 + phys.rMax * 0.7071);
    if (p.achse == 1)
        c.text(rm.x + 3 * s, rm.y - 9 * s, "rMax", KREIS, s, true);

    // L1: a cross on the lobe's tip.
    const Punkt2 l1 = p.p(phys.xL1, phys.x1[p.achse]);
    const double a = 5 * d;
    c.linie({{l1.x - a, l1.y - a}, {l1.x + a, l1.y + a}}, LPUNKT, d);
    c.linie({{l1.x - a, l1.y + a}, {l1.x + a, l1.y - a}}, LPUNKT, d);
    c.text(l1.x + 4 * s, l1.y - 16 * s, "L1", LPUNKT, s, true);

    // The primary: a dot.
    const Punkt2 m1 = p.p(x1, v1);
    c.rechteck(m1.x - 2 * d, m1.y - 2 * d, m1.x + 2 * d, m1.y + 2 * d, STERN);
    c.text(m1.x + 4 * s, m1.y + 4 * s, "primary", STERN, s, true);

    // The secondary: a dot when in view, else an arrow at the edge on the line
    // from the primary through L1.
    const Punkt2 m2 = p.p(phys.x2[0], phys.x2[p.achse]);
    if (phys.x2[0] > p.xmin) {
        c.rechteck(m2.x - 2 * d, m2.y - 2 * d, m2.x + 2 * d, m2.y + 2 * d, BEGLEITER);
        c.text(m2.x + 4 * s, m2.y + 4 * s, "secondary", BEGLEITER, s, true);
    } else {
        const double spitze = p.x0 + 2 * d, schaft = p.x0 + 14 * s, y = m2.y;
        c.linie({{spitze, y}, {schaft, y}}, BEGLEITER, d);
        c.linie({{spitze + 6 * s, y - 5 * s}, {spitze, y}, {spitze + 6 * s, y + 5 * s}}, BEGLEITER,
                d);
        c.text(p.x0 + 4 * s, y + 16 * s, "to secondary", BEGLEITER, s, true);
    }
    c.ganz();

    // Frame, ticks and their labels.
    const double rand[][4] = {{0, 0, 1, 0}, {0, 1, 1, 1}, {0, 0, 0, 1}, {1, 0, 1, 1}};
    for (const auto& r : rand)
        c.linie({{p.x0 + r[0] * p.b, p.y0 + r[1] * p.h}, {p.x0 + r[2] * p.b, p.y0 + r[3] * p.h}},
                SCHRIFT, 1);
    for (double wert : vielfache(p.xmin, p.xmax, tickweite(p.xmax - p.xmin, 5))) {
        const double x = p.px(wert), y = p.y0 + p.h;
        c.linie({{x, y}, {x, y + 5 * s}}, SCHRIFT, 1);
        const std::string t = zahl(wert);
        c.text(x - textbreite(t, s) / 2.0, y + 8 * s, t, SCHRIFT, s);
    }
    for (double wert : vielfache(p.vmin, p.vmax, tickweite(p.vmax - p.vmin, 5))) {
        const double y = p.py(wert);
        c.linie({{p.x0 - 5.0 * s, y}, {static_cast<double>(p.x0), y}}, SCHRIFT, 1);
        const std::string t = zahl(wert);
        c.text(p.x0 - 7 * s - textbreite(t, s), y - 4 * s, t, SCHRIFT, s);
    }
    const std::string achsen = p.achse == 1 ? "x [Rsun] (right)   y [Rsun] (up)   face-on"
                                            : "x [Rsun] (right)   z [Rsun] (up, stretched x" +
                                                  zahl(l.o.zstreckung) + ")   edge-on";
    c.text(p.x0, p.y0 + p.h + 22 * s, achsen, SCHRIFT, s);

    // Colour bar with a label at every whole decade.
    const double bx = p.x0 + p.b + 12 * s, bb = 14 * s;
    for (int y = 0; y < p.h; ++y) {
        const auto f = static_cast<std::uint8_t>(std::lround((1 - (y + 0.5) / p.h) * (stufen - 1)));
        c.rechteck(bx, p.y0 + y, bx + bb, p.y0 + y + 1, f);
    }
    for (double k : vielfache(lgUnten, lgOben, 1)) {
        const double y = p.y0 + (lgOben - k) / l.o.dekaden * p.h;
        c.linie({{bx + bb, y}, {bx + bb + 4 * s, y}}, SCHRIFT, 1);
        c.text(bx + bb + 6 * s, y - 4 * s, "1e" + zahl(k), SCHRIFT, s);
    }
    c.text(bx - 4 * s, p.y0 - 24 * s, "Sigma", SCHRIFT, s);
    c.text(bx - 4 * s, p.y0 - 13 * s, "[Msun/Rsun^2]", SCHRIFT, s);
}

Bild zeichne(const Lage& l, const AkkScheibe& s, const std::string& datei, long nichtEndlich) {
    Bild b;
    b.breite = l.breite;
    b.hoehe = l.hoehe;
    b.punkte.assign(static_cast<std::size_t>(b.breite) * static_cast<std::size_t>(b.hoehe),
                    HINTERGRUND);
    Leinwand c(b);
    for (std::size_t i = 0; i < l.panels.size(); ++i)
        zeichnePanel(c, l, i, dichte(l, i, s));
    const int k = l.skala;
    const std::string zeit =
        "t = " + zahl(s.zeit, 7) + " s = " + zahl(s.zeit / l.phys->periode, 4) + " orbits";
    std::string unter = std::to_string(s.teilchen.size()) + " particles";
    if (nichtEndlich > 0)
        unter += " (" + std::to_string(nichtEndlich) + " not finite, not drawn)";
    c.text(l.panels[0].x0, 6 * k, zeit, SCHRIFT, 2 * k);
    c.text(l.panels[0].x0, 30 * k, unter + "    " + datei, SCHRIFT, k);
    for (std::size_t i = 0; i < l.legende.size(); ++i)
        c.text(l.panels[0].x0, l.panels[0].y0 + l.panels[0].h + (40 + 12 * static_cast<int>(i)) * k,
               l.legende[i], SCHRIFT, k);
    return b;
}

} // namespace

double rochePotential(const PhysSystem& phys, double x, double y) {
    const double r1 = std::hypot(x - phys.x1[0], y - phys.x1[1]);
    const double r2 = std::hypot(x - phys.x2[0], y - phys.x2[1]);
    return -G * phys.m1 / r1 - G * phys.m2 / r2 - 0.5 * phys.omega * phys.omega * (x * x + y * y);
}

std::vector<Punkt2> rocheLappen(const PhysSystem& phys, int winkel) {
    // Along each ray from the primary the potential rises from -infinity; the
    // lobe's edge is where it first reaches its value at L1. L1 is the lobe's
    // farthest point from the primary, so the search stops there: the ray
    // through L1 meets the value only at L1 itself, a saddle of the potential.
    const double x1 = phys.x1[0], y1 = phys.x1[1];
    const double grenze = rochePotential(phys, phys.xL1, 0);
    const double dL1 = std::fabs(x1 - phys.xL1);
    const int schritte = 1000;
    std::vector<Punkt2> lappen;
    for (int j = 0; j < winkel; ++j) {
        const double th = 2 * pi * j / winkel;
        const double cx = std::cos(th), cy = std::sin(th);
        auto phi = [&](double r) { return rochePotential(phys, x1 + r * cx, y1 + r * cy); };
        double innen = 0, aussen = dL1;
        for (int k = 1; k <= schritte; ++k) {
            const double r = dL1 * k / schritte;
            if (phi(r) >= grenze) {
                aussen = r;
                break;
            }
            innen = r;
        }
        if (innen < aussen)
            for (int runde = 0; runde < 60; ++runde) {
                const double mitte = 0.5 * (innen + aussen);
                (phi(mitte) >= grenze ? aussen : innen) = mitte;
            }
        const double r = innen == dL1 ? dL1 : 0.5 * (innen + aussen);
        lappen.push_back({x1 + r * cx, y1 + r * cy});
    }
    return lappen;
}

std::vector<double> saeulendichte(const AkkScheibe& scheibe, double mTeilchen, int achse,
                                  double xmin, double xmax, double vmin, double vmax, int spalten,
                                  int zeilen, double glaettung) {
    const std::size_t nx = static_cast<std::size_t>(std::max(spalten, 1));
    const std::size_t ny = static_cast<std::size_t>(std::max(zeilen, 1));
    std::vector<double> n(nx * ny, 0.0);
    const double dx = (xmax - xmin) / static_cast<double>(nx),
                 dv = (vmax - vmin) / static_cast<double>(ny);
    const double proZelle = mTeilchen / (dx * dv);
    for (const Teilchen& t : scheibe.teilchen) {
        if (!schnappschuss::endlich(t))
            continue;
        const double i = std::floor((t.r[0] - xmin) / dx), j = std::floor((vmax - t.r[achse]) / dv);
        if (i >= 0 && i < static_cast<double>(nx) && j >= 0 && j < static_cast<double>(ny))
            n[static_cast<std::size_t>(j) * nx + static_cast<std::size_t>(i)] += proZelle;
    }
    if (!(glaettung > 0))
        return n;
    // Separable Gaussian, normalised; what spills over the edges is lost.
    const int r =
        static_cast<int>(std::min(std::ceil(3 * glaettung), static_cast<double>(std::max(nx, ny))));
    std::vector<double> g(static_cast<std::size_t>(2 * r + 1));
    double summe = 0;
    for (int k = -r; k <= r; ++k)
        summe += g[static_cast<std::size_t>(k + r)] =
            std::exp(-0.5 * k * k / (glaettung * glaettung));
    for (double& w : g)
        w /= summe;
    std::vector<double> m(n.size(), 0.0);
    for (std::size_t j = 0; j < ny; ++j) // along x
        for (std::size_t i = 0; i < nx; ++i) {
            const double w = n[j * nx + i];
            if (w == 0)
                continue;
            for (int k = -r; k <= r; ++k) {
                const long ii = static_cast<long>(i) + k;
                if (ii >= 0 && ii < static_cast<long>(nx))
                    m[j * nx + static_cast<std::size_t>(ii)] +=
                        w * g[static_cast<std::size_t>(k + r)];
            }
        }
    std::fill(n.begin(), n.end(), 0.0);
    for (std::size_t j = 0; j < ny; ++j) // along v
        for (std::size_t i = 0; i < nx; ++i) {
            const double w = m[j * nx + i];
            if (w == 0)
                continue;
            for (int k = -r; k <= r; ++k) {
                const long jj = static_cast<long>(j) + k;
                if (jj >= 0 && jj < static_cast<long>(ny))
                    n[static_cast<std::size_t>(jj) * nx + i] +=
                        w * g[static_cast<std::size_t>(k + r)];
            }
        }
    return n;
}

std::string schreibePng(const std::string& datei, const Bild& bild) {
    std::FILE* f = std::fopen(datei.c_str(), "wb");
    if (!f)
        return "cannot write " + datei;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    std::vector<png_color> palette(FARBEN);
    for (int i = 0; i < stufen; ++i)
        farbskala(i / (stufen - 1.0), palette[static_cast<std::size_t>(i)]);
    palette[HINTERGRUND] = {28, 28, 32};
    palette[SCHRIFT] = {230, 230, 230};
    palette[KREIS] = {170, 170, 170};
    palette[LAPPEN] = {0, 220, 255};
    palette[LPUNKT] = {90, 255, 90};
    palette[STERN] = {255, 255, 255};
    palette[BEGLEITER] = {255, 140, 140};
    std::vector<png_bytep> zeilen(static_cast<std::size_t>(bild.hoehe));
    for (std::size_t y = 0; y < zeilen.size(); ++y)
        zeilen[y] = const_cast<png_bytep>(&bild.punkte[y * static_cast<std::size_t>(bild.breite)]);
    // libpng reports errors by longjmp; nothing with a destructor is made below.
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(f);
        return "writing " + datei + " failed";
    }
    png_init_io(png, f);
    png_set_compression_level(png, 9);
    png_set_IHDR(png, info, static_cast<png_uint_32>(bild.breite),
                 static_cast<png_uint_32>(bild.hoehe), 8, PNG_COLOR_TYPE_PALETTE,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, palette.data(), FARBEN);
    png_write_info(png, info);
    png_write_image(png, zeilen.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return std::fclose(f) == 0 ? "" : "writing " + datei + " failed";
}

const char* hilfetext() {
    return "Usage: scheibenbild [options] SNAPSHOT...\n"
           "\n"
           "Draws snapshots of an akkscheibe run as PNG pictures: the column density of\n"
           "the particles seen face-on (x-y) and edge-on (x-z), on a logarithmic colour\n"
           "scale with a colour bar, with the primary, the direction of the secondary,\n"
           "L1, the inner and outer removal radii eta and rMax around the primary, the\n"
           "primary's Roche lobe in the orbital plane (cyan), and the time in seconds and\n"
           "in binary orbits. A SNAPSHOT is a file, a folder (every file in it named\n"
           "...-<digits>) or a prefix such as data/Akk-OYCar- (every file named\n"
           "prefix<digits>); several are drawn in order of time, each view on one\n"
           "colour scale for all of them.\n"
           "Units: solar masses, solar radii (Rsun), seconds.\n"
           "\n"
           "Options (a value may also be attached as --option=value):\n"
           "  -p, --parameter FILE parameter file of the binary (default ./data/OYCar.parameter)\n"
           "  -o, --ausgabe NAME   for one snapshot the PNG file, for several (or when\n"
           "                       NAME is a folder or ends in /) a folder, made if\n"
           "                       missing, that gets <snapshot name>.png for each;\n"
           "                       default: <snapshot>.png next to each snapshot\n"
           "      --pixel N        size of each view in pixels, 100 to 4000 (default 800)\n"
           "      --ansicht A      beide (both views, default), oben (face-on only) or\n"
           "                       seite (edge-on only)\n"
           "      --ausdehnung R   half width of the views around the primary in Rsun,\n"
           "                       up to 1000 (default 1.05 rMax)\n"
           "      --zstreckung F   stretch of z in the edge-on view, 0.01 to 10000\n"
           "                       (default 16)\n"
           "      --glaettung S    standard deviation in Rsun of the Gaussian that smooths\n"
           "                       the histogram, 0 to 10; about an SPH kernel's width by\n"
           "                       default: h/4 with the smoothing length h of the\n"
           "                       parameter file; 0 gives the raw histogram of particles\n"
           "                       per pixel\n"
           "      --dekaden D      decades of the colour scale below its top, the largest\n"
           "                       column density of the run, up to 30 (default 3)\n"
           "      --film           frames for a film: the pictures go to the folder -o\n"
           "                       as bild-0000.png, bild-0001.png, ... in order of time\n"
           "                       (all of one size, on one colour scale); then e.g.\n"
           "                       ffmpeg -framerate 2 -i FOLDER/bild-%04d.png\n"
           "                       -pix_fmt yuv420p film.mp4\n"
           "  -h, --help           this text\n"
           "\n"
           "Column density Sigma: particles per pixel area times the particle mass, in\n"
           "Msun/Rsun^2, in the face-on view integrated along z, in the edge-on view along y.\n"
           "The Roche lobe is the contour through L1 of -G m1/|r-x1| - G m2/|r-x2|\n"
           "- omega^2 (x^2+y^2)/2 around the primary. Particles with a coordinate that is\n"
           "not a finite number are not drawn.\n"
           "\n"
           "Exit status: 0 on success, 1 for an unreadable or unwritable file, 2 for bad\n"
           "options.\n";
}

int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err) {
    std::vector<schnappschuss::Argument> optionen;
    std::vector<std::string> angaben;
    std::string fehler =
        schnappschuss::zerlege(argumente,
                               {"-p", "--parameter", "-o", "--ausgabe", "--pixel", "--ansicht",
                                "--ausdehnung", "--zstreckung", "--glaettung", "--dekaden"},
                               {"-h", "--help", "--film"}, optionen, angaben);
    Optionen o;
    for (const auto& a : optionen) {
        if (!fehler.empty())
            break;
        double x = 0;
        const bool zahlOk = schnappschuss::alsReal(a.wert, x);
        if (a.name == "-h" || a.name == "--help") {
            out << hilfetext();
            return 0;
        } else if (a.name == "--film") {
            o.film = true;
        } else if (a.name == "-p" || a.name == "--parameter" || a.name == "-o" ||
                   a.name == "--ausgabe") {
            if (a.wert.empty())
                fehler = a.name + " wants a file name";
            (a.name == "-p" || a.name == "--parameter" ? o.parameter : o.ausgabe) = a.wert;
        } else if (a.name == "--ansicht") {
            if (a.wert != "beide" && a.wert != "oben" && a.wert != "seite")
                fehler = "--ansicht wants beide, oben or seite, not '" + a.wert + "'";
            o.ansicht = a.wert;
        } else if (a.name == "--pixel") {
            if (!zahlOk || x != std::floor(x) || x < 100 || x > 4000)
                fehler = "--pixel wants a whole number from 100 to 4000, not '" + a.wert + "'";
            else
                o.pixel = static_cast<int>(x);
        } else {
            // Bounds that keep the pictures drawable: pixel coordinates and
            // tick counts stay finite and small.
            const bool glatt = a.name == "--glaettung", weit = a.name == "--ausdehnung";
            const bool streck = a.name == "--zstreckung";
            const double unten = glatt    ? 0
                                 : streck ? 0.01
                                          : 0,
                         oben = weit     ? 1000
                                : streck ? 1e4
                                : glatt  ? 10
                                         : 30;
            if (!zahlOk || x < unten || x > oben || (x == 0 && !glatt))
                fehler =
                    a.name + " wants a number " +
                    (unten > 0 || glatt ? "from " + zahl(unten) + " to " : "above 0, at most ") +
                    zahl(oben) + ", not '" + a.wert + "'";
            else
                (weit ? o.ausdehnung : streck ? o.zstreckung : glatt ? o.glaettung : o.dekaden) = x;
        }
    }
    if (fehler.empty() && !angaben.empty() && o.film && o.ausgabe.empty())
        fehler = "--film wants a folder for the frames: -o FOLDER";
    std::unique_ptr<PhysSystem> phys;
    std::vector<std::string> dateien;
    if (const int status = schnappschuss::beginne("scheibenbild", fehler, o.parameter, angaben,
                                                  phys, dateien, err))
        return status;
    Lage lage = plane(*phys, o);

    // First pass: the times, for the order, and the largest column densities,
    // so that all pictures of a run share one colour scale.
    std::vector<double> zeiten;
    std::vector<long> nichtEndlich;
    for (const std::string& datei : dateien) {
        AkkScheibe s;
        if (!schnappschuss::lies(datei, *phys, s, err)) {
            err << "scheibenbild: cannot read the snapshot file " << datei
                << " (missing, unreadable or without a \"Teilchendaten:\" line)\n";
            return 1;
        }
        zeiten.push_back(s.zeit);
        nichtEndlich.push_back(static_cast<long>(
            std::count_if(s.teilchen.begin(), s.teilchen.end(),
                          [](const Teilchen& t) { return !schnappschuss::endlich(t); })));
        for (std::size_t i = 0; i < lage.panels.size(); ++i)
            for (double w : dichte(lage, i, s))
                lage.maximum[i] = std::max(lage.maximum[i], w);
    }

    namespace fs = std::filesystem;
    std::error_code fehlerOrdner;
    const bool ordner = !o.ausgabe.empty() && (o.film || dateien.size() > 1 ||
                                               o.ausgabe.back() == '/' ||
                                               fs::is_directory(o.ausgabe, fehlerOrdner));
    if (ordner) {
        std::error_code f;
        fs::create_directories(o.ausgabe, f);
        if (!fs::is_directory(o.ausgabe, f)) {
            err << "scheibenbild: cannot make the folder " << o.ausgabe << '\n';
            return 1;
        }
    }
    std::size_t nummer = 0;
    for (std::size_t i : schnappschuss::zeitfolge(zeiten)) {
        const std::string& datei = dateien[i];
        AkkScheibe s;
        std::ostringstream schon; // the first pass has passed the reader's messages on
        if (!schnappschuss::lies(datei, *phys, s, schon)) {
            err << "scheibenbild: cannot read the snapshot file " << datei
                << " (missing, unreadable or without a \"Teilchendaten:\" line)\n";
            return 1;
        }
        const std::string ziel =
            o.film ? (fs::path(o.ausgabe) / bildName(nummer++)).string()
            : o.ausgabe.empty() ? datei + ".png"
            : ordner
                ? (fs::path(o.ausgabe) / (fs::path(datei).filename().string() + ".png")).string()
                : o.ausgabe;
        fehler = schreibePng(ziel, zeichne(lage, s, datei, nichtEndlich[i]));
        if (!fehler.empty()) {
            err << "scheibenbild: " << fehler << '\n';
            return 1;
        }
        out << ziel << '\n';
    }
    // ffmpeg takes every frame that follows on without a gap, so one left
    // from a longer run in the same folder would end up in the film.
    const fs::path alt = fs::path(o.ausgabe) / bildName(nummer);
    if (o.film && fs::exists(alt, fehlerOrdner))
        err << "scheibenbild: warning: " << alt.string()
            << " is left from an earlier run; remove it and the frames after it, or a film"
               " made of the folder shows them too\n";
    return 0;
}

} // namespace bild
