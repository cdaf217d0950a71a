#!/usr/bin/python3
"""Evaluation of a run of experimente/stromscheibe/lauf.sh: the disc that the
stream through L1 builds around the white dwarf.

    /usr/bin/python3 experimente/stromscheibe/auswertung.py FOLDER [-o PICTURE] [-d TABLE]

Reads FOLDER/data/OYCar.parameter, the snapshots FOLDER/data/Akk-OYCar-*, the
driver's log FOLDER/akkstrom.log (its removal lines) and optionally the table
of scheibendiagnose for the same snapshots (-d). Prints Markdown tables to
standard output and draws one picture of four panels (-o).

Disc and stream. A particle belongs to the disc when its osculating Kepler
orbit about the primary has an eccentricity below 0.5: gas on its way from L1
falls in on orbits of e = 0.6 to 0.9 (apocentre near L1, pericentre near the
circularisation radius), gas that has joined the disc moves on nearly circular
ones. Radii and the m = 1 mode of the disc are taken over disc particles only;
the stream would otherwise add a fixed m = 1 signal toward L1 and a tail of
large radii.
"""

import argparse
import math
import os
import re
import sys

HIER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HIER, "..", "..", "tools", "python"))

import akkdaten  # noqa: E402
import numpy as np  # noqa: E402

# The simulator's fixed particle mass [Msun] and inner removal radius eta [Rsun].
M_TEILCHEN = 1.7281541e-16
ETA = 0.05
E_SCHEIBE = 0.5


def roche_radius(q):
    """Eggleton (1983): radius of the sphere with the volume of the Roche lobe
    of the star of mass ratio q (its mass over the other's), in units of a."""
    q3 = q ** (1 / 3)
    return 0.49 * q3 * q3 / (0.6 * q3 * q3 + math.log(1 + q3))


def kenngroessen(b):
    """Radii of the binary in Rsun against which the disc is measured."""
    q = b.m2 / b.m1
    return {
        # Circularisation radius, r/a = (1 + q)(0.500 - 0.227 log q)^4
        # (Frank, King & Raine 2002, eq. 4.20): a ring with the specific
        # angular momentum the gas has at L1.
        "r_circ": b.a * (1 + q) * (0.500 - 0.227 * math.log10(q)) ** 4,
        # Closest approach of the free stream and the radius of the ring it
        # would form with the angular momentum it keeps there (Lubow & Shu
        # 1975, fits of Ulrich & Burger 1976): r/a = 0.0488 q^-0.464 and
        # 0.0859 q^-0.426.
        "r_min": b.a * 0.0488 * q ** -0.464,
        "r_d": b.a * 0.0859 * q ** -0.426,
        # The 3:1 resonance with the orbit, (1/3)^(2/3) (1 + q)^(-1/3) a.
        "r_31": b.a * 3 ** (-2 / 3) * (1 + q) ** (-1 / 3),
        # The primary's Roche lobe and the tidal truncation radius 0.9 R_L
        # (Paczynski 1977; Warner 1995, sec. 3.5).
        "R_L": b.a * roche_radius(b.m1 / b.m2),
        "R_tid": 0.9 * b.a * roche_radius(b.m1 / b.m2),
    }


def bahnelemente(s, b):
    """Per particle: distance R from the primary's axis, the osculating
    eccentricity vector about the primary (in the co-rotating axes; an (N, 3)
    array), its length, and the specific angular momentum about the
    primary's axis, j = d_x u_y - d_y u_x. The velocity relative to the
    primary in a non-rotating frame is u = v + omega z x d, d = r - x1."""
    d = s.r.copy()
    d[:, 0] -= b.x1
    u = s.v.copy()
    u[:, 0] -= b.omega * d[:, 1]
    u[:, 1] += b.omega * d[:, 0]
    gm = akkdaten.G * b.m1
    abstand = np.linalg.norm(d, axis=1)
    evek = np.cross(u, np.cross(d, u)) / gm - d / abstand[:, None]
    j = d[:, 0] * u[:, 1] - d[:, 1] * u[:, 0]
    return np.hypot(d[:, 0], d[:, 1]), evek, np.linalg.norm(evek, axis=1), j


