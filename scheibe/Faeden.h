#pragma once
// Threads of the force evaluation (OpenMP). Their number comes from
// OMP_NUM_THREADS, by default every core. Every parallel loop writes each
// result in one place and every floating-point sum is formed by one thread
// in the serial order, so the results do not depend on the thread count.

#include <algorithm>
#include <cstddef>
#include <vector>

#ifdef _OPENMP
#include <omp.h>
#endif

namespace scheibe {

inline std::size_t anzahlFaeden() {
#ifdef _OPENMP
    const int n = omp_get_max_threads();
    return n > 0 ? static_cast<std::size_t>(n) : 1;
#else
    return 1;
#endif
}

// Measured cost of the loops, in nanoseconds on one thread of the reference
// machine (bench/kraefte_bench): per entry of the partner lists (twice the
// pairs) for the passes over pairs, per particle for the others.
namespace kosten {
constexpr double suche = 15, gas = 11, viskos = 8, teilchen = 10, extern_ = 60;
}

// Whether a loop of about `ns` nanoseconds of work is worth the threads.
// Starting them and joining them costs some microseconds on an idle
// machine, but on a machine whose cores are busy with other work a thread
// may wait a time slice (milliseconds) for its core, and the loop waits for
// its slowest thread: only loops of milliseconds gain.
inline double schwelleNs = 2.5e6; // tests set 0 to run every loop on the threads
inline bool lohnt(double ns) {
    return ns >= schwelleNs && anzahlFaeden() > 1;
}

// f(b) for the blocks b = 0 .. anzahl-1, handed to the threads one block at
// a time as they come free (a thread delayed by another process takes fewer
// blocks), when `parallel`; else in order on the calling thread.
template <class F> void fuerBloecke(std::size_t anzahl, bool parallel, F f) {
    const std::ptrdiff_t nn = static_cast<std::ptrdiff_t>(anzahl);
#pragma omp parallel for schedule(dynamic, 1) if (parallel && nn > 1)
    for (std::ptrdiff_t b = 0; b < nn; ++b)
        f(std::size_t(b));
}

// f(i) for i = 0 .. n-1, each costing about `ns` nanoseconds, handed to the
// threads in runs of 2048 as they come free when the work pays.
template <class F> void fuerAlle(std::size_t n, double ns, F f) {
    const std::ptrdiff_t nn = static_cast<std::ptrdiff_t>(n);
#pragma omp parallel for schedule(dynamic, 2048) if (lohnt(double(n) * ns))
    for (std::ptrdiff_t i = 0; i < nn; ++i)
        f(std::size_t(i));
}

// Running sums of integers in place: a[i] becomes a[0] + ... + a[i]. Integer
// sums are exact in any grouping, so long arrays are summed in one block per
// thread, each block then shifted by the sum of the blocks before it.
// `bloecke` is scratch kept by the caller, so that nothing is allocated.
template <class Z> void laufendeSumme(Z* a, std::size_t n, std::vector<Z>& bloecke) {
    const std::size_t teile = lohnt(double(n)) ? anzahlFaeden() : 1;
    bloecke.resize(teile + 1);
    const std::ptrdiff_t tt = static_cast<std::ptrdiff_t>(teile);
    auto anfang = [&](std::ptrdiff_t t) { return n * std::size_t(t) / teile; };
#pragma omp parallel for schedule(static, 1) if (tt > 1)
    for (std::ptrdiff_t t = 0; t < tt; ++t) {
        Z s = 0;
        for (std::size_t i = anfang(t); i < anfang(t + 1); ++i)
            a[i] = s += a[i];
        bloecke[std::size_t(t) + 1] = s;
    }
    bloecke[0] = 0;
    for (std::size_t t = 1; t <= teile; ++t)
        bloecke[t] += bloecke[t - 1];
#pragma omp parallel for schedule(static, 1) if (tt > 1)
    for (std::ptrdiff_t t = 1; t < tt; ++t)
        for (std::size_t i = anfang(t); i < anfang(t + 1); ++i)
            a[i] += bloecke[std::size_t(t)];
}

// Sets a[0 .. n) to zero, on all threads for long arrays.
template <class Z> void nullen(Z* a, std::size_t n) {
    const std::size_t teile = lohnt(double(n) * 0.2) ? anzahlFaeden() : 1;
    const std::ptrdiff_t tt = static_cast<std::ptrdiff_t>(teile);
#pragma omp parallel for schedule(static, 1) if (tt > 1)
    for (std::ptrdiff_t t = 0; t < tt; ++t)
        std::fill(a + n * std::size_t(t) / teile, a + n * std::size_t(t + 1) / teile, Z(0));
}

} // namespace scheibe
