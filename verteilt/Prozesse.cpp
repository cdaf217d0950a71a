#include "verteilt/Prozesse.h"

#include <cstdlib>
#include <iostream>
#include <streambuf>

#ifdef AKK_MPI
#include "verteilt/Verteilt.h"
#include <mpi.h>
#else
class Verteilt {};
#endif

// Standard output and error of a process other than 0: every line they
// would print, process 0 prints for the whole disc.
struct Prozesse::Stumm : std::streambuf {
    std::streambuf *aus = nullptr, *fehler = nullptr;
    int overflow(int c) override { return c == traits_type::eof() ? 0 : c; }
};

namespace {
// Whether an MPI launcher started this process (mpirun, mpiexec, or srun
// through PMI or PMIx), and the process count it names (1 when none does).
bool vomStarter() {
    return std::getenv("OMPI_COMM_WORLD_SIZE") || std::getenv("PMI_RANK") ||
           std::getenv("PMIX_RANK");
}
[[maybe_unused]] int gestartetMit() {
    for (const char* name : {"OMPI_COMM_WORLD_SIZE", "PMI_SIZE", "PMIX_SIZE"})
        if (const char* wert = std::getenv(name))
            return std::atoi(wert);
    return 1;
}
} // namespace

Prozesse::Prozesse(int& argc, char**& argv) {
    // A program started without a launcher stays one plain process: MPI is
    // not even started, so nothing of the run differs from a build without it.
    if (!vomStarter())
        return;
#ifdef AKK_MPI
    int gegeben = 0;
    MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &gegeben);
    int anzahl = 1, rang = 0;
    MPI_Comm_size(MPI_COMM_WORLD, &anzahl);
    MPI_Comm_rank(MPI_COMM_WORLD, &rang);
    if (anzahl > 1) {
        v = std::make_unique<Verteilt>(MPI_COMM_WORLD);
        if (rang != 0) {
            stumm = std::make_unique<Stumm>();
            stumm->aus = std::cout.rdbuf(stumm.get());
            stumm->fehler = std::cerr.rdbuf(stumm.get());
        }
    }
#else
    (void)argc;
    (void)argv;
    if (gestartetMit() > 1) {
        const char* rang = std::getenv("OMPI_COMM_WORLD_RANK");
        if (!rang)
            rang = std::getenv("PMI_RANK");
        if (!rang || std::atoi(rang) == 0)
            std::cerr << "error: built without MPI; run one process (configure with MPI "
                         "to spread a disc over several)\n";
        ok = false;
    }
#endif
}

Prozesse::~Prozesse() {
    if (stumm) {
        std::cout.rdbuf(stumm->aus);
        std::cerr.rdbuf(stumm->fehler);
    }
#ifdef AKK_MPI
    v.reset();
    int gestartet = 0;
    MPI_Initialized(&gestartet);
    if (gestartet)
        MPI_Finalize();
#endif
}

Verteilung* Prozesse::verteilung() const {
#ifdef AKK_MPI
    return v.get();
#else
    return nullptr;
#endif
}

bool Prozesse::verteilt() const {
#ifdef AKK_MPI
    return v && !v->schichten().empty();
#else
    return false;
#endif
}
