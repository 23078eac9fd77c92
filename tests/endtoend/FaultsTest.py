"""Tests the state that remains after a system call of the removal fails or the process is killed at it."""

import contextlib
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import unittest
from collections.abc import Callable
from typing import Any

from tests.endtoend.support import BUILD, LONG, TestCase, as_ordinary_user, content, put
from kit.desktop import Environment, wait_for
from kit.stage import HELPER_DOMAIN

STEP = f"{BUILD}/tests/removal-step"
KILL = "signal=KILL"
ERRORS = ["ENOSPC", "EIO", "EACCES", "EROFS"]
FAULTY = {name: ERRORS for name in (
    "access close fallocate fchmod flock fsync getdents64 mkdir newfstatat openat read readlink rename rmdir "
    "sendfile statfs symlink unlink unlinkat write").split()} | {"clone3": ["EAGAIN"]}


def traced(options: list[str], command: list[str], environment: Environment) -> subprocess.CompletedProcess[str]:
    """Runs a command under strace. The result's standard error contains strace's lines."""
    return subprocess.run(["strace", *options, "-o", "|cat >&2", *command], env=environment, text=True,
                          capture_output=True, check=False)


def calls(command: list[str], environment: Environment, marker: str, end: str = "exit_group") -> list[tuple[str, int]]:
    """Returns a command's system calls from the first with `marker` until the first with `end`. Each is a pair of its
    name and its number among the calls of that name."""
    counts: dict[str, int] = {}
    result, isOwn = [], False
    for line in traced([], command, environment).stderr.splitlines():
        name = line.split("(")[0]
        counts[name] = counts.get(name, 0) + 1
        isOwn = isOwn or marker in line and name != "execve"
        if isOwn and end in line:
            break
        if isOwn and name in FAULTY:
            result.append((name, counts[name]))
    return result


def with_fault(command: list[str], environment: Environment, name: str, when: int, fault: str
               ) -> tuple[int | None, bool, str]:
    """Runs a command with a fault at one call. Returns its status (None if the fault killed it), whether the fault
    happened, and the log. A run may skip the call: in one of 40 runs, ext4 lists a small directory in more parts."""
    result = traced(["-qq", "-e", f"trace={name}", "-e", f"inject={name}:{fault}:when={when}"], command,
                    environment)
    if fault != KILL:
        return result.returncode, "(INJECTED)" in result.stderr, result.stderr
    was_killed = result.returncode in (-signal.SIGKILL, 128 + signal.SIGKILL)
    return None if was_killed else result.returncode, was_killed, result.stderr


