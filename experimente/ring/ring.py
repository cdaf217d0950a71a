#!/usr/bin/python3
"""The viscous ring at better resolution: effective viscosity of the SPH disc
with (a) the physical viscosity only and (b) the artificial viscosity only,
against the Lynden-Bell & Pringle (1974) Green's function (Pringle 1981,
ARA&A 19, 137, eq. 3.13). Documented in docs/ring.md; the set-up is that of
tests/validation/RingValidierung.cpp (ring at R0 = 0.13 Rsun around the white
dwarf of OY Car, tau0 = 0.05, planar, pressure on, equilibrium start), run by
build/experimente/ring/ringlauf.

    /usr/bin/python3 experimente/ring/ring.py [--bau build] [--arbeit DIR] [--bild PNG]

prints a Markdown table of nu_eff against the input and writes the picture of
Sigma(R). Each run is one ringlauf process on OMP_NUM_THREADS threads (1 unless
set), the longest under 3 minutes on one core; --wiederverwenden takes the runs
already in the scratch folder. Needs numpy and matplotlib.
Units: solar masses, solar radii (Rsun), seconds.
"""

import argparse
import math
import os
import subprocess
import sys
import time

import numpy as np

R0, TAU0, NU_A = 0.13, 0.05, 8e-8
G, M1 = 3.9371199385708905e-7, 0.685
OMEGA0 = math.sqrt(G * M1 / R0**3)  # Kepler at R0
Q0 = 1.5 * OMEGA0  # shear rate |R dOmega/dR| at R0


# --- the Green's function ----------------------------------------------------

def ive14(z):
    """e^-z I_1/4(z) for z >= 0 (array): power series below 25, asymptotic above."""
    z = np.asarray(z, dtype=float)
    aus = np.empty_like(z)
    k = z < 25
    zk = z[k] / 2
    term = zk**0.25 / math.gamma(1.25)
    summe = term.copy()
    for j in range(1, 120):
        term = term * zk * zk / (j * (j + 0.25))
        summe += term
    aus[k] = summe * np.exp(-z[k])
    zg = z[~k]
    term = np.ones_like(zg)
    summe = np.ones_like(zg)
    for j in range(1, 16):
        term = term * -(0.25 - (2 * j - 1) ** 2) / (j * 8 * zg)
        summe += term
    aus[~k] = summe / np.sqrt(2 * math.pi * zg)
    return aus


def sigma_lbp(x, tau):
    """Sigma(x, tau) in units of M / (pi R0^2); 0 for x <= 0."""
    x = np.asarray(x, dtype=float)
    s = np.zeros_like(x)
    p = x > 0
    s[p] = x[p] ** -0.25 / tau * np.exp(-((1 - x[p]) ** 2) / tau) * ive14(2 * x[p] / tau)
    return s


# --- the continuum: the same cut start, evolved exactly ----------------------

