"""Shows a removal with the demo store service: `python3 -m demo.demo BUILD DIRECTORY [--refuse]`.

Puts the bundle of a build directory and the demo product into a temporary home below DIRECTORY, starts
the demo store, and runs the helper. With a display, the window waits for the user. Without one, the demo
presses the remove button on a virtual display and takes pictures. Then the demo checks and prints the
outcome of each step. It exits with 0 only if all steps succeeded.
"""

import argparse
import contextlib
import os
import pathlib
import shutil
import subprocess
import sys
import time

from kit.desktop import desktop, end, screenshot, wait_for
from kit.stage import Stage, Store, Window

CANCELLATION = 2000  # the store's delay in milliseconds, for which the progress sheet is visible
BROWSER = """#!/bin/sh
exec /usr/bin/chromium --no-first-run --disable-gpu --disable-quic --disable-sync \\
    --disable-background-networking --disable-component-update --window-position=300,330 \\
    --window-size=900,440 --user-data-dir='{profile}' {root} "$1" >/dev/null 2>&1
"""


def set_chromium(stage: Stage, folder: pathlib.Path) -> None:
    """Makes Chromium, with a temporary profile, the browser of the stage's user."""
    root = "--no-sandbox" if os.geteuid() == 0 else ""
    browser = stage.home / "browser"
    browser.write_text(BROWSER.format(profile=folder / "profile", root=root))
    browser.chmod(0o755)
    stage.set_browser(f'"{browser}" %u')


def use_by_hand(stage: Stage) -> int:
    print("In the window, press “Cancel Subscription and Uninstall”, then “Close”.", flush=True)
    with (stage.home / "log").open("w") as log:
        return stage.start(log=log).wait()


def use_by_itself(stage: Stage, store: Store, folder: pathlib.Path, refuse: bool) -> int | None:
    """Presses the remove button by keyboard on a virtual display, and takes pictures. Returns the helper's status, or
    None if it is still running 30 seconds later."""
    with desktop(stage.environment()) as environment:
        window = Window(environment, stage.brand["productName"])
        # Log to a file, because a browser that the helper starts would keep a pipe open.
        with (stage.home / "log").open("w") as log:
            process = stage.start(environment, log=log)
        try:
            if window.wait():
                window.remove(stage, f"{folder}/",
                              lambda: refuse and photograph_browser(window, store, folder))
                window.press_until_ended(process)
            else:
                print("The helper's window did not appear. See its log below.")
            return process.wait(30)
        except subprocess.TimeoutExpired:
            return None
        finally:
            end(process)


def photograph_browser(window: Window, store: Store, folder: pathlib.Path) -> None:
    wait_for(lambda: any("/account/" in line for line in store.requests), 60)
    time.sleep(3)  # until the page is drawn
    screenshot(window.environment, folder / "browser.png")
    window.activate()


def report(stage: Stage, store: Store, status: int | None, refuse: bool) -> bool:
    """Prints the outcome of each step. Returns whether all steps succeeded."""
    requests = list(store.requests)
    second, _, seconds = stage.run(bundle=stage.trashed_bundle()) if stage.trashed_bundle() \
        else (None, "", 0)
    note = stage.note.read_text().strip() if stage.note.exists() else "the note is missing"

    def request(part: str) -> str | None:
        return next((line for line in requests if part in line), None)

    steps = [
        (request("f=getsubscription"), "The helper looked up the subscription"),
        (request("f=deletesubscription"), "The helper requested the cancellation"),
        (stage.trashed_bundle(), "The helper's bundle is in the Trash"),
        (stage.restore_path() == str(stage.bundle) and stage.restore_path(),
         "The Trash can restore the bundle to"),
        (stage.last_run(), "The last-run time is stored"),
        (second == 0 and len(store.requests) == len(requests)
         and f"status 0 after {seconds * 1000:.0f} ms, without a request",
         "A second start exited immediately"),
    ]
    if stage.is_demo():
        steps[2:2] = [
            (stage.note.exists() and note, "The uninstaller ran and left a note"),
            (not stage.product.exists() and str(stage.product), "The product's directory is gone")]
    if refuse:
        steps.insert(2, (request("GET /account/"), "The account page opened in a browser"))
    print("\nOutcome of each step:")
    for fact, step in steps:
        print(f"  [{'ok' if fact else 'NO'}] {step}: {fact or 'failed'}")
    log = (stage.home / "log").read_text()
    print(f"The helper exited with status {status}" + (f" and logged:\n{log}" if log else "."))
    return status == 0 and all(fact for fact, _ in steps)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--refuse", action="store_true",
                        help="the store refuses, and the account page opens in Chromium")
    arguments = parser.parse_args()
    folder = arguments.folder.resolve()
    shutil.rmtree(folder, ignore_errors=True)
    stage = Stage(arguments.build, folder / "home",
                  reference="DEMO-KEEP" if arguments.refuse else "DEMO-1001")
    has_display = bool(os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"))
    if arguments.refuse:
        set_chromium(stage, folder)
    print(f"Temporary home: {stage.home}")
    try:
        with Store(arguments.build, "--delay", str(CANCELLATION)) as store:
            print(f"Demo store: {store.address}", flush=True)
            status = use_by_hand(stage) if has_display else \
                use_by_itself(stage, store, folder, arguments.refuse)
            stage.wait_for_uninstaller(5)
            done = report(stage, store, status, arguments.refuse)
    except RuntimeError as error:
        sys.exit(f"demo: {error}")
    for picture in sorted(folder.glob("*.png")):
        print(f"Picture: {picture}")
    sys.exit(0 if done else 1)


if __name__ == "__main__":
    with contextlib.suppress(KeyboardInterrupt):
        main()
