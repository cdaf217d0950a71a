#!/usr/bin/env python3
"""Model of one disc over P processes in slabs of cell planes (verteilt/).

The disc is that of bench/lauf.sh and bench/verteilt.sh: the generator's
particles between radii 0.08 and 0.3 around the primary with surface
density R^-0.75, the OY Car binary of data/OYCar.parameter, smoothing length
h = 0.03 sqrt(3000 / N). Its expected particle count per cell plane (x from
xmin + (p-1) h to xmin + p h) follows from the distribution itself:

    n(p) = N * integral over R of pdf(R) * (acos(u0 / R) - acos(u1 / R)) / pi,

u0, u1 the plane's edges relative to the primary. The slabs are drawn from
these counts as the program draws them (verteilt/Verteilt.cpp, schneiden).

Halo: every evaluation a process sends each neighbour the particles of its
boundary plane: r, v and index (7 doubles), then density, pressure, sound
speed and temperature (4), then the shear tensor (6, viscous discs): 136
bytes a ghost with all four forces. Particles that stray across a slab
boundary within a step's stages bring the cells around them (one plane
further) into the halo: STREU times the boundary planes, the factor measured
on 2 processes at 10^5 particles (docs/scaling.md) and checked at 4 and 8.

Time per evaluation on process r: c * n_r (its own particles; ghosts are
only binned) plus the messages: an Allgather of the plane ranges, an
Alltoall of counts and three Alltoallv (latency alpha each per process
they reach, as Open MPI's pairwise algorithm for them), an Allreduce of the
pair count (alpha log2 P), and the halo bytes at bandwidth beta. The
efficiency at P processes is c N / (P max_r T_r).

    verteilt_modell.py pruefen N P...     per-process halo bytes to hold against
                                          AKK_VERTEILT_BERICHT's measured lines
    verteilt_modell.py projektion         the table of docs/scaling.md
"""
import math
import sys

G = 3.9371199385708905e-7
M1, M2, PERIODE = 0.685, 0.07, 5453.6
INNEN, AUSSEN, STEIGUNG = 0.08, 0.3, 0.75
BYTES_PRO_GEIST = 8 * (7 + 4 + 6)
STREU = 1.4
# Measured on this machine (docs/scaling.md): seconds per own particle and
# evaluation on one core at 10^6 particles.
C_TEILCHEN = 1.4e-6
ALPHA, BETA = 3e-6, 5e9  # a cluster's interconnect: latency (s), bandwidth (bytes/s)


def binaer():
    omega = 6.283185306 / PERIODE
    a = (G * (M1 + M2) / (omega * omega)) ** 0.3333333333333333
    x1 = a * M2 / (M1 + M2)
    x2 = x1 - a
    unten, oben = x2, x1
    for _ in range(199):
        x = (unten + oben) * 0.5
        f = x / (a * a) - x1 / ((x - x2) ** 2) - x2 / ((x - x1) ** 2)
        if f >= 0:
            oben = x
        else:
            unten = x
    return x1, (unten + oben) * 0.5


def ebenen(n):
    """Expected particles per cell plane of a disc of n particles."""
    h = 0.03 * math.sqrt(3000 / n)
    x1, xl1 = binaer()
    r_box = 1.1 * x1 - xl1
    xmin = x1 - r_box
    nx = int(math.floor(2 * r_box / h)) + 2
    # pdf(R) ~ R^(1 - STEIGUNG) between the radii, by the midpoint rule.
    stuetz = 4000
    dr = (AUSSEN - INNEN) / stuetz
    radien = [INNEN + (k + 0.5) * dr for k in range(stuetz)]
    gewichte = [r ** (1 - STEIGUNG) for r in radien]
    summe = sum(gewichte)
    gewichte = [g / summe for g in gewichte]

    def winkel(u, r):
        return math.acos(max(-1.0, min(1.0, u / r)))

    pro = []
    for p in range(nx):
        u0 = xmin + (p - 1) * h - x1
        u1 = xmin + p * h - x1
        anteil = sum(g * (winkel(u0, r) - winkel(u1, r)) / math.pi for r, g in zip(radien, gewichte))
        pro.append(n * anteil)
    return pro


def schneiden(pro, prozesse):
    """The slab boundaries as verteilt/Verteilt.cpp draws them."""
    nx = len(pro)
    vor = [0.0]
    for x in pro:
        vor.append(vor[-1] + x)
    gesamt = vor[-1]
    ab = [0] * (prozesse + 1)
    ab[prozesse] = nx
    for r in range(1, prozesse):
        p = ab[r - 1] + 1
        while p < nx - (prozesse - r) and vor[p] * prozesse < r * gesamt:
            p += 1
        ab[r] = p
    return ab


def prozesse_modell(pro, prozesse):
    ab = schneiden(pro, prozesse)
    zeilen = []
    for r in range(prozesse):
        eigene = sum(pro[ab[r]:ab[r + 1]])
        gesendet = (pro[ab[r]] if r > 0 else 0) + (pro[ab[r + 1] - 1] if r < prozesse - 1 else 0)
        zeilen.append((r, ab[r], ab[r + 1] - 1, eigene, STREU * gesendet * BYTES_PRO_GEIST))
    return zeilen


def effizienz(n, prozesse, pro=None):
    pro = pro or ebenen(n)
    if prozesse > len(pro):
        return None
    zeilen = prozesse_modell(pro, prozesse)
    latenz = ALPHA * (prozesse - 1) * 4 + ALPHA * (1 + math.log2(prozesse)) * 2
    t = max(C_TEILCHEN * e + b / BETA + latenz for _, _, _, e, b in zeilen)
    return C_TEILCHEN * n / (prozesse * t), zeilen


def main():
    if len(sys.argv) >= 4 and sys.argv[1] == "pruefen":
        n = int(sys.argv[2])
        pro = ebenen(n)
        for prozesse in map(int, sys.argv[3:]):
            print(f"N = {n}, {prozesse} processes ({len(pro)} planes):")
            for r, a, b, e, byte in prozesse_modell(pro, prozesse):
                print(f"  rank {r}: planes {a}..{b}, particles {e:.0f}, halo bytes sent per evaluation {byte:.0f}")
        return
    if len(sys.argv) == 2 and sys.argv[1] == "projektion":
        print("| particles | planes | processes | planes a process | own particles (largest) | "
              "halo bytes (largest) | efficiency |")
        print("|---|---|---|---|---|---|---|")
        for n in (10**6, 10**7):
            pro = ebenen(n)
            for prozesse in (16, 64, 256):
                e = effizienz(n, prozesse, pro)
                if e is None:
                    print(f"| {n:.0e} | {len(pro)} | {prozesse} | - | - | - | too few planes |")
                    continue
                eff, zeilen = e
                print(f"| {n:.0e} | {len(pro)} | {prozesse} | {len(pro) / prozesse:.1f} | "
                      f"{max(z[3] for z in zeilen):.0f} ({n / prozesse:.0f} even) | "
                      f"{max(z[4] for z in zeilen) / 1e6:.2f} MB | {100 * eff:.0f} % |")
        return
    print(__doc__)
    sys.exit(2)


if __name__ == "__main__":
    main()