class RemovalCase(TestCase):
    """Tests in their own home, with a bundle whose uninstaller is also a bundle."""

    def setUp(self) -> None:
        super().setUp()
        home = self.folder / "home"
        self.environment = {"HOME": str(home), "TMPDIR": str(home / "tmp"), "PATH": "/usr/bin",
                            "XDG_RUNTIME_DIR": str(home / "run"), "LC_ALL": "C.UTF-8"}
        self.bundle = home / "Applications/Own.app"
        self.note = self.folder / "note"
        uninstaller = self.bundle / "Contents/Linux/Remove.app/Contents/Linux"
        put(home / "run", "/")
        put(self.bundle / "Contents/Info.plist", "<plist/>")
        put(self.bundle / "Contents/Resources/Configuration.strings", '"Application Uninstaller" = "Remove.app";')
        put(uninstaller / "Remove", f"#!/bin/sh\necho ran >>'{self.note}'\n", 0o755)
        put(uninstaller / "data", "\0" * 100000)
        (uninstaller / "link").symlink_to("data")
        (uninstaller / "dangling").symlink_to("/nowhere")
        self.copy = home / f"tmp/{HELPER_DOMAIN}-{os.geteuid()}/Remove.app"
        self.kept = self.folder / "kept"
        shutil.copytree(self.bundle, self.kept, symlinks=True)
        self.whole = content(self.bundle)
        self.expected_copy = content(self.bundle / "Contents/Linux/Remove.app")

    def ran(self) -> int:
        return self.note.read_text().count("ran") if self.note.exists() else 0

    def copies(self) -> list[Any]:
        """Returns the copies in all locations: the first one, its alternatives, and the next ones."""
        return [content(copy) for copy in self.folder.glob(f"home/*/{HELPER_DOMAIN}-*/Remove.app")]

    def prepare(self) -> None:
        """Restores the state before each round: the Trash is missing, and an earlier launch left a copy."""
        self.note.unlink(missing_ok=True)
        for folder in (self.bundle, self.folder / "home/.local",
                       *self.folder.glob(f"home/*/{HELPER_DOMAIN}-*")):
            shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(self.kept, self.bundle, symlinks=True)
        put(self.copy / "Contents/old", "old")
        self.copy.parent.chmod(0o700)

    def assert_whole(self, status: int | None = None) -> None:
        """Checks that the bundle is complete, and either unmoved or in the Trash with its restore path. A `status`
        must agree."""
        trash = next((folder for folder in [*self.folder.glob("home/.local/share/Trash"),
                                            *self.bundle.parent.glob(".Trash-*")]
                      if (folder / "files/Own.app").exists()), pathlib.Path("/none"))
        unmoved, moved = content(self.bundle), content(trash / "files/Own.app")
        self.assertIn((unmoved, moved), ((self.whole, None), (None, self.whole)))
        if status is not None:
            self.assertEqual(unmoved is None, status == 0)
        if unmoved is None:
            self.assertRegex((trash / "info/Own.app.trashinfo").read_text(), r"\nPath=\S*Own.app\n")


class RemovalFaultsTest(RemovalCase):
    def with_each_fault(self, step: str, check: Callable[[int | None], None]) -> None:
        """Runs a step with each fault at each of its calls. `check` gets the status, or None if the step was killed."""
        command = [STEP, step, str(self.bundle)]
        self.prepare()
        own = calls(command, self.environment, str(self.bundle))
        self.assertGreater(len(own), 15)
        wait_for(self.ran, 0.3)
        happened = []
        for index, (name, when) in enumerate(own):
            errors = FAULTY[name] if LONG else [FAULTY[name][index % len(FAULTY[name])]]
            for fault in [f"error={error}" for error in errors] + [KILL]:
                self.prepare()
                with self.subTest(f"{step}: {name} {when} {fault}"):
                    status, came, _ = with_fault(command, self.environment, name, when, fault)
                    happened.append(came)
                    self.assertIn(status, (0, 1, None))
                    check(status)
        self.assertGreater(sum(happened), 0.95 * len(happened))

    def test_the_uninstaller_is_started_whole_or_not_at_all(self) -> None:
        def check(status: int | None) -> None:
            self.assertEqual(content(self.bundle), self.whole)
            whole = self.copies().count(self.expected_copy)
            if status == 0:
                self.assertEqual(whole, 1)
                self.assertTrue(wait_for(self.ran))
            elif status == 1:  # the copy is complete or deleted
                self.assertLessEqual({path for copy in self.copies() if copy != self.expected_copy
                                      for path, _, _ in copy}, {"Contents", "Contents/old"})
            elif whole:
                wait_for(self.ran, 0.3)
            self.assertLessEqual(self.ran(), 0 if status == 1 else whole)

        self.with_each_fault("launch", check)

    def test_an_uninstaller_with_a_read_only_directory_is_started_again_and_again(self) -> None:
        self.prepare()
        locked = self.bundle / "Contents/Linux/Remove.app/Contents/Linux"
        locked.chmod(0o555)
        user = as_ordinary_user(self.folder)
        for _ in range(2):
            self.run_command(*user, STEP, "launch", self.bundle, env=self.environment)
            copy = next(self.folder.glob("home/tmp/*/Remove.app/Contents/Linux"))
            self.assertEqual(copy.stat().st_mode & 0o777, 0o755)
            copy.chmod(0o555)  # by the uninstaller

    def test_the_bundle_is_whole_at_its_place_or_in_the_trash(self) -> None:
        self.with_each_fault("trash", self.assert_whole)


