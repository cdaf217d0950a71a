"""The numpy reader on hand-made files (class Dateien, needs numpy), and on
what the C++ tools write together with the example script (class Lauf, needs
numpy and matplotlib): a generated disc at two times, the table and profiles
of scheibendiagnose, the picture of verlauf.py. AKK_WERKZEUGE names the folder
of the built tools. Run with the class to test as argument."""

import importlib
import math
import os
import re
import subprocess
import sys
import tempfile
import unittest
import warnings

QUELLE = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", ".."))
sys.path.insert(0, os.path.join(QUELLE, "tools", "python"))


def braucht(*module):
    """Exits with status 77, which CTest counts as skipped, when a module is
    missing; under CI, whose .ci/deps installs them, fails instead."""
    fehlt = []
    for m in module:
        try:
            importlib.import_module(m)
        except ImportError:
            fehlt.append(m)
    if fehlt:
        ci = os.environ.get("CI") == "true"
        print("%s: %s missing for %s (Debian: %s; .ci/deps installs them)"
              % ("FAILED" if ci else "SKIPPED", ", ".join(fehlt), sys.executable,
                 " ".join("python3-" + m for m in fehlt)))
        sys.exit(1 if ci else 77)


class Dateien(unittest.TestCase):
    def setUp(self):
        self._tmp = tempfile.TemporaryDirectory()
        self.addCleanup(self._tmp.cleanup)

    def datei(self, name, inhalt):
        pfad = os.path.join(self._tmp.name, name)
        with open(pfad, "w", encoding="latin-1") as f:
            f.write(inhalt)
        return pfad

    def test_schnappschuss(self):
        # Time before count, an unknown word, numbers after the sixth, empty
        # lines, a line beyond the count; then fewer lines than the count.
        s = akkdaten.lies_schnappschuss(self.datei("a-1", (
            "Zeit 1234.5\nFarbe blau\nTeilchenmasse 1.72815e-16\nTeilchenanzahl 2\n\n\nTeilchendaten:\n\n"
            "1 2 3 4 5 6 7 8\n\n-1e-3  0.5  0  0  0  1e-5  \n9 9 9 9 9 9\n")))
        self.assertEqual((1234.5, 1.72815e-16), (s.zeit, s.masse))
        np.testing.assert_array_equal([[1, 2, 3], [-1e-3, 0.5, 0]], s.r)
        np.testing.assert_array_equal([[4, 5, 6], [0, 0, 1e-5]], s.v)
        with warnings.catch_warnings(record=True) as w:
            warnings.simplefilter("always")
            s = akkdaten.lies_schnappschuss(self.datei("b-0", "Teilchenanzahl 3\nTeilchendaten:\n1 2 3 4 5 6\n"))
        self.assertEqual((1, 3), s.r.shape)
        self.assertIn("only 1 particle lines", str(w[0].message))

    def test_schlechte_schnappschuesse(self):
        for i, (inhalt, meldung) in enumerate({
                "": "no line 'Teilchendaten:'",
                "Teilchenanzahl -1\nTeilchendaten:\n": "line 1: particle count '-1'",
                "Zeit 1\nTeilchendaten:\n1 2 3 4 5 6\n": "no 'Teilchenanzahl'",
                "Teilchenanzahl 1\nTeilchendaten:\n1 2 3 4 5\n": "line 3: a particle line needs six numbers",
                "Teilchenanzahl 2\nTeilchendaten:\n1 2 3 4 5 6\n1 2 x 4 5 6\n": "line 4: coordinate 'x'",
        }.items()):
            pfad = self.datei("f-%d" % i, inhalt)
            with self.assertRaisesRegex(akkdaten.AkkDatenFehler, "^%s.*%s" % (re.escape(pfad), re.escape(meldung))):
                akkdaten.lies_schnappschuss(pfad)

    def test_diagnose(self):
        kopf = "time_s\torbits\tN\tR_90[Rsun]\tA1\tT2_total/mT[Rsun^2/s^2]\n"
        d = akkdaten.lies_diagnose(self.datei("d", kopf + "0\t0\t3000\t0.28\t0.01\t3.9e-07\n"
                                                        "200\t0.03\t2959\t0.29\tnan\t-5e-07\n"))
        np.testing.assert_array_equal([3000, 2959], d["N"])
        np.testing.assert_array_equal([0.28, 0.29], d["R_90[Rsun]"])
        self.assertEqual(("Rsun^2/s^2", ""), (d.einheiten["T2_total/mT"], d.einheiten["A1"]))
        self.assertTrue(math.isnan(d["A1"][1]))
        with self.assertRaisesRegex(akkdaten.AkkDatenFehler, "line 2: 2 fields, but the header names 6"):
            akkdaten.lies_diagnose(self.datei("e", kopf + "1\t2\n"))

    def test_binaer_und_flaechendichte(self):
        # OY Car: a^3 = G (m1 + m2) P^2 / (2 pi)^2 = 2.97253e-7 * 2.97418e7 / 39.4784
        # = 0.223940, a = 0.607264; the primary at a m2 / (m1 + m2) = 0.0563026.
        b = akkdaten.lies_binaer(os.path.join(QUELLE, "data", "OYCar.parameter"))
        self.assertAlmostEqual(0.607264, b.a, delta=2e-6)
        self.assertAlmostEqual(0.0563026, b.x1, delta=2e-7)
        with self.assertRaisesRegex(akkdaten.AkkDatenFehler, "lacks Sekundaersternmasse"):
            akkdaten.lies_binaer(self.datei("q", "Primaersternmasse 1\nBahnperiode 5\n"))
        # No secondary: the primary at 0. Radii 0.5 | 1.5, 1.5 | 2 (rings are
        # half open), 3: one particle in the ring 0..1 (area pi), two in 1..2
        # (area 3 pi); mass 2.
        b = akkdaten.Binaer(1.0, 0.0, 100.0)
        r = np.array([[0.5, 0, 0], [0, 1.5, 0.1], [-1.5, 0, 0], [0, -2, 0], [3, 0, 0]])
        s = akkdaten.Schnappschuss("s", 0.0, 2.0, r, np.zeros_like(r))
        np.testing.assert_allclose([2 / math.pi, 4 / (3 * math.pi)],
                                   akkdaten.flaechendichte(s, b, np.array([0.0, 1.0, 2.0])), rtol=1e-15)


