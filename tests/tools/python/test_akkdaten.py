"""The numpy reader of snapshots, diagnostics tables and profiles."""

import math
import os
import sys
import tempfile
import unittest
import warnings

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import pruefung  # noqa: E402

pruefung.braucht("numpy")
import akkdaten  # noqa: E402
import numpy as np  # noqa: E402

KOPF = ("time_s\torbits\tN\tlost\tLz_total/mT[Rsun^2/s]\tLz_mean[Rsun^2/s]\tR_mean[Rsun]\t"
        "R_90[Rsun]\tEJ_total/mT[Rsun^2/s^2]\tA1\tphase1_deg\tT2_total/mT[Rsun^2/s^2]\n")


class Ordner(unittest.TestCase):
    def setUp(self):
        self._tmp = tempfile.TemporaryDirectory()
        self.ordner = self._tmp.name

    def tearDown(self):
        self._tmp.cleanup()

    def datei(self, name, inhalt):
        pfad = os.path.join(self.ordner, name)
        with open(pfad, "w", encoding="latin-1") as f:
            f.write(inhalt)
        return pfad


class Schnappschuss(Ordner):
    def test_kopf_in_beliebiger_folge_und_ueberzaehlige_zeilen(self):
        # Time before count, an unknown word, numbers after the sixth, empty
        # lines, a third line beyond the count of two.
        s = akkdaten.lies_schnappschuss(self.datei("a-1234", (
            "Zeit 1234.5\nFarbe blau\nTeilchenmasse 1.72815e-16\nTeilchenanzahl 2\n\n\nTeilchendaten:\n\n"
            "1 2 3 4 5 6 7 8\n\n-1e-3  0.5  0  0  0  1e-5  \n9 9 9 9 9 9\n")))
        self.assertEqual(1234.5, s.zeit)
        self.assertEqual(1.72815e-16, s.masse)
        np.testing.assert_array_equal([[1, 2, 3], [-1e-3, 0.5, 0]], s.r)
        np.testing.assert_array_equal([[4, 5, 6], [0, 0, 1e-5]], s.v)

    def test_weniger_zeilen_als_gewuenscht_und_leere_scheibe(self):
        with warnings.catch_warnings(record=True) as w:
            warnings.simplefilter("always")
            s = akkdaten.lies_schnappschuss(self.datei("a-0", "Teilchenanzahl 3\nTeilchendaten:\n1 2 3 4 5 6\n"))
        self.assertEqual((1, 3), s.r.shape)
        self.assertIn("only 1 particle lines", str(w[0].message))
        leer = akkdaten.lies_schnappschuss(self.datei("b-0", "Teilchenanzahl 0\nTeilchendaten:\n"))
        self.assertEqual(((0, 3), (0, 3), 0.0), (leer.r.shape, leer.v.shape, leer.zeit))

    def test_schlechte_dateien(self):
        faelle = {  # content: part of the message
            "": "no line 'Teilchendaten:'",
            "Teilchenanzahl 2\n1 2 3 4 5 6\n": "no line 'Teilchendaten:'",
            "Teilchenanzahl drei\nTeilchendaten:\n": "particle count 'drei'",
            "Teilchenanzahl -1\nTeilchendaten:\n": "particle count '-1'",
            "Zeit\nTeilchenanzahl 1\nTeilchendaten:\n": "line 1: Zeit without its value",
            "Zeit 1\nTeilchendaten:\n1 2 3 4 5 6\n": "no 'Teilchenanzahl'",
            "Teilchenanzahl 1\nTeilchendaten:\n1 2 3 4 5\n": "line 3: a particle line needs six numbers, not 5",
            "Teilchenanzahl 2\nTeilchendaten:\n1 2 3 4 5 6\n1 2 x 4 5 6\n": "line 4: coordinate 'x'",
        }
        for i, (inhalt, meldung) in enumerate(faelle.items()):
            pfad = self.datei("f-%d" % i, inhalt)
            with self.assertRaises(akkdaten.AkkDatenFehler) as f:
                akkdaten.lies_schnappschuss(pfad)
            self.assertIn(meldung, str(f.exception))
            self.assertIn(pfad, str(f.exception))
        with self.assertRaises(OSError):
            akkdaten.lies_schnappschuss(os.path.join(self.ordner, "fehlt"))

    def test_die_mitgelieferte_scheibe(self):
        s = akkdaten.lies_schnappschuss(os.path.join(pruefung.QUELLE, "data", "Akk-OYCar-0"))
        self.assertEqual((3000, 0.0, 1.72815e-16), (len(s), s.zeit, s.masse))
        np.testing.assert_array_equal([0.131233, 0.0865219, 0.00162892], s.r[0])
        np.testing.assert_array_equal([-0.0010605, 0.000918422, 0], s.v[0])

    def test_sammle(self):
        for n in ("a-0", "a-20", "a-3.png", "b-1"):
            self.datei(n, "")
        a = os.path.join(self.ordner, "a-")
        self.assertEqual([a + "0", a + "20"], akkdaten.sammle([a]))
        self.assertEqual([a + "20", a + "0"], akkdaten.sammle([a + "20", a + "0", a + "20"]))
        self.assertEqual(3, len(akkdaten.sammle([self.ordner])))
        for falsch in (os.path.join(self.ordner, "c-"), os.path.join(self.ordner, "nicht", "da-")):
            with self.assertRaises(akkdaten.AkkDatenFehler):
                akkdaten.sammle([falsch])


