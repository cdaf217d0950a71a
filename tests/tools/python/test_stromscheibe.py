"""The evaluation of the stream experiment (experimente/stromscheibe/auswertung.py):
the orbital elements that tell disc from stream, the radii it measures the
disc against, the precession fit, and the removal lines it counts."""

import math
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import test_akkdaten as pruefung  # noqa: E402  (QUELLE, braucht)

pruefung.braucht("numpy")
sys.path.insert(0, os.path.join(pruefung.QUELLE, "experimente", "stromscheibe"))
import akkdaten  # noqa: E402
import auswertung  # noqa: E402
import numpy as np  # noqa: E402

# OY Car as in the shipped parameter file.
OYCAR = akkdaten.Binaer(0.685, 0.07, 5453.6)


def im_rotierenden_system(b, d, u):
    """Positions and velocities in the co-rotating frame of particles at offset
    d from the primary moving with u relative to it in a non-rotating frame."""
    r = d + np.array([b.x1, 0, 0])
    return r, u - b.omega * np.stack([-d[:, 1], d[:, 0], np.zeros(len(d))], axis=1)


class Bahnelemente(unittest.TestCase):
    def test_kreisbahn_und_exzentrische_bahn(self):
        gm = akkdaten.G * OYCAR.m1
        # Two circular orbits and one at pericentre of an orbit of e = 0.6,
        # r_p = 0.1: there the speed is (G m1 (1 + e) / r_p)^1/2, at right
        # angles to d, and the eccentricity vector points along d.
        d = np.array([[0.2, 0, 0], [0, -0.15, 0.001], [-0.06, 0.08, 0]])
        rp = np.linalg.norm(d[2])
        v = [math.sqrt(gm / 0.2), math.sqrt(gm / math.hypot(0.15, 0.001)), math.sqrt(gm * 1.6 / rp)]
        richtung = np.array([[0, 1, 0], [1, 0, 0], [-0.8, -0.6, 0]])
        r, w = im_rotierenden_system(OYCAR, d, richtung * np.array(v)[:, None])
        R, evek, e, j = auswertung.bahnelemente(akkdaten.Schnappschuss("-", 0, None, r, w), OYCAR)
        np.testing.assert_allclose(R, [0.2, 0.15, 0.1], rtol=1e-12)
        # The second circle is tilted out of the orbital plane.
        np.testing.assert_allclose(e, [0, 0, 0.6], atol=1e-12)
        np.testing.assert_allclose(evek[2], 0.6 * d[2] / rp, atol=1e-12)
        # j = |d| v for all three (velocity at right angles to d); for the
        # tilted circle only its component along z, 0.15 v.
        np.testing.assert_allclose(j, [0.2 * v[0], 0.15 * v[1], rp * v[2]], rtol=1e-12)


class Radien(unittest.TestCase):
    def test_oy_car(self):
        k = auswertung.kenngroessen(OYCAR)
        # The primary's Roche lobe from Eggleton (1983) at q = 0.685/0.07:
        # 0.5765 a; the 3:1 resonance, where a Kepler orbit about m1 takes a
        # third of the binary's period, 3^(-2/3) (1 + 0.07/0.685)^(-1/3) a =
        # 0.4654 a; the circularisation radius (1 + q)(0.500 - 0.227 log q)^4 a
        # (Frank, King & Raine 2002) with q = 0.1022: 0.3043 a.
        self.assertAlmostEqual(k["R_L"] / OYCAR.a, 0.5765, delta=5e-5)
        self.assertAlmostEqual(k["R_tid"] / OYCAR.a, 0.9 * 0.5765, delta=5e-5)
        self.assertAlmostEqual(k["r_31"] / OYCAR.a, 0.4654, delta=5e-5)
        self.assertAlmostEqual(k["r_circ"] / OYCAR.a, 0.3043, delta=5e-5)


class Praezession(unittest.TestCase):
    def test_freie_exzentrizitaet(self):
        # A disc whose free eccentricity precesses forward with a superhump
        # excess eps = 0.021 (the empirical value for OY Car's q, Patterson et
        # al. 2005) turns backward in the co-rotating frame at nu = omega/1.021
        # and decays by 0.1 per orbit, beside a fixed part that drifts: the fit
        # must find eps to the 0.001 of its search grid.
        t = np.arange(0, 6, 0.05) * OYCAR.periode
        x = (t - t.mean()) / OYCAR.periode
        nu = 2 * math.pi / 1.021
        e = (0.03 - 0.02j) + 0.001 * x + (0.004 + 0.006j) * np.exp(-(1j * nu + 0.1) * x)
        p = auswertung.praezession(t, e, OYCAR)
        self.assertAlmostEqual(p["eps"], 0.021, delta=1e-3)
        self.assertAlmostEqual(p["daempfung"], 0.1, delta=1e-9)
        self.assertAlmostEqual(p["frei"], abs(0.004 + 0.006j), delta=1e-4)


class Protokoll(unittest.TestCase):
    def test_entfernte_teilchen(self):
        # Two removal lines as the driver prints them, one inside eta^2 =
        # 0.0025, one beyond rMax^2; step lines in between are passed over.
        with tempfile.TemporaryDirectory() as ordner:
            log = os.path.join(ordner, "akkstrom.log")
            with open(log, "w", encoding="latin-1") as f:
                f.write("step: 7 akk.t: 35.5\n"
                        " Entferne Teilchen : 3 von 10 Teilchen  zur Zeit: 35.5 : 0.0025 < abst_sqr "
                        "< 0.228614ist : 0.00249\n\n"
                        "step: 8 akk.t: 40\n"
                        " Entferne Teilchen : 0 von 9 Teilchen  zur Zeit: 40 : 0.0025 < abst_sqr "
                        "< 0.228614ist : 0.3\n\n")
            weg = auswertung.entfernungen(log)
        np.testing.assert_array_equal(weg, [[35.5, 0.00249, 0.0025, 0.228614], [40, 0.3, 0.0025, 0.228614]])


if __name__ == "__main__":
    unittest.main()
