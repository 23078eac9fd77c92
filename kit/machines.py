"""Runs the packaged helper on bare machines: `python3 -m kit.machines BUILD ROOT...`.

Needs root and a mount namespace of its own. In each ROOT, a system without Qt and libcurl, a customer unpacks the build
directory's package and runs a removal, on a display of the outer system, under X11 and under a Wayland compositor.
Prints a table. Exits with 0 only if every step succeeded on every system.
"""

import contextlib
import pathlib
import shutil
import subprocess
import sys
from collections.abc import Iterator

from kit.desktop import Environment, Process, desktop, end, screenshot, wait_for, wayland_desktop
from kit.stage import Stage, Store, Window

CUSTOMER = 1000
BUS = ("dbus-run-session", "--")


def run(*arguments: object) -> str:
    return subprocess.run(list(map(str, arguments)), text=True, check=True, stdout=subprocess.PIPE).stdout


def prepare(root: pathlib.Path) -> None:
    """Adds a customer account, the kernel's directories, and the outer system's X servers to a system."""
    if "customer:" not in (root / "etc/passwd").read_text():
        run("chroot", root, "useradd", "--uid", CUSTOMER, "customer")
    for directory in ("proc", "sys", "dev", "tmp/.X11-unix"):
        (root / directory).mkdir(parents=True, exist_ok=True)
        run("mount", "--rbind", f"/{directory}", root / directory)


class Machine:
    """A customer on a bare system, with the package unpacked in a new home."""

    def __init__(self, build: pathlib.Path, root: pathlib.Path) -> None:
        self.root = root
        home = root / "home/customer"
        shutil.rmtree(home, ignore_errors=True)
        self.stage = Stage(build, home)
        shutil.rmtree(self.stage.bundle)
        package = next(pathlib.Path(build).glob("dist/*.tar.gz"))
        run("tar", "-xzf", package, "-C", self.stage.applications)
        run("chown", "-R", f"{CUSTOMER}:{CUSTOMER}", home)

    def system(self) -> str:
        name = next(line for line in (self.root / "etc/os-release").read_text().splitlines()
                    if line.startswith("PRETTY_NAME="))
        version = run("chroot", self.root, "dpkg-query", "--show", "--showformat", "${Version}", "libc6")
        return f"{name.split('=')[1].strip(chr(34))}, glibc {version.split('-')[0]}"

    def inside(self, path: pathlib.Path) -> str:
        """Returns the path as the customer sees it."""
        return str(path).removeprefix(str(self.root))

    def command(self, *words: str, **environment: str) -> list[str]:
        """Returns the arguments that run a command as the customer, with additional variables."""
        home = self.inside(self.stage.home)
        variables = {"HOME": home, "TMPDIR": f"{home}/tmp", "LC_ALL": "C.UTF-8", "PATH": "/usr/bin:/bin"} | environment
        return ["chroot", f"--userspec={CUSTOMER}:{CUSTOMER}", str(self.root), "env", "-i", "--chdir", home,
                *(f"{name}={value}" for name, value in variables.items()), *words]

    def start(self, *runner: str, **environment: str) -> Process:
        """Starts the helper through the command `runner`, or directly."""
        program = self.inside(self.stage.program())
        return subprocess.Popen(self.command(*runner, program, **environment), text=True, stderr=subprocess.PIPE)

    def libraries(self) -> set[str]:
        """Returns the names of the libraries that the running helper has loaded from outside its bundle."""
        for maps in pathlib.Path("/proc").glob("[0-9]*/maps"):
            with contextlib.suppress(OSError):
                lines = maps.read_text()
                if "SubscriptionHelperApplication.so" in lines and maps.with_name("root").readlink() == self.root:
                    files = {line.split(None, 5)[5] for line in lines.splitlines() if ".so" in line}
                    return {pathlib.Path(file).name.split(".so")[0] for file in files if ".app/" not in file}
        return set()


