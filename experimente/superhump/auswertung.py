#!/usr/bin/python3
"""Evaluation of a superhump run (experimente/superhump/lauf.sh, or a stream
run of experimente/stromscheibe/lauf.sh): growth and precession of the
disc's eccentric mode and the superhump in the light curve.

    /usr/bin/python3 experimente/superhump/auswertung.py FOLDER [-o PICTURE] [--jede K]

Reads FOLDER/data/OYCar.parameter, the snapshots FOLDER/data/Akk-OYCar-*,
FOLDER/wandzeit.txt and, if there, FOLDER/lichtkurve.tsv (akkstrom
--lichtkurve: the viscous dissipation rate L, a row per step).

A disc that reaches the 3:1 resonance becomes eccentric: an m = 1 mode grows
exponentially, saturates and precesses slowly forward in a non-rotating
frame. The binary meets the eccentric disc again after the beat period
P_sh = 1/(1/P_orb - 1/P_prec), and the tidal stress, and with it the heat the
viscosity makes, peaks once in P_sh: the superhump. Disc particles are those
whose osculating orbit about the primary has e < 0.5, which leaves out the
stream falling in from L1.
"""

import argparse
import importlib.util
import math
import os
import subprocess
import sys
import warnings

HIER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HIER, "..", "..", "tools", "python"))

import akkdaten  # noqa: E402
import numpy as np  # noqa: E402

# The stream run's evaluation is called auswertung.py as well, so it is loaded
# from its path under its own name instead of through sys.path.
_lader = importlib.util.spec_from_file_location(
    "strom_auswertung", os.path.join(HIER, "..", "stromscheibe", "auswertung.py"))
strom = importlib.util.module_from_spec(_lader)
_lader.loader.exec_module(strom)

PRO_BAHN = 50             # points an orbit of the resampled light curve
TREND_BAHNEN = 3.0        # width of the running mean the light curve is divided by, orbits
SH_BEREICH = (0.8, 1.25)  # superhump frequencies searched, cycles per orbit
SATT_ANTEIL = 0.8         # the growth window ends at this share of the saturation level


def vergleich(b):
    """Numbers to hold the run against, for the run's q = m2/m1."""
    q = b.m2 / b.m1
    r31 = 3 ** (-2 / 3) * (1 + q) ** (-1 / 3)
    # Free-particle apsidal precession of a circular orbit at radius r (in
    # units of a) under the secondary's secular pull, Hirose & Osaki (1990):
    # omega/Omega_orb = q/sqrt(1+q) (1/4) r^(1/2) b_{3/2}^{(1)}(r), taken at
    # the 3:1 resonance, where the eccentricity is excited. The Laplace
    # coefficient b_{3/2}^{(1)}(r) = (1/pi) int_0^{2 pi} cos phi (1 - 2 r cos phi
    # + r^2)^{-3/2} dphi by the trapezoidal rule, exact to rounding for a
    # smooth periodic integrand on 4096 points.
    phi = np.arange(4096) * (2 * math.pi / 4096)
    laplace = 2 * float(np.mean(np.cos(phi) / (1 - 2 * r31 * np.cos(phi) + r31 * r31) ** 1.5))
    w = q / math.sqrt(1 + q) * 0.25 * math.sqrt(r31) * laplace
    # Observed period excess against q: Patterson et al. (2005).
    return {"q": q, "r31": r31, "w_dyn": w, "eps_dyn": w / (1 - w), "eps_pat": 0.18 * q + 0.29 * q * q}


def lies_reihen(ordner, b, jede):
    """Per snapshot (every jede-th in time): time, particles, disc particles,
    |<e>| and its angle in a non-rotating frame, A1, R_50 and R_95."""
    dateien = sorted(akkdaten.sammle([os.path.join(ordner, "data", "Akk-OYCar-")]),
                     key=lambda d: int(d.rsplit("-", 1)[1]))[::jede]
    spalten = ("t", "N", "N_scheibe", "e_betrag", "e_winkel", "A1", "R_50", "R_95")
    reihen = {k: [] for k in spalten}
    for i, datei in enumerate(dateien):
        try:
            with warnings.catch_warnings():
                warnings.simplefilter("error")
                s = akkdaten.lies_schnappschuss(datei)
        except (UserWarning, akkdaten.AkkDatenFehler) as f:
            if i < len(dateien) - 1:
                raise
            print("(%s left out: %s)" % (datei, f), file=sys.stderr)   # still being written
            break
        R, evek, e, _ = strom.bahnelemente(s, b)
        innen = e < strom.E_SCHEIBE
        n = int(innen.sum())
        # The mean eccentricity vector, turned from the co-rotating axes by omega t.
        E = complex(*evek[innen, :2].mean(axis=0)) * np.exp(1j * b.omega * s.zeit) if n else complex(math.nan)
        azimut = np.exp(1j * np.arctan2(s.r[innen, 1], s.r[innen, 0] - b.x1))
        for k, w in zip(spalten, (s.zeit, len(s), n, abs(E), math.atan2(E.imag, E.real),
                                  abs(azimut.sum()) / n if n else math.nan,
                                  strom.quantil(R[innen], 0.5), strom.quantil(R[innen], 0.95))):
            reihen[k].append(w)
    reihen = {k: np.array(v, dtype=float) for k, v in reihen.items()}
    reihen["bahnen"] = reihen["t"] / b.periode
    reihen["rauschen"] = 1 / np.sqrt(np.maximum(reihen["N_scheibe"], 1))
    return reihen


