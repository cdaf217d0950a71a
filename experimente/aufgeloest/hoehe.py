#!/usr/bin/python3
"""Scale height of the disc against the smoothing length, ring by ring, from
the tables of scheibensplash (which carry the simulator's own SPH density).

    build/tools/scheibensplash -p PARAMETER -o FOLDER SNAPSHOT...
    /usr/bin/python3 experimente/aufgeloest/hoehe.py -p PARAMETER [-o PICTURE] FOLDER/*.dat

For each ring around the primary: the midplane density rho0 (median density
of the fifth of the ring's particles nearest z = 0), the sound speed of the
simulator's equation of state there, c^2 = P/rho = 0.0005 rho0^(2/3), the
scale height H = c / Omega_K with Omega_K = (G m1 / R^3)^1/2, its ratio to
the smoothing length h of the parameter file (the kernel's reach), and the
measured rms height against the hydrostatic one. With P = K rho^(5/3) the
hydrostatic layer is rho0 (1 - z^2/Z^2)^(3/2) with Z^2 = 5 c^2 / Omega_K^2,
whose rms height is Z / 6^1/2 = (5/6)^1/2 H = 0.913 H.
"""

import argparse
import math
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "python"))

import akkdaten  # noqa: E402
import numpy as np  # noqa: E402

K_DRUCK = 0.0005  # P = K rho^(5/3) in the simulator's units
RMS_ZU_H = math.sqrt(5 / 6)


def lies_tabelle(datei):
    """Time and the columns x y z vx vy vz h m density of a scheibensplash table."""
    zeit = None
    with open(datei, encoding="latin-1") as f:
        for zeile in f:
            if not zeile.startswith("#"):
                break
            if zeile.rstrip().endswith("time [s]"):
                zeit = float(zeile.split()[1])
    if zeit is None:
        raise akkdaten.AkkDatenFehler("%s is no table of scheibensplash: no time line" % datei)
    werte = np.loadtxt(datei, comments="#", ndmin=2)
    if werte.shape[1] != 9:
        raise akkdaten.AkkDatenFehler("%s: %d columns, not the 9 of scheibensplash" % (datei, werte.shape[1]))
    return zeit, werte


def ringe(werte, b, kanten):
    """Per ring: R, N, rho0, c, H, rms height."""
    d = werte[:, :3] - np.array([b.x1, 0, 0])
    R = np.hypot(d[:, 0], d[:, 1])
    aus = []
    for innen, aussen in zip(kanten[:-1], kanten[1:]):
        im = (R >= innen) & (R < aussen)
        n = int(np.count_nonzero(im))
        if n < 50:
            continue
        z = d[im, 2]
        rho = werte[im, 8]
        nahe = np.argsort(np.abs(z - np.median(z)))[: max(n // 5, 10)]
        rho0 = float(np.median(rho[nahe]))
        c = math.sqrt(K_DRUCK * rho0 ** (2 / 3))
        mitte = (innen + aussen) / 2
        omega_k = math.sqrt(akkdaten.G * b.m1 / mitte ** 3)
        aus.append({"R": mitte, "N": n, "rho0": rho0, "c": c, "H": c / omega_k,
                    "z_rms": float(np.sqrt(np.mean((z - z.mean()) ** 2)))})
    return aus


def main(argumente=None):
    ap = argparse.ArgumentParser(description="Scale height against smoothing length, ring by ring.")
    ap.add_argument("tabellen", nargs="+", metavar="TABLE", help="tables of scheibensplash (.dat)")
    ap.add_argument("-p", "--parameter", required=True, help="parameter file of the run")
    ap.add_argument("-o", "--ausgabe", help="picture to write (PNG): H and rms height against R")
    ap.add_argument("--innen", type=float, default=0.08, help="inner edge of the rings (default 0.08)")
    ap.add_argument("--aussen", type=float, default=0.26, help="outer edge of the rings (default 0.26)")
    ap.add_argument("--ringe", type=int, default=9, help="number of rings (default 9)")
    a = ap.parse_args(argumente)
    if not (0 < a.innen < a.aussen and 1 <= a.ringe <= 1000):
        ap.error("want 0 < --innen < --aussen and 1 <= --ringe <= 1000")
    try:
        b = akkdaten.lies_binaer(a.parameter)
        h = akkdaten.lies_schluessel(a.parameter, "Smoothinglength")["Smoothinglength"]
        kanten = np.linspace(a.innen, a.aussen, a.ringe + 1)
        laeufe = sorted((lies_tabelle(t) for t in a.tabellen), key=lambda x: x[0])
    except (OSError, ValueError) as f:
        print("hoehe.py: %s" % f, file=sys.stderr)
        return 1
    ergebnisse = []
    for zeit, werte in laeufe:
        r = ringe(werte, b, kanten)
        ergebnisse.append((zeit, r))
        print("t = %g s (%.3g orbits), %d particles, smoothing length h = %g" % (zeit, zeit / b.periode, len(werte), h))
        print()
        print("| R [R☉] | N | ρ0 [M☉/R☉³] | c [R☉/s] | H = c/Ω_K [R☉] | H/h | z_rms [R☉] | z_rms / (0.913 H) |")
        print("|---|---|---|---|---|---|---|---|")
        for x in r:
            print("| %.3f | %d | %.3g | %.3g | %.4f | %.2f | %.4f | %.2f |"
                  % (x["R"], x["N"], x["rho0"], x["c"], x["H"], x["H"] / h, x["z_rms"], x["z_rms"] / (RMS_ZU_H * x["H"])))
        print()
    if a.ausgabe:
        import matplotlib
        matplotlib.use("Agg")
        import matplotlib.pyplot as plt
        fig, ax = plt.subplots(figsize=(7, 4.5), constrained_layout=True)
        farben = plt.cm.viridis(np.linspace(0, 0.9, len(ergebnisse)))
        for (zeit, r), farbe in zip(ergebnisse, farben):
            R = [x["R"] for x in r]
            ax.plot(R, [x["H"] for x in r], "-", color=farbe, label="H = c/$\\Omega_K$, %.2g orbits" % (zeit / b.periode))
            ax.plot(R, [x["z_rms"] / RMS_ZU_H for x in r], "o", color=farbe, markersize=4,
                    label="z$_{rms}$ / 0.913, %.2g orbits" % (zeit / b.periode))
        ax.axhline(h, color="C3", linestyle="--", label="smoothing length h (kernel reach)")
        ax.axhline(h / 2, color="C3", linestyle=":", label="h/2")
        ax.set_xlabel("R: distance from the primary's axis [R$_\\odot$]")
        ax.set_ylabel("height [R$_\\odot$]")
        ax.set_ylim(0, None)
        ax.grid(alpha=0.3)
        ax.legend(fontsize="small", loc="upper left")
        fig.savefig(a.ausgabe, dpi=90)
        plt.close(fig)
    return 0


if __name__ == "__main__":
    sys.exit(main())
