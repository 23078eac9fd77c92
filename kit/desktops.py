"""Runs the packaged helper on real desktops: `python3 -m kit.desktops BUILD ROOT...`.

Needs root and a mount namespace of its own. Each ROOT contains the desktop of its name. A customer unpacks the package
of the build directory there, logs in on a virtual display and opens the window. The desktop changes from dark to light
or from light to dark, and the customer performs a removal by keyboard. Prints a table, saves screenshots beside the
build directory, and exits with 0 if every step succeeded.
DESKTOP_SCALE=2 gives Plasma double resolution.
"""

import contextlib
import dataclasses
import os
import pathlib
import subprocess
import sys
import time
from typing import IO

from kit.desktop import Environment, Process, display, end, wait_for
from kit.machines import CUSTOMER, Machine, prepare, run, shown_on_x11, use
from kit.stage import Store, Window

SCALE = int(os.environ.get("DESKTOP_SCALE", "1"))


@dataclasses.dataclass(frozen=True)
class Desktop:
    name: str
    package: str  # whose version is the desktop's
    programs: list  # commands that run until the session ends
    variables: dict  # set at login
    styles: dict  # the command that makes the desktop light or dark
    is_followed: bool = True  # by the open window, when it becomes light or dark
    welcome: list = dataclasses.field(default_factory=list)  # the command that leaves the first view


SCHEME = ["gsettings", "set", "org.gnome.desktop.interface", "color-scheme"]
LOOK = ["plasma-apply-lookandfeel", "--apply"]
THEME = ["xfconf-query", "--channel", "xsettings", "--property", "/Net/ThemeName", "--create",
         "--type", "string", "--set"]