def gleitend(x, breite):
    """Running mean over `breite` points, the window cut short at the ends."""
    kern = np.ones(max(1, int(round(breite))))
    return np.convolve(x, kern, mode="same") / np.convolve(np.ones_like(x), kern, mode="same")


def wachstum(r, fenster):
    """Exponential growth of A1 and of |<e>|, each a line through log y.
    Without a window given, each one's rise is found on it smoothed over an
    orbit: the rise ends where it first reaches SATT_ANTEIL of its saturation
    level (median over the last third of the run) and begins where it last
    came above three times the noise level N_disc^-1/2 of A1. Growth that
    slows before saturation makes this window's rate a lower bound. A window
    given is fitted whatever the rate."""
    t = r["bahnen"]
    spaet = t >= t[0] + 2 / 3 * (t[-1] - t[0])
    erg = []
    for name, y in (("A1", r["A1"]), ("\\|<e>\\|", r["e_betrag"])):
        g = {"name": name, "satt": float(np.nanmedian(y[spaet])), "fenster": fenster}
        erg.append(g)
        if fenster is None:
            glatt = gleitend(np.nan_to_num(y), 1 / np.median(np.diff(t)))
            oben = np.flatnonzero(glatt >= SATT_ANTEIL * g["satt"])
            if not g["satt"] > 3 * r["rauschen"][-1] or len(oben) == 0:
                g["grund"] = "no growth: saturation level below 3x the noise"
                continue
            unten = np.flatnonzero(glatt[:oben[0] + 1] <= 3 * r["rauschen"][:oben[0] + 1])
            g["fenster"] = (t[unten[-1] + 1 if len(unten) else 0], t[oben[0]])
        von, bis = g["fenster"]
        ok = (t >= von - 1e-9) & (t <= bis + 1e-9) & np.isfinite(y) & (y > 0)
        if ok.sum() < 4:
            g["grund"] = "too few points in %.2f–%.2f orbits" % (von, bis)
            continue
        g["fit"] = np.polyfit(t[ok], np.log(y[ok]), 1)
        if fenster is None and g["fit"][0] * (bis - von) < math.log(1.5):
            g["grund"] = "no growth: rises by less than a factor 1.5 in %.2f–%.2f orbits" % (von, bis)
    return erg


def praezession(r, fenster):
    """Line through the unwrapped angle of <e> (non-rotating frame) in the
    window: omega_prec / Omega_orb and the rms residual in degrees."""
    ok = np.isfinite(r["e_winkel"])
    t, w = r["bahnen"][ok], np.unwrap(r["e_winkel"][ok])
    drin = (t >= fenster[0] - 1e-9) & (t <= fenster[1] + 1e-9)
    if drin.sum() < 4:
        return None
    k = np.polyfit(t[drin], w[drin], 1)
    v = k[0] / (2 * math.pi)   # turns an orbit = omega_prec / Omega_orb
    return {"v": v, "k": k, "t": t, "w": w, "tf": t[drin], "eps": v / (1 - v) if 0 < v < 0.5 else math.nan,
            "rest": math.degrees(np.std(w[drin] - np.polyval(k, t[drin])))}


