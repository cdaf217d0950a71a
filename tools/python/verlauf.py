#!/usr/bin/python3
"""Surface-density profile and eccentric (m = 1) mode of an akkscheibe run.

    ./build/akkscheibe > /dev/null
    build/tools/scheibendiagnose data/Akk-OYCar- > diagnose.tsv
    /usr/bin/python3 tools/python/verlauf.py -d diagnose.tsv -o verlauf.png data/Akk-OYCar-

Left: the surface density Sigma(R) in rings around the primary for every
snapshot, from the snapshots themselves. Right: amplitude A1 and phase of the
m = 1 mode over time, from the table of scheibendiagnose. A disc of N
particles at random azimuths has A1 of about N^-1/2 without any mode; that
level is drawn too.
"""

import argparse
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import akkdaten  # noqa: E402
import matplotlib  # noqa: E402

matplotlib.use("Agg")  # files only, no window
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402


def zeichne(schnappschuesse, binaer, diagnose, ringe, ausgabe):
    fig, (links, rechts) = plt.subplots(1, 2, figsize=(11, 4.4), constrained_layout=True)

    # Rings of equal width out to the farthest particle of the run.
    aussen = max(akkdaten.radien(s, binaer).max(initial=0) for s in schnappschuesse)
    kanten = np.linspace(0, aussen * (1 + 1e-9) if aussen > 0 else 1, ringe + 1)
    mitten = (kanten[1:] + kanten[:-1]) / 2
    farben = plt.cm.viridis(np.linspace(0, 0.9, len(schnappschuesse)))
    for s, farbe in zip(schnappschuesse, farben):
        sigma = akkdaten.flaechendichte(s, binaer, kanten)
        links.plot(mitten, np.where(sigma > 0, sigma, np.nan), "-", color=farbe,
                   label="t = %g s" % s.zeit)
    links.set_yscale("log")
    links.set_xlabel("R: distance from the primary's axis [R$_\\odot$]")
    links.set_ylabel("surface density $\\Sigma$ [M$_\\odot$/R$_\\odot^2$]")
    links.set_title("surface-density profile")
    links.legend(fontsize="small")
    links.grid(alpha=0.3)

    t = diagnose["time_s"]
    rechts.plot(t, diagnose["A1"], "o-", color="C3", label="A1 = |sum exp(i$\\varphi$)| / N")
    rauschen = 1 / np.sqrt(np.maximum(diagnose["N"], 1))
    rechts.plot(t, rauschen, ":", color="C3", label="N$^{-1/2}$: random azimuths")
    rechts.set_xlabel("time [s]")
    rechts.set_ylabel("amplitude A1 of the m = 1 mode")
    rechts.set_ylim(0, 1.3 * np.nanmax(np.concatenate([diagnose["A1"], rauschen, [1e-3]])))
    rechts.grid(alpha=0.3)
    phase = rechts.twinx()
    phase.plot(t, diagnose["phase1_deg"], "s--", color="grey", markersize=4, label="phase")
    phase.set_ylabel("phase [degrees; 0: away from the secondary, 90: +y]")
    phase.set_ylim(-180, 180)
    phase.set_yticks(range(-180, 181, 90))
    linien = rechts.get_legend_handles_labels()
    zusatz = phase.get_legend_handles_labels()
    rechts.legend(linien[0] + zusatz[0], linien[1] + zusatz[1], fontsize="small", loc="lower right")
    rechts.set_title("eccentric (m = 1) mode")
    fig.savefig(ausgabe, dpi=100)
    plt.close(fig)


def main(argumente=None):
    ap = argparse.ArgumentParser(
        description="Plots the surface-density profile of each snapshot and the m = 1 mode "
                    "over time. A SNAPSHOT is a file, a folder or a prefix such as data/Akk-OYCar-.")
    ap.add_argument("schnappschuesse", nargs="+", metavar="SNAPSHOT")
    ap.add_argument("-d", "--diagnose", required=True, metavar="TABLE",
                    help="table written by scheibendiagnose for the same run")
    ap.add_argument("-p", "--parameter", default="data/OYCar.parameter",
                    help="parameter file of the binary (default data/OYCar.parameter)")
    ap.add_argument("-o", "--ausgabe", default="verlauf.png",
                    help="picture to write, PNG or any format matplotlib knows (default verlauf.png)")
    ap.add_argument("--ringe", type=int, default=40, help="number of rings (default 40)")
    a = ap.parse_args(argumente)
    if not 1 <= a.ringe <= 100000:
        ap.error("--ringe wants a whole number from 1 to 100000")
    try:
        binaer = akkdaten.lies_binaer(a.parameter)
        dateien = akkdaten.sammle(a.schnappschuesse)
        schnappschuesse = sorted((akkdaten.lies_schnappschuss(d) for d in dateien),
                                 key=lambda s: s.zeit)
        diagnose = akkdaten.lies_diagnose(a.diagnose)
        zeichne(schnappschuesse, binaer, diagnose, a.ringe, a.ausgabe)
    except (OSError, ValueError) as f:  # AkkDatenFehler, or a format matplotlib lacks
        print("verlauf.py: %s" % f, file=sys.stderr)
        return 1
    print(a.ausgabe)
    return 0


if __name__ == "__main__":
    sys.exit(main())