def quantil(werte, anteil):
    """The smallest value with the given share of the values at or below it."""
    if len(werte) == 0:
        return math.nan
    w = np.sort(werte)
    return w[max(0, math.ceil(anteil * len(w)) - 1)]


def entfernungen(log):
    """Removal lines of the driver: (time, squared distance from the primary,
    eta^2, rMax^2) for every particle taken out."""
    muster = re.compile(r"zur Zeit: (\S+) : (\S+) < abst_sqr < (\S+)ist : (\S+)")
    aus = []
    with open(log, encoding="latin-1") as f:
        for zeile in f:
            if "Entferne Teilchen" in zeile:
                m = muster.search(zeile)
                if m is None:
                    raise akkdaten.AkkDatenFehler("%s: removal line of unknown form: %s" % (log, zeile.strip()))
                aus.append(tuple(float(x) for x in (m.group(1), m.group(4), m.group(2), m.group(3))))
    return np.array(aus, dtype=float).reshape(-1, 4)


def werte(ordner):
    """Everything the tables and the picture need, one entry per snapshot."""
    parameter = os.path.join(ordner, "data", "OYCar.parameter")
    b = akkdaten.lies_binaer(parameter)
    rate = akkdaten.lies_schluessel(parameter, "Stromrate")["Stromrate"]
    dateien = akkdaten.sammle([os.path.join(ordner, "data", "Akk-OYCar-")])
    schnappschuesse = sorted((akkdaten.lies_schnappschuss(d) for d in dateien), key=lambda s: s.zeit)
    weg = entfernungen(os.path.join(ordner, "akkstrom.log"))
    t0 = schnappschuesse[0].zeit
    reihen = []
    for s in schnappschuesse:
        R, evek, e, j = bahnelemente(s, b)
        scheibe = e < E_SCHEIBE
        Rs = R[scheibe]
        phi = np.arctan2(s.r[scheibe, 1], s.r[scheibe, 0] - b.x1)
        n = len(Rs)
        summe = np.exp(1j * phi).sum()
        evek_mittel = evek[scheibe].mean(axis=0) if n else np.full(3, math.nan)
        bis = weg[:, 0] <= s.zeit * (1 + 1e-12)
        innen = np.count_nonzero(bis & (weg[:, 1] < weg[:, 2]))
        aussen = np.count_nonzero(bis & (weg[:, 1] > weg[:, 3]))
        reihen.append({
            "t": s.zeit, "bahnen": (s.zeit - t0) / b.periode, "N": len(s), "N_scheibe": n,
            # The radius of a circular orbit with the disc's mean specific
            # angular momentum: where the gas would settle without viscosity.
            "r_j": j[scheibe].mean() ** 2 / (akkdaten.G * b.m1) if n else math.nan,
            "R_50": quantil(Rs, 0.5), "R_90": quantil(Rs, 0.9), "R_95": quantil(Rs, 0.95),
            "A1": abs(summe) / n if n else math.nan,
            "phase1": math.degrees(math.atan2(summe.imag, summe.real)) if n else math.nan,
            "e_mittel": math.hypot(evek_mittel[0], evek_mittel[1]),
            "e_phase": math.degrees(math.atan2(evek_mittel[1], evek_mittel[0])),
            "akkretiert": innen, "verloren": aussen,
            # Particles the stream has brought: the initial disc is empty, so
            # those in the snapshot and those removed before it.
            "eingespeist": len(s) + innen + aussen,
            # akkstrom's count rule, floor(rate (t - t0) / m); the particles of
            # the step that ends at a snapshot are appended just after it is
            # written, so this may be ahead by those (one or two).
            "regel": math.floor(rate * (s.zeit - t0) / M_TEILCHEN),
            "R_scheibe": Rs,
        })
    return b, rate, schnappschuesse, reihen, weg


