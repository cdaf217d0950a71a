"""The Python reader on what the C++ tools write, and the example script: a
generated disc at two times, the table and profiles of scheibendiagnose, the
picture of verlauf.py. AKK_WERKZEUGE names the folder of the built tools."""

import os
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import pruefung  # noqa: E402

pruefung.braucht("numpy", "matplotlib")
import akkdaten  # noqa: E402
import numpy as np  # noqa: E402

WERKZEUGE = os.environ.get("AKK_WERKZEUGE", os.path.join(pruefung.QUELLE, "build", "tools"))
PARAMETER = os.path.join(pruefung.QUELLE, "data", "OYCar.parameter")
VERLAUF = os.path.join(pruefung.QUELLE, "tools", "python", "verlauf.py")


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
    unittest.main(verbosity=2)
