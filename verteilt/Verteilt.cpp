#include "verteilt/Verteilt.h"

#include "scheibe/AkkScheibe.h"
#include "scheibe/SphAkkScheibe.h"
#include "scheibe/SphTemplates.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sys/resource.h>

Verteilt::Verteilt(MPI_Comm k) : komm(k) {
    MPI_Comm_rank(komm, &ich);
    MPI_Comm_size(komm, &anzahl);
    sendeZahl.assign(std::size_t(anzahl), 0);
    empfangsZahl.assign(std::size_t(anzahl), 0);
}

Verteilt::~Verteilt() {
    const char* bericht = std::getenv("AKK_VERTEILT_BERICHT");
    if (!bericht)
        return;
    rusage r{};
    getrusage(RUSAGE_SELF, &r);
    if (FILE* f = std::fopen(bericht, "a")) {
        std::fprintf(
            f,
            "rang %d von %d: teilchen %zu ebenen %d..%d auswertungen %llu geister/auswertung "
            "%.1f gesendete_bytes/auswertung %.0f davon_fuer_streuner %.0f streuner/auswertung "
            "%.1f "
            "peak_rss_kib %ld\n",
            ich, anzahl, global.size(), ab.empty() ? 0 : ab[std::size_t(ich)],
            ab.empty() ? 0 : ab[std::size_t(ich) + 1] - 1, (unsigned long long)auswertungen,
            auswertungen ? double(geisterSumme) / double(auswertungen) : 0.0,
            auswertungen ? 8.0 * double(gesendeteGeisterwerte) / double(auswertungen) : 0.0,
            auswertungen ? double(extraGesendet) * 8.0 * 17.0 / double(auswertungen) : 0.0,
            auswertungen ? double(streuner) / double(auswertungen) : 0.0, r.ru_maxrss);
        std::fclose(f);
    }
}

// Every process's values, one after the other in process order: on every
// process (ueberall), else on process 0 (empty elsewhere). With anfaenge,
// where each process's values begin (and, last, their total).
template <class T>
std::vector<T> Verteilt::sammle(const std::vector<T>& aus, MPI_Datatype typ, bool ueberall,
                                std::vector<int>* anfaenge) {
    const int zahl = int(aus.size());
    std::vector<int> zahlen(static_cast<std::size_t>(anzahl)),
        anfang(static_cast<std::size_t>(anzahl) + 1, 0);
    if (ueberall)
        MPI_Allgather(&zahl, 1, MPI_INT, zahlen.data(), 1, MPI_INT, komm);
    else
        MPI_Gather(&zahl, 1, MPI_INT, zahlen.data(), 1, MPI_INT, 0, komm);
    for (std::size_t q = 0; q < std::size_t(anzahl); ++q)
        anfang[q + 1] = anfang[q] + zahlen[q];
    const int summe = anfang.back();
    std::vector<T> ein(ueberall || ich == 0 ? static_cast<std::size_t>(summe) : 0);
    if (ueberall)
        MPI_Allgatherv(aus.data(), zahl, typ, ein.data(), zahlen.data(), anfang.data(), typ, komm);
    else
        MPI_Gatherv(aus.data(), zahl, typ, ein.data(), zahlen.data(), anfang.data(), typ, 0, komm);
    if (anfaenge)
        anfaenge->swap(anfang);
    return ein;
}

int Verteilt::ebeneVon(const Vektor3& r) const {
    return gitter ? scheibe::zelle(r[0], xmin, h, nx) : 0;
}

int Verteilt::besitzer(int ebene) const {
    return int(std::upper_bound(ab.begin() + 1, ab.end(), ebene) - (ab.begin() + 1));
}