def praezession(zeiten, evek, b):
    """Apsidal precession of the free eccentricity of the disc, from its mean
    eccentricity vector E(t) (complex, e_x + i e_y in the co-rotating axes) at
    the given times. E is fitted as a part fixed in the binary's frame that
    drifts slowly as the disc grows, F0 + F1 x, plus a free part that turns
    backward in this frame and decays, A exp(-(i nu + gamma) x), x being the
    time from the middle of the window in orbits. A free eccentric disc
    precesses forward at omega_prec in a non-rotating frame, so it turns at
    nu = omega - omega_prec here, and the superhump period 2 pi / nu gives
    eps = P_sh/P_orb - 1 = omega/nu - 1. nu is searched over 0.8 to 1.2 omega
    in steps of 0.001 omega, gamma over -0.2 to 1 per orbit in steps of 0.05;
    F0, F1 and A by least squares. Returns eps, the decay rate per orbit,
    |A|, |F0| and the rms residual, or None for fewer than eight points."""
    zeiten = np.asarray(zeiten, dtype=float)
    evek = np.asarray(evek, dtype=complex)
    if len(zeiten) < 8:
        return None
    x = (zeiten - zeiten.mean()) / b.periode
    bestes = None
    for nu in np.linspace(0.8, 1.2, 401) * 2 * math.pi:       # per orbit
        for gamma in np.linspace(-0.2, 1.0, 25):
            m = np.stack([np.ones_like(x), x, np.exp(-(1j * nu + gamma) * x)], axis=1)
            c = np.linalg.lstsq(m, evek, rcond=None)[0]
            rest = float((np.abs(evek - m @ c) ** 2).sum())
            if bestes is None or rest < bestes[0]:
                bestes = (rest, nu, gamma, c)
    rest, nu, gamma, c = bestes
    return {"eps": 2 * math.pi / nu - 1, "daempfung": gamma, "frei": abs(c[2]), "fest": abs(c[0]),
            "rest": math.sqrt(rest / len(x))}


def zeichne(b, k, reihen, diagnose, ausgabe):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    t = np.array([r["bahnen"] for r in reihen])
    fig, ax = plt.subplots(2, 2, figsize=(12, 8.5), constrained_layout=True)

    # Surface density of the disc at a few times.
    profil = ax[0, 0]
    kanten = np.linspace(0, 1.0 * k["R_L"], 36)
    mitten = (kanten[1:] + kanten[:-1]) / 2
    ende = t[-1]
    wahl = [x for x in (0.25, 0.5, 1, 2, 4, 7, 10, 15, 20, 30) if x <= ende + 1e-9]
    farben = plt.cm.viridis(np.linspace(0, 0.9, len(wahl)))
    for x, farbe in zip(wahl, farben):
        r = reihen[int(np.argmin(abs(t - x)))]
        n, _ = np.histogram(r["R_scheibe"], bins=kanten)
        sigma = n * M_TEILCHEN / (math.pi * (kanten[1:] ** 2 - kanten[:-1] ** 2))
        profil.plot(mitten, np.where(sigma > 0, sigma, np.nan), "-", color=farbe,
                    label="%.3g orbits" % r["bahnen"])
    profil.set_yscale("log")
    profil.set_xlabel("R: distance from the primary's axis [R$_\\odot$]")
    profil.set_ylabel("surface density of the disc [M$_\\odot$/R$_\\odot^2$]")
    profil.set_title("disc particles (e < %g)" % E_SCHEIBE)

    # Radii of the disc over time.
    radien = ax[0, 1]
    for name, farbe in (("R_50", "C0"), ("R_90", "C1"), ("R_95", "C3")):
        radien.plot(t, [r[name] for r in reihen], "-", color=farbe,
                    label="R$_{%s}$: %s %% of the disc inside" % (name[2:], name[2:]))
    for linie, a in ((profil.axvline, profil), (radien.axhline, radien)):
        for name, stil, text in (("r_circ", ":", "r$_{circ}$"), ("r_31", "--", "3:1 resonance"),
                                 ("R_tid", "-.", "0.9 R$_L$ (tidal)"), ("R_L", "-", "R$_L$ (Eggleton)")):
            linie(k[name], color="grey", linestyle=stil, linewidth=1, label=text)
        a.grid(alpha=0.3)
    profil.legend(fontsize="small", loc="lower center", ncol=2)
    radien.legend(fontsize="small", loc="lower right", ncol=2)
    radien.set_xlabel("binary orbits")
    radien.set_ylabel("radius [R$_\\odot$]")
    radien.set_title("size of the disc")

    # The m = 1 mode.
    mode = ax[1, 0]
    if diagnose is not None:
        mode.plot(diagnose["orbits"], diagnose["A1"], "-", color="C7", linewidth=0.8,
                  label="A1, all particles (scheibendiagnose)")
    mode.plot(t, [r["A1"] for r in reihen], "-", color="C3", label="A1, disc particles")
    mode.plot(t, [r["e_mittel"] for r in reihen], "-", color="C0",
              label="|mean eccentricity vector| of the disc")
    mode.plot(t, [1 / math.sqrt(max(r["N_scheibe"], 1)) for r in reihen], ":", color="C3",
              label="N$_{disc}^{-1/2}$: random azimuths")
    mode.set_yscale("log")
    mode.set_xlabel("binary orbits")
    mode.set_ylabel("amplitude")
    mode.set_title("eccentric (m = 1) mode")
    mode.grid(alpha=0.3)
    mode.legend(fontsize="small")

    # Particle budget.
    bilanz = ax[1, 1]
    for name, text, farbe in (("eingespeist", "injected through L1", "k"), ("N", "in the simulation", "C0"),
                              ("N_scheibe", "in the disc (e < %g)" % E_SCHEIBE, "C2"),
                              ("akkretiert", "accreted (inside eta)", "C3"),
                              ("verloren", "lost beyond rMax", "C1")):
        bilanz.plot(t, [r[name] for r in reihen], "-", color=farbe, label=text)
    bilanz.set_xlabel("binary orbits")
    bilanz.set_ylabel("particles")
    bilanz.set_title("particle budget")
    bilanz.grid(alpha=0.3)
    bilanz.legend(fontsize="small")
    fig.savefig(ausgabe, dpi=90)
    plt.close(fig)


