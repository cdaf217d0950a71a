#pragma once
// Threads of the force evaluation (OpenMP). Their number comes from
// OMP_NUM_THREADS, by default every core. Every parallel loop writes each
// result in one place and every floating-point sum is formed by one thread
// in the serial order, so the results do not depend on the thread count.

#include <cstddef>

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

// Below this many particles a loop runs on the calling thread alone: starting
// the threads would cost more than the work.
constexpr std::ptrdiff_t mindestens = 64;

// Slabs of the pair search for a disc of n particles.
inline std::size_t anzahlSlabs(std::size_t n) {
    return std::ptrdiff_t(n) < mindestens ? 1 : anzahlFaeden();
}

} // namespace scheibe
