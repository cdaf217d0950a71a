"""What the Python tests share: the way to the modules under test, and a
skip when a Debian package they need is missing."""

import importlib
import os
import sys

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
        pakete = " ".join("python3-" + m for m in fehlt)
        print("%s: %s missing for %s (Debian: %s; .ci/deps installs them)"
              % ("FAILED" if os.environ.get("CI") == "true" else "SKIPPED",
                 ", ".join(fehlt), sys.executable, pakete))
        sys.exit(1 if os.environ.get("CI") == "true" else 77)