def lies_lichtkurve(datei, periode):
    """The light curve averaged in bins of 1/PRO_BAHN orbit (empty bins
    interpolated), a running mean over TREND_BAHNEN orbits as its slow trend,
    and the relative modulation L/trend - 1. Times in orbits."""
    with open(datei, encoding="latin-1") as f:
        zeilen = f.read().split("\n")[:-1]   # a row still being written is left out
    werte = np.array([z.split("\t") for z in zeilen if z.strip() and not z.startswith("#")], dtype=float)
    if len(werte) < 10:
        return None
    t, L = werte[:, 0] / periode, werte[:, 1]
    nr = np.floor((t - t[0]) * PRO_BAHN).astype(int)
    anzahl = np.bincount(nr)
    mitte = t[0] + (np.arange(len(anzahl)) + 0.5) / PRO_BAHN
    voll = anzahl > 0
    Lg = np.interp(mitte, mitte[voll], np.bincount(nr, weights=L)[voll] / anzahl[voll])
    trend = gleitend(Lg, TREND_BAHNEN * PRO_BAHN)
    return {"t": mitte, "L": Lg, "rel": np.where(trend > 0, Lg / np.where(trend > 0, trend, 1) - 1, 0.0),
            "zeilen": len(werte)}


def spektrum(x):
    """Semi-amplitudes over frequency of a series of PRO_BAHN points
    an orbit, zero-padded 16-fold; frequencies in cycles an orbit."""
    m = 1 << int(math.ceil(math.log2(16 * len(x))))
    return np.fft.rfftfreq(m, 1 / PRO_BAHN), 2 * np.abs(np.fft.rfft(x - x.mean(), m)) / len(x)


def spitze(f, A):
    """Highest peak in SH_BEREICH: frequency (the top of a parabola through
    the power at its three points), amplitude, half width at half power."""
    im = np.flatnonzero((f >= SH_BEREICH[0]) & (f <= SH_BEREICH[1]))
    i = links = rechts = im[np.argmax(A[im])]
    while links > 0 and A[links - 1] >= A[i] / math.sqrt(2):
        links -= 1
    while rechts < len(A) - 1 and A[rechts + 1] >= A[i] / math.sqrt(2):
        rechts += 1
    y = A[i - 1:i + 2] ** 2
    d = 0.5 * (y[0] - y[2]) / (y[0] - 2 * y[1] + y[2]) if len(y) == 3 and y[0] - 2 * y[1] + y[2] < 0 else 0
    return f[i] + d * (f[1] - f[0]), A[i], (f[rechts] - f[links]) / 2


def superhump(lk, fenster):
    """Periodogram of the relative modulation in the window and its peak."""
    wahl = (lk["t"] >= fenster[0]) & (lk["t"] <= fenster[1])
    if wahl.sum() < 2 * PRO_BAHN:
        return None
    t, x = lk["t"][wahl], lk["rel"][wahl] - lk["rel"][wahl].mean()
    f, A = spektrum(x)
    fs, As, hw = spitze(f, A)
    c = np.sum(x * np.exp(-2j * math.pi * fs * t))
    # What is left at the orbital frequency once the sinusoid at fs is taken
    # out (its side lobes reach 1 cycle/orbit in a window of few orbits), and
    # t_max, a light maximum (orbits), from that sinusoid's phase.
    rest = x - 2 / len(x) * np.real(c * np.exp(2j * math.pi * fs * t))
    return {"t": t, "x": x, "L": lk["L"][wahl], "f": f, "A": A, "fs": fs, "As": As, "hw": hw,
            "A_orb": 2 * abs(np.sum(rest * np.exp(-2j * math.pi * t))) / len(x),
            "boden": float(np.median(A[(f >= 0.5) & (f <= 2.5)])),
            "t_max": -math.atan2(c.imag, c.real) / (2 * math.pi * fs),
            # The peak in either half of the window, as a check of its stability.
            "haelften": [spitze(*spektrum(x[h]))[0] for h in np.array_split(np.arange(len(x)), 2)]
            if t[-1] - t[0] >= 10 else []}