class MountsTest(RemovalCase):
    """Runs itself again in a namespace that allows mounts."""

    OWN_MOUNTS = ["unshare", "--mount", *(["--user", "--map-root-user"] if os.geteuid() else [])]

    def step(self, step: str) -> int:
        return self.run_command(STEP, step, self.bundle, status=None, env=self.environment, cwd=self.folder).returncode

    def mount(self, *arguments: object) -> None:
        self.run_command("mount", *arguments)
        self.addCleanup(self.run_command, "umount", "-l", arguments[-1], status=None)

    def mount_tmpfs(self, folder: pathlib.Path, size: str) -> None:
        """Replaces a directory by a file system with the same content."""
        shutil.move(folder, f"{folder}.old")
        folder.mkdir()
        self.mount("-t", "tmpfs", "-o", f"size={size}", "tmpfs", folder)
        shutil.copytree(f"{folder}.old", folder, symlinks=True, dirs_exist_ok=True)

    def on_a_read_only_one(self) -> None:
        self.mount("--bind", self.bundle.parent, self.bundle.parent)
        self.mount("-o", "remount,bind,ro", self.bundle.parent)
        self.assertEqual((self.step("launch"), self.step("check"), self.step("trash")), (0, 1, 1))

    def on_another_one_than_home(self) -> None:
        self.mount_tmpfs(self.bundle.parent, "8m")
        check, status = self.step("check"), self.step("trash")
        self.assertEqual(check, status)
        self.assert_whole(status)

    def on_one_with_large_inode_numbers(self) -> None:
        other = self.folder / "other"
        other.mkdir()
        self.mount("-t", "tmpfs", "tmpfs", other)
        self.mount_tmpfs(self.bundle.parent, "8m")  # a possible lower layer of an overlay
        self.mount("-t", "overlay", "-o", f"lowerdir={self.bundle.parent}:{other},xino=on", "overlay",
                   self.bundle.parent)
        self.assertGreater(self.bundle.stat().st_ino, 2 ** 32)
        self.assertEqual(self.step("launch"), 0)

    def with_a_home_that_is_read_only(self) -> None:
        home = self.folder / "home"
        self.mount("--bind", home, home)
        self.mount("--bind", self.bundle.parent, self.bundle.parent)
        self.mount("-o", "remount,bind,ro", home)
        self.mount("-t", "tmpfs", "tmpfs", home / "run")
        self.assertEqual((self.step("launch"), self.step("check"), self.step("trash")), (0, 1, 1))

    def on_a_full_one(self) -> None:
        self.mount_tmpfs(self.folder / "home", "1m")
        with contextlib.suppress(OSError), open(self.folder / "home/filler", "wb", 0) as filler:
            while filler.write(bytes(4096)):
                pass
        self.mount("-t", "tmpfs", "tmpfs", self.folder / "home/run")
        self.assertEqual((self.step("trash"), self.step("launch")), (1, 0))
        self.assertFalse(list(self.folder.glob("home/.local/share/Trash/*/*")))

    def without_execution(self) -> None:
        self.mount("-t", "tmpfs", "-o", "noexec", "tmpfs", self.environment["TMPDIR"])
        self.assertEqual(self.step("launch"), 0)
        self.assertTrue(wait_for(self.ran))

    def on_one_with_room_for_one_copy(self) -> None:
        self.mount("-t", "tmpfs", "-o", "size=200k", "tmpfs", self.environment["TMPDIR"])
        self.assertEqual((self.step("launch"), self.step("launch")), (0, 0))
        self.assertEqual(self.copies(), [self.expected_copy])

    def with_a_relative_data_directory(self) -> None:
        self.environment["XDG_DATA_HOME"] = "data"
        self.assertEqual((self.step("check"), self.step("trash")), (1, 1))

    def with_a_system_log(self) -> None:
        self.mount("-t", "tmpfs", "tmpfs", "/dev")
        pathlib.Path("/dev/null").touch()
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as log:
            log.bind("/dev/log")
            log.settimeout(5)
            subprocess.run(["a step", "launch", "/none"], executable=STEP, env=self.environment,
                           stderr=subprocess.DEVNULL, check=False)
            self.assertRegex(log.recv(1000), rb"^<13>.{15} a-step\[\d+\]: Uninstaller is not found")

    def test_each_file_system_and_the_system_log(self) -> None:
        if "HELPER_MOUNTS" not in os.environ:
            if subprocess.run([*self.OWN_MOUNTS, "true"], check=False).returncode != 0:
                self.skipTest("no mounts can be made here")
            subprocess.run([*self.OWN_MOUNTS, sys.executable, "-m", "tests.endtoend.FaultsTest", "MountsTest"],
                           check=True, env=os.environ | {"HELPER_MOUNTS": "1"})
            return
        for condition in [name for name in dir(self) if name.startswith(("on_", "with_", "without_"))]:
            self.setUp()
            with self.subTest(condition):
                self.prepare()
                getattr(self, condition)()
                self.assert_whole()