// Boundary r is the first plane at which the particles before it reach r/P
// of all (integers, so every process draws the same slabs); every process
// gets at least one plane.
void Verteilt::schneiden(const std::vector<std::uint64_t>& proEbene) {
    std::vector<std::uint64_t> vor(std::size_t(nx) + 1, 0); // particles in the planes before p
    for (int p = 0; p < nx; ++p)
        vor[std::size_t(p) + 1] = vor[std::size_t(p)] + proEbene[std::size_t(p)];
    const std::uint64_t N = vor[std::size_t(nx)], P = std::uint64_t(anzahl);
    ab.assign(std::size_t(anzahl) + 1, 0);
    ab[std::size_t(anzahl)] = nx;
    for (int r = 1; r < anzahl; ++r) {
        int p = ab[std::size_t(r) - 1] + 1;
        while (p < nx - (anzahl - r) && vor[std::size_t(p)] * P < std::uint64_t(r) * N)
            ++p;
        ab[std::size_t(r)] = p;
    }
}

bool Verteilt::verteilen(AkkScheibe& scheibe) {
    // The planes of the disc's grid (each disc class keeps a grid of its own
    // particle type, laid out alike).
    if (auto* sph = dynamic_cast<SphAkkScheibe*>(&scheibe); sph && sph->min.size() == 3) {
        xmin = sph->min[0];
        h = sph->h;
        nx = scheibe::zellenzahl(sph->max[0] - sph->min[0], sph->h);
        ny = scheibe::zellenzahl(sph->max[1] - sph->min[1], sph->h);
        nz = scheibe::zellenzahl(sph->max[2] - sph->min[2], sph->h);
        gitter = true;
    }
    if (gitter && anzahl > nx) {
        std::cout << "Fehler: " << anzahl << " Prozesse, aber nur " << nx
                  << " Zellebenen: h\xf6"
                     "chstens eine Ebene je Prozess !\n";
        return false;
    }
    // Process 0's time, name and count, and the particles per plane.
    std::uint64_t n = ich == 0 ? std::uint64_t(scheibe.tanz()) : 0;
    MPI_Bcast(&n, 1, MPI_UINT64_T, 0, komm);
    MPI_Bcast(&scheibe.zeit, 1, MPI_DOUBLE, 0, komm);
    std::uint64_t laenge = scheibe.name.size();
    MPI_Bcast(&laenge, 1, MPI_UINT64_T, 0, komm);
    scheibe.name.resize(laenge);
    MPI_Bcast(scheibe.name.data(), int(laenge), MPI_CHAR, 0, komm);
    alle = n;
    std::vector<int> ebene(ich == 0 ? n : 0);
    std::vector<std::uint64_t> proEbene(static_cast<std::size_t>(nx), 0);
    for (std::size_t i = 0; i < ebene.size(); ++i) {
        ebene[i] = ebeneVon(scheibe[int(i)].r);
        ++proEbene[std::size_t(ebene[i])];
    }
    MPI_Bcast(proEbene.data(), nx, MPI_UINT64_T, 0, komm);
    schneiden(proEbene);
    // Each process's particles from process 0, in global order, with the
    // values that go along where process 0's arrays match its disc.
    mitgehen.assign(begleiter.size(), 0);
    for (std::size_t c = 0; c < begleiter.size(); ++c)
        mitgehen[c] = begleiter[c].first->size() == begleiter[c].second * n;
    MPI_Bcast(mitgehen.data(), int(mitgehen.size()), MPI_INT, 0, komm);
    std::size_t w = 7;
    for (std::size_t c = 0; c < begleiter.size(); ++c)
        w += mitgehen[c] ? begleiter[c].second : 0;
    std::fill(sendeZahl.begin(), sendeZahl.end(), 0);
    for (int e : ebene)
        ++sendeZahl[std::size_t(besitzer(e))];
    std::vector<int> stelle(static_cast<std::size_t>(anzahl), 0);
    for (std::size_t q = 1; q < std::size_t(anzahl); ++q)
        stelle[q] = stelle[q - 1] + int(w) * sendeZahl[q - 1];
    std::vector<int> zahlen(static_cast<std::size_t>(anzahl)), anfang(stelle);
    for (std::size_t q = 0; q < std::size_t(anzahl); ++q)
        zahlen[q] = int(w) * sendeZahl[q];
    puffer.resize(w * ebene.size());
    for (std::size_t i = 0; i < ebene.size(); ++i) {
        double* b = &puffer[std::size_t(stelle[std::size_t(besitzer(ebene[i]))])];
        stelle[std::size_t(besitzer(ebene[i]))] += int(w);
        packe(b, scheibe, i, double(i));
    }
    int meine = 0;
    MPI_Scatter(zahlen.data(), 1, MPI_INT, &meine, 1, MPI_INT, 0, komm);
    eingang.resize(std::size_t(meine));
    MPI_Scatterv(puffer.data(), zahlen.data(), anfang.data(), MPI_DOUBLE, eingang.data(), meine,
                 MPI_DOUBLE, 0, komm);
    const std::size_t m = eingang.size() / w;
    std::vector<long long> folge(m);
    std::vector<Vektor3> r(m), v(m);
    std::vector<std::vector<double>> werteNeu(begleiter.size());
    global.resize(m);
    for (std::size_t j = 0; j < m; ++j) {
        global[j] = entpacke(&eingang[w * j], r[j], v[j], werteNeu);
        folge[j] = -(long long)j - 1;
    }
    for (std::size_t c = 0; c < begleiter.size(); ++c)
        begleiter[c].first->swap(werteNeu[c]);
    std::vector<double>().swap(puffer); // the whole disc's buffer on process 0
    scheibe.ordne_teilchen(folge, r, v);
    scheibe.verteilung = this;
    return true;
}

