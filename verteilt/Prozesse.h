#pragma once

#include <memory>

class Verteilt;
class Verteilung;

// The processes a run was started with. Built with MPI, it starts MPI (each
// process keeps its OpenMP threads, which never call MPI) and, when more
// than one process runs, the distribution of the disc over them; only
// process 0 then speaks on standard output and standard error. Built
// without MPI, a start under mpirun with several processes is refused, as
// each process would run and write the whole disc.
class Prozesse {
public:
    Prozesse(int& argc, char**& argv);
    Prozesse(const Prozesse&) = delete;
    Prozesse& operator=(const Prozesse&) = delete;
    ~Prozesse();

    // False when this program cannot run as started (the message is out).
    bool bereit() const { return ok; }
    // The distribution over the processes; null for one process.
    Verteilung* verteilung() const;
    // Whether the distribution was set up (after the console built the disc).
    bool verteilt() const;

private:
    bool ok = true;
    std::unique_ptr<Verteilt> v;
    struct Stumm;
    std::unique_ptr<Stumm> stumm; // muted streams of processes other than 0
};
