// Benchmarks of the force evaluation: the pair search (force_init), each
// force, and a whole Cash-Karp step with all four forces, on discs of 1e3 to
// 1e6 particles, each on one thread and on all (the second argument; all =
// OMP_NUM_THREADS or every core). Beside the grid search, two peers find the
// same pairs: a k-d tree radius search (nanoflann) and, at the small size,
// brute force; both are checked to find exactly the grid's pair set. Heap
// allocations are counted per evaluation and per step in the steady state.

#include "bench/Szenario.h"
#include "bench/Woertlich.h"
#include "bench/Zuweisungen.h"
#include "kraefte/Artvisc.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "kraefte/Physvisc.h"
#include "kraefte/Pressure.h"
#include "odeint/RungeKutta.h"
#include "scheibe/PhysviscAkkScheibe.h"
#include "scheibe/SphTemplates.h"

#include <benchmark/benchmark.h>
#include <nanoflann.hpp>
#include <omp.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iostream>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace {

Szenario& szenario(long n) {
    static std::map<long, std::unique_ptr<Szenario>> cache;
    auto& s = cache[n];
    if (!s)
        s = std::make_unique<Szenario>(n);
    return *s;
}

// The thread count of a benchmark (its second argument) for its lifetime.
struct Faeden {
    int vorher = omp_get_max_threads();
    explicit Faeden(const benchmark::State& state) {
        omp_set_num_threads(static_cast<int>(state.range(1)));
    }
    ~Faeden() { omp_set_num_threads(vorher); }
};

// The discs print their pair count at every evaluation; not here. The lines
// are counted instead: one per evaluation of the forces.
struct Stumm : std::streambuf {
    std::size_t zeilen = 0;
    std::streambuf* alt = std::cout.rdbuf(this);
    int_type overflow(int_type c) override {
        zeilen += c == '\n';
        return traits_type::not_eof(c);
    }
    ~Stumm() override {
        std::cout.rdbuf(alt);
        std::cout.clear();
    }
};

