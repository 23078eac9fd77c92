"""A stage for the helper: a temporary home with its bundle and the demo product, the demo store, and the window."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import time
import urllib.parse
from collections.abc import Callable
from typing import IO

from kit.desktop import Environment, Process, end, screenshot, wait_for

PROJECT = pathlib.Path(__file__).resolve().parents[1]
BUNDLE = "Subscription Helper.app"
HELPER_DOMAIN = "com.example.subscription-helper"  # of the demo product's helper


class Store:
    """A running demo store service, which prints each request before it answers."""

    def __init__(self, build: str | pathlib.Path, *arguments: str) -> None:
        self.output = tempfile.NamedTemporaryFile()
        self.process = subprocess.Popen([f"{build}/demo/demo-store", *arguments], stdout=self.output)
        if not wait_for(lambda: self._lines() or self.process.poll() is not None):
            end(self.process)
        if not self._lines():
            raise RuntimeError("cannot start the demo store")
        self.address = self._lines()[0].removeprefix("Listening on ")

    def _lines(self) -> list[str]:
        text = pathlib.Path(self.output.name).read_text()
        return text[:text.rfind("\n") + 1].splitlines()

    @property
    def requests(self) -> list[str]:
        """The requests until now."""
        return self._lines()[1:]

    def __enter__(self) -> "Store":
        return self

    def __exit__(self, *_: object) -> None:
        end(self.process)
        self.output.close()


class Stage:
    """A home in `folder` that contains the bundle of a build directory and the demo product."""

    def __init__(self, build: str | pathlib.Path, folder: pathlib.Path, reference: str | None = "DEMO-1001",
                 applications: str = "Applications") -> None:
        self.home = pathlib.Path(folder)
        self.brand = json.loads((pathlib.Path(build) / "brand.json").read_text())
        self.applications = self.home / applications
        self.bundle = self.applications / BUNDLE
        self.product = self.home / "Applications" / "Acme Studio"
        self.config = self.home / ".config"
        self.note = self.home / "Acme Studio was uninstalled.txt"
        self.config.mkdir(parents=True)
        (self.home / "tmp").mkdir()
        shutil.copytree(pathlib.Path(build) / BUNDLE, self.bundle, symlinks=True)
        shutil.copytree(PROJECT / "demo" / "product" / "Acme Studio", self.product)
        self.set_reference(reference)

    def is_demo(self) -> bool:
        """Returns whether the brand is the demo product's, whose uninstaller leaves a note."""
        return self.brand["identifier"] == HELPER_DOMAIN

    def wait_for_uninstaller(self, seconds: float = 15) -> None:
        if self.is_demo():
            wait_for(self.note.exists, seconds)

    def set_reference(self, reference: str | None) -> None:
        """Writes the product's subscription reference, or removes its settings file if the reference is None."""
        file = self.config / f"{self.brand['productDomain']}.conf"
        file.unlink(missing_ok=True)
        if reference is not None:
            file.write_text(f"subscriptionReference={reference}\n")

    def environment(self, base: Environment | None = None) -> Environment:
        """Returns the environment of a session of this home's user."""
        environment = dict(base if base is not None else os.environ)
        for name in list(environment):
            is_base_directory = name.startswith("XDG_") and name != "XDG_RUNTIME_DIR"
            if is_base_directory or name.lower().endswith("_proxy") or name == "LANGUAGE":
                del environment[name]
        return environment | {"HOME": str(self.home), "TMPDIR": str(self.home / "tmp"),
                              "LC_ALL": "C.UTF-8"}

    def program(self, bundle: pathlib.Path | None = None) -> pathlib.Path:
        return (bundle or self.bundle) / "Contents" / "Linux" / "Subscription Helper"

    def start(self, base: Environment | None = None, bundle: pathlib.Path | None = None,
              log: IO[str] | int = subprocess.PIPE) -> Process:
        """Starts the helper, which writes its standard error to `log`, and returns its process."""
        return subprocess.Popen([str(self.program(bundle))], env=self.environment(base), text=True,
                                cwd=self.home, stderr=log)

    def run(self, base: Environment | None = None, bundle: pathlib.Path | None = None,
            seconds: float = 60) -> tuple[int, str, float]:
        """Runs the helper until it exits. Returns its status, its log, and its duration in seconds."""
        begin = time.monotonic()
        process = self.start(base, bundle)
        try:
            _, log = process.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            process.kill()
            raise
        return process.returncode, log, time.monotonic() - begin

    def last_run(self) -> str | None:
        """Returns the stored last-run time, or None if it is missing."""
        file = self.config / f"{self.brand['identifier']}.conf"
        lines = file.read_text().splitlines() if file.exists() else []
        key = "lastRunUserDefaultKey="
        return next((line[len(key):] for line in lines if line.startswith(key)), None)

    def forget_last_run(self) -> None:
        (self.config / f"{self.brand['identifier']}.conf").unlink(missing_ok=True)

    def trashed_bundle(self) -> pathlib.Path | None:
        """Returns the bundle's path in the Trash, or None if it is missing there."""
        path = self.home / ".local/share/Trash/files" / BUNDLE
        return path if path.exists() else None

    def restore_path(self) -> str | None:
        """Returns the path to which the Trash would restore the bundle, or None if it is unknown."""
        info = self.home / ".local/share/Trash/info" / f"{BUNDLE}.trashinfo"
        lines = info.read_text().splitlines() if info.exists() else []
        return next((urllib.parse.unquote(line[5:]) for line in lines if line.startswith("Path=")),
                    None)

    def set_browser(self, command: str) -> None:
        """Makes a command line the user's browser. "%u" in it stands for the address."""
        applications = self.home / ".local/share/applications"
        applications.mkdir(parents=True, exist_ok=True)
        (applications / "browser.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Browser\nExec={command}\n"
            "MimeType=x-scheme-handler/http;\n")
        (self.config / "mimeapps.list").write_text(
            "[Default Applications]\nx-scheme-handler/http=browser.desktop\n")


