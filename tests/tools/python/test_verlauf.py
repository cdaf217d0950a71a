"""The Python reader on what the C++ tools write, and the example script:
a generated disc at two times, the table and profiles of scheibendiagnose,
the picture of verlauf.py. AKK_WERKZEUGE names the folder of the built tools."""

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


def starte(*befehl, **optionen):
    return subprocess.run(befehl, capture_output=True, text=True, encoding="latin-1",
                          timeout=300, **optionen)


class Lauf(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls._tmp = tempfile.TemporaryDirectory()
        o = cls.ordner = cls._tmp.name
        # Two discs standing in for the snapshots of a run at 0 and 500 s.
        for zeit, seed, aussen in ((0, 1, 0.3), (500, 2, 0.25)):
            erzeugt = starte(os.path.join(WERKZEUGE, "scheibengenerator"), "-p", PARAMETER,
                             "--anzahl", "400", "--seed", str(seed), "--aussen", str(aussen))
            assert erzeugt.returncode == 0, erzeugt.stderr
            with open(os.path.join(o, "d-%d" % zeit), "w") as f:
                f.write(erzeugt.stdout.replace("Zeit 0\n", "Zeit %d\n" % zeit))
        cls.diagnose = os.path.join(o, "diagnose.tsv")
        cls.profil = os.path.join(o, "profil.tsv")
        with open(cls.diagnose, "w") as f:
            d = subprocess.run([os.path.join(WERKZEUGE, "scheibendiagnose"), "-p", PARAMETER,
                                "--profil", cls.profil, os.path.join(o, "d-")], stdout=f, timeout=300)
        assert d.returncode == 0

    @classmethod
    def tearDownClass(cls):
        cls._tmp.cleanup()

    def schnappschuesse(self):
        return [akkdaten.lies_schnappschuss(os.path.join(self.ordner, n)) for n in ("d-0", "d-500")]

    def test_mode_wie_scheibendiagnose(self):
        # A1 = |sum exp(i phi)| / N and its phase, phi the azimuth about the primary.
        d = akkdaten.lies_diagnose(self.diagnose)
        b = akkdaten.lies_binaer(PARAMETER)
        np.testing.assert_array_equal([0, 500], d["time_s"])
        np.testing.assert_array_equal([400, 400], d["N"])
        for i, s in enumerate(self.schnappschuesse()):
            S = np.exp(1j * np.arctan2(s.r[:, 1], s.r[:, 0] - b.x1)).sum()
            self.assertAlmostEqual(abs(S) / 400, d["A1"][i], delta=1e-9)
            self.assertAlmostEqual(np.degrees(np.angle(S)), d["phase1_deg"][i], delta=1e-6)

    def test_profil_wie_scheibendiagnose(self):
        profile = akkdaten.lies_profil(self.profil)
        b = akkdaten.lies_binaer(PARAMETER)
        self.assertEqual(2, len(profile))
        for p, s in zip(profile, self.schnappschuesse()):
            self.assertEqual(400, p["N"].sum())
            kanten = np.append(p["R_in"], p["R_out"][-1])
            # the tool's particle mass, not the six digits of the file
            np.testing.assert_allclose(p["Sigma"], akkdaten.flaechendichte(s, b, kanten, 1.7281541e-16),
                                       rtol=1e-8)

    def test_beispiel_zeichnet(self):
        bild = os.path.join(self.ordner, "verlauf.png")
        lauf = starte(sys.executable, VERLAUF, "-p", PARAMETER, "-d", self.diagnose, "-o", bild,
                      os.path.join(self.ordner, "d-"))
        self.assertEqual(0, lauf.returncode, lauf.stderr)
        self.assertEqual(bild + "\n", lauf.stdout)
        with open(bild, "rb") as f:
            png = f.read()
        self.assertEqual(b"\x89PNG", png[:4])
        self.assertGreater(len(png), 20000)  # two panels with curves, not an empty canvas

    def test_beispiel_bei_schlechter_eingabe(self):
        # A clear one-line message and status 1, no traceback.
        for falsch in (["-d", os.path.join(self.ordner, "fehlt.tsv"), os.path.join(self.ordner, "d-")],
                       ["-d", self.diagnose, self.profil],
                       ["-d", self.profil, os.path.join(self.ordner, "d-")],
                       ["-d", self.diagnose, os.path.join(self.ordner, "e-")]):
            lauf = starte(sys.executable, VERLAUF, "-p", PARAMETER, "-o",
                          os.path.join(self.ordner, "x.png"), *falsch)
            self.assertEqual(1, lauf.returncode, falsch)
            self.assertTrue(lauf.stderr.startswith("verlauf.py: ") and lauf.stderr.count("\n") == 1,
                            lauf.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