def phasen(ordner, b, sh, p_sh, praefix):
    """Four snapshots late in the run, about P_sh/4 apart (P_sh in orbits),
    drawn by scheibenbild: the disc through one superhump cycle."""
    dateien = akkdaten.sammle([os.path.join(ordner, "data", "Akk-OYCar-")])
    zeiten = np.array([int(d.rsplit("-", 1)[1]) for d in dateien]) / b.periode
    wahl = [int(np.argmin(abs(zeiten - (zeiten.max() - (3 - k) * p_sh / 4)))) for k in range(4)]
    t_ref = sh["t_max"] if sh else zeiten[wahl[0]]
    print("\n| picture | snapshot | orbits | superhump phase (0: %s) |\n|---|---|---|---|"
          % ("light maximum" if sh else "first picture; no light curve"))
    programm = os.path.join(os.environ.get("AKK_BUILD", os.path.join(HIER, "..", "..", "build")),
                            "tools", "scheibenbild")
    for k, i in enumerate(wahl):
        bild = "%s-%d.png" % (praefix, k + 1)
        print("| %s | %s | %.3f | %.3f |" % (bild, dateien[i], zeiten[i], ((zeiten[i] - t_ref) / p_sh) % 1))
        befehl = [programm, "--pixel", "280", "-p", os.path.join(ordner, "data", "OYCar.parameter"),
                  "-o", bild, dateien[i]]
        if os.access(programm, os.X_OK):
            subprocess.run(befehl, check=False, stdout=subprocess.DEVNULL)
        else:
            print("(no %s; draw with: %s)" % (programm, " ".join(befehl)), file=sys.stderr)


def zeichne(b, k, r, gw, pr, sh, ausgabe):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    fig, ax = plt.subplots(3, 2, figsize=(11, 9), constrained_layout=True)
    t = r["bahnen"]
    for y, stil, farbe, text in ((r["A1"], "-", "C3", "A1 of the disc"), (r["rauschen"], ":", "C3",
                                 "N$_{disc}^{-1/2}$"), (r["e_betrag"], "-", "C0", "|<e>| of the disc")):
        ax[0, 0].semilogy(t, y, stil, color=farbe, lw=1, label=text)
    for g, stil in zip(gw, ("k--", "k-.")):
        if "fit" in g and "grund" not in g:
            x = np.linspace(*g["fenster"], 50)
            ax[0, 0].semilogy(x, np.exp(np.polyval(g["fit"], x)), stil,
                              label="fit to %s: %.3f / orbit" % (g["name"].replace("\\", ""), g["fit"][0]))
    # The mean eccentricity starts at zero; below a tenth of the noise there is nothing to see.
    ax[0, 0].set_ylim(bottom=0.1 * np.nanmin(r["rauschen"]))
    if pr:
        ax[0, 1].plot(pr["t"], np.degrees(pr["w"]), "-", color="C7", lw=0.8, label="angle of <e> (non-rotating)")
        ax[0, 1].plot(pr["tf"], np.degrees(np.polyval(pr["k"], pr["tf"])), "k--",
                      label="fit: $\\omega_{prec}/\\Omega_{orb}$ = %.4f" % pr["v"])
    if sh:
        w = sh["t"] >= sh["t"][-1] - 5
        ax[1, 0].plot(sh["t"][w], 100 * (sh["L"][w] / sh["L"][w].mean() - 1), "-", color="C7", lw=0.8,
                      label="L / its mean - 1")
        ax[1, 0].plot(sh["t"][w], 100 * sh["x"][w], "-", color="C2", lw=1, label="L / running mean - 1")
        ax[1, 1].plot(sh["f"], 100 * sh["A"], "-", color="C2", lw=1)
        ax[1, 1].axvline(1, color="grey", ls=":", label="orbital frequency")
        ax[1, 1].axvline(sh["fs"], color="C3", ls="--", label="superhump: %.4f / orbit" % sh["fs"])
        ax[1, 1].set_xlim(0, 2.5)
    else:
        for a in ax[1]:
            a.text(0.5, 0.5, "no light curve", ha="center", transform=a.transAxes)
    ax[2, 0].plot(t, r["N"], "-", label="all particles")
    ax[2, 0].plot(t, r["N_scheibe"], "-", label="disc (e < %g)" % strom.E_SCHEIBE)
    ax[2, 1].plot(t, r["R_50"] / b.a, "-", label="R$_{50}$")
    ax[2, 1].plot(t, r["R_95"] / b.a, "-", label="R$_{95}$")
    ax[2, 1].axhline(k["r_31"] / b.a, color="grey", ls="--", label="3:1 resonance")
    ax[2, 1].axhline(k["R_tid"] / b.a, color="grey", ls="-.", label="0.9 R$_L$")
    for a, y, titel in zip(ax.flat, ("amplitude", "degrees", "%", "semi-amplitude [%]", "particles", "radius / a"),
                           ("(a) growth of the eccentric mode", "(b) precession of <e>", "(c) light curve, last "
                            "orbits", "(d) periodogram" + (", %.1f–%.1f orbits" % (sh["t"][0], sh["t"][-1])
                                                           if sh else ""), "(e) particles", "(f) size of the disc")):
        a.set(xlabel="cycles per orbit" if a is ax[1, 1] else "binary orbits", ylabel=y, title=titel)
        a.grid(alpha=0.3)
        if a.get_legend_handles_labels()[0]:
            a.legend(fontsize="small")
    fig.savefig(ausgabe, dpi=110)
    plt.close(fig)