WERKZEUGE = os.environ.get("AKK_WERKZEUGE", os.path.join(QUELLE, "build", "tools"))
PARAMETER = os.path.join(QUELLE, "data", "OYCar.parameter")
VERLAUF = os.path.join(QUELLE, "tools", "python", "verlauf.py")


def starte(*befehl):
    return subprocess.run(befehl, capture_output=True, text=True, encoding="latin-1", timeout=300)


class Lauf(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls._tmp = tempfile.TemporaryDirectory()
        o = cls.ordner = cls._tmp.name
        # Two discs standing in for the snapshots of a run at 0 and 500 s.
        for zeit, seed, aussen in ((0, 1, 0.3), (500, 2, 0.25)):
            d = starte(os.path.join(WERKZEUGE, "scheibengenerator"), "-p", PARAMETER, "--anzahl", "400",
                       "--seed", str(seed), "--aussen", str(aussen))
            assert d.returncode == 0, d.stderr
            with open(os.path.join(o, "d-%d" % zeit), "w") as f:
                f.write(d.stdout.replace("Zeit 0\n", "Zeit %d\n" % zeit))
        cls.diagnose, cls.profil = os.path.join(o, "diagnose.tsv"), os.path.join(o, "profil.tsv")
        d = starte(os.path.join(WERKZEUGE, "scheibendiagnose"), "-p", PARAMETER, "--profil", cls.profil,
                   os.path.join(o, "d-"))
        assert d.returncode == 0, d.stderr
        with open(cls.diagnose, "w") as f:
            f.write(d.stdout)
        cls.b = akkdaten.lies_binaer(PARAMETER)
        cls.s = [akkdaten.lies_schnappschuss(os.path.join(o, n)) for n in ("d-0", "d-500")]

    @classmethod
    def tearDownClass(cls):
        cls._tmp.cleanup()

    def test_mode_und_profil_wie_scheibendiagnose(self):
        # A1 = |sum exp(i phi)| / N and its phase, phi the azimuth about the primary.
        d = akkdaten.lies_diagnose(self.diagnose)
        np.testing.assert_array_equal([0, 500], d["time_s"])
        for i, s in enumerate(self.s):
            S = np.exp(1j * np.arctan2(s.r[:, 1], s.r[:, 0] - self.b.x1)).sum()
            self.assertAlmostEqual(abs(S) / 400, d["A1"][i], delta=1e-9)
            self.assertAlmostEqual(np.degrees(np.angle(S)), d["phase1_deg"][i], delta=1e-6)
        profile = akkdaten.lies_profil(self.profil)
        self.assertEqual(2, len(profile))
        for p, s in zip(profile, self.s):
            self.assertEqual(400, p["N"].sum())
            kanten = np.append(p["R_in"], p["R_out"][-1])  # with the tool's particle mass:
            np.testing.assert_allclose(p["Sigma"], akkdaten.flaechendichte(s, self.b, kanten, 1.7281541e-16),
                                       rtol=1e-8)

    def test_beispiel(self):
        bild = os.path.join(self.ordner, "verlauf.png")
        lauf = starte(sys.executable, VERLAUF, "-p", PARAMETER, "-d", self.diagnose, "-o", bild,
                      os.path.join(self.ordner, "d-"))
        self.assertEqual((0, bild + "\n"), (lauf.returncode, lauf.stdout), lauf.stderr)
        with open(bild, "rb") as f:
            png = f.read()
        self.assertEqual(b"\x89PNG", png[:4])
        self.assertGreater(len(png), 20000)  # two panels with curves, not an empty canvas
        # Bad input: a one-line message and status 1, no traceback.
        for falsch in ((os.path.join(self.ordner, "fehlt.tsv"), "d-"), (self.diagnose, "profil.tsv"),
                       (self.profil, "d-"), (self.diagnose, "e-")):
            lauf = starte(sys.executable, VERLAUF, "-p", PARAMETER, "-o", bild, "-d", falsch[0],
                          os.path.join(self.ordner, falsch[1]))
            self.assertEqual(1, lauf.returncode, falsch)
            self.assertRegex(lauf.stderr, "^verlauf.py: [^\n]*\n$")


if __name__ == "__main__":
    braucht("numpy", *(["matplotlib"] if "Lauf" in sys.argv[1:] else []))
    import akkdaten  # noqa: E402
    import numpy as np  # noqa: E402
    unittest.main(verbosity=2)
