#pragma once

#include "scheibe/Verteilung.h"

#include <mpi.h>

#include <cstdint>
#include <vector>

// One disc over the processes of an MPI communicator, split into slabs of
// whole cell planes along x: process r owns the particles whose cell lies in
// planes ab[r] .. ab[r + 1] - 1 and keeps them in their global order (the
// order of the whole disc's particle vector, which snapshots, removal and
// the stream keep).
//
// Before every evaluation each process receives, as ghosts, the other
// processes' particles in the planes next to those of its own particles
// (one plane on either side: a particle's partners lie in its own and the
// neighbouring planes), and after the densities and the shear tensors their
// values; nothing travels back, since every process forms all the sums of
// its own particles. Ownership follows the particles' cells at the start of
// a step; within a step (the stages) a particle may stray from its slab, and
// the process then also receives the 27 cells around it.
class Verteilt : public Verteilung {
public:
    explicit Verteilt(MPI_Comm komm);
    // With AKK_VERTEILT_BERICHT naming a file, each process appends a line
    // of its traffic and memory to it (bench/verteilt.sh).
    ~Verteilt() override;

    bool liest() const override { return ich == 0; }
    bool verteilen(AkkScheibe& scheibe) override;
    int rang() const override { return ich; }
    int prozesse() const override { return anzahl; }
    std::uint64_t gesamt() const override { return alle; }

    void geisterHolen(const std::vector<std::size_t>& zellen,
                      const std::function<void(std::size_t, double*)>& lies) override;
    std::size_t geister() const override { return geistIdx.size(); }
    const double* geistRV(std::size_t j) const override { return &geistWerte[6 * j]; }
    std::uint64_t geistIndex(std::size_t j) const override { return geistIdx[j]; }
    std::uint64_t index(std::size_t i) const override { return global[i]; }
    void werteTauschen(std::size_t k, const std::function<void(std::size_t, double*)>& lies,
                       const std::function<void(std::size_t, const double*)>& schreibe) override;

    void begleite(std::vector<double>* werte, std::size_t k) override;
    std::vector<double> sammleWerte(const std::vector<double>& werte, std::size_t k) override;
    void teile(std::string& bytes) override;
    std::uint64_t summe(std::uint64_t wert) override;
    double maximum(double wert) override;
    double minimum(double wert) override;

    std::vector<Entfernt>
    entferne(AkkScheibe& scheibe,
             const std::function<bool(const Teilchen&, double&)>& raus) override;
    void ausgeben(AkkScheibe& scheibe, PhysSystem& phys) override;
    bool aufnehmen(const Vektor3& r) override;
    void umverteilen(AkkScheibe& scheibe, bool ausgleichen) override;

    std::vector<Teilchen> sammeln(AkkScheibe& scheibe) override;

    // Slab boundaries: process r owns planes ab[r] .. ab[r + 1] - 1.
    const std::vector<int>& schichten() const { return ab; }
    // Doubles sent to other processes for the ghosts since the start (r, v
    // and index, then the values between the passes), for the measurements
    // of the traffic.
    std::uint64_t gesendeteGeisterwerte = 0;
    std::uint64_t auswertungen = 0;  // ghost exchanges (evaluations)
    std::uint64_t geisterSumme = 0;  // ghosts received, summed over them
    std::uint64_t extraGesendet = 0; // ghosts sent only for another's strays
    std::uint64_t streuner = 0;      // own particles outside the slab, summed over evaluations

private:
    MPI_Comm komm;
    int ich = 0, anzahl = 1;
    std::uint64_t alle = 0;            // particles of all processes
    std::vector<std::uint64_t> global; // global index of each own particle, ascending
    std::vector<int> ab;               // slab boundaries (planes), anzahl + 1 of them
    // The grid's geometry: cells per axis, and along x the plane of a position.
    double xmin = 0, h = 1;
    int nx = 1, ny = 1, nz = 1;
    bool gitter = false; // a disc with a grid (else all particles are in plane 0)

    // Ghost traffic of the last geisterHolen: own particles sent, by process.
    std::vector<std::uint32_t> gesendet;
    std::vector<int> sendeZahl, empfangsZahl;
    std::vector<double> geistWerte;      // r, v of each ghost
    std::vector<std::uint64_t> geistIdx; // global index of each ghost
    std::vector<double> puffer, eingang; // scratch
    // Arrays of values that go with the own particles, and their width.
    std::vector<std::pair<std::vector<double>*, std::size_t>> begleiter;
    // The widths of the arrays that match n own particles (the others
    // are emptied), and their sum.
    std::size_t begleitBreite(std::size_t n);
    std::vector<int> mitgehen; // which of them, after the last begleitBreite
    void packe(double* b, AkkScheibe& scheibe, std::size_t i, double index) const;
    // r, v and the values of a record (these appended to werte); its global index.
    std::uint64_t entpacke(const double* b, Vektor3& r, Vektor3& v,
                           std::vector<std::vector<double>>& werte) const;

    int ebeneVon(const Vektor3& r) const;
    std::vector<double> sammelnRoh(AkkScheibe& scheibe);
    template <class T>
    std::vector<T> sammle(const std::vector<T>& aus, MPI_Datatype typ, bool ueberall,
                          std::vector<int>* anfaenge = nullptr);
    int besitzer(int ebene) const;
    // Slabs of about equal particle counts from the counts per plane.
    void schneiden(const std::vector<std::uint64_t>& proEbene);
    // Exchanges k doubles per particle: `aus` grouped by process as
    // sendeZahl gives, into `ein` grouped as empfangsZahl gives.
    void tauschen(std::size_t k, const std::vector<double>& aus, std::vector<double>& ein);
};
