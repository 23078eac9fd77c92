"""Tests the helper from outside, with the real bundle, store, window and Trash."""

import contextlib
import fcntl
import fnmatch
import json
import os
import pathlib
import re
import shutil
import signal
import struct
import subprocess
import sys
import time
import unittest
from typing import Any

from tests.endtoend.support import BUILD, SANITIZE, TestCase, put, rows
from kit.desktop import Environment, Process, desktop, end, start_bus, wait_for, wayland_desktop
from kit.stage import BUNDLE, HELPER_DOMAIN, Stage, Store, Window

NO_DISPLAY = "No window can be shown: .*"


def answering(answer: str | None) -> contextlib.AbstractContextManager[Any]:
    if answer is None:
        return contextlib.nullcontext()
    return Store(BUILD, "--answer", answer)


class StartTest(TestCase):
    """Tests starts that exit before the window appears."""

    def test_what_each_start_says_and_whether_it_counts(self) -> None:
        stage = self.make_stage()
        lonely = self.folder / "lonely"
        shutil.copy(stage.program(), lonely)
        for words, variables, status, said, counts in rows(
                ([], {}, 1, NO_DISPLAY + "could not connect to display", True),
                ([], {"DISPLAY": ":4711"}, 1, NO_DISPLAY + "could not connect to display :4711", True),
                ([], {"QT_QPA_PLATFORM": "nosuch"}, 1, NO_DISPLAY + 'Qt platform plugin "nosuch"', True),
                ([], {"HOME": "/proc/none"}, 1, f"(?s)cannot be stored: No such file .*{NO_DISPLAY}", False),
                (["unknown"], {}, 1, NO_DISPLAY, True), (["--style=fusion"], {}, 1, NO_DISPLAY, True),
                (["--chek"], {}, 2, "^Unknown option --chek", False),
                (["--check"], {"QT_QPA_PLATFORM": "offscreen"}, 0,
                 r"(?s)\[ok\] bundle: .*, a start runs now, .*\[not tested\] store service: .*\[ok\] display: ", False),
                (["--check", "--jsn"], {}, 2, "^Unknown option --jsn", False),
                (["--check", "json"], {}, 2, "^Unknown option json", False),
                (["--style=fusion", "--json"], {}, 2, "^Unknown option --json", False),
                (["--ask"], {}, 2, "^Unknown option --ask", False),
                (["--version"], {}, 0, r"^Subscription Helper \d+\.\d+\.\d+\n$", False),
                (["--help"], {}, 0, "Helps a customer to leave Acme Studio: ", False)):
            with self.subTest(words=words, variables=variables):
                stage.forget_last_run()
                result = self.run_command(stage.program(), *words, status=status,
                                          env=stage.environment({"PATH": "/usr/bin"}) | variables)
                self.assertRegex(result.stdout + result.stderr, said)
                self.assertEqual(stage.last_run() is not None, counts)
                self.assertEqual(len(result.stderr.splitlines()), min(status, 1) + ("HOME" in variables))
        stage.forget_last_run()
        for words in ([], ["--check", "--json"]):
            result = self.run_command(lonely, *words, status=1, env=stage.environment())
            self.assertEqual((result.stdout, stage.last_run(), lonely.exists()), ("", None, True))
            self.assertRegex(result.stderr, "^[^\n]* Cannot start outside of an application bundle: [^\n]*\n$")

    def test_a_check_names_each_failure_and_the_next_step(self) -> None:
        contents = f"Applications/{BUNDLE}/Contents/"
        library = (contents + "Frameworks/SubscriptionHelper{}.so").format
        record = "<subscription>{}</subscription>".format
        settings, product = f".config/{HELPER_DOMAIN}", ".config/com.example.acme-studio.conf"
        own, account, store, reference = {"last run"}, {"account page"}, {"store service"}, {"subscription reference"}
        libraries = {"application libraries"}
        texts: set[str] = set()
        for number, (files, variables, answer, wrong) in enumerate(rows(
                ({}, {}, None, set()), ({}, {}, record("<customerUrl>http://host/</customerUrl>"), set()),
                ({}, {}, record("<customerUrl>file:///x</customerUrl>"), account), ({}, {}, record(""), account),
                ({contents + "Resources/Configuration.strings": '"Account Page" = "http://host/"; "Application '
                  'Uninstaller" = "Uninstall Acme Studio";'}, {}, record("<customerUrl/>"), set()),
                ({}, {"PATH": "/nowhere"}, None, account), ({}, {}, "<html/>", store),
                ({}, {}, record("<end>2026-01-31</end>"), store),
                ({}, {"http_proxy": "127.0.0.1:9"}, record(""), store),
                ({}, {"XDG_DATA_HOME": "relative"}, None, {"Trash"}), ({".local/share/Trash": ""}, {}, None, {"Trash"}),
                ({}, {"TMPDIR": "/proc", "HOME": "/proc", "XDG_RUNTIME_DIR": str(self.folder)}, None,
                 {"Trash"} | reference | own),
                ({settings + ".conf": "=" * 65537}, {}, None, own), ({settings + ".conf.new": "/"}, {}, None, own),
                ({settings + ".lock": "/"}, {}, None, own),
                ({product: "subscriptionReference= \t"}, {}, None, reference),
                ({product: "subscriptionReference=A B"}, {}, record(""), reference),
                ({contents + "Linux/Uninstall Acme Studio": "no program"}, {}, None, {"uninstaller"}),
                ({}, {}, None, {"bundle"}), ({}, {"QT_QPA_PLATFORM": "nosuch"}, None, {"display"}),
                ({library("Desktop"): ""}, {}, None, libraries), ({library("Desktop"): None}, {}, None, libraries),
                ({library("Fetch"): None}, {}, None, libraries))):
            place = "no UTF-8: \udce9" if wrong == {"bundle"} else "Applications"
            stage = self.make_stage(str(number), applications=place)
            for name, text in files.items():
                put(stage.home / name, text)
            environment = stage.environment({"PATH": "/usr/bin", "QT_QPA_PLATFORM": "offscreen"}) | variables
            with self.subTest(number), answering(answer):
                result = self.run_command(stage.program(), "--json", "--check", *(["--ask"] if answer else []),
                                          status=bool(wrong), env=environment)
                found = json.loads(result.stdout)
                self.assertEqual({each["name"] for each in found if each["passed"] is False}, wrong, found)
                texts |= {f"{each['name']}: {each['detail']}" for each in found}
                self.assertEqual(result.stdout.isascii(), place == "Applications")
                self.assertEqual((result.stderr, stage.last_run()), ("", None))
                if None in files.values():  # missed before there is a window
                    said = stage.run({"PATH": "/usr/bin"})[1]
                    self.assertRegex(said, "^[^\n]*The application cannot be loaded: .*\n$")
        now = time.time()
        stored, then = (time.strftime("%FT%T.000000Z", time.gmtime(moment)) for moment in (now, now + 4 * 3600))
        put(stage.home / f"{settings}.conf", f"lastRunUserDefaultKey={stored}")
        said = self.run_command(stage.program(), "--check", status=1, env=environment).stdout
        self.assertIn(f"{stored}, the next start runs at {then}", " ".join(said.split()))
        expected = pathlib.Path(__file__).with_name("check-results.txt").read_text().splitlines()
        self.assertEqual([text for text in texts if not any(fnmatch.fnmatchcase(text, each) for each in expected)], [])
        self.assertEqual([each for each in expected if not fnmatch.filter(texts, each)], [])
        put(stage.home / library("Application"), None)
        stage.forget_last_run()
        self.assertRegex(stage.run({"PATH": "/usr/bin"})[1], "^[^\n]*The application cannot be loaded: .*\n$")

    def test_of_simultaneous_starts_exactly_one_goes_on(self) -> None:
        # The one start that runs finds the display missing and exits with status 1.
        stage = self.make_stage()
        for _ in range(10):
            stage.forget_last_run()
            starts = [stage.start({"PATH": "/usr/bin"}) for _ in range(60)]
            results = [(process.communicate()[1], process.returncode) for process in starts]
            statuses = [status for _, status in results]
            self.assertEqual((statuses.count(1), statuses.count(0)), (1, 59), results)

    @unittest.skipIf(SANITIZE, "sanitizers need more memory than these limits leave")
    def test_without_memory_it_aborts_and_says_so_if_it_can(self) -> None:
        stage = self.make_stage()
        stage.run({"PATH": "/usr/bin"})
        with (stage.config / f"{HELPER_DOMAIN}.conf").open("a", encoding="utf-8") as file:
            file.write("x" * 60000)  # needs one large piece of memory, whose failure leaves some for the log line
        ends = set()
        for kibibytes in range(192, 480, 8):  # with far less, the dynamic linker fails
            result = self.run_command("prlimit", f"--data={kibibytes * 1024}", stage.program(), status=None,
                                      env=stage.environment())
            ends.add((result.returncode, result.stderr.partition("] ")[2]))
        named = (-signal.SIGABRT, "Uncaught failure: std::bad_alloc\n")
        self.assertLessEqual(ends, {named, (0, ""), (-signal.SIGABRT, "")})
        if sys.maxsize > 2**32:  # on 32 bits, the heap's first piece suffices, or memory for the log line is missing
            self.assertLessEqual({named, (0, "")}, ends)

    def test_a_throttled_start_loads_neither_qt_nor_curl(self) -> None:
        stage = self.make_stage()
        base = {"PATH": "/usr/bin", "LD_DEBUG": "files"}
        libraries = re.compile(r"calling init: .*/(libQt6|libcurl|libgio|SubscriptionHelperApp)")
        self.assertRegex(stage.run(base)[1], libraries)  # a run loads them
        stored = stage.last_run()
        status, log, _ = stage.run(base)
        self.assertEqual((status, stage.last_run()), (0, stored))
        self.assertIn("calling init", log)
        self.assertNotRegex(log, libraries)