def tabellen(b, rate, k, reihen, weg, wandzeit):
    z = []
    a = b.a
    z.append("Binary: a = %.4f Rsun, q = m2/m1 = %.4f, P_orb = %g s; stream %.3g Msun/s "
             "(one particle every %.2f s)." % (a, b.m2 / b.m1, b.periode, rate, M_TEILCHEN / rate))
    z.append("")
    z.append("| radius | R☉ | /a | source |")
    z.append("|---|---|---|---|")
    for name, quelle in (("r_min", "closest approach of the stream, 0.0488 q^-0.464 (Lubow & Shu 1975; "
                                   "Ulrich & Burger 1976)"),
                         ("r_d", "ring of the stream's angular momentum at r_min, 0.0859 q^-0.426 (same)"),
                         ("r_circ", "circularisation radius (1+q)(0.500-0.227 log q)^4 (Frank, King & Raine "
                                    "2002, eq. 4.20)"),
                         ("r_31", "3:1 resonance, 3^(-2/3) (1+q)^(-1/3)"),
                         ("R_tid", "tidal truncation, 0.9 R_L"),
                         ("R_L", "primary's Roche lobe (Eggleton 1983)")):
        z.append("| %s | %.4f | %.4f | %s |" % (name, k[name], k[name] / a, quelle))
    z.append("")
    z.append("| orbits | t [s] | N | disc (e<0.5) | r_j | R_50 | R_90 | R_95 | R_95/a | A1 all | A1 disc "
             "| N_disc^-1/2 | \\|<e>\\| | accreted | lost outside |")
    z.append("|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|")
    auswahl = [r for r in reihen if r["bahnen"] > 0 and abs(r["bahnen"] * 2 - round(r["bahnen"] * 2)) < 1e-6]
    for r in auswahl:
        z.append("| %.1f | %.0f | %d | %d | %.3f | %.3f | %.3f | %.3f | %.3f | %s | %.3f | %.3f | %.3f | %d | %d |"
                 % (r["bahnen"], r["t"], r["N"], r["N_scheibe"], r["r_j"], r["R_50"], r["R_90"], r["R_95"],
                    r["R_95"] / a, "%.3f" % r["A1_alle"] if "A1_alle" in r else "–", r["A1"],
                    1 / math.sqrt(max(r["N_scheibe"], 1)), r["e_mittel"], r["akkretiert"], r["verloren"]))
    letzte = reihen[-1]
    # Removals up to the last snapshot (a log of a stopped run goes on past it).
    innen, aussen = letzte["akkretiert"], letzte["verloren"]
    z.append("")
    z.append("Budget at %.4g s: in the simulation %d + accreted %d + lost %d = injected %d (count rule "
             "floor(rate t / m): %d); disc (e < %g) %d, on its way in %d. Wall time %s s."
             % (letzte["t"], letzte["N"], innen, aussen, letzte["eingespeist"], letzte["regel"],
                E_SCHEIBE, letzte["N_scheibe"], letzte["N"] - letzte["N_scheibe"], wandzeit))
    if not 0 <= letzte["regel"] - letzte["eingespeist"] <= 2:
        z.append("The budget does not match the count rule: the log lacks removal lines, "
                 "or the disc did not start empty.")
    # Accretion rate over the last two orbits against the feeding rate.
    ende = letzte["t"]
    spaet = weg[(weg[:, 0] > ende - 2 * b.periode) & (weg[:, 0] <= ende) & (weg[:, 1] < weg[:, 2])]
    z.append("Accreted in the last 2 orbits: %d particles, %.3g of the injection rate."
             % (len(spaet), len(spaet) * M_TEILCHEN / (2 * b.periode) / rate))
    return "\n".join(z)