class LastRunFaultsTest(TestCase):
    def setUp(self) -> None:
        super().setUp()
        self.stage = self.make_stage()
        self.file = self.stage.config / f"{HELPER_DOMAIN}.conf"
        self.command = [str(self.stage.program())]
        self.environment = self.stage.environment({"PATH": "/usr/bin"})

    def prepare(self, before: str, is_link: bool) -> None:
        """Restores the state before a round: the file's content, and the remains of a killed writer."""
        for path in self.stage.config.glob("*"):
            path.unlink()
        if before:
            real = self.folder / "dotfile" if is_link else self.file
            real.write_text(before)
            real.with_name(real.name + ".new").write_text("half")
            if is_link:
                self.file.symlink_to(real)

    def stored(self) -> str:
        return self.file.read_text() if self.file.exists() else ""

    def test_the_moment_is_the_old_or_the_new_one_whatever_fails(self) -> None:
        old = "lastRunUserDefaultKey=2020-02-29T00:00:00.000000Z\n"
        for head, moment, tail, is_link in (
                ("", "", "", False), ("a=1\n", old, "b=2\n", False), ("a=1\n", old, "b=2", True)):
            before = head + moment + tail
            new = rf"\A{head}lastRunUserDefaultKey=2(?!020)[-\d]+T[:.\d]+Z\n{tail}\Z"
            self.prepare(before, is_link)
            own = calls(self.command, self.environment, str(self.stage.config), "HelperApplication")
            self.assertEqual([name for name, _ in own if name in ("write", "fsync", "rename")],
                             ["write", "fsync", "rename", "fsync"])
            for index, (name, when) in enumerate(own):
                for fault in (KILL, "error=" + FAULTY[name][index % len(FAULTY[name])]):
                    self.prepare(before, is_link)
                    with self.subTest(f"{before!r} {name} {when} {fault}"):
                        _, came, log = with_fault(self.command, self.environment, name, when, fault)
                        self.assertTrue(came)
                        passes = self.stored() == before
                        self.assertEqual("cannot be stored" in log, passes and fault != KILL)
                        if not passes:
                            self.assertRegex(self.stored(), new)
                        status, log, _ = self.stage.run({"PATH": "/usr/bin"})
                        self.assertEqual(status, 1 if passes else 0, log)  # 1: the display is missing
                        self.assertRegex(self.stored(), new)
                        self.assertEqual(self.file.is_symlink(), is_link)
                        self.assertEqual({path.name for path in self.stage.config.glob("*")},
                                         {f"{HELPER_DOMAIN}.conf", f"{HELPER_DOMAIN}.lock"})


if __name__ == "__main__":
    unittest.main(verbosity=2)