// A particle's record: its global index, r, v, and the values that go
// along (those of mitgehen).
void Verteilt::packe(double* b, AkkScheibe& scheibe, std::size_t i, double index) const {
    const Teilchen& t = scheibe[int(i)];
    b[0] = index;
    std::copy(t.r.begin(), t.r.end(), b + 1);
    std::copy(t.v.begin(), t.v.end(), b + 4);
    b += 7;
    for (std::size_t c = 0; c < begleiter.size(); ++c) {
        const auto& [werte, k] = begleiter[c];
        if (!mitgehen[c])
            continue;
        std::copy(werte->begin() + std::ptrdiff_t(k * i),
                  werte->begin() + std::ptrdiff_t(k * (i + 1)), b);
        b += k;
    }
}

std::uint64_t Verteilt::entpacke(const double* b, Vektor3& r, Vektor3& v,
                                 std::vector<std::vector<double>>& werte) const {
    std::copy(b + 1, b + 4, r.begin());
    std::copy(b + 4, b + 7, v.begin());
    const double* w = b + 7;
    for (std::size_t c = 0; c < begleiter.size(); ++c) {
        if (!mitgehen[c])
            continue;
        werte[c].insert(werte[c].end(), w, w + begleiter[c].second);
        w += begleiter[c].second;
    }
    return std::uint64_t(b[0]);
}

void Verteilt::tauschen(std::size_t k, const std::vector<double>& aus, std::vector<double>& ein) {
    const std::size_t P = std::size_t(anzahl);
    std::vector<int> sz(P), sv(P), ez(P), ev(P);
    int s = 0, e = 0;
    for (std::size_t q = 0; q < std::size_t(anzahl); ++q) {
        sz[q] = sendeZahl[q] * int(k);
        sv[q] = s;
        s += sz[q];
        ez[q] = empfangsZahl[q] * int(k);
        ev[q] = e;
        e += ez[q];
    }
    ein.resize(std::size_t(e));
    MPI_Alltoallv(aus.data(), sz.data(), sv.data(), MPI_DOUBLE, ein.data(), ez.data(), ev.data(),
                  MPI_DOUBLE, komm);
}