void paarZaehler(benchmark::State& state, double paare) {
    const double gesamt = paare * double(state.iterations());
    state.counters["pairs"] = paare;
    state.counters["pairs_per_s"] = benchmark::Counter(gesamt, benchmark::Counter::kIsRate);
    state.counters["s_per_pair"] =
        benchmark::Counter(gesamt, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Heap allocations made by f() (those of the benchmark library between
// iterations are not counted), added to `summe`.
template <class F> void gezaehlt(std::size_t& summe, F f) {
    const std::size_t a = anzahlZuweisungen();
    f();
    summe += anzahlZuweisungen() - a;
}

using Paarmenge = std::vector<std::pair<std::size_t, std::size_t>>;

// Unordered index pairs of a disc's pairs (from its particles' lists), sorted.
template <class D> Paarmenge paareVon(D& s) {
    Paarmenge m;
    for (std::size_t i = 0; i < s.teilchen.size(); ++i) {
        const auto& v = scheibe::paare(s.teilchen[i]);
        for (std::size_t k = 0; k < v.size(); ++k) {
            const std::size_t j = s.gitter->index[v.partner(k)];
            if (i < j)
                m.emplace_back(i, j);
        }
    }
    std::sort(m.begin(), m.end());
    return m;
}

// Pair search, pair records and per-particle state of one disc class.
template <class Scheibe> void BM_ForceInit(benchmark::State& state) {
    Szenario& sz = szenario(state.range(0));
    Faeden faeden(state);
    Stumm stumm;
    Scheibe s(*sz.initScheibe, *sz.phys);
    s.force_init(*sz.phys);
    std::size_t zuw = 0;
    for (auto _ : state)
        gezaehlt(zuw, [&] { s.force_init(*sz.phys); });
    state.counters["allocs_per_eval"] = double(zuw) / double(state.iterations());
    paarZaehler(state, double(s.ww->paare()));
}

// One force alone on a prepared disc (the forces only add to a), its pair
// terms formed anew each time (alone: a disc with several forces forms
// the terms of all of them in one pass, BM_Auswertung).
template <class Kraft> void BM_Kraft(benchmark::State& state) {
    Szenario& sz = szenario(state.range(0));
    Faeden faeden(state);
    Stumm stumm;
    PhysviscAkkScheibe s(*sz.initScheibe, *sz.phys);
    s.force_init(*sz.phys);
    Kraft kraft;
    kraft.deriv_ohne_init(s, *sz.phys);
    std::size_t zuw = 0;
    for (auto _ : state)
        gezaehlt(zuw, [&] {
            s.ww->erledigt = 0; // the pair terms anew, as after a force_init
            kraft.deriv_ohne_init(s, *sz.phys);
        });
    state.counters["allocs_per_eval"] = double(zuw) / double(state.iterations());
    paarZaehler(state, double(s.ww->paare()));
}

// The viscous disc of a benchmark with all four forces and the stepper, on
// the benchmark's thread count; counts evaluations (console lines) and heap
// allocations of the steps it makes.
struct Schritte {
    Szenario& sz;
    Faeden faeden;
    Stumm stumm;
    PhysviscAkkScheibe s;
    Kraefte kraefte;
    RungeKutta rk;
    double hdid = 0, hnext = 0;
    std::size_t zeilen0 = 0, zuweisungen = 0;

    explicit Schritte(benchmark::State& state)
        : sz(szenario(state.range(0))), faeden(state), s(*sz.initScheibe, *sz.phys),
          rk(s, *sz.initOdeint) {
        kraefte.add(new Externforce());
        kraefte.add(new Pressure());
        kraefte.add(new Artvisc());
        kraefte.add(new Physvisc());
    }
    // One step of size rk.h as the main loop makes it: the forces on the
    // disc, then the stepper (five more evaluations per try).
    void schritt() {
        kraefte.derivatives(s, *sz.phys);
        rk.stepper(s, *sz.phys, kraefte, &hdid, &hnext);
    }
    void zaehleAb() { zeilen0 = stumm.zeilen; }
    void gezaehlterSchritt() {
        gezaehlt(zuweisungen, [&] { schritt(); });
    }
    void berichte(benchmark::State& state) {
        const double n = double(state.iterations());
        state.counters["evals_per_step"] = double(stumm.zeilen - zeilen0) / n;
        state.counters["allocs_per_step"] = double(zuweisungen) / n;
        paarZaehler(state, double(s.ww->paare()));
    }
};

// The arithmetic floor: divisions (and square roots) of doubles, 4096
// independent ones in the lanes of the vector unit, the way the pair loops
// form them: time per operation (argument 0 division, 1 root). A pair costs at least 29 divisions and one
// root under the arithmetic of its terms (README, Performance).
void BM_Boden(benchmark::State& state) {
    std::vector<double> a(4096), b(4096), c(4096);
    for (std::size_t i = 0; i < a.size(); ++i)
        a[i] = 1.0 + double(i), b[i] = 3.0 + 0.5 * double(i);
    const bool wurzel = state.range(0) == 1;
    for (auto _ : state) {
        double *x = a.data(), *y = b.data(), *z = c.data();
        if (wurzel) {
#pragma omp simd
            for (std::size_t i = 0; i < 4096; ++i)
                z[i] = std::sqrt(x[i]);
        } else {
#pragma omp simd
            for (std::size_t i = 0; i < 4096; ++i)
                z[i] = x[i] / y[i];
        }
        benchmark::DoNotOptimize(c.data());
        benchmark::ClobberMemory();
    }
    state.counters["s_per_op"] = benchmark::Counter(
        4096.0 * double(state.iterations()), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// One evaluation of the four forces (force_init, then Externforce,
// Pressure, Artvisc, Physvisc), as every stage of a step makes it.
void BM_Auswertung(benchmark::State& state) {
    Schritte l(state);
    l.kraefte.derivatives(l.s, *l.sz.phys);
    for (auto _ : state)
        l.kraefte.derivatives(l.s, *l.sz.phys);
    paarZaehler(state, double(l.s.ww->paare()));
}

// The same evaluation read literally (bench/Woertlich.h): valarrays, a grid
// of nested vectors, a linked list of pair records, one pass after the
// other; its accelerations must equal the program's bit for bit.
void BM_Woertlich(benchmark::State& state) {
    Schritte l(state);
    l.kraefte.derivatives(l.s, *l.sz.phys);
    std::vector<Vektor3> r, v;
    for (const PhysviscTeilchen& t : l.s.teilchen)
        r.push_back(t.r), v.push_back(t.v);
    woertlich::Scheibe w(r, v, *l.sz.phys);
    w.auswerten(*l.sz.phys);
    for (std::size_t i = 0; i < r.size(); ++i)
        for (int k = 0; k < 3; ++k)
            if (std::memcmp(&w.teilchen[i].a[k], &l.s.teilchen[i].a[k], sizeof(double)) != 0) {
                state.SkipWithError("the literal evaluation differs from the program's");
                return;
            }
    for (auto _ : state)
        w.auswerten(*l.sz.phys);
    paarZaehler(state, double(w.paare()));
}

// One step at the start of a run. Every iteration starts again from the
// generator's disc and tries the step size that the first step accepted, so
// each is one accepted try of 6 evaluations on a disc of ~34 partners.
void BM_RungeKuttaSchritt(benchmark::State& state) {
    Schritte l(state);
    const std::vector<PhysviscTeilchen> anfang = l.s.teilchen;
    const double t0 = l.s.t();
    auto zurueck = [&] {
        std::copy(anfang.begin(), anfang.end(), l.s.teilchen.begin());
        l.s.t(t0);
    };
    l.rk.h = 1.0;
    l.schritt(); // learns the accepted step
    l.rk.h = l.hdid;
    for (int i = 0; i < 2; ++i) {
        zurueck();
        l.schritt();
    }
    l.zaehleAb();
    for (auto _ : state) {
        state.PauseTiming();
        zurueck();
        state.ResumeTiming();
        l.gezaehlterSchritt();
    }
    l.berichte(state);
    state.counters["h_s"] = l.hdid;
}

// A run as the driver makes it: every step tries the size the previous one
// proposed, the disc evolves, and its pair count drifts. Heap allocations
// per step after 20 steps (after 3 at 1e6, where a step takes seconds):
// pair storage and the particles' pair index grow only at new maxima.
int aufwaermen(long n) {
    return n >= 1000000 ? 3 : 20;
}

void BM_Lauf(benchmark::State& state) {
    Schritte l(state);
    auto schritt = [&] {
        l.rk.h = l.hnext > 0 ? l.hnext : 1.0;
        l.gezaehlterSchritt();
    };
    for (int i = 0; i < aufwaermen(state.range(0)); ++i)
        schritt();
    l.zuweisungen = 0;
    l.zaehleAb();
    for (auto _ : state)
        schritt();
    l.berichte(state);
}

// The half-shell grid search alone (binning, then every pair once), without
// kernels: the like-for-like peer of the k-d tree. Checked to yield
// force_init's pairs.
void BM_Gittersuche(benchmark::State& state) {
    Szenario& sz = szenario(state.range(0));
    Stumm stumm;
    SphAkkScheibe s(*sz.initScheibe, *sz.phys);
    s.force_init(*sz.phys);
    Gitter<SphTeilchen>& g = *s.gitter;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> gefunden;
    gefunden.reserve(s.ww->paare());
    auto suche = [&] {
        gefunden.clear();
        scheibe::_binne(s, s.teilchen, g, *s.ww);
        g.suche(s.h2, [&](std::uint32_t p, std::uint32_t q, const double*, double) {
            gefunden.emplace_back(g.index[p], g.index[q]);
        });
    };
    suche();
    Paarmenge m;
    for (auto [i, j] : gefunden)
        m.emplace_back(std::min(i, j), std::max(i, j));
    std::sort(m.begin(), m.end());
    if (m != paareVon(s))
        state.SkipWithError("the half-shell search differs from force_init's pairs");
    for (auto _ : state)
        suche();
    paarZaehler(state, double(gefunden.size()));
}

// nanoflann's view of the particle positions.
struct Punktwolke {
    std::vector<std::array<double, 3>> p;
    std::size_t kdtree_get_point_count() const { return p.size(); }
    double kdtree_get_pt(std::size_t i, std::size_t k) const { return p[i][k]; }
    template <class B> bool kdtree_get_bbox(B&) const { return false; }
};
using KdBaum = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Punktwolke>,
                                                   Punktwolke, 3>;

// Tree build plus a radius search around every particle, in the disc's
// order; each pair is found from both ends, as is the peer's nature.
Paarmenge kdSuche(SphAkkScheibe& s, double h2, bool sammeln) {
    Punktwolke wolke;
    wolke.p.resize(s.teilchen.size());
    for (std::size_t i = 0; i < s.teilchen.size(); ++i)
        for (int k = 0; k < 3; ++k)
            wolke.p[i][k] = s.teilchen[i].r[k];
    KdBaum baum(3, wolke, nanoflann::KDTreeSingleIndexAdaptorParams(10));
    nanoflann::SearchParams params;
    params.sorted = false;
    std::vector<std::pair<uint32_t, double>> treffer;
    Paarmenge m;
    std::size_t anzahl = 0;
    for (std::size_t i = 0; i < wolke.p.size(); ++i) {
        baum.radiusSearch(wolke.p[i].data(), h2, treffer, params);
        for (const auto& t : treffer)
            if (t.first > i) {
                ++anzahl;
                if (sammeln)
                    m.emplace_back(i, t.first);
            }
    }
    std::sort(m.begin(), m.end());
    benchmark::DoNotOptimize(anzahl);
    return m;
}

void BM_Nanoflann(benchmark::State& state) {
    Szenario& sz = szenario(state.range(0));
    Stumm stumm;
    SphAkkScheibe s(*sz.initScheibe, *sz.phys);
    s.force_init(*sz.phys);
    if (kdSuche(s, s.h2, true) != paareVon(s))
        state.SkipWithError("nanoflann finds another pair set than the grid");
    for (auto _ : state)
        kdSuche(s, s.h2, false);
    paarZaehler(state, double(s.ww->paare()));
}

void BM_BruteForce(benchmark::State& state) {
    Szenario& sz = szenario(state.range(0));
    Stumm stumm;
    SphAkkScheibe s(*sz.initScheibe, *sz.phys);
    s.force_init(*sz.phys);
    Paarmenge m;
    for (auto _ : state) {
        m.clear();
        for (std::size_t i = 0; i < s.teilchen.size(); ++i)
            for (std::size_t j = i + 1; j < s.teilchen.size(); ++j) {
                const auto &a = s.teilchen[i].r, &b = s.teilchen[j].r;
                double d[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
                if (d[0] * d[0] + d[1] * d[1] + d[2] * d[2] < s.h2)
                    m.emplace_back(i, j);
            }
    }
    if (m != paareVon(s))
        state.SkipWithError("brute force finds another pair set than the grid");
    paarZaehler(state, double(s.ww->paare()));
}

const std::vector<long> groessen = {1000, 10000, 100000, 1000000};

// Every size on one thread and on all.
void groesse(benchmark::internal::Benchmark* b) {
    const long alle = omp_get_max_threads();
    for (long n : groessen)
        for (long t : {1L, alle})
            if (t == 1 || alle > 1)
                b->Args({n, t});
    b->Unit(benchmark::kMillisecond);
}

// The peers are serial; one thread, every size.
void groesseSeriell(benchmark::internal::Benchmark* b) {
    for (long n : groessen)
        b->Args({n, 1});
    b->Unit(benchmark::kMillisecond);
}

// BM_Lauf: 30 steps below 1e6, 3 steps at 1e6.
void groesseKlein(benchmark::internal::Benchmark* b) {
    const long alle = omp_get_max_threads();
    for (long n : groessen)
        if (n < 1000000)
            for (long t : {1L, alle})
                if (t == 1 || alle > 1)
                    b->Args({n, t});
    b->Unit(benchmark::kMillisecond);
}
void groesseMillion(benchmark::internal::Benchmark* b) {
    b->Args({1000000, omp_get_max_threads()});
    b->Unit(benchmark::kMillisecond);
}

BENCHMARK_TEMPLATE(BM_ForceInit, SphAkkScheibe)->Apply(groesse);
BENCHMARK_TEMPLATE(BM_ForceInit, PhysviscAkkScheibe)->Apply(groesse);
BENCHMARK(BM_Gittersuche)->Apply(groesseSeriell);
BENCHMARK(BM_Nanoflann)->Apply(groesseSeriell);
BENCHMARK(BM_BruteForce)->Args({1000, 1})->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Kraft, Externforce)->Apply(groesse);
BENCHMARK_TEMPLATE(BM_Kraft, Pressure)->Apply(groesse);
BENCHMARK_TEMPLATE(BM_Kraft, Artvisc)->Apply(groesse);
BENCHMARK_TEMPLATE(BM_Kraft, Physvisc)->Apply(groesse);
BENCHMARK(BM_Boden)->Arg(0)->Arg(1);
BENCHMARK(BM_Auswertung)->Apply(groesse);
BENCHMARK(BM_Woertlich)->Args({10000, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RungeKuttaSchritt)->Apply(groesse);
BENCHMARK(BM_Lauf)->Apply(groesseKlein)->Iterations(30);
BENCHMARK(BM_Lauf)->Apply(groesseMillion)->Iterations(3);

} // namespace

BENCHMARK_MAIN();