class Tabellen(Ordner):
    def test_diagnose_spalten_und_einheiten(self):
        d = akkdaten.lies_diagnose(self.datei("d.tsv", KOPF
            + "0\t0\t3000\t0\t0.68\t2.2e-4\t0.19\t0.28\t-1\t0.01\t-45\t3.9e-07\n"
            + "200\t0.0367\t2959\t41\t0.67\t2.3e-4\t0.2\t0.29\t-1\tnan\tnan\t-5e-07\n"))
        self.assertEqual(2, len(d))
        np.testing.assert_array_equal([3000, 2959], d["N"])
        np.testing.assert_array_equal([0.28, 0.29], d["R_90"])
        np.testing.assert_array_equal(d["R_90"], d["R_90[Rsun]"])
        self.assertEqual("Rsun^2/s^2", d.einheiten["T2_total/mT"])
        self.assertEqual("", d.einheiten["A1"])
        self.assertTrue(math.isnan(d["phase1_deg"][1]))
        with self.assertRaises(KeyError):
            d["R90"]

    def test_schlechte_tabellen(self):
        for name, inhalt, meldung in (
                ("a", "x\ty\n1\t2\n", "no table of scheibendiagnose"),
                ("b", KOPF + "1\t2\n", "line 2: 2 fields, but the header names 12"),
                ("c", KOPF + "\t".join(["1"] * 11 + ["drei"]) + "\n", "line 2: T2_total/mT 'drei'")):
            with self.assertRaises(akkdaten.AkkDatenFehler) as f:
                akkdaten.lies_diagnose(self.datei(name, inhalt))
            self.assertIn(meldung, str(f.exception))

    def test_profil_in_bloecken(self):
        p = akkdaten.lies_profil(self.datei("p.tsv", (
            "time_s\tR_in[Rsun]\tR_out[Rsun]\tN\tSigma[Msun/Rsun^2]\n"
            "0\t0\t0.5\t1\t2\n0\t0.5\t1\t3\t4\n\n\n200\t0\t0.5\t5\t6\n200\t0.5\t1\t7\t8\n")))
        self.assertEqual(2, len(p))
        np.testing.assert_array_equal([200, 200], p[1]["time_s"])
        np.testing.assert_array_equal([5, 7], p[1]["N"])
        self.assertEqual("Msun/Rsun^2", p[0].einheiten["Sigma"])


class Binaer(Ordner):
    def test_oy_car(self):
        # a^3 = G (m1 + m2) P^2 / (2 pi)^2 = 2.97253e-7 * 2.97418e7 / 39.4784 = 0.223940,
        # a = 0.607264; the primary at a m2 / (m1 + m2), the centre of mass at 0.
        b = akkdaten.lies_binaer(os.path.join(pruefung.QUELLE, "data", "OYCar.parameter"))
        self.assertAlmostEqual(0.607264, b.a, delta=2e-6)
        self.assertAlmostEqual(0.0563026, b.x1, delta=2e-7)
        self.assertAlmostEqual(0.0563026 - 0.607264, b.x2, delta=3e-6)
        # a key later in the file wins; a missing one is named
        b = akkdaten.lies_binaer(self.datei("p", "Primaersternmasse 1 Sekundaersternmasse 0 "
                                                  "Bahnperiode 5 Sekundaersternmasse 1"))
        self.assertAlmostEqual(b.a / 2, b.x1, delta=1e-15)
        with self.assertRaises(akkdaten.AkkDatenFehler) as f:
            akkdaten.lies_binaer(self.datei("q", "Primaersternmasse 1\nBahnperiode 5\n"))
        self.assertIn("lacks Sekundaersternmasse", str(f.exception))

    def test_flaechendichte_von_hand(self):
        # No secondary: the primary at the origin. Radii 0.5 | 1.5, 1.5 | 2 (the
        # rings are half open) and 3 outside: one particle in the ring 0..1
        # (area pi), two in 1..2 (area 3 pi); mass 2.
        b = akkdaten.Binaer(1.0, 0.0, 100.0)
        r = np.array([[0.5, 0, 0], [0, 1.5, 0.1], [-1.5, 0, 0], [0, -2, 0], [3, 0, 0]])
        s = akkdaten.Schnappschuss("s", 0.0, 2.0, r, np.zeros_like(r))
        np.testing.assert_allclose([2 / math.pi, 4 / (3 * math.pi)],
                                   akkdaten.flaechendichte(s, b, np.array([0.0, 1.0, 2.0])), rtol=1e-15)


if __name__ == "__main__":
    unittest.main(verbosity=2)