// Process q needs, of the others' particles, those in the planes next to
// its slab and in it (ab[q] - 1 .. ab[q + 1]), and, around each of its
// particles that strayed from the slab within this step's stages, the 27
// cells about it ("extra" cells). Every pair of its own particles' lists
// then lies within what it holds.
void Verteilt::geisterHolen(const std::vector<std::size_t>& zellen,
                            const std::function<void(std::size_t, double*)>& lies) {
    const std::size_t n = zellen.size(), proEbene = std::size_t(ny) * std::size_t(nz);
    const int a = ab[std::size_t(ich)], b = ab[std::size_t(ich) + 1] - 1;
    std::vector<std::uint64_t> extra;
    for (std::size_t i = 0; i < n; ++i) {
        const int e = int(zellen[i] / proEbene);
        if (e >= a && e <= b)
            continue;
        ++streuner;
        const int j = int(zellen[i] / std::size_t(nz) % std::size_t(ny)),
                  k = int(zellen[i] % std::size_t(nz));
        for (int di = -1; di <= 1; ++di)
            for (int dj = -1; dj <= 1; ++dj)
                for (int dk = -1; dk <= 1; ++dk) {
                    const int ni = e + di, nj = j + dj, nk = k + dk;
                    if (ni < 0 || ni >= nx || nj < 0 || nj >= ny || nk < 0 || nk >= nz ||
                        (ni >= a - 1 && ni <= b + 1))
                        continue;
                    extra.push_back((std::uint64_t(ni) * std::uint64_t(ny) + std::uint64_t(nj)) *
                                        std::uint64_t(nz) +
                                    std::uint64_t(nk));
                }
    }
    std::sort(extra.begin(), extra.end());
    extra.erase(std::unique(extra.begin(), extra.end()), extra.end());
    std::vector<int> anfang; // where each process's cells begin
    const std::vector<std::uint64_t> alleExtra = sammle(extra, MPI_UINT64_T, true, &anfang);
    // The others' extra cells as (cell, process), sorted, and their planes.
    std::vector<std::pair<std::uint64_t, int>> fremd;
    std::vector<char> extraEbene(static_cast<std::size_t>(nx), 0);
    for (int q = 0; q < anzahl; ++q)
        for (int s = anfang[std::size_t(q)]; s < anfang[std::size_t(q) + 1] && q != ich; ++s) {
            fremd.emplace_back(alleExtra[std::size_t(s)], q);
            extraEbene[std::size_t(alleExtra[std::size_t(s)] / proEbene)] = 1;
        }
    std::sort(fremd.begin(), fremd.end());
    // f(q) once for every other process that needs own particle i (with
    // extraBit when only for an extra cell, for the traffic's count).
    constexpr int extraBit = 1 << 30;
    auto ziele = [&](std::size_t i, auto f) {
        const int e = int(zellen[i] / proEbene);
        // Inside the slab, away from its edges, only the extra cells may
        // be wanted elsewhere.
        if (e > a && e < b && !extraEbene[std::size_t(e)])
            return;
        int vorher = -1;
        for (int d = -1; d <= 1; ++d) {
            const int q = besitzer(std::min(std::max(e + d, 0), nx - 1));
            if (q != ich && q != vorher && ab[std::size_t(q)] - 1 <= e &&
                e <= ab[std::size_t(q) + 1])
                f(q);
            vorher = q;
        }
        if (extraEbene[std::size_t(e)]) {
            auto [von, bis] = std::equal_range(
                fremd.begin(), fremd.end(), std::pair<std::uint64_t, int>(zellen[i], -1),
                [](const auto& x, const auto& y) { return x.first < y.first; });
            for (auto it = von; it != bis; ++it)
                f(it->second | extraBit);
        }
    };
    // The own particles each process needs, grouped by process, each group
    // in global order.
    std::fill(sendeZahl.begin(), sendeZahl.end(), 0);
    for (std::size_t i = 0; i < n; ++i)
        ziele(i, [&](int q) {
            extraGesendet += (q & extraBit) != 0;
            ++sendeZahl[std::size_t(q & ~extraBit)];
        });
    std::vector<int> stelle(static_cast<std::size_t>(anzahl), 0);
    for (std::size_t q = 1; q < std::size_t(anzahl); ++q)
        stelle[q] = stelle[q - 1] + sendeZahl[q - 1];
    gesendet.resize(std::size_t(stelle.back() + sendeZahl.back()));
    for (std::size_t i = 0; i < n; ++i)
        ziele(i, [&](int q) {
            gesendet[std::size_t(stelle[std::size_t(q & ~extraBit)]++)] = std::uint32_t(i);
        });
    MPI_Alltoall(sendeZahl.data(), 1, MPI_INT, empfangsZahl.data(), 1, MPI_INT, komm);
    puffer.resize(7 * gesendet.size());
    for (std::size_t s = 0; s < gesendet.size(); ++s) {
        lies(gesendet[s], &puffer[7 * s]);
        puffer[7 * s + 6] = double(global[gesendet[s]]); // exact below 2^53
    }
    tauschen(7, puffer, eingang);
    gesendeteGeisterwerte += puffer.size();
    ++auswertungen;
    const std::size_t m = eingang.size() / 7;
    geisterSumme += m;
    geistWerte.resize(6 * m);
    geistIdx.resize(m);
    for (std::size_t j = 0; j < m; ++j) {
        std::copy(&eingang[7 * j], &eingang[7 * j] + 6, &geistWerte[6 * j]);
        geistIdx[j] = std::uint64_t(eingang[7 * j + 6]);
    }
}