DESKTOPS = {
    "gnome": Desktop(
        "GNOME", "gnome-shell", [["gnome-shell", "--x11"], ["/usr/libexec/gsd-xsettings"]],
        {"XDG_CURRENT_DESKTOP": "GNOME"},
        {"light": [*SCHEME, "prefer-light"], "dark": [*SCHEME, "prefer-dark"]},
        welcome=[
            "gdbus", "call", "--session", "--dest", "org.gnome.Shell", "--object-path", "/org/gnome/Shell", "--method",
            "org.freedesktop.DBus.Properties.Set", "org.gnome.Shell", "OverviewActive", "<false>"]),
    "plasma": Desktop(
        "KDE Plasma", "plasma-workspace", [["startplasma-x11"]],
        {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"},
        {"light": [*LOOK, "org.kde.breeze.desktop"], "dark": [*LOOK, "org.kde.breezedark.desktop"]},
        is_followed=False),  # Qt without KDE's plugin reads the colors at the start
    "xfce": Desktop(
        "Xfce", "xfce4-session", [["startxfce4"]],
        {"XDG_CURRENT_DESKTOP": "XFCE"},
        {"light": [*THEME, "Adwaita"], "dark": [*THEME, "Adwaita-dark"]}),
}


def is_managed(environment: Environment) -> bool:
    """Returns true if a window manager manages the display."""
    return "_NET_SUPPORTING_WM_CHECK(WINDOW)" in subprocess.run(
        ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=environment, text=True,
        capture_output=True, check=False).stdout


class Session:
    """A customer's session of a desktop on a display."""

    def __init__(self, machine: Machine, kind: Desktop, environment: Environment, log: IO[str]) -> None:
        self.machine = machine
        self.kind = kind
        self.display = environment
        self.log = log
        runtime = machine.stage.home / "run"
        runtime.mkdir(mode=0o700)
        os.chown(runtime, CUSTOMER, CUSTOMER)
        self.variables = kind.variables | {
            "XDG_SESSION_TYPE": "x11", "XDG_RUNTIME_DIR": machine.inside(runtime),
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={machine.inside(runtime)}/bus"}
        self.programs: list[Process] = []
        (machine.stage.config / "kcmfonts").write_text(f"[General]\nforceFontDPI={96 * SCALE}\n")
        (machine.stage.config / "kdeglobals").write_text(
            f"[KScreen]\nScaleFactor={SCALE}\nScreenScaleFactors=screen={SCALE};\n")
        (machine.stage.config / "ksplashrc").write_text("[KSplash]\nEngine=none\n")
        run("chown", "-R", f"{CUSTOMER}:{CUSTOMER}", machine.stage.config)

    def begin(self) -> None:
        # GNOME needs a system bus.
        (self.machine.root / "run/dbus").mkdir(exist_ok=True)
        (self.machine.root / "run/dbus/pid").unlink(missing_ok=True)
        self.programs.append(subprocess.Popen(["chroot", self.machine.root, "dbus-daemon", "--system", "--nofork"],
                                              stdout=self.log, stderr=self.log))
        bus = self.machine.stage.home / "run/bus"
        self._begin("dbus-daemon", "--session", "--nofork", f"--address={self.variables['DBUS_SESSION_BUS_ADDRESS']}")
        wait_for(bus.exists)
        for program in self.kind.programs:
            self._begin(*program)
        if not wait_for(lambda: is_managed(self.display), 90, 0.5):
            raise RuntimeError(f"{self.kind.name} does not start")
        self._wait_until_quiet()

    def _begin(self, *program: str) -> None:
        self.programs.append(subprocess.Popen(self._command(*program), stdin=subprocess.DEVNULL, stdout=self.log,
                                              stderr=self.log))

    def _command(self, *words: str) -> list[str]:
        return self.machine.command(*words, DISPLAY=self.display["DISPLAY"], **self.variables)

    def end(self) -> None:
        for program in reversed(self.programs):
            end(program, 5)

    def call(self, *words: str) -> None:
        subprocess.run(self._command(*words), check=True, stdout=self.log, stderr=self.log)

    def set_style(self, style: str) -> None:
        self.call(*self.kind.styles[style])
        self._wait_until_quiet()
        if self.kind.welcome:
            self.call(*self.kind.welcome)
            self._wait_until_quiet()

    def _wait_until_quiet(self) -> None:
        """Waits until the screen has looked the same for two seconds."""
        def picture() -> bytes:
            return subprocess.run(["import", "-window", "root", "ppm:-"], env=self.display, check=True,
                                  capture_output=True).stdout

        def is_quiet() -> bool:
            before = picture()
            time.sleep(2)
            return picture() == before

        wait_for(is_quiet, 60)


def seen_style(window: Window) -> str:
    """Returns "light" or "dark", by the mean of the window's pixels."""
    mean = subprocess.run(["convert", "ppm:-", "-colorspace", "gray", "-format", "%[fx:mean]", "info:"],
                          input=window.picture(), capture_output=True, check=True).stdout
    return "light" if float(mean) > 0.5 else "dark"


def check(build: pathlib.Path, root: pathlib.Path, style: str, pictures: pathlib.Path) -> dict[str, bool | None]:
    """Runs a session. Returns whether each step succeeded, by column."""
    kind = DESKTOPS[root.name]
    machine = Machine(build, root)
    facts: dict[str, bool | None] = dict.fromkeys(("window", "style", "change", "removal", "restore path"), False)
    facts["change"] = False if kind.is_followed else None
    with contextlib.ExitStack() as stack:
        store = stack.enter_context(Store(build, "--delay", "2000"))
        environment = stack.enter_context(display(screen=f"{1280 * SCALE}x{800 * SCALE}"))
        log = stack.enter_context(open(f"{pictures}.log", "w", encoding="utf-8"))
        session = Session(machine, kind, environment, log)
        stack.callback(session.end)
        session.begin()
        first = {"light": "dark", "dark": "light"}[style] if kind.is_followed else style
        session.set_style(first)
        process, window, facts["window"] = shown_on_x11(machine, environment, f"{pictures}-window.png",
                                                        **session.variables)
        if facts["window"]:
            facts["style"] = seen_style(window) == first
            if kind.is_followed:
                session.set_style(style)
                facts["change"] = wait_for(lambda: seen_style(window) == style)
            facts["removal"] = use(machine, store, process, window, f"{pictures}-")
            facts["restore path"] = machine.stage.restore_path() == machine.inside(machine.stage.bundle)
        else:
            end(process)
            print(f"status {process.returncode}: {process.stderr.read()}", file=sys.stderr)
    return facts


def main() -> None:
    build = pathlib.Path(sys.argv[1])
    print("| desktop | style | window | first style | change | removal | restore path |\n|---|---|---|---|---|---|---|")
    done = True
    for root in map(pathlib.Path, sys.argv[2:]):
        prepare(root)
        kind = DESKTOPS[root.name]
        version = run("chroot", root, "dpkg-query", "--show", "--showformat", "${Version}", kind.package)
        for style in ("light", "dark"):
            facts = check(build, root, style, build.parent / f"{root.name}-{style}")
            words = [{True: "yes", False: "NO", None: "-"}[fact] for fact in facts.values()]
            print(f"| {kind.name} {version} | {style} | {' | '.join(words)} |", flush=True)
            done = done and False not in facts.values()
    sys.exit(0 if done else 1)


if __name__ == "__main__":
    main()
