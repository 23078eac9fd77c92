"""What the end-to-end tests share: the build under test, and stages that are cleared away."""

import os
import pathlib
import shutil
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "demo"))

import stage  # noqa: E402  pylint: disable=wrong-import-position

BUILD = os.environ.get("HELPER_BUILD", str(stage.PROJECT / "build" / "dev"))
SANITIZE = os.environ.get("HELPER_SANITIZE", "")
LONG = os.environ.get("HELPER_LONG") == "ON"


class TestCase(unittest.TestCase):
    """A test with a throw-away folder of its own."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="helper-endtoend-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def make_stage(self, **options):
        return stage.Stage(BUILD, self.folder / "home", **options)