void Verteilt::werteTauschen(std::size_t k, const std::function<void(std::size_t, double*)>& lies,
                             const std::function<void(std::size_t, const double*)>& schreibe) {
    puffer.resize(k * gesendet.size());
    for (std::size_t s = 0; s < gesendet.size(); ++s)
        lies(gesendet[s], &puffer[k * s]);
    tauschen(k, puffer, eingang);
    gesendeteGeisterwerte += puffer.size();
    for (std::size_t j = 0; j < geistIdx.size(); ++j)
        schreibe(j, &eingang[k * j]);
}

void Verteilt::begleite(std::vector<double>* werte, std::size_t k) {
    begleiter.emplace_back(werte, k);
}

// Collective: an array goes along only where it matches on every process.
std::size_t Verteilt::begleitBreite(std::size_t n) {
    std::vector<int> passt(begleiter.size()), ueberall(begleiter.size());
    for (std::size_t b = 0; b < begleiter.size(); ++b)
        passt[b] = begleiter[b].first->size() == begleiter[b].second * n;
    MPI_Allreduce(passt.data(), ueberall.data(), int(passt.size()), MPI_INT, MPI_MIN, komm);
    std::size_t breite = 0;
    mitgehen = ueberall;
    for (std::size_t b = 0; b < begleiter.size(); ++b) {
        if (ueberall[b])
            breite += begleiter[b].second;
        else
            begleiter[b].first->clear();
    }
    return breite;
}

std::vector<double> Verteilt::sammleWerte(const std::vector<double>& werte, std::size_t k) {
    const std::size_t n = global.size();
    puffer.resize((k + 1) * n);
    for (std::size_t i = 0; i < n; ++i) {
        puffer[(k + 1) * i] = double(global[i]);
        for (std::size_t c = 0; c < k; ++c)
            puffer[(k + 1) * i + 1 + c] = i * k + c < werte.size() ? werte[i * k + c] : 0.0;
    }
    eingang = sammle(puffer, MPI_DOUBLE, false);
    std::vector<double> alleWerte(ich == 0 ? k * std::size_t(alle) : 0);
    for (std::size_t s = 0; s + k + 1 <= eingang.size(); s += k + 1)
        std::copy(&eingang[s + 1], &eingang[s + 1 + k], &alleWerte[k * std::size_t(eingang[s])]);
    return alleWerte;
}

void Verteilt::teile(std::string& bytes) {
    std::uint64_t laenge = bytes.size();
    MPI_Bcast(&laenge, 1, MPI_UINT64_T, 0, komm);
    bytes.resize(laenge);
    // In pieces below 2^31 bytes, the count's limit.
    for (std::uint64_t a = 0; a < laenge; a += std::uint64_t(1) << 30)
        MPI_Bcast(bytes.data() + a, int(std::min<std::uint64_t>(laenge - a, std::uint64_t(1) << 30)),
                  MPI_CHAR, 0, komm);
}

std::uint64_t Verteilt::summe(std::uint64_t wert) {
    std::uint64_t s = 0;
    MPI_Allreduce(&wert, &s, 1, MPI_UINT64_T, MPI_SUM, komm);
    return s;
}

double Verteilt::maximum(double wert) {
    double m = 0;
    MPI_Allreduce(&wert, &m, 1, MPI_DOUBLE, MPI_MAX, komm);
    return m;
}

