"""Shared parts of the end-to-end tests: the build under test, and stages that are removed after each test."""

import os
import pathlib
import subprocess
import tempfile
import unittest
from typing import Any

from kit.stage import PROJECT, Stage

BUILD = os.environ.get("HELPER_BUILD", str(PROJECT / "build" / "dev"))
SANITIZE = os.environ.get("HELPER_SANITIZE", "")
LONG = os.environ.get("HELPER_LONG") == "ON"


def content(folder: pathlib.Path) -> Any:
    """Returns the paths, modes and contents below a directory for comparison, or None if it is missing."""
    def entry(path: pathlib.Path) -> tuple[str, int, Any]:
        data: Any = None
        if path.is_symlink():
            data = path.readlink()
        elif path.is_file() and path.stat().st_mode & 0o400:  # a half copy may be unreadable
            data = path.read_bytes()
        return str(path.relative_to(folder)), path.lstat().st_mode, data
    return sorted(map(entry, folder.rglob("*"))) if folder.is_dir() else None


def as_ordinary_user(folder: pathlib.Path) -> list[str]:
    """Returns the words before a command with which root runs it as an ordinary user, and gives that user the folder.
    Root would pass each check of permissions."""
    if os.geteuid() != 0:
        return []
    subprocess.run(["chown", "-R", "65534:65534", folder], check=True)
    return ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]


def put(file: pathlib.Path, text: str | None, mode: int = 0o644) -> None:
    """Replaces a file by a text, by a directory if the text is "/", or by nothing if it is None."""
    file.unlink(missing_ok=True)
    file.parent.mkdir(parents=True, exist_ok=True)
    if text == "/":
        file.mkdir()
    elif text is not None:
        file.write_text(text)
        file.chmod(mode)


def rows(*table: Any) -> tuple[Any, ...]:
    """Returns a table of cases, whose rows may have values of any types."""
    return table


class TestCase(unittest.TestCase):
    """A test with its own temporary directory."""

    def setUp(self) -> None:
        self.folder = pathlib.Path(self.enterContext(
            tempfile.TemporaryDirectory(prefix="helper-endtoend-", ignore_cleanup_errors=True)))

    def make_stage(self, name: str = "home", **options: Any) -> Stage:
        return Stage(BUILD, self.folder / name, **options)

    def run_command(self, *words: object, status: int | None = 0, **options: Any) -> subprocess.CompletedProcess[str]:
        """Runs a command to its end. Its status must be `status`, unless that is None."""
        result = subprocess.run([*map(str, words)], text=True, capture_output=True, check=False, **options)
        if status is not None:
            self.assertEqual(result.returncode, status, result.stdout[-3000:] + result.stderr)
        return result
