"""The demonstration itself: it must pass, and must fail when something did not happen."""

import os
import subprocess
import sys
import unittest

from support import BUILD, TestCase
from stage import PROJECT


class DemoTest(TestCase):
    def run_demo(self):
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        return subprocess.run([sys.executable, PROJECT / "demo" / "demo.py", BUILD,
                               self.folder / "demo"], env=environment, text=True,
                              capture_output=True, timeout=120, check=False)

    def test_it_shows_every_step(self):
        result = self.run_demo()
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(result.stdout.count("[ok]"), 8, result.stdout)
        for name in ("window", "sheet", "end"):
            self.assertTrue((self.folder / "demo" / f"{name}.png").exists(), name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