double Verteilt::minimum(double wert) {
    double m = 0;
    MPI_Allreduce(&wert, &m, 1, MPI_DOUBLE, MPI_MIN, komm);
    return m;
}

std::vector<Verteilung::Entfernt>
Verteilt::entferne(AkkScheibe& scheibe, const std::function<bool(const Teilchen&, double&)>& raus) {
    std::vector<double> meine; // (global index, squared distance) of each own removal
    std::size_t i = 0;
    while (i < std::size_t(scheibe.tanz())) {
        double abstand = 0;
        if (raus(scheibe[int(i)], abstand)) {
            meine.push_back(double(global[i]));
            meine.push_back(abstand);
            for (auto& [w, k] : begleiter)
                if (w->size() == k * global.size())
                    w->erase(w->begin() + std::ptrdiff_t(k * i),
                             w->begin() + std::ptrdiff_t(k * (i + 1)));
            scheibe.entferne_teilchen(int(i));
            global.erase(global.begin() + std::ptrdiff_t(i));
        } else {
            ++i;
        }
    }
    const std::vector<double> alleWeg = sammle(meine, MPI_DOUBLE, true);
    std::vector<Entfernt> weg(alleWeg.size() / 2);
    for (std::size_t k = 0; k < weg.size(); ++k)
        weg[k] = {std::uint64_t(alleWeg[2 * k]), alleWeg[2 * k + 1]};
    std::sort(weg.begin(), weg.end(),
              [](const Entfernt& a, const Entfernt& b) { return a.index < b.index; });
    // The indices close up behind the removed particles.
    std::size_t k = 0;
    for (auto& g : global) {
        while (k < weg.size() && weg[k].index < g)
            ++k;
        g -= k;
    }
    alle -= weg.size();
    return weg;
}

// Every process's (global index, r, v), 7 doubles a particle, on process 0.
std::vector<double> Verteilt::sammelnRoh(AkkScheibe& scheibe) {
    const std::size_t n = std::size_t(scheibe.tanz());
    puffer.resize(7 * n);
    for (std::size_t i = 0; i < n; ++i) {
        const Teilchen& t = scheibe[int(i)];
        puffer[7 * i] = double(global[i]);
        std::copy(t.r.begin(), t.r.end(), &puffer[7 * i + 1]);
        std::copy(t.v.begin(), t.v.end(), &puffer[7 * i + 4]);
    }
    std::vector<double> ein = sammle(puffer, MPI_DOUBLE, false);
    std::vector<double>().swap(puffer);
    return ein;
}

std::vector<Teilchen> Verteilt::sammeln(AkkScheibe& scheibe) {
    const std::vector<double> ein = sammelnRoh(scheibe);
    std::vector<Teilchen> alleTeilchen(ich == 0 ? std::size_t(alle) : 0);
    for (std::size_t s = 0; s + 7 <= ein.size(); s += 7) {
        Teilchen& t = alleTeilchen[std::size_t(ein[s])];
        std::copy(&ein[s + 1], &ein[s + 4], t.r.begin());
        std::copy(&ein[s + 4], &ein[s + 7], t.v.begin());
    }
    return alleTeilchen;
}

// The snapshot written from the gathered numbers where they lie, through a
// view per particle in global order (no second copy of the disc).
void Verteilt::ausgeben(AkkScheibe& scheibe, PhysSystem& phys) {
    const std::vector<double> ein = sammelnRoh(scheibe);
    if (ich != 0)
        return;
    struct Sicht {
        const double *r, *v;
    };
    std::vector<Sicht> sicht(alle);
    for (std::size_t s = 0; s + 7 <= ein.size(); s += 7)
        sicht[std::size_t(ein[s])] = {&ein[s + 1], &ein[s + 4]};
    scheibe::_output(scheibe, sicht, phys);
}

bool Verteilt::aufnehmen(const Vektor3& r) {
    const std::uint64_t g = alle++;
    if (besitzer(ebeneVon(r)) != ich)
        return false;
    for (auto& [w, k] : begleiter)
        if (w->size() == k * global.size())
            w->resize(w->size() + k, 0.0);
        else
            w->clear();
    global.push_back(g);
    return true;
}

