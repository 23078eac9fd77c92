"""The main job, shown against the demo store service: `python3 -m demo.demo BUILD FOLDER [--refuse]`.

Puts the bundle of a build folder and the demo product into a throw-away home below FOLDER, starts
the demo store, and runs the helper: on the user's display, or on a virtual one, where it presses the
removal control itself and takes pictures. Ends by telling what really happened; status 0 only if all
of it did.
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

CANCELLATION = 2000  # milliseconds that the store takes, so that the sheet can be seen
BROWSER = """#!/bin/sh
exec /usr/bin/chromium --no-first-run --disable-gpu --disable-quic --disable-sync \\
    --disable-background-networking --disable-component-update --window-position=300,330 \\
    --window-size=900,440 --user-data-dir='{profile}' {root} "$1" >/dev/null 2>&1
"""


def set_chromium(stage, folder):
    """Makes Chromium, with a profile of its own, the browser of the stage's user."""
    root = "--no-sandbox" if os.geteuid() == 0 else ""
    browser = stage.home / "browser"
    browser.write_text(BROWSER.format(profile=folder / "profile", root=root))
    browser.chmod(0o755)
    stage.set_browser(f'"{browser}" %u')


def use_by_hand(stage):
    print("The window is yours: press “Cancel Subscription and Uninstall”, then “Close”.", flush=True)
    with (stage.home / "log").open("w") as log:
        return stage.start(log=log).wait()


def use_by_itself(stage, store, folder, refuse):
    """Presses the removal control by keyboard on a virtual display, and takes pictures."""
    with desktop(stage.environment()) as environment:
        window = Window(environment, stage.brand["productName"])
        # Into a file: a browser that the helper starts would keep a pipe open.
        with (stage.home / "log").open("w") as log:
            process = stage.start(environment, log=log)
        try:
            if window.wait(15) or (window.activate() or window.wait(15)):
                photograph_removal(window, stage, store, folder, refuse)
                window.keys("Return")
            else:
                print("No window came up.")
            return process.wait(30)
        except subprocess.TimeoutExpired:
            return None
        finally:
            end(process)


def photograph_removal(window, stage, store, folder, refuse):
    screenshot(window.environment, folder / "window.png")
    window.press_remove()
    time.sleep(CANCELLATION / 2000)
    screenshot(window.environment, folder / "sheet.png")
    wait_for(stage.trashed_bundle)
    stage.wait_for_uninstaller()
    if refuse:
        wait_for(lambda: any("/account/" in line for line in store.requests), 60)
        time.sleep(3)  # for the page to be drawn
        screenshot(window.environment, folder / "browser.png")
        window.activate()
    time.sleep(0.5)
    screenshot(window.environment, folder / "end.png")


def report(stage, store, status, refuse):
    """Prints what happened, step by step; gives whether all of it did."""
    requests = list(store.requests)
    second, _, seconds = stage.run(bundle=stage.trashed_bundle()) if stage.trashed_bundle() \
        else (None, "", 0)
    note = stage.note.read_text().strip() if stage.note.exists() else "no note"

    def request(part):
        return next((line for line in requests if part in line), None)

    steps = [
        (request("f=getsubscription"), "The store was asked for the subscription"),
        (request("f=deletesubscription"), "The store was asked to cancel it"),
        (stage.trashed_bundle(), "The helper's bundle lies in the Trash"),
        (stage.restore_path() == str(stage.bundle) and stage.restore_path(),
         "It can be restored to"),
        (stage.last_run(), "The time of the run is stored"),
        (second == 0 and len(store.requests) == len(requests)
         and f"status 0 after {seconds * 1000:.0f} ms, nothing requested",
         "A second start left at once"),
    ]
    if stage.is_demo():
        steps[2:2] = [
            (stage.note.exists() and note, "The uninstaller ran and left a note"),
            (not stage.product.exists() and str(stage.product), "The product's directory is gone")]
    if refuse:
        steps.insert(2, (request("GET /account/"), "The account page opened in a browser"))
    print("\nWhat happened:")
    for fact, step in steps:
        print(f"  [{'ok' if fact else 'NO'}] {step}: {fact or 'did not happen'}")
    log = (stage.home / "log").read_text()
    print(f"The helper ended with status {status}" + (f" and said:\n{log}" if log else "."))
    return status == 0 and all(fact for fact, _ in steps)


def main():
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
    print(f"Throw-away home: {stage.home}")
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
