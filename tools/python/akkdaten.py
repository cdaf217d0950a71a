"""Reading akkscheibe's files into numpy arrays.

    import akkdaten
    s = akkdaten.lies_schnappschuss("data/Akk-OYCar-1000")
    s.zeit, s.masse, s.r, s.v        # s.r and s.v have shape (N, 3)
    d = akkdaten.lies_diagnose("diagnose.tsv")   # from scheibendiagnose
    d["time_s"], d["A1"], d.einheiten["R_90"]
    p = akkdaten.lies_profil("profil.tsv")       # from scheibendiagnose --profil
    b = akkdaten.lies_binaer("data/OYCar.parameter")
    R = akkdaten.radien(s, b)                    # distance from the primary's axis

Units: solar masses, solar radii, seconds. The frame co-rotates with the
binary about z; the primary sits at (b.x1, 0, 0), the secondary at
(b.x2, 0, 0). A file that cannot be read raises OSError, one that is not of
the expected form AkkDatenFehler naming the file and the line.
"""

import math
import os
import re
import warnings

import numpy as np

# Gravitational constant in solar radii^3 / (solar mass s^2), and 2 pi with
# the ten digits the simulator uses.
G = 3.9371199385708905e-7
ZWEI_PI = 6.283185306


class AkkDatenFehler(ValueError):
    """A file that is not of the form expected."""


class Schnappschuss:
    """One snapshot: time, particle mass, positions and velocities."""

    def __init__(self, datei, zeit, masse, r, v):
        self.datei = datei
        self.zeit = zeit    # s
        self.masse = masse  # mass of one particle, as written in the file (None if absent)
        self.r = r          # positions, (N, 3)
        self.v = v          # velocities, (N, 3)

    def __len__(self):
        return len(self.r)

    def __repr__(self):
        return "Schnappschuss(%r, zeit=%g, %d particles)" % (self.datei, self.zeit, len(self))


def _zahl(text, datei, zeile, was):
    try:
        return float(text)
    except ValueError:
        raise AkkDatenFehler("%s, line %d: %s '%s' is not a number" % (datei, zeile, was, text)) from None


def lies_schnappschuss(datei):
    """Reads a snapshot as the simulator does: the header's words up to
    "Teilchendaten:" ("Teilchenanzahl N", "Zeit T" and "Teilchenmasse m" in any
    order, other words skipped), then one line per particle with x y z vx vy vz
    (numbers after the sixth ignored, empty lines skipped). N is the number of
    particles wanted: of more lines only the first N are taken; fewer are taken
    as they are, as the simulator does, with a warning."""
    with open(datei, encoding="latin-1") as f:
        zeilen = f.read().split("\n")
    anzahl = zeit = masse = None
    daten = None
    for nr, zeile in enumerate(zeilen, 1):
        woerter = zeile.split()
        for i, w in enumerate(woerter):
            wert = woerter[i + 1] if i + 1 < len(woerter) else None
            if w in ("Teilchenanzahl", "Zeit", "Teilchenmasse") and wert is None:
                raise AkkDatenFehler("%s, line %d: %s without its value on the same line" % (datei, nr, w))
            if w == "Teilchenanzahl":
                if not re.fullmatch(r"\+?\d+", wert):
                    raise AkkDatenFehler("%s, line %d: particle count '%s' is not a count (a whole number from 0)"
                                         % (datei, nr, wert))
                anzahl = int(wert)
            elif w == "Zeit":
                zeit = _zahl(wert, datei, nr, "time")
            elif w == "Teilchenmasse":
                masse = _zahl(wert, datei, nr, "particle mass")
            elif w == "Teilchendaten:":
                daten = nr
                break
        if daten is not None:
            break
    if daten is None:
        raise AkkDatenFehler("%s is no snapshot: it has no line 'Teilchendaten:'" % datei)
    if anzahl is None:
        raise AkkDatenFehler("%s: the header has no 'Teilchenanzahl'" % datei)
    werte = []
    for nr in range(daten + 1, len(zeilen) + 1):
        if len(werte) == anzahl:
            break
        woerter = zeilen[nr - 1].split()
        if not woerter:
            continue
        if len(woerter) < 6:
            raise AkkDatenFehler("%s, line %d: a particle line needs six numbers, not %d"
                                 % (datei, nr, len(woerter)))
        werte.append([_zahl(w, datei, nr, "coordinate") for w in woerter[:6]])
    if len(werte) < anzahl:
        warnings.warn("%s: Teilchenanzahl is %d, but only %d particle lines follow"
                      % (datei, anzahl, len(werte)), stacklevel=2)
    a = np.array(werte, dtype=float).reshape(-1, 6)
    return Schnappschuss(datei, 0.0 if zeit is None else zeit, masse, a[:, :3], a[:, 3:])


class Tabelle:
    """Columns of a tab-separated table by name. A header "R_90[Rsun]" gives
    the column "R_90" with the unit "Rsun"; the full header works too."""

    def __init__(self, namen, einheiten, werte):
        self.namen = namen          # short names, in order
        self.einheiten = einheiten  # short name -> unit ("" when none)
        self.werte = werte          # (rows, columns)
        self._index = {}
        for i, n in enumerate(namen):
            self._index[n] = i
            self._index[n + ("[%s]" % einheiten[n] if einheiten[n] else "")] = i

    def __getitem__(self, name):
        if name not in self._index:
            raise KeyError("no column %r; the columns are %s" % (name, ", ".join(self.namen)))
        return self.werte[:, self._index[name]]

    def __len__(self):
        return len(self.werte)