void Verteilt::umverteilen(AkkScheibe& scheibe, bool ausgleichen) {
    const std::size_t n = std::size_t(scheibe.tanz());
    std::vector<int> ebene(n);
    for (std::size_t i = 0; i < n; ++i)
        ebene[i] = ebeneVon(scheibe[int(i)].r);
    if (ausgleichen) {
        std::vector<std::uint64_t> meine(std::size_t(nx), 0), proEbene(std::size_t(nx), 0);
        for (int e : ebene)
            ++meine[std::size_t(e)];
        MPI_Allreduce(meine.data(), proEbene.data(), nx, MPI_UINT64_T, MPI_SUM, komm);
        schneiden(proEbene);
    }
    // The particles that leave, grouped by their new process.
    std::fill(sendeZahl.begin(), sendeZahl.end(), 0);
    std::vector<int> ziel(n);
    std::size_t gehen = 0;
    for (std::size_t i = 0; i < n; ++i) {
        ziel[i] = besitzer(ebene[i]);
        if (ziel[i] != ich) {
            ++sendeZahl[std::size_t(ziel[i])];
            ++gehen;
        }
    }
    MPI_Alltoall(sendeZahl.data(), 1, MPI_INT, empfangsZahl.data(), 1, MPI_INT, komm);
    std::vector<int> stelle(static_cast<std::size_t>(anzahl), 0);
    for (std::size_t q = 1; q < std::size_t(anzahl); ++q)
        stelle[q] = stelle[q - 1] + sendeZahl[q - 1];
    // A record: global index, r, v, and the values that go along.
    const std::size_t w = 7 + begleitBreite(n);
    puffer.resize(w * gehen);
    for (std::size_t i = 0; i < n; ++i) {
        if (ziel[i] == ich)
            continue;
        double* b = &puffer[w * std::size_t(stelle[std::size_t(ziel[i])]++)];
        packe(b, scheibe, i, double(global[i]));
    }
    tauschen(w, puffer, eingang);
    const std::size_t kommen = eingang.size() / w;
    if (gehen == 0 && kommen == 0)
        return;
    // The staying particles and the arrivals, merged by global index.
    std::vector<std::size_t> neu(kommen);
    for (std::size_t j = 0; j < kommen; ++j)
        neu[j] = j;
    std::sort(neu.begin(), neu.end(),
              [&](std::size_t a, std::size_t b) { return eingang[w * a] < eingang[w * b]; });
    std::vector<std::vector<double>> werteNeu(begleiter.size());
    std::vector<long long> folge;
    std::vector<Vektor3> r(kommen), v(kommen);
    std::vector<std::uint64_t> globalNeu;
    folge.reserve(n - gehen + kommen);
    globalNeu.reserve(n - gehen + kommen);
    std::size_t i = 0, j = 0;
    while (true) {
        while (i < n && ziel[i] != ich)
            ++i;
        const bool hier = i < n, dort = j < kommen;
        if (!hier && !dort)
            break;
        if (dort && (!hier || std::uint64_t(eingang[w * neu[j]]) < global[i])) {
            globalNeu.push_back(entpacke(&eingang[w * neu[j]], r[j], v[j], werteNeu));
            folge.push_back(-(long long)j - 1);
            ++j;
        } else {
            folge.push_back((long long)i);
            globalNeu.push_back(global[i]);
            for (std::size_t c = 0; c < begleiter.size(); ++c) {
                const auto& [werte, k] = begleiter[c];
                if (mitgehen[c])
                    werteNeu[c].insert(werteNeu[c].end(), werte->begin() + std::ptrdiff_t(k * i),
                                       werte->begin() + std::ptrdiff_t(k * (i + 1)));
            }
            ++i;
        }
    }
    scheibe.ordne_teilchen(folge, r, v);
    global.swap(globalNeu);
    for (std::size_t c = 0; c < begleiter.size(); ++c)
        begleiter[c].first->swap(werteNeu[c]);
}