def shown_on_x11(machine: Machine, environment: Environment, picture: str | pathlib.Path, *runner: str,
                 **variables: str) -> tuple[Process, Window, bool]:
    """Starts the helper and waits for its window. Returns the process, the window, and whether it appeared."""
    window = Window(environment, machine.stage.brand["productName"])
    process = machine.start(*runner, DISPLAY=environment["DISPLAY"], **variables)
    is_shown = window.wait()
    screenshot(environment, picture)
    return process, window, is_shown


def shown_on_wayland(machine: Machine, environment: Environment, picture: pathlib.Path,
                     socket: str) -> tuple[Process, Window, bool]:
    """Starts the helper in a compositor, whose window gets the keys, and waits until its picture changes. Returns the
    process, the compositor's window, and whether its picture changed."""
    def differing() -> bool:
        screenshot(environment, picture)
        result = subprocess.run(["compare", "-metric", "AE", before, picture, "null:"], text=True,
                                capture_output=True, check=False)
        return float(result.stderr) > 20000

    window = Window(environment, "Weston Compositor - screen0")
    window.wait()
    before = picture.with_suffix(".before.png")
    screenshot(environment, before)
    process = machine.start(*BUS, WAYLAND_DISPLAY=socket, XDG_RUNTIME_DIR="/home/customer/run",
                            QT_QPA_PLATFORM="wayland")
    is_shown = wait_for(differing, 30, 0.5)
    return process, window, bool(is_shown)


def use(machine: Machine, store: Store, process: Process, window: Window, pictures: str | None = None) -> bool:
    """Runs a removal by keyboard, and prints the helper's log. Returns whether every step succeeded.

    @param pictures see Window.remove().
    """
    window.remove(machine.stage, pictures)
    window.press_until_ended(process)
    try:
        _, log = process.communicate(timeout=20)
    except subprocess.TimeoutExpired:
        return False
    finally:
        end(process)
    uninstalled = not machine.stage.is_demo() or machine.stage.note.exists()
    print(log, file=sys.stderr, end="")
    return bool(machine.stage.trashed_bundle()) and uninstalled and len(store.requests) == 2 and process.returncode == 0


def check(build: pathlib.Path, root: pathlib.Path, pictures: pathlib.Path
          ) -> Iterator[tuple[str, str, bool, bool, set[str]]]:
    """Yields a system's two table rows: under X11 and under Wayland."""
    prepare(root)
    libraries = set()
    for session in ("X11", "Wayland"):
        machine = Machine(build, root)
        picture = pictures / f"{root.name}-{session}.png"
        with contextlib.ExitStack() as stack:
            store = stack.enter_context(Store(build))
            environment = stack.enter_context(desktop())
            if session == "X11":
                process, window, is_shown = shown_on_x11(machine, environment, picture, *BUS)
            else:
                runtime = machine.stage.home / "run"
                stack.enter_context(wayland_desktop(runtime, environment, backend="x11"))
                run("chown", "-R", f"{CUSTOMER}:{CUSTOMER}", runtime)
                process, window, is_shown = shown_on_wayland(machine, environment, picture, "wayland-own")
            libraries = machine.libraries()
            is_removed = use(machine, store, process, window)
        yield machine.system(), session, is_shown, is_removed, libraries


def main() -> None:
    build = pathlib.Path(sys.argv[1])
    size = int(run("du", "-s", "--block-size=1M", build / "Subscription Helper.app").split()[0])
    print(f"| system | session | unpacked | window | removal | libraries of the system |\n|{'---|' * 6}")
    done = True
    names = set()
    for root in map(pathlib.Path, sys.argv[2:]):
        if not root.is_dir():
            print(f"| {root.name} | not installed | | | | |")
            done = done and root.name == "testing"
        else:
            for system, session, is_shown, is_removed, libraries in check(build, root, build.parent):
                outcomes = ["yes" if fact else "NO" for fact in (is_shown, is_removed)]
                print(f"| {system} | {session} | {size} MB | {' | '.join(outcomes)} | {len(libraries)} |", flush=True)
                done = done and is_shown and is_removed
                names |= libraries
    print(f"\nLibraries of the system: {', '.join(sorted(names))}")
    sys.exit(0 if done else 1)


if __name__ == "__main__":
    main()