class Window:
    """The helper's window on a desktop, driven by keys like a person's."""

    def __init__(self, environment: Environment, title: str = "Acme Studio") -> None:
        self.environment = environment
        self.title = title
        self._pattern = f"^{re.escape(title)}$"

    def _xdotool(self, *arguments: str) -> list[str]:
        return subprocess.run(["xdotool", *arguments], env=self.environment, text=True,
                              capture_output=True, check=False).stdout.split()

    def is_shown(self) -> bool:
        return bool(self._xdotool("search", "--onlyvisible", "--name", self._pattern))

    def wait(self, seconds: float = 30) -> bool:
        """Waits until the window is on the screen and active. Returns whether it is."""
        active = ["getactivewindow", "getwindowname"]
        return wait_for(lambda: self.is_shown() and
                        " ".join(self._xdotool(*active)) == self.title, seconds)

    def keys(self, *keys: str) -> None:
        self._xdotool("key", "--delay", "60", *keys)

    def press_until_ended(self, process: Process, key: str = "Return") -> None:
        """Presses a key until the process has ended, because the window ignores keys while its sheet is modal."""
        wait_for(lambda: self.keys(key) or process.poll() is not None, 30, 0.2)

    def activate(self) -> None:
        """Raises the window and gives it the keyboard focus."""
        self._xdotool("search", "--onlyvisible", "--name", self._pattern, "windowactivate",
                      "--sync")

    def press_remove(self) -> None:
        """Presses the remove button by its English mnemonic, when the button has been visible for more than the second
        in which it is disabled. Presses twice, because a start may be slow."""
        for seconds in (1.2, 0.3):
            time.sleep(seconds)
            self.keys("alt+u")

    def start_removal(self, process: Process) -> None:
        """Presses the remove button until the removal has begun, which loads GIO."""
        libraries = pathlib.Path(f"/proc/{process.pid}/maps")
        wait_for(lambda: self.press_remove() or "libgio" in libraries.read_text(), 60)

    def remove(self, stage: Stage, pictures: str | None = None,
               before_end: Callable[[], object] = lambda: None) -> None:
        """Performs a removal up to the last press.

        @param pictures the beginning of the paths of three screenshots (window, sheet, end), or None.
        @param before_end runs after the removal, before the last screenshot.
        """
        def photograph(name: str) -> None:
            if pictures is not None:
                screenshot(self.environment, f"{pictures}{name}.png")

        if pictures is not None:
            time.sleep(1.2)  # until the remove button is enabled
            photograph("window")
        self.press_remove()
        time.sleep(0.7)
        photograph("sheet")
        wait_for(stage.trashed_bundle)
        stage.wait_for_uninstaller()
        before_end()
        time.sleep(0.5)
        photograph("end")

    def _id(self) -> str:
        return self._xdotool("search", "--onlyvisible", "--name", self._pattern)[0]

    def property(self, name: str) -> str:
        return subprocess.run(["xprop", "-id", self._id(), name], env=self.environment, text=True,
                              capture_output=True, check=True).stdout

    def picture(self) -> bytes:
        """Returns the window's pixels, without its title bar and borders, as a PPM image."""
        return subprocess.run(["import", "-window", self._id(), "ppm:-"], env=self.environment,
                              capture_output=True, check=True).stdout
