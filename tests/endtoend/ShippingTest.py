"""Tests the shipped parts: hardened files, the installed store client, the installer, and the demonstration."""

import hashlib
import os
import pathlib
import shutil
import sys
import unittest

from tests.endtoend.support import BUILD, SANITIZE, TestCase, as_ordinary_user, content, put, rows
from kit.stage import BUNDLE, PROJECT, Store

CONTENTS = pathlib.Path(BUILD) / BUNDLE / "Contents"
FRAMEWORKS = {"SubscriptionHelperApplication.so": "subscriptionHelperApplicationMain",
              "SubscriptionHelperFetch.so": "subscriptionHelperModule",
              "SubscriptionHelperDesktop.so": "subscriptionHelperModule"}
BUILT = [CONTENTS / "Linux" / "Subscription Helper", *(CONTENTS / "Frameworks" / name for name in FRAMEWORKS),
         pathlib.Path(BUILD) / "tools" / "storectl"]


@unittest.skipIf(SANITIZE, "sanitizer builds are not hardened")
class HardeningTest(TestCase):
    def test_each_file_is_hardened(self) -> None:
        for file in BUILT:
            with self.subTest(file.name):
                found = self.run_command("readelf", "--wide", "--file-header", "--segments", "--dynamic", "--dyn-syms",
                                         file).stdout
                for pattern in (r"Type:\s+DYN", "GNU_RELRO", r"GNU_STACK .* RW ", "FLAGS.*NOW", "__stack_chk_fail"):
                    self.assertRegex(found, pattern)
                if FRAMEWORKS.get(file.name) != "subscriptionHelperModule":  # modules lack calls that could be checked
                    self.assertRegex(found, r"__\w+_chk@")

    def test_each_library_of_the_bundle_exports_one_name(self) -> None:
        for file, name in FRAMEWORKS.items():
            found = self.run_command("nm", "--dynamic", "--defined-only", CONTENTS / "Frameworks" / file).stdout
            self.assertEqual(found.split()[2:], [name])