def zahl(x, form="%.4f"):
    return form % x if np.isfinite(x) else "–"


def tabellen(a, b, k, vg, r):
    """Prints the tables; returns the fits the picture needs."""
    t = r["bahnen"]
    try:
        with open(os.path.join(a.ordner, "wandzeit.txt")) as f:
            scheiben = [float(z) for z in f.read().split()]
        wand = "%.0f s in %d slice(s)" % (sum(scheiben), len(scheiben))
    except (OSError, ValueError):
        wand = "?"
    print("Binary: q = m2/m1 = %.4f, a = %.4f Rsun, P_orb = %g s; r_31 = %.4f a, 0.9 R_L = %.4f a. %d snapshots "
          "(every %d.) over %.2f orbits; wall time %s. Noise level N_disc^-1/2 at the end: %.4f."
          % (vg["q"], b.a, b.periode, k["r_31"] / b.a, k["R_tid"] / b.a, len(t), a.jede, t[-1] - t[0], wand,
             r["rauschen"][-1]))
    print("\n| orbits | N | disc (e<0.5) | \\|<e>\\| | angle of <e> [°] | A1 | N_disc^-1/2 | R_50/a | R_95/a |")
    print("|---|---|---|---|---|---|---|---|---|")
    stufe = np.floor(t / a.zeilen + 1e-6) if a.zeilen > 0 else np.arange(len(t))
    for i in np.flatnonzero(np.r_[True, np.diff(stufe) > 0] | (np.arange(len(t)) == len(t) - 1)):
        print("| %.2f | %d | %d | %s | %s | %s | %.4f | %s | %s |"
              % (t[i], r["N"][i], r["N_scheibe"][i], zahl(r["e_betrag"][i]),
                 zahl(math.degrees(r["e_winkel"][i]) % 360, "%.1f"), zahl(r["A1"][i]), r["rauschen"][i],
                 zahl(r["R_50"][i] / b.a, "%.3f"), zahl(r["R_95"][i] / b.a, "%.3f")))

    gw = wachstum(r, a.wachstum)
    print("\n| growth of | saturation (median, last third) | window [orbits] | rate [1/orbit] "
          "| rate / Omega_orb | e-folding time [orbits] |\n|---|---|---|---|---|---|")
    for g in gw:
        if "grund" in g:
            print("| %s | %.4f | %s |  |  |  |" % (g["name"], g["satt"], g["grund"]))
        else:
            print("| %s | %.4f | %.2f–%.2f%s | %.3f | %.4f | %.2f |"
                  % (g["name"], g["satt"], *g["fenster"], "" if a.wachstum else " (found)", g["fit"][0],
                     g["fit"][0] / (2 * math.pi), 1 / g["fit"][0]))

    fenster = tuple(a.praezession) if a.praezession else ((t[0] + t[-1]) / 2, t[-1])
    pr = praezession(r, fenster)
    if pr is None:
        print("\nPrecession: too few snapshots with a disc in %.2f–%.2f orbits." % fenster)
    else:
        print("\nPrecession of <e>, %.2f–%.2f orbits: omega_prec/Omega_orb = %.5f (rms residual of the angle "
              "%.1f°); %s" % (*fenster, pr["v"], pr["rest"], "eps_prec = %.4f, P_sh = %.1f s."
                              % (pr["eps"], b.periode * (1 + pr["eps"])) if np.isfinite(pr["eps"]) else
                              "not a slow prograde precession (near 1: <e> is held fixed in the binary's frame)."))

    datei = os.path.join(a.ordner, "lichtkurve.tsv")
    lk = lies_lichtkurve(datei, b.periode) if os.path.exists(datei) else None
    sh = superhump(lk, fenster) if lk else None
    if sh is None:
        print("\nLight curve: %s." % ("no lichtkurve.tsv" if not os.path.exists(datei) else "too few rows" if
                                       lk is None else "less than two orbits of it in %.2f–%.2f orbits" % fenster))
    else:
        print("\nLight curve: %d rows, %.2f–%.2f orbits, averaged in bins of 1/%d orbit, divided by a running "
              "mean over %g orbits. Periodogram over %.2f–%.2f orbits:\n\n| quantity | value |\n|---|---|"
              % (lk["zeilen"], lk["t"][0], lk["t"][-1], PRO_BAHN, TREND_BAHNEN, sh["t"][0], sh["t"][-1]))
        zeilen = [("highest peak in %g–%g cycles/orbit" % SH_BEREICH,
                   "%.4f ± %.4f (half width at half power)" % (sh["fs"], sh["hw"])),
                  ("P_sh", "%.1f s" % (b.periode / sh["fs"])),
                  ("eps_light = (P_sh − P_orb)/P_orb",
                   "%.4f ± %.4f" % (1 / sh["fs"] - 1, sh["hw"] / sh["fs"] ** 2)),
                  ("eps_light in the two halves of the window",
                   ", ".join("%.4f" % (1 / f - 1) for f in sh["haelften"])),
                  ("semi-amplitude of the peak (L/trend − 1)", "%.3f %%" % (100 * sh["As"])),
                  ("semi-amplitude at 1 cycle/orbit, the peak's sinusoid taken out", "%.3f %%" % (100 * sh["A_orb"])),
                  ("median semi-amplitude, 0.5–2.5 cycles/orbit", "%.3f %%" % (100 * sh["boden"]))]
        print("\n".join("| %s | %s |" % z for z in zeilen if z[1]))

    zeilen = [("observed relation 0.18 q + 0.29 q² (Patterson et al. 2005)", vg["eps_pat"],
               vg["eps_pat"] / (1 + vg["eps_pat"])),
              ("free-particle precession at r_31 = %.4f a (Hirose & Osaki 1990)" % vg["r31"], vg["eps_dyn"],
               vg["w_dyn"])]
    if pr:
        zeilen.append(("this run: precession of <e>", pr["eps"], pr["v"]))
    if sh:
        zeilen.append(("this run: light curve", 1 / sh["fs"] - 1, 1 - sh["fs"]))
    print("\n| comparison | eps | omega_prec/Omega_orb |\n|---|---|---|")
    print("\n".join("| %s | %s | %.4f |" % (z[0], zahl(z[1]), z[2]) for z in zeilen))
    return gw, pr, sh


