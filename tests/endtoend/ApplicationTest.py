"""The helper as its users meet it: the real bundle, store, window and Trash, from outside."""

import contextlib
import http.server
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import threading
import time
import unittest

from support import BUILD, SANITIZE, TestCase
from desktop import desktop, end, start_bus, wait_for, wayland_desktop
from stage import HELPER_DOMAIN, Store, Window

NO_DISPLAY = "No window can be shown"


@contextlib.contextmanager
def answering(body):
    """A store service on the store's port that gives one answer to every request."""
    class Handler(http.server.BaseHTTPRequestHandler):
        def do_GET(self):  # pylint: disable=invalid-name
            self.send_response(200)
            self.end_headers()
            self.wfile.write(body.encode())

        def log_message(self, *_):  # pylint: disable=arguments-differ
            pass

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 8642), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    try:
        yield
    finally:
        server.shutdown()
        server.server_close()


class StartTest(TestCase):
    """Starts that end before there is a window."""

    def test_without_a_display_it_says_so_once(self):
        stage = self.make_stage()
        for variables, reason in (({}, "could not connect to display"),
                                  ({"DISPLAY": ":4711"}, "could not connect to display :4711"),
                                  ({"QT_QPA_PLATFORM": "nosuch"}, 'Qt platform plugin "nosuch"')):
            stage.forget_last_run()
            status, log, _ = stage.run({"PATH": "/usr/bin:/bin"} | variables)
            self.assertEqual(status, 1, log)
            self.assertEqual(len(log.splitlines()), 1, log)
            self.assertRegex(log, f"{NO_DISPLAY}: .*{reason}")

    def test_of_simultaneous_starts_exactly_one_goes_on(self):
        # The one that goes on notices that there is no display and ends with status 1.
        stage = self.make_stage()
        for _ in range(5 if SANITIZE else 20):
            stage.forget_last_run()
            starts = [stage.start({"PATH": "/usr/bin"}) for _ in range(100)]
            results = [(process.communicate()[1], process.returncode) for process in starts]
            statuses = [status for _, status in results]
            self.assertEqual((statuses.count(1), statuses.count(0)), (1, 99), results)
            self.assertIsNotNone(stage.last_run())

    def test_no_state_of_the_defaults_locks_it_out(self):
        stage = self.make_stage()
        file = stage.config / f"{HELPER_DOMAIN}.conf"
        key = "lastRunUserDefaultKey="
        future = f"{key}2999-01-01T00:00:00.000000Z\n"
        noise = bytes(range(256)) * 20000  # 5 MB
        for what, make, can_be_stored in (
                ("missing", lambda: None, True),
                ("empty", lambda: file.write_text(""), True),
                ("no date", lambda: file.write_text(f"a=1\n{key}soon\nb=2\n"), True),
                ("a number", lambda: file.write_text(f"{key}1780000000\nb=2"), True),
                ("in the future", lambda: file.write_text(f"a=1\n{future}"), True),
                ("bytes", lambda: file.write_bytes(b"a=1\n\0\xff" + noise[:5000]), True),
                ("much noise", lambda: file.write_bytes(noise), False),
                ("a directory", file.mkdir, False),
                ("a FIFO", lambda: os.mkfifo(file), False),
                ("a link in a circle", lambda: file.symlink_to(file), False),
                ("unreadable", lambda: (file.write_text("a=1\n"), file.chmod(0)), os.geteuid() == 0)):
            with self.subTest(what):
                make()
                before = file.read_bytes() if file.is_file() and os.access(file, os.R_OK) else b""
                for expected in (1, 0 if can_be_stored else 1):  # 1: it goes on, to no display
                    status, log, seconds = stage.run({"PATH": "/usr/bin"})
                    self.assertEqual(status, expected, log)
                    self.assertEqual("cannot be stored" in log, not can_be_stored)
                    self.assertLess(seconds, 2)
                if can_be_stored:
                    lines = {line for line in before.split(b"\n") if not line.startswith(key.encode())}
                    self.assertLessEqual(lines - {b""}, set(file.read_bytes().split(b"\n")))
                elif before:
                    self.assertEqual(file.read_bytes(), before)
                shutil.rmtree(file) if file.is_dir() else file.unlink()

    @unittest.skipIf(SANITIZE, "sanitizers need more memory than these limits leave")
    def test_without_memory_it_aborts_and_says_so_if_it_can(self):
        stage = self.make_stage()
        stage.run({"PATH": "/usr/bin"})
        with (stage.config / f"{HELPER_DOMAIN}.conf").open("a", encoding="utf-8") as file:
            file.write("x" * 60000)  # one large piece of memory, which leaves some where it fails
        ends = set()
        for kibibytes in range(192, 480, 8):  # with far less, the linker ends it
            result = subprocess.run(["prlimit", f"--data={kibibytes * 1024}", stage.program()], text=True,
                                    env=stage.environment(), capture_output=True, check=False)
            ends.add((result.returncode, result.stderr.partition("] ")[2]))
        named = (-signal.SIGABRT, "Uncaught failure: std::bad_alloc\n")
        self.assertLessEqual(ends, {named, (0, ""), (-signal.SIGABRT, "")})
        if sys.maxsize > 2**32:  # else the heap's first piece holds all, or there is nothing for a line
            self.assertLessEqual({named, (0, "")}, ends)

    def test_a_throttled_start_loads_neither_qt_nor_curl(self):
        stage = self.make_stage()
        base = {"PATH": "/usr/bin", "LD_DEBUG": "files"}
        libraries = re.compile(r"calling init: .*/(libQt6|libcurl|libgio|SubscriptionHelperApp)")
        _, log, _ = stage.run(base)
        self.assertRegex(log, libraries)  # a start that goes on does load them
        stored = stage.last_run()
        status, log, _ = stage.run(base)
        self.assertEqual(status, 0)
        self.assertIn("calling init", log)
        self.assertNotRegex(log, libraries)
        self.assertEqual(stage.last_run(), stored)

    def test_a_question_about_itself_counts_as_no_run(self):
        stage = self.make_stage()
        for question, answer in (("--version", r"^Subscription Helper \d+\.\d+\.\d+\n$"),
                                 ("--help", "Helps a customer to leave Acme Studio: ")):
            result = subprocess.run([stage.program(), question], env=stage.environment(), text=True,
                                    capture_output=True, check=True)
            self.assertRegex(result.stdout, answer)
            self.assertEqual(result.stderr, "")
        self.assertFalse(list(stage.config.glob(f"{HELPER_DOMAIN}*")))

    def test_outside_a_bundle_it_does_nothing(self):
        stage = self.make_stage()
        lonely = self.folder / "lonely"
        shutil.copy(stage.program(), lonely)
        result = subprocess.run([lonely], env=stage.environment(), text=True, capture_output=True,
                                check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("Not started from an application bundle", result.stderr)
        self.assertIsNone(stage.last_run())
        self.assertTrue(lonely.exists())

    def test_without_a_home_it_goes_on_with_one_line(self):
        stage = self.make_stage()
        environment = stage.environment({"PATH": "/usr/bin"})
        for home in ("/proc/none", None):
            environment.pop("HOME", None)
            if home:
                environment["HOME"] = home
            result = subprocess.run([stage.program()], env=environment, text=True,
                                    capture_output=True, check=False)
            self.assertEqual(result.returncode, 1)
            self.assertIn("The time of this run cannot be stored", result.stderr)
            self.assertIn(NO_DISPLAY, result.stderr)


class DesktopTest(TestCase):
    """Runs on a desktop."""

    @classmethod
    def setUpClass(cls):
        cls.stack = contextlib.ExitStack()
        cls.desktop = cls.stack.enter_context(desktop())
        cls.window = Window(cls.desktop)

    @classmethod
    def tearDownClass(cls):
        cls.stack.close()

    def begin(self, stage, **variables):
        process = stage.start(self.desktop | variables)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.assertTrue(self.window.wait())
        return process

    def finish(self, process, status=0, seconds=20):
        _, log = process.communicate(timeout=seconds)
        self.assertEqual(process.returncode, status, log)
        return log

    def test_it_ends_silently_where_there_is_no_subscription(self):
        stage = self.make_stage()
        answers = {
            "nobody listens": None,
            "an HTML page": "<html><body>Error</body></html>",
            "no subscription": "<response><error>unknown</error></response>",
            "nothing": "",
        }
        for what, answer in answers.items():
            with self.subTest(what), answering(answer) if answer is not None \
                    else contextlib.nullcontext():
                stage.forget_last_run()
                status, log, _ = stage.run(self.desktop)
                self.assertEqual((status, log), (0, ""))
                self.assertIsNotNone(stage.last_run())
        with Store(BUILD) as store:
            for reference in ("", " \t", None):
                stage.forget_last_run()
                file = stage.config / "com.example.acme-studio.conf"
                file.unlink() if reference is None else stage.set_reference(reference)
                self.assertEqual(stage.run(self.desktop)[:2], (0, ""))
            self.assertEqual(store.requests, [])

    def test_an_unreadable_date_ends_the_process_with_a_line(self):
        stage = self.make_stage()
        with answering("<subscription><end>2026-01-31</end></subscription>"):
            status, log, _ = stage.run(self.desktop)
        self.assertEqual(status, -signal.SIGABRT)
        self.assertRegex(log, 'Uncaught failure: .*"2026-01-31"')

    def test_each_way_out_of_the_window_ends_it(self):
        stage = self.make_stage()
        with Store(BUILD) as store:
            for key in ("Return", "Escape", "alt+F4", "ctrl+q", "alt+c"):
                with self.subTest(key):
                    stage.forget_last_run()
                    process = self.begin(stage)
                    self.window.keys(key)
                    self.assertEqual(self.finish(process), "")
            self.assertEqual([line for line in store.requests if "delete" in line], [])
        self.assertTrue(stage.bundle.exists())

    def test_nothing_takes_the_place_of_a_closed_stream(self):
        stage = self.make_stage()
        with Store(BUILD):
            process = subprocess.Popen(["sh", "-c", 'exec "$0" <&- >&- 2>&-', stage.program()],
                                       env=stage.environment(self.desktop))
            self.addCleanup(process.wait)
            self.addCleanup(process.kill)
            self.assertTrue(self.window.wait())
            self.assertEqual({os.readlink(f"/proc/{process.pid}/fd/{stream}") for stream in range(3)},
                             {"/dev/null"})
            self.window.keys("Return")
            self.assertEqual(process.wait(20), 0)

    def test_each_kind_of_desktop_finds_its_entry_and_its_icons(self):
        stage = self.make_stage()
        share = stage.bundle / "Contents/Resources/share"
        entry = self.folder / f"{HELPER_DOMAIN}.desktop"
        entry.write_text((share / f"applications/{HELPER_DOMAIN}.desktop").read_text()
                         .replace("@BUNDLE@", str(stage.bundle)))
        self.assertIn(f'Exec="{stage.program()}"', entry.read_text())
        for command in (["desktop-file-validate", entry],
                        ["appstreamcli", "validate", "--no-net", *share.glob("metainfo/*.xml")]):
            result = subprocess.run(command, text=True, capture_output=True, check=False)
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        for side in (16, 32, 48, 128, 256):
            icon = share / f"icons/hicolor/{side}x{side}/apps/{HELPER_DOMAIN}.png"
            self.assertEqual(struct.unpack(">II", icon.read_bytes()[16:24]), (side, side))

        with Store(BUILD):
            process = self.begin(stage)
            window = subprocess.run(["xdotool", "getactivewindow"], env=self.desktop, text=True,
                                    capture_output=True, check=True).stdout.strip()
            names = subprocess.run(["xprop", "-id", window, "WM_CLASS"], env=self.desktop, text=True,
                                   capture_output=True, check=True).stdout
            self.assertIn('"Subscription Helper"', names)
            self.assertIn("StartupWMClass=Subscription Helper\n", entry.read_text())
            self.window.keys("Return")
            self.finish(process)

            stage.forget_last_run()
            log = self.folder / "wayland"
            with wayland_desktop(self.folder / "runtime") as environment, log.open("w") as file:
                process = stage.start(environment | {"WAYLAND_DEBUG": "1"}, log=file)
                self.addCleanup(process.wait)
                self.addCleanup(process.kill)
                self.assertTrue(wait_for(lambda: "set_title(" in log.read_text()), log.read_text())
            self.assertRegex(log.read_text(), rf'set_app_id\("{HELPER_DOMAIN}"\)')
            self.assertRegex(log.read_text(), r'set_title\("Acme Studio"\)')

    def test_the_removal_from_a_place_with_a_difficult_name(self):
        stage = self.make_stage(applications="Zo\u00eb's \"own\" place", reference=" DEMO-1001\t")
        plist = "Contents/Info.plist"
        with Store(BUILD, "--delay", "1500") as store:
            process = self.begin(stage)
            self.window.press_remove()
            self.assertTrue(wait_for(lambda: len(store.requests) == 1))
            (stage.bundle / plist).rename(self.folder / "plist")  # it stays the bundle that it was
            self.window.keys("alt+F4", "Return", "Escape", "space", "alt+c")  # modal: all ignored
            self.assertTrue(wait_for(stage.trashed_bundle))
            self.assertTrue(wait_for(stage.note.exists))
            self.assertFalse(stage.product.exists())
            self.assertEqual(stage.restore_path(), str(stage.bundle))
            time.sleep(0.3)
            self.assertIsNone(process.poll())
            self.window.keys("Return")  # and now a button ends it
            self.assertEqual(self.finish(process), "")
            self.assertEqual([line.split("?")[1] for line in store.requests],
                             ["f=getsubscription&subscriptionRef=DEMO-1001 200",
                              "f=deletesubscription&subscriptionRef=DEMO-1001 200"])
            # A second start, from where the bundle lies now, leaves at once.
            (self.folder / "plist").rename(stage.trashed_bundle() / plist)
            status, log, _ = stage.run(self.desktop, bundle=stage.trashed_bundle())
            self.assertEqual((status, log, len(store.requests)), (0, "", 2))

    def test_the_sheet_while_the_store_is_asked(self):
        # Its spinner stands still where no motion is wanted; quitting waits for no answer.
        stage = self.make_stage()
        settings = stage.config / "glib-2.0/settings/keyfile"
        settings.parent.mkdir(parents=True)
        for wanted in ("true", "false"):
            settings.write_text(f"[org/gnome/desktop/interface]\nenable-animations={wanted}\n")
            stage.forget_last_run()
            with Store(BUILD, "--delay", "4000") as store:
                process = self.begin(stage, GSETTINGS_BACKEND="keyfile")
                self.window.press_remove()
                time.sleep(0.4)
                pictures = {(time.sleep(0.25), self.window.picture())[1] for _ in range(3)}
                self.assertEqual(len(pictures) > 1, wanted == "true")
                begin = time.monotonic()
                self.window.keys("ctrl+q")
                self.assertEqual(self.finish(process), "")
                self.assertLess(time.monotonic() - begin, 3 if SANITIZE else 1)
                self.assertTrue(wait_for(lambda: "deletesubscription" in store.requests[-1]))
            self.assertTrue(stage.bundle.exists())

    def test_a_refused_cancellation_opens_the_account_page(self):
        # In a browser that stays open, and then over a session bus that stops answering.
        stage = self.make_stage(reference="DEMO-KEEP")
        kept, opened = self.folder / "kept", self.folder / "opened"
        shutil.copytree(stage.bundle, kept, symlinks=True)
        browser = self.folder / "browser"
        browser.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$@\" >'{opened}.new'\n"
                           f"mv '{opened}.new' '{opened}'\nexec sleep 30\n")
        browser.chmod(0o755)
        bus, address = start_bus(self.desktop)
        self.addCleanup(bus.stdout.close)
        self.addCleanup(end, bus)
        self.addCleanup(bus.send_signal, signal.SIGCONT)
        with Store(BUILD):
            for answers in (True, False):
                stage.set_browser(f"{browser} %u")
                stage.forget_last_run()
                process = self.begin(stage, DBUS_SESSION_BUS_ADDRESS=address)
                bus.send_signal(signal.SIGCONT if answers else signal.SIGSTOP)
                self.window.press_remove()
                self.assertTrue(wait_for(stage.trashed_bundle))
                self.assertTrue(wait_for(stage.note.exists))
                self.assertEqual(opened.exists(), answers)
                time.sleep(0.3)
                self.window.keys("Return")
                self.assertIn("not ended after 5 seconds and may not have opened http://", self.finish(process))
                stage.note.unlink()
                shutil.rmtree(stage.home / ".local")
                shutil.copytree(kept, stage.bundle, symlinks=True)
                if answers:
                    self.assertEqual(opened.read_text(), "http://127.0.0.1:8642/account/DEMO-KEEP\n")
                    opened.unlink()

    def test_no_state_of_the_tables_keeps_the_window_away(self):
        stage = self.make_stage()
        tables = [stage.bundle / "Contents/Resources" / name
                  for name in ("Configuration.strings", "en.lproj/Localizable.strings")]
        window = Window(self.desktop, "Product Name")  # each key stands for itself
        with Store(BUILD):
            for what, make in (("missing", lambda table: None),
                               ("a directory", lambda table: table.mkdir()),
                               ("a FIFO", os.mkfifo),
                               ("noise", lambda table: table.write_bytes(bytes(range(256)) * 20000))):
                for table in tables:
                    shutil.rmtree(table) if table.is_dir() else table.unlink(missing_ok=True)
                    make(table)
                with self.subTest(what):
                    stage.forget_last_run()
                    process = stage.start(self.desktop)
                    self.assertTrue(window.wait())
                    window.keys("Return")
                    self.finish(process)


if __name__ == "__main__":
    unittest.main(verbosity=2)