def _tabelle(datei, zeilen, erste):
    kopf = zeilen[erste - 1].split("\t")
    namen, einheiten = [], {}
    for k in kopf:
        m = re.fullmatch(r"(.*?)\[(.*)\]", k.strip())
        n, e = (m.group(1), m.group(2)) if m else (k.strip(), "")
        namen.append(n)
        einheiten[n] = e
    werte = []
    for nr in range(erste + 1, len(zeilen) + 1):
        z = zeilen[nr - 1]
        if not z.strip():
            continue
        felder = z.split("\t")
        if len(felder) != len(namen):
            raise AkkDatenFehler("%s, line %d: %d fields, but the header names %d"
                                 % (datei, nr, len(felder), len(namen)))
        werte.append([_zahl(f, datei, nr, namen[i]) for i, f in enumerate(felder)])
    return namen, einheiten, np.array(werte, dtype=float).reshape(-1, len(namen))


def lies_diagnose(datei):
    """Reads the table of scheibendiagnose: a header line, one row per snapshot."""
    with open(datei, encoding="latin-1") as f:
        zeilen = f.read().split("\n")
    if not zeilen[0].startswith("time_s\torbits\t"):
        raise AkkDatenFehler("%s is no table of scheibendiagnose: its first line does not begin"
                             " with the columns time_s, orbits" % datei)
    return Tabelle(*_tabelle(datei, zeilen, 1))


def lies_profil(datei):
    """Reads the surface-density profiles of scheibendiagnose --profil: a list
    of tables (columns time_s, R_in, R_out, N, Sigma), one per snapshot."""
    with open(datei, encoding="latin-1") as f:
        zeilen = f.read().split("\n")
    if not zeilen[0].startswith("time_s\tR_in"):
        raise AkkDatenFehler("%s is no profile file of scheibendiagnose: its first line does not"
                             " begin with the columns time_s, R_in" % datei)
    namen, einheiten, werte = _tabelle(datei, zeilen, 1)
    # Blocks are apart by empty lines; a new block starts where the time changes.
    profile, anfang = [], 0
    for i in range(1, len(werte) + 1):
        if i == len(werte) or werte[i, 0] != werte[anfang, 0]:
            profile.append(Tabelle(namen, einheiten, werte[anfang:i]))
            anfang = i
    return profile


class Binaer:
    """The binary as the simulator derives it from masses and period."""

    def __init__(self, m1, m2, periode):
        self.m1, self.m2, self.periode = m1, m2, periode
        self.omega = ZWEI_PI / periode
        # Kepler's third law, omega^2 a^3 = G (m1 + m2); the centre of mass at 0.
        self.a = (G * (m1 + m2) / (self.omega * self.omega)) ** (1 / 3)
        self.x1 = self.a * m2 / (m1 + m2)
        self.x2 = self.x1 - self.a


def lies_schluessel(datei, *namen):
    """The numbers after the keys `namen` in a parameter file. Like the
    simulator's readers it takes the word after each key wherever it stands;
    the last one counts."""
    with open(datei, encoding="latin-1") as f:
        woerter = f.read().split()
    werte = {}
    for i, w in enumerate(woerter[:-1]):
        if w in namen:
            werte[w] = _zahl(woerter[i + 1], datei, 0, w)
    fehlt = [k for k in namen if k not in werte]
    if fehlt:
        raise AkkDatenFehler("%s: the parameter file lacks %s" % (datei, ", ".join(fehlt)))
    return werte


def lies_binaer(datei):
    """Masses and period from a parameter file."""
    werte = lies_schluessel(datei, "Primaersternmasse", "Sekundaersternmasse", "Bahnperiode")
    b = Binaer(werte["Primaersternmasse"], werte["Sekundaersternmasse"], werte["Bahnperiode"])
    if not (b.m1 > 0 and b.m2 >= 0 and b.periode > 0):
        raise AkkDatenFehler("%s: masses and period must be above 0" % datei)
    return b


def radien(s, b):
    """Each particle's distance from the axis through the primary parallel to z."""
    return np.hypot(s.r[:, 0] - b.x1, s.r[:, 1])


def flaechendichte(s, b, kanten, masse=None):
    """Surface density in rings around the primary with the given edges:
    particles in [R_in, R_out) times the particle mass over the ring's area.
    The mass is the snapshot's unless given."""
    m = s.masse if masse is None else masse
    R = radien(s, b)
    n, _ = np.histogram(R, bins=kanten)
    # np.histogram closes its last bin at the right; the rings are half open.
    n[-1] -= np.count_nonzero(R == kanten[-1])
    return n * m / (math.pi * (kanten[1:] ** 2 - kanten[:-1] ** 2))


def sammle(angaben):
    """Snapshot files from arguments as the C++ tools take them: a file; a
    folder (its files named ...-<digits>); or a prefix such as
    data/Akk-OYCar- (the files named prefix<digits>)."""
    dateien = []
    for a in angaben:
        if os.path.isdir(a):
            neu = sorted(os.path.join(a, n) for n in os.listdir(a)
                         if re.fullmatch(r".*-\d+", n) and os.path.isfile(os.path.join(a, n)))
        elif os.path.exists(a):
            neu = [a]
        else:
            ordner, praefix = os.path.split(a)
            namen = os.listdir(ordner or ".") if os.path.isdir(ordner or ".") else []
            neu = sorted(os.path.join(ordner, n) for n in namen
                         if n.startswith(praefix) and re.fullmatch(r"\d+", n[len(praefix):]))
        if not neu:
            raise AkkDatenFehler("no snapshot file, folder or prefix %s" % a)
        dateien += [d for d in neu if d not in dateien]
    return dateien