def main(argumente=None):
    ap = argparse.ArgumentParser(description="Evaluates a superhump run (experimente/superhump/lauf.sh "
                                             "or experimente/stromscheibe/lauf.sh).")
    ap.add_argument("ordner", metavar="FOLDER", help="the run folder")
    ap.add_argument("-o", "--ausgabe", metavar="PNG", help="picture to write")
    ap.add_argument("--jede", type=int, default=1, metavar="K",
                    help="use every K-th snapshot (default 1); keep several an orbit, or the angle of a "
                         "disc held fixed in the binary's frame cannot be unwrapped")
    ap.add_argument("--wachstum", type=float, nargs=2, metavar=("FROM", "TO"),
                    help="orbits over which to fit the exponential growth (default: found from the data)")
    ap.add_argument("--praezession", type=float, nargs=2, metavar=("FROM", "TO"),
                    help="orbits for the precession fit and the periodogram (default: the last half)")
    ap.add_argument("--zeilen", type=float, default=1, metavar="ORBITS",
                    help="a table row every this many orbits (default 1; 0: every snapshot used)")
    ap.add_argument("--phasen", metavar="PNG_PREFIX", help="pick four late snapshots P_sh/4 apart and draw "
                    "them with build/tools/scheibenbild as PNG_PREFIX-1.png ... -4.png")
    a = ap.parse_args(argumente)
    if a.jede < 1:
        ap.error("--jede must be 1 or more")
    try:
        b = akkdaten.lies_binaer(os.path.join(a.ordner, "data", "OYCar.parameter"))
        r = lies_reihen(a.ordner, b, a.jede)
        if len(r["t"]) < 8 or np.ptp(r["bahnen"]) < 1:
            print("auswertung.py: %s: %d snapshots over %.2f orbits; at least 8 over an orbit are needed"
                  % (a.ordner, len(r["t"]), np.ptp(r["bahnen"]) if len(r["t"]) else 0), file=sys.stderr)
            return 1
        k = strom.kenngroessen(b)
        gw, pr, sh = tabellen(a, b, k, vergleich(b), r)
        if a.phasen:
            p_sh = 1 / sh["fs"] if sh else 1 + pr["eps"] if pr and np.isfinite(pr["eps"]) else 1
            phasen(a.ordner, b, sh, p_sh, a.phasen)
        if a.ausgabe:
            zeichne(b, k, r, gw, pr, sh, a.ausgabe)
    except (OSError, ValueError) as f:
        print("auswertung.py: %s" % f, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