def main(argumente=None):
    ap = argparse.ArgumentParser(description="Evaluates a run of experimente/stromscheibe/lauf.sh.")
    ap.add_argument("ordner", metavar="FOLDER", help="the run folder")
    ap.add_argument("-o", "--ausgabe", help="picture to write (PNG)")
    ap.add_argument("-d", "--diagnose", help="table of scheibendiagnose for the same snapshots")
    ap.add_argument("--praezession", type=float, nargs=2, action="append", metavar=("FROM", "TO"),
                    help="fit the apsidal precession of the disc's free eccentricity between these "
                         "orbits (may be given several times)")
    a = ap.parse_args(argumente)
    try:
        b, rate, _, reihen, weg = werte(a.ordner)
        diagnose = akkdaten.lies_diagnose(a.diagnose) if a.diagnose else None
        if diagnose is not None:
            for r in reihen:
                i = np.flatnonzero(np.isclose(diagnose["time_s"], r["t"], rtol=0, atol=1e-6 * b.periode))
                if len(i):
                    r["A1_alle"] = diagnose["A1"][i[0]]
        k = kenngroessen(b)
        try:
            with open(os.path.join(a.ordner, "wandzeit.txt")) as f:
                wandzeit = f.read().strip()
        except OSError:
            wandzeit = "?"
        try:
            with open(os.path.join(a.ordner, "rechenzeit.txt")) as f:
                wandzeit += " (CPU, user and system: %s)" % f.read().split("\n")[1].strip()
        except (OSError, IndexError):
            pass
        print(tabellen(b, rate, k, reihen, weg, wandzeit))
        if a.praezession:
            print()
            print("| orbits | eps = P_sh/P_orb - 1 | decay of the free part [1/orbit] | free \\|e\\| (middle) "
                  "| fixed \\|e\\| (middle) | rms residual |")
            print("|---|---|---|---|---|---|")
        for von, bis in a.praezession or []:
            wahl = [r for r in reihen if von - 1e-9 <= r["bahnen"] <= bis + 1e-9]
            p = praezession([r["t"] for r in wahl],
                            [r["e_mittel"] * np.exp(1j * math.radians(r["e_phase"])) for r in wahl], b)
            if p is None:
                print("| %g–%g | too few snapshots | | | | |" % (von, bis))
            else:
                print("| %g–%g | %.3f | %.2f | %.4f | %.4f | %.4f |"
                      % (von, bis, p["eps"], p["daempfung"], p["frei"], p["fest"], p["rest"]))
        if a.ausgabe:
            zeichne(b, k, reihen, diagnose, a.ausgabe)
    except (OSError, ValueError) as f:
        print("auswertung.py: %s" % f, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