def kontinuum_verhaeltnis(h, nu, t_ende, intervalle, abgeschnitten=0.01):
    """nu_eff / nu that the fit below finds on the exact evolution (the diffusion
    equation dSigma/dtau = 1/(4x) d/dx[x^1/2 d/dx(x^1/2 Sigma)], Crank-Nicolson) of
    the ring's start, the profile at tau0 cut at the 0.5 % and 99.5 % points of its
    mass: the fit's own share of the result."""
    x = np.linspace(0.005, 2.5, 2500)
    dx = x[1] - x[0]
    s = sigma_lbp(x, TAU0)
    f = np.cumsum(2 * x * s * dx)
    s[(f < abgeschnitten / 2) | (f > 1 - abgeschnitten / 2)] = 0
    masse = np.sum(2 * x * s * dx)
    # L s at the inner points, Sigma = 0 at both ends.
    sq, sqh = np.sqrt(x), np.sqrt(0.5 * (x[1:] + x[:-1]))
    n = len(x)
    unten, mitte, oben = np.zeros(n), np.zeros(n), np.zeros(n)
    i = np.arange(1, n - 1)
    c = 1 / (4 * x[i] * dx * dx)
    unten[i], oben[i] = c * sqh[i - 1] * sq[i - 1], c * sqh[i] * sq[i + 1]
    mitte[i] = -c * (sqh[i] + sqh[i - 1]) * sq[i]
    dtau_ges = 12 * nu * t_ende / R0**2
    schritte = 100 * intervalle
    dt = dtau_ges / schritte

    def anwenden(v, faktor):  # (1 + faktor L) v
        w = v + faktor * mitte * v
        w[1:] += faktor * unten[1:] * v[:-1]
        w[:-1] += faktor * oben[:-1] * v[1:]
        return w

    a, b, cc = -0.5 * dt * unten, 1 - 0.5 * dt * mitte, -0.5 * dt * oben

    def loese(d):  # Thomas algorithm for (1 - dt/2 L) s = d
        cp, dp = np.zeros(n), np.zeros(n)
        cp[0], dp[0] = cc[0] / b[0], d[0] / b[0]
        for k in range(1, n):
            m = b[k] - a[k] * cp[k - 1]
            cp[k] = cc[k] / m
            dp[k] = (d[k] - a[k] * dp[k - 1]) / m
        out = np.zeros(n)
        out[-1] = dp[-1]
        for k in range(n - 2, -1, -1):
            out[k] = dp[k] - cp[k] * out[k + 1]
        return out

    fit = Anpassung(h, masse, 3 * math.sqrt((TAU0 + dtau_ges) / 2))
    taus = []
    for k in range(intervalle + 1):
        if k:
            for _ in range(schritte // intervalle):
                s = loese(anwenden(s, 0.5 * dt))
        fit.beobachtet = fit.glaette(x, 2 * x * s * dx)
        taus.append(fit.tau(TAU0 + dtau_ges * k / intervalle))
    t = np.linspace(0, t_ende, intervalle + 1)
    return np.polyfit(t, taus, 1)[0] * R0**2 / 12 / nu


class Anpassung:
    """The test's fit: mass per unit x smoothed by a Gaussian of rms width h,
    least squares over |x - 1| < fenster, tau the one parameter."""

    def __init__(self, h, masse, fenster):
        self.b, self.masse = h / R0, masse
        self.xg = np.linspace(1 - fenster, 1 + fenster, 150)
        self.xq = np.linspace(1 - fenster - 6 * self.b, 1 + fenster + 6 * self.b, 601)
        self.beobachtet = None

    def glaette(self, x, m):
        u = (self.xg[:, None] - x[None, :]) / self.b
        return (np.exp(-0.5 * u * u) @ m) / (math.sqrt(2 * math.pi) * self.b)

    def modell(self, tau):
        dq = self.xq[1] - self.xq[0]
        w = np.full(len(self.xq), dq)
        w[[0, -1]] *= 0.5
        return self.glaette(self.xq, 2 * self.xq * sigma_lbp(self.xq, tau) * self.masse * w)

    def tau(self, schaetzung):
        a, e = math.log(schaetzung / 5), math.log(schaetzung * 5)
        g = (math.sqrt(5) - 1) / 2
        f = lambda lt: np.sum((self.beobachtet - self.modell(math.exp(lt))) ** 2)
        c1, c2 = e - g * (e - a), a + g * (e - a)
        f1, f2 = f(c1), f(c2)
        while e - a > 1e-7:
            if f1 < f2:
                e, c2, f2 = c2, c1, f1
                c1 = e - g * (e - a)
                f1 = f(c1)
            else:
                a, c1, f1 = c1, c2, f2
                c2 = a + g * (e - a)
                f2 = f(c2)
        return math.exp((a + e) / 2)


# --- the artificial viscosity's shear viscosity ------------------------------

def av_koeffizienten():
    """nu = alpha c h C_alpha + beta h^2 q C_beta for a planar layer sheared at rate q,
    with the project's Pi (only approaching pairs, mu = h v.r / (r^2 + 0.01 h^2),
    c and rho the pair's means) and the cubic spline of support h: the pair forces'
    momentum flux. With 0.01 h^2 -> 0, C_alpha = 1/16 and C_beta = 1/(12 pi); all pairs
    would give 1/8 (in 3D 1/10, the usual estimate, and 1/20 for approaching pairs)."""
    r = (np.arange(200000) + 0.5) / 200000  # h = 1
    dw = np.where(r <= 0.5, 12 * r - 18 * r * r, 6 * (1 - r) ** 2) * 8 / math.pi  # |W'|
    w = np.where(r <= 0.5, 1 - 6 * r * r + 6 * r**3, 2 * (1 - r) ** 3) * 8 / math.pi
    dr = r[1] - r[0]
    k0 = 2 * math.pi * np.sum(w * r) * dr  # int W d^2s over the plane = 1.4 / h
    c_alpha = (math.pi / 8) * np.sum(dw * r**4 / (r * r + 0.01)) * dr / (2 * k0)
    c_beta = (1 / 6) * np.sum(dw * r**6 / (r * r + 0.01) ** 2) * dr / (2 * k0)
    return c_alpha, c_beta


# --- runs ---------------------------------------------------------------------

def laufe(bau, arbeit, name, optionen, wiederverwenden=False):
    ordner = os.path.join(arbeit, name)
    text = os.path.join(ordner, "ringlauf.txt")
    if wiederverwenden and os.path.exists(text):
        with open(text) as f:
            aus, dauer = f.read(), float("nan")
    else:
        prog = os.path.join(bau, "experimente", "ring", "ringlauf")
        env = dict(os.environ)
        env.setdefault("OMP_NUM_THREADS", "1")
        start = time.time()
        aus = subprocess.run([prog, "--ausgabe", ordner] + optionen, env=env, check=True,
                             stdout=subprocess.PIPE, universal_newlines=True).stdout
        dauer = time.time() - start
        with open(text, "w") as f:
            f.write(aus)
    print(aus.splitlines()[0], "(%.0f s)" % dauer, file=sys.stderr)
    v = np.genfromtxt(os.path.join(ordner, "verlauf.tsv"), names=True)
    p = np.genfromtxt(os.path.join(ordner, "profil.tsv"), names=True)
    kopf = aus.split()
    n, M = int(kopf[1]), float(kopf[kopf.index("M") + 2])
    return {"v": v, "p": p, "n": n, "M": M, "dauer": dauer, "text": aus}


def nu_eff(v):
    return np.polyfit(v["t_s"], v["tau"], 1)[0] * R0**2 / 12


def nu_stuecke(v):
    return np.diff(v["tau"]) / np.diff(v["t_s"]) * R0**2 / 12


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    ap.add_argument("--bau", default="build", help="build folder (default build)")
    ap.add_argument("--arbeit", default="ring-arbeit", help="scratch folder (default ring-arbeit)")
    ap.add_argument("--bild", default="docs/bilder/ring.png", help="picture of Sigma(R)")
    ap.add_argument("--schnell", action="store_true", help="only the coarsest rings (a check)")
    ap.add_argument("--wiederverwenden", action="store_true",
                    help="take the runs already in the scratch folder (table and picture anew)")
    a = ap.parse_args()
    os.makedirs(a.arbeit, exist_ok=True)

    c_alpha, c_beta = av_koeffizienten()
    zeilen = []

    # (a) physical viscosity only, at four resolutions (spacing h/4 at the peak).
    hs = [0.01, 0.007] if a.schnell else [0.01, 0.007, 0.005, 0.0035]
    laeufe_a = {}
    for h in hs:
        r = laufe(a.bau, a.arbeit, "a-h%g" % h, ["--h", str(h), "--abstand", str(h / 4)],
                  a.wiederverwenden)
        laeufe_a[h] = r
        ne = nu_eff(r["v"])
        st = nu_stuecke(r["v"]) / NU_A
        zeilen.append(("(a) Physvisc, nu = %.0e" % NU_A, h, r["n"], NU_A, None, ne,
                       "%.2f–%.2f" % (st.min(), st.max()), kontinuum_verhaeltnis(h, NU_A, 900, 6),
                       r["dauer"]))

    # (b) artificial viscosity only: alpha 1, beta 2 (as data/OYCar.parameter), and
    # (c) alpha 1, beta 0, which isolates the linear term. Same ring as (a) at h.
    h = 0.007 if a.schnell else 0.005
    cs0 = laeufe_a[h]["v"]["cs"][0]  # the same layout: the same densities at the start
    laeufe_b = {}
    for name, alpha, beta in (("b", 1.0, 2.0), ("c", 1.0, 0.0)):
        nu_vorher = alpha * cs0 * h * c_alpha + beta * h * h * Q0 * c_beta
        r = laufe(a.bau, a.arbeit, "%s-h%g" % (name, h),
                  ["--h", str(h), "--abstand", str(h / 4), "--nu", "0", "--ohne-physvisc",
                   "--alpha", str(alpha), "--beta", str(beta), "--nu-ref", "%.6g" % nu_vorher,
                   "--zeit", "1800"], a.wiederverwenden)
        laeufe_b[name] = r
        cs = float(np.mean(r["v"]["cs"]))  # mass-weighted, averaged over the run
        nu_lin = alpha * cs * h * c_alpha
        nu_quad = beta * h * h * Q0 * c_beta
        ne = nu_eff(r["v"])
        st = nu_stuecke(r["v"]) / ne
        r.update(cs=cs, nu_usual=alpha * cs * h / 10, nu_form=nu_lin + nu_quad,
                 nu_lin=nu_lin, nu_quad=nu_quad, alpha=alpha, beta=beta)
        zeilen.append(("(%s) Artvisc, alpha %g, beta %g" % (name, alpha, beta), h, r["n"],
                       nu_lin + nu_quad, alpha * cs * h / 10, ne,
                       "%.2f–%.2f of nu_eff" % (st.min(), st.max()),
                       kontinuum_verhaeltnis(h, ne, 1800, 6), r["dauer"]))

    # The table.
    print("| run | h [Rsun] | particles | nu expected [Rsun²/s] | alpha c_s h / 10 | "
          "nu_eff [Rsun²/s] | nu_eff / expected | per interval / expected | "
          "same fit on the continuum | run time [s] |")
    print("|---|---|---|---|---|---|---|---|---|---|")
    for name, h, n, erw, ueblich, ne, st, kont, dauer in zeilen:
        print("| %s | %g | %d | %.3g | %s | %.3g | %.3f | %s | %.3f | %.0f |" % (
            name, h, n, erw, "—" if ueblich is None else "%.3g" % ueblich, ne, ne / erw, st,
            kont, dauer))
    print()
    print("Artificial viscosity: C_alpha = %.5f (1/16 = %.5f), C_beta = %.5f (1/(12 pi) = %.5f), "
          "q = 1.5 Omega(R0) = %.4g /s" % (c_alpha, 1 / 16, c_beta, 1 / (12 * math.pi), Q0))
    for name in ("b", "c"):
        r = laeufe_b[name]
        print("(%s) alpha %g beta %g: c_s = %.3g Rsun/s (mass-weighted mean over the run), "
              "alpha c_s h/10 = %.3g, linear term alpha c_s h C_alpha = %.3g, quadratic term "
              "beta h^2 q C_beta = %.3g, sum %.3g; nu_eff = %.3g = %.2f x alpha c_s h/10 = "
              "%.2f x the sum" % (name, r["alpha"], r["beta"], r["cs"], r["nu_usual"],
                                  r["nu_lin"], r["nu_quad"], r["nu_form"], nu_eff(r["v"]),
                                  nu_eff(r["v"]) / r["nu_usual"],
                                  nu_eff(r["v"]) / r["nu_form"]))

    zeichne(a.bild, laeufe_a[h], h, laeufe_b["b"], h)
    print("\npicture: %s" % a.bild)


def zeichne(datei, ra, ha, rb, hb):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    fig, achsen = plt.subplots(1, 2, figsize=(11, 4.2), sharey=False)
    for ax, r, h, titel in (
            (achsen[0], ra, ha, "(a) Physvisc, nu = 8e-8 Rsun²/s, h = %g" % ha),
            (achsen[1], rb, hb, "(b) Artvisc, alpha = 1, beta = 2, h = %g" % hb)):
        p = r["p"]
        M = r["M"]
        zeiten = np.unique(p["t_s"])
        zeiten = zeiten[[0, len(zeiten) // 3, 2 * len(zeiten) // 3, -1]]
        for farbe, t in zip(("C0", "C1", "C2", "C3"), zeiten):
            s = p["t_s"] == t
            x = p["x"][s]
            einheit = M / (2 * math.pi * R0**2 * x)  # mass per unit x -> Sigma
            ax.plot(x * R0, p["beobachtet"][s] * einheit, color=farbe, lw=1.6,
                    label="SPH, t = %.0f s" % t)
            modell = p["referenz"] if r is ra else p["angepasst"]
            ax.plot(x * R0, modell[s] * einheit, color=farbe, ls="--", lw=1)
        ax.set_title(titel, fontsize=10)
        ax.set_xlabel("R [Rsun] from the primary")
        ax.set_ylabel("Σ [Msun / Rsun²]")
        ax.legend(fontsize=8, frameon=False)
    achsen[0].text(0.02, 0.97, "dashed: Green's function at tau0 + 12 nu t / R0²",
                   transform=achsen[0].transAxes, fontsize=8, va="top")
    achsen[1].text(0.02, 0.97, "dashed: Green's function at the fitted tau",
                   transform=achsen[1].transAxes, fontsize=8, va="top")
    fig.tight_layout()
    os.makedirs(os.path.dirname(datei) or ".", exist_ok=True)
    fig.savefig(datei, dpi=110)


if __name__ == "__main__":
    main()
