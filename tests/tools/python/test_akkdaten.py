"""The numpy reader on hand-made files."""

import math
import os
import re
import sys
import tempfile
import unittest
import warnings

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import pruefung  # noqa: E402

pruefung.braucht("numpy")
import akkdaten  # noqa: E402
import numpy as np  # noqa: E402


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
        b = akkdaten.lies_binaer(os.path.join(pruefung.QUELLE, "data", "OYCar.parameter"))
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


if __name__ == "__main__":
    unittest.main(verbosity=2)