class InstallationTest(TestCase):
    def test_another_program_finds_and_uses_the_store_client(self) -> None:
        build, prefix = self.folder / "build", self.folder / "prefix"
        flags = f"-fsanitize={SANITIZE}" if SANITIZE else ""
        self.run_command("cmake", "--install", BUILD, "--prefix", prefix)
        self.run_command("cmake", "-G", "Ninja", "-S", PROJECT / "examples", "-B", build,
                         f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_CXX_FLAGS={flags}")
        self.run_command("cmake", "--build", build)
        example = build / "subscription-status"
        with Store(BUILD):
            self.assertEqual(self.run_command(example, "DEMO-1001").stdout, "active\n")
            self.assertEqual(self.run_command(example, "NO-SUCH", status=1).stdout, "none\n")
        self.assertTrue((prefix / "bin" / "storectl").exists())
        self.assertEqual({folder.name for folder in (prefix / "include/subscription-store").iterdir()},
                         {"base", "store"})
        self.assertNotRegex(self.run_command("ldd", example).stdout, "lib(glib|gio|Qt)")


class InstallerTest(TestCase):
    def package(self, name: str, version: str) -> pathlib.Path:
        """Returns a package of a version. Without a version its program cannot run."""
        helper = self.folder / name / BUNDLE
        program = helper / "Contents/Linux/Subscription Helper"
        entry = helper / "Contents/Resources/share/applications/com.globex.leave.desktop"
        for file, text in ((entry, "@BUNDLE@"), (helper / "version", version), (helper / "locked/file", "")):
            put(file, text)
        put(program, "#!/bin/sh\n", 0o755 if version else 0o644)
        (helper / "locked").chmod(0o555)
        package = self.folder / f"{name}.tar.gz"
        self.run_command("tar", "-czf", package, "-C", helper.parent, BUNDLE)
        self.sum_up(package)
        return package

    def sum_up(self, package: pathlib.Path) -> None:
        digest = hashlib.sha256(package.read_bytes()).hexdigest()
        package.with_name(package.name + ".sha256").write_text(f"{digest}  {package.name}\n")

    def test_an_installer_changes_nothing_before_it_knows_that_it_can(self) -> None:
        home, cut = self.folder / "home", self.package("cut", "1")
        cut.write_bytes(cut.read_bytes()[:-30])
        self.sum_up(cut)
        new = self.package("new", "2")
        good = rows(self.package("old", "1"), home / "Applications", "com.globex.draw", "REF")
        (home / ".config/com.globex.broken.conf").mkdir(parents=True)
        settings = home / ".config/com.globex.draw.conf"
        settings.write_text("\ufeffsubscriptionReference = OLD\ncolour=1")
        for key in ("key", "stranger"):
            self.run_command("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / key)
        self.run_command("ssh-keygen", "-Y", "sign", "-f", self.folder / "key", "-n", "subscription-helper", new)
        option = {name: rows("--key", self.folder / f"{name}.pub") for name in ("key", "stranger", "none")}
        user = as_ordinary_user(self.folder)
        installer = rows(*user, PROJECT / "examples/install-helper")
        environment = {"HOME": str(home), "PATH": os.environ["PATH"]}
        for change, said in rows(
                ({}, None), ({0: cut}, "tar: "), ({0: self.package("empty", "")}, "no helper"), ({1: ""}, "realpath"),
                ({1: home / "a\n"}, "DIRECTORY"), ({1: home / "a'"}, "DIRECTORY"), ({2: ""}, "PRODUCT_DOMAIN"),
                ({2: "a.b\n"}, "PRODUCT_DOMAIN"), ({2: "../a.b"}, "PRODUCT_DOMAIN"), ({3: " "}, "REFERENCE"),
                ({3: "a\nb=c"}, "REFERENCE"), ({2: "com.globex.broken"}, "cp: "),
                ({"key": option["none"]}, "--key"), ({"key": option["key"]}, "the signature of"),
                ({0: new, "key": option["stranger"]}, "the signature of"), ({0: new, "key": option["key"]}, None)):
            words = [change.get(index, word) for index, word in enumerate(good)]
            before = content(home)
            with self.subTest(words=words):
                result = self.run_command(*installer, *change.get("key", []), *words, status=None, env=environment)
                self.assertEqual(result.returncode == 0, said is None, result.stderr)
                self.assertIn(said or "", result.stderr)
                self.assertEqual(content(home) == before, said is not None)
        self.assertEqual([path.name for path in (home / "Applications").iterdir()], [BUNDLE])
        self.assertEqual((home / "Applications" / BUNDLE / "version").read_text(), "2")
        self.assertEqual(settings.read_text(), "subscriptionReference=REF\ncolour=1")
        self.assertEqual((home / ".local/share/applications/com.globex.leave.desktop").read_text(),
                         str(home / "Applications" / BUNDLE))
        for name in (".config/com.globex.leave.lock", f".cache/com.globex.leave-{65534 if user else os.getuid()}/copy"):
            put(home / name, "")
        as_ordinary_user(self.folder)  # who also owns the new files
        self.run_command(*installer, "--remove", *good[1:3], "com.globex.leave", env=environment)
        self.assertEqual([path.name for path in home.rglob("*") if path.is_file()], [settings.name])
        self.assertEqual(settings.read_text(), "colour=1")

    def test_a_debian_package_installs_the_helper_for_a_customer(self) -> None:
        home, root, product = (self.folder / name for name in ("home", "root", "product.deb"))
        home.mkdir()
        put(root / "var/lib/dpkg/status", "")
        new = self.package("new", "2")
        user = as_ordinary_user(self.folder)
        for command in rows(
                [PROJECT / "examples/make-deb", new, product],
                ["dpkg", "--root", root, "--log", "/dev/null", "--force-depends,not-root", "--install", product],
                [*user, root / "usr/bin/globex-leave", "REF"]):
            self.run_command(*command, env={"HOME": str(home), "PATH": f"{os.environ['PATH']}:/usr/sbin:/sbin"})
        self.assertEqual((home / ".local/lib/globex" / BUNDLE / "version").read_text(), "2")


class DemoTest(TestCase):
    def test_it_shows_every_step_where_the_window_manager_is_slow(self) -> None:
        put(self.folder / "openbox", '#!/bin/sh\nexec strace -D -o /dev/null -e inject=openat:delay_enter=1000 '
            f'{shutil.which("openbox")} "$@"\n', 0o755)
        shown = self.run_command(
            "env", "--unset=DISPLAY", "--unset=WAYLAND_DISPLAY", f"PATH={self.folder}:{os.environ['PATH']}",
            sys.executable, "-m", "demo.demo", BUILD, self.folder / "demo", cwd=PROJECT, timeout=120).stdout
        self.assertEqual(shown.count("[ok]"), 8, shown)
        for name in ("window", "sheet", "end"):
            self.assertTrue((self.folder / "demo" / f"{name}.png").exists(), name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
