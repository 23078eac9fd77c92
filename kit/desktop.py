"""A private desktop: a virtual display with a window manager and a session bus.

As a program, `kit/desktop.py COMMAND [ARGUMENT ...]` runs a command on such a desktop and exits with its status.
"""

import contextlib
import os
import pathlib
import subprocess
import sys
import time
from collections.abc import Callable, Iterator
from typing import Any, TypeVar

Environment = dict[str, str]
Process = subprocess.Popen[Any]
T = TypeVar("T")
SCREEN = os.environ.get("DEMO_SCREEN", "1280x800")


def end(process: Process, grace: float = 10) -> None:
    """Terminates a child process, kills it after `grace` seconds, and waits for it."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(grace)
        except subprocess.TimeoutExpired:
            process.kill()
    process.wait()


def wait_for(condition: Callable[[], T], seconds: float = 15, interval: float = 0.05) -> T:
    """Waits until the condition returns a true value, and returns that value, or the last one after `seconds`."""
    deadline = time.monotonic() + seconds
    value = condition()
    while not value and time.monotonic() < deadline:
        time.sleep(interval)
        value = condition()
    return value


def _start_display(screen: str) -> tuple[Process, str]:
    """Starts a virtual display on a free number, which the server chooses. Returns the process and the number."""
    reader, writer = os.pipe()
    # Without -noreset, the server resets when its last client disconnects, and drops a client that is just connecting.
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writer), "-screen", "0", screen + "x24", "-nolisten", "tcp", "-noreset"],
        pass_fds=[writer], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writer)
    with os.fdopen(reader) as pipe:
        number = pipe.readline().strip()
    if not number:
        raise RuntimeError("cannot start Xvfb")
    return server, ":" + number


def start_bus(environment: Environment) -> tuple[Process, str]:
    """Starts a session bus. Returns the process and the bus's address."""
    bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                           stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                           env=environment)
    return bus, bus.stdout.readline().strip()


def _start_manager(environment: Environment) -> Process:
    """Starts a window manager, waits until it manages the display, and returns its process.

    openbox sets _NET_SUPPORTING_WM_CHECK before it looks for windows, and a window that is mapped in between stays
    invisible. Wait for the startup command instead, which runs after both.
    """
    manager = subprocess.Popen(["openbox", "--startup", "xprop -root -f IS_MANAGED 32c -set IS_MANAGED 1"],
                               env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    if not wait_for(lambda: "= 1" in subprocess.run(["xprop", "-root", "IS_MANAGED"], env=environment, text=True,
                                                    capture_output=True, check=False).stdout, 60):
        end(manager)
        raise RuntimeError("cannot start openbox")
    return manager


@contextlib.contextmanager
def display(environment: Environment | None = None, screen: str = SCREEN) -> Iterator[Environment]:
    """Yields the environment for programs on a new display without a window manager."""
    environment = dict(environment if environment is not None else os.environ)
    environment.pop("WAYLAND_DISPLAY", None)
    server, environment["DISPLAY"] = _start_display(screen)
    try:
        yield environment
    finally:
        end(server)


@contextlib.contextmanager
def desktop(environment: Environment | None = None) -> Iterator[Environment]:
    """Yields the environment for programs on a new desktop."""
    with contextlib.ExitStack() as stack:
        environment = stack.enter_context(display(environment))
        bus, environment["DBUS_SESSION_BUS_ADDRESS"] = start_bus(environment)
        stack.callback(bus.stdout.close)
        stack.callback(end, bus)
        stack.callback(end, _start_manager(environment))
        yield environment


@contextlib.contextmanager
def wayland_desktop(runtime: pathlib.Path, environment: Environment | None = None,
                    backend: str = "headless") -> Iterator[Environment]:
    """Yields the environment for programs on a new Wayland desktop. The desktop is headless, or a window on X11 if
    the backend is "x11". Its socket is in the directory `runtime`, which is created here."""
    environment = dict(environment if environment is not None else os.environ)
    if backend == "headless":
        environment.pop("DISPLAY", None)
    runtime.mkdir(mode=0o700)
    environment |= {"XDG_RUNTIME_DIR": str(runtime), "WAYLAND_DISPLAY": "wayland-own",
                    "QT_QPA_PLATFORM": "wayland"}
    with contextlib.ExitStack() as stack:
        compositor = subprocess.Popen(
            ["weston", f"--backend={backend}-backend.so", "--socket=wayland-own", "--no-config"],
            env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        stack.callback(end, compositor)
        wait_for((runtime / "wayland-own").exists)
        yield environment


def screenshot(environment: Environment, path: str | pathlib.Path) -> None:
    subprocess.run(["import", "-window", "root", path], env=environment, check=True)


if __name__ == "__main__":
    with desktop() as own:
        sys.exit(subprocess.run(sys.argv[1:], env=own, check=False).returncode)