class DesktopTest(TestCase):
    """Tests runs on a desktop."""

    desktop: Environment
    window: Window

    @classmethod
    def setUpClass(cls) -> None:
        cls.desktop = cls.enterClassContext(desktop())
        cls.window = Window(cls.desktop)

    def begin(self, stage: Stage, command: list[Any] | None = None, stderr: int = subprocess.PIPE,
              **variables: str) -> Process:
        stage.forget_last_run()
        process = subprocess.Popen(command or [stage.program()], env=stage.environment(self.desktop | variables),
                                   text=True, cwd=stage.home, stderr=stderr)
        if process.stderr:
            self.addCleanup(process.stderr.close)
        self.addCleanup(end, process)
        self.assertTrue(self.window.wait())
        return process

    def finish(self, process: Process) -> str:
        _, log = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 0, log)
        return log

    def test_it_ends_silently_where_there_is_no_subscription(self) -> None:
        stage = self.make_stage()
        unreadable = (-signal.SIGABRT, 'Uncaught failure: .*"2026-01-31"')
        for answer, (status, said) in (
                (None, (0, "^$")),
                ("<html><body>Error</body></html>", (0, "^$")),
                ("<response><error>unknown</error></response>", (0, "^$")),
                ("<subscription><end>2026-01-31</end></subscription>", unreadable)):
            with self.subTest(answer), answering(answer):
                stage.forget_last_run()
                result = stage.run(self.desktop)
                self.assertEqual(result[0], status)
                self.assertRegex(result[1], said)
                self.assertIsNotNone(stage.last_run())
        with Store(BUILD) as store:
            for reference in (" \t", None):
                stage.forget_last_run()
                stage.set_reference(reference)
                self.assertEqual(stage.run(self.desktop)[:2], (0, ""))
            self.assertEqual(store.requests, [])

    def test_each_way_out_of_the_window_ends_it(self) -> None:
        # With closed standard streams, other files must not get their descriptors.
        stage = self.make_stage()
        streams = ["sh", "-c", 'exec "$0" <&- >&- 2>&-', stage.program()]
        with Store(BUILD) as store:
            for key in ("Return", "Escape", "alt+F4", "ctrl+q", "alt+k"):
                with self.subTest(key):
                    process = self.begin(stage, streams if key == "Return" else None)
                    if key == "Return":
                        self.assertEqual({os.readlink(f"/proc/{process.pid}/fd/{stream}")
                                          for stream in range(3)}, {"/dev/null"})
                    self.window.keys(key)
                    self.assertEqual(self.finish(process), "")
            self.assertEqual([line for line in store.requests if "delete" in line], [])
        self.assertTrue(stage.bundle.exists())

    def test_each_kind_of_desktop_finds_its_entry_and_its_icons(self) -> None:
        stage = self.make_stage()
        share = stage.bundle / "Contents/Resources/share"
        entry = self.folder / f"{HELPER_DOMAIN}.desktop"
        entry.write_text((share / f"applications/{HELPER_DOMAIN}.desktop").read_text()
                         .replace("@BUNDLE@", str(stage.bundle)))
        self.assertIn(f'Exec="{stage.program()}"', entry.read_text())
        self.run_command("desktop-file-validate", entry)
        self.run_command("appstreamcli", "validate", "--no-net", *share.glob("metainfo/*.xml"))
        for side in (16, 32, 48, 128, 256):
            icon = share / f"icons/hicolor/{side}x{side}/apps/{HELPER_DOMAIN}.png"
            self.assertEqual(struct.unpack(">II", icon.read_bytes()[16:24]), (side, side))

        with Store(BUILD):
            process = self.begin(stage)
            self.assertRegex(self.window.property("WM_CLASS"), f'"{HELPER_DOMAIN}"$')
            self.assertIn(f"StartupWMClass={HELPER_DOMAIN}\n", entry.read_text())
            self.window.keys("Return")
            self.finish(process)

            stage.forget_last_run()
            log = self.folder / "wayland"
            with wayland_desktop(self.folder / "runtime") as environment, log.open("w") as file:
                process = stage.start(environment | {"WAYLAND_DEBUG": "1"}, log=file)
                self.addCleanup(end, process)
                self.assertTrue(wait_for(lambda: "set_title(" in log.read_text()), log.read_text())
            self.assertRegex(log.read_text(), rf'set_app_id\("{HELPER_DOMAIN}"\)')
            self.assertRegex(log.read_text(), r'set_title\("Acme Studio"\)')

    def test_the_removal_from_a_place_with_a_difficult_name(self) -> None:
        stage = self.make_stage(reference=" DEMO-1001\t")
        plist = "Contents/Info.plist"
        with Store(BUILD, "--delay", "3000") as store:
            process = self.begin(stage)
            self.assertNotIn("libgio", pathlib.Path(f"/proc/{process.pid}/maps").read_text())
            place = stage.home / "Zo\u00eb's \"own\" place"
            place.mkdir()
            stage.bundle = stage.bundle.rename(place / stage.bundle.name)  # while the window is open
            self.window.start_removal(process)
            for part in (plist, "Contents/Frameworks"):  # the running helper still knows its bundle
                (stage.bundle / part).rename(self.folder / pathlib.Path(part).name)
            self.window.keys("alt+F4", "Return", "Escape", "space", "alt+k", "alt+c")  # modal: all ignored
            self.assertTrue(wait_for(stage.trashed_bundle))
            self.assertTrue(wait_for(stage.note.exists))
            self.assertFalse(stage.product.exists())
            self.assertEqual(stage.restore_path(), str(stage.bundle))
            self.assertIsNone(process.poll())
            self.window.press_until_ended(process, "Escape")
            self.assertRegex(self.finish(process), r"^[^\n]* Removal ended\. Cancellation: confirmed\. "
                             r"Uninstaller: started\. Bundle: moved to the Trash\n$")
            self.assertEqual([line.split("?")[1] for line in store.requests],
                             ["f=getsubscription&subscriptionRef=DEMO-1001 200",
                              "f=deletesubscription&subscriptionRef=DEMO-1001 200"])
            # A second start from the Trash exits immediately.
            for part in (plist, "Contents/Frameworks"):
                (self.folder / pathlib.Path(part).name).rename(stage.trashed_bundle() / part)
            status, log, _ = stage.run(self.desktop, bundle=stage.trashed_bundle())
            self.assertEqual((status, log, len(store.requests)), (0, "", 2))

    def test_a_removal_without_the_desktop_library_says_why(self) -> None:
        stage = self.make_stage()
        with Store(BUILD):
            process = self.begin(stage)
            (stage.bundle / "Contents/Frameworks/SubscriptionHelperDesktop.so").write_text("")  # by a broken update
            self.window.press_remove()
            self.assertTrue(wait_for(stage.note.exists))
            self.window.press_until_ended(process)
            self.assertRegex(self.finish(process), r"(?s)needs cannot be loaded: .*: file too short\n.*Could not trash")

    def test_a_removal_goes_on_whatever_its_launcher_does(self) -> None:
        (broken_reader, broken), (full_reader, full) = os.pipe(), os.pipe()
        os.close(broken_reader)
        self.addCleanup(os.close, full_reader)
        os.write(full, bytes(fcntl.fcntl(full, fcntl.F_GETPIPE_SZ)))
        for number, (stderr, signals) in enumerate((
                (broken, ()), (full, ()), (subprocess.DEVNULL, (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)))):
            stage = self.make_stage(str(number))
            stage.program().with_name("Uninstall Acme Studio").unlink()  # a line before the last step
            with self.subTest(number), Store(BUILD, "--delay", "1500"):
                process = self.begin(stage, ["env", "--ignore-signal=CHLD", stage.program()], stderr,
                                     DBUS_SESSION_BUS_ADDRESS="disabled:")  # its library ignores SIGPIPE
                state = pathlib.Path(f"/proc/{process.pid}/status").read_text()
                self.assertEqual(int(re.search("SigIgn:\t(.*)", state)[1], 16), 1 << signal.SIGPIPE - 1)
                self.window.start_removal(process)
                for each in signals:
                    process.send_signal(each)
                self.assertTrue(wait_for(stage.trashed_bundle))
                self.window.press_until_ended(process)
                self.assertIn(-process.wait(15), signals or (0,))

    def test_a_logout_waits_for_the_removal_only(self) -> None:
        # GNOME's session manager never answers here. SIGTERM makes the X11 session manager log out.
        def run(*words: str, log: int = subprocess.DEVNULL) -> Process:
            process = subprocess.Popen(words, env=environment, stdout=log, stderr=subprocess.DEVNULL)
            self.addCleanup(end, process)
            return process

        calls, address, stage = self.folder / "calls", self.folder / "address", self.make_stage()
        environment = self.desktop | {"HOME": str(stage.home)}
        (stage.home / ".xsmstartup").write_text(f"sh -c 'echo $SESSION_MANAGER >{address}; exec sleep 99'\n")
        run("dbus-test-tool", "black-hole", "--session", "--name=org.gnome.SessionManager")
        manager = run("xsm")
        with calls.open("w") as file:
            run("dbus-monitor", "member=Inhibit", "member=NameOwnerChanged", log=file.fileno())
        self.assertTrue(wait_for(lambda: address.exists() and address.read_text()))
        for has_logout in (False, True):
            with Store(BUILD, "--delay", "2000"):
                before = len(calls.read_text())
                process = self.begin(stage, ["env", "LC_ALL=en_US.UTF-8", "LANGUAGE=de", stage.program()],
                                     SESSION_MANAGER=address.read_text().strip())
                sent = wait_for(lambda: self.window.keys("alt+d") or re.search(
                    rf'sender=(\S+) .*Inhibit\n *string "{HELPER_DOMAIN}"\n *uint32 0\n *'
                    r'string "Ihr Abonnement wird gekündigt\. .*"\n *uint32 1\n', calls.read_text()[before:]))
                ended = f'string "{sent[1]}"\n   string "{sent[1]}"\n   string ""\n'
                if has_logout:
                    manager.terminate()
                time.sleep(0.5)
                self.assertEqual((ended in calls.read_text(), manager.poll()), (False, None))
                self.assertTrue(wait_for(stage.trashed_bundle))
                self.assertTrue(wait_for(lambda: ended in calls.read_text()))
                if not has_logout:
                    self.assertIsNone(process.poll())
                    self.window.press_until_ended(process)
                    stage.trashed_bundle().rename(stage.bundle)
                    shutil.rmtree(stage.home / ".local")
                self.assertIn("Bundle: moved to the Trash", self.finish(process))

    def test_a_display_that_goes_away_interrupts_the_removal(self) -> None:
        for kind in ("x11", "wayland"):
            stage = self.make_stage(kind)
            with self.subTest(kind), Store(BUILD, "--delay", "20000"), contextlib.ExitStack() as stack:
                own = outer = stack.enter_context(desktop())
                if kind == "wayland":
                    own = stack.enter_context(wayland_desktop(self.folder / "runtime", outer, "x11"))
                process = stage.start(own)
                self.addCleanup(process.kill)
                Window(outer).start_removal(process)
                stack.close()
                _, log = process.communicate(timeout=15)
                self.assertEqual(process.returncode, 1)
                self.assertRegex(log, "interrupted while canceling the subscription\n$")

    def test_the_sheet_while_the_store_is_asked(self) -> None:
        # With reduced motion the spinner is visible and stands still. Quitting does not wait for an answer.
        stage = self.make_stage()
        settings = stage.config / "glib-2.0/settings/keyfile"
        still = None
        put(stage.home / ".xsettingsd", "")
        themes = subprocess.Popen(["xsettingsd"], env=stage.environment(self.desktop))
        self.addCleanup(end, themes)
        for animations in ("false", "true"):
            text = f"[org/gnome/desktop/interface]\nenable-animations={animations}\ncolor-scheme='prefer-dark'\n"
            put(settings, text)
            with Store(BUILD, "--delay", "20000") as store:
                process = self.begin(stage, GSETTINGS_BACKEND="keyfile", QT_QPA_PLATFORMTHEME="gtk3")
                for scheme, theme, is_dark in rows(  # changed while it is open
                        ("default", "Adwaita-dark", True), ("default", "Adwaita", False),
                        ("prefer-dark", "Adwaita", True)):
                    settings.write_text(text.replace("prefer-dark", scheme))
                    put(stage.home / ".xsettingsd", f'Net/ThemeName "{theme}"\n')
                    themes.send_signal(signal.SIGHUP)
                    self.assertTrue(wait_for(lambda: (self.window.picture()[-1] < 60) == is_dark, 5), (scheme, theme))
                self.window.press_remove()
                # The corner of a dark window in the sheet's shade, which turns 50 to 32.
                self.assertTrue(wait_for(lambda: self.window.picture()[-1] < 40, 5))
                time.sleep(0.5)
                if still is None:
                    pictures = {self.window.picture() for _ in range(4)}
                    self.assertEqual(len(pictures), 1)
                    still = pictures.pop()
                else:
                    turning = wait_for(lambda: {self.window.picture()} - {still}, 10).pop()
                    self.assertLess(abs(sum(turning) - sum(still)), 10000)  # a spinner is in both
                self.window.keys("ctrl+q")
                self.assertRegex(self.finish(process), "^[^\n]* interrupted while canceling the subscription\n$")
                self.assertEqual(["getsub" in line for line in store.requests], [True])
            self.assertTrue(stage.bundle.exists())

    def test_a_refused_cancellation_opens_the_account_page(self) -> None:
        # First with a browser that stays open, then with a session bus that stops answering.
        stage = self.make_stage(reference="DEMO-KEEP")
        kept, opened = self.folder / "kept", self.folder / "opened"
        shutil.copytree(stage.bundle, kept, symlinks=True)
        put(self.folder / "browser", f"#!/bin/sh\nprintf '%s\\n' \"$@\" >'{opened}.new'\n"
            f"mv '{opened}.new' '{opened}'\nexec sleep 30\n", 0o755)
        bus, address = start_bus(self.desktop)
        self.addCleanup(bus.stdout.close)
        self.addCleanup(end, bus)
        self.addCleanup(bus.send_signal, signal.SIGCONT)
        with Store(BUILD) as store:
            for answers in (True, False):
                stage.set_browser(f"{self.folder / 'browser'} %u")
                process = self.begin(stage, DBUS_SESSION_BUS_ADDRESS=address)
                bus.send_signal(signal.SIGCONT if answers else signal.SIGSTOP)
                self.window.press_remove()
                self.assertTrue(wait_for(stage.trashed_bundle))
                self.assertTrue(wait_for(stage.note.exists))
                self.assertEqual(opened.exists(), answers)
                self.window.press_until_ended(process)
                self.assertRegex(self.finish(process), "(?s)still running after 5 seconds and may not have opened "
                                 r"http://.*Cancellation: not confirmed, account page passed to the opener\.")
                stage.note.unlink()
                shutil.rmtree(stage.home / ".local")
                shutil.copytree(kept, stage.bundle, symlinks=True)
                if answers:
                    page = store.address.replace("fastspring.php", "account/DEMO-KEEP\n")
                    self.assertEqual(opened.read_text(), page)
                    opened.unlink()


if __name__ == "__main__":
    unittest.main(verbosity=2)
