"""What is shipped: hardened files, the store client for other programs, packages, and the demonstration."""

import filecmp
import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

from support import BUILD, SANITIZE, TestCase
from desktop import desktop, wait_for
from stage import BUNDLE, PROJECT, Store, Window

CONTENTS = pathlib.Path(BUILD) / BUNDLE / "Contents"
BUILT = [CONTENTS / "Linux" / "Subscription Helper",
         CONTENTS / "Frameworks" / "SubscriptionHelperApplication.so",
         pathlib.Path(BUILD) / "tools" / "storectl"]
BRAND = {
    "COMPANY_NAME": "Globex", "PRODUCT_NAME": r"Globex \"Draw\" 3",
    "IDENTIFIER": "org.example.globex.leave", "PRODUCT_DOMAIN": "org.example.globex.draw",
    "STORE_HOST": "localhost:80", "STORE_ID": "globex", "UNINSTALLER": "Remove Globex",
    "ICON": "globex.svg"}


def readelf(option, file):
    return subprocess.run(["readelf", "--wide", option, file], text=True, capture_output=True,
                          check=True).stdout


@unittest.skipIf(SANITIZE, "sanitizer builds are not hardened")
class HardeningTest(unittest.TestCase):
    def test_each_file_is_hardened(self):
        for file in BUILT:
            with self.subTest(file.name):
                self.assertRegex(readelf("--file-header", file), r"Type:\s+DYN")
                segments = readelf("--segments", file)
                self.assertIn("GNU_RELRO", segments)
                self.assertRegex(segments, r"GNU_STACK .* RW ")
                self.assertRegex(readelf("--dynamic", file), r"FLAGS.*NOW")
                symbols = readelf("--dyn-syms", file)
                self.assertIn("__stack_chk_fail", symbols)
                self.assertRegex(symbols, r"__\w+_chk@")

    def test_the_application_library_exports_its_one_function(self):
        symbols = subprocess.run(["nm", "--dynamic", "--defined-only", BUILT[1]], text=True,
                                 capture_output=True, check=True).stdout.split()
        self.assertEqual(symbols[1:], ["T", "subscriptionHelperApplicationMain"])


class InstallationTest(TestCase):
    def run_command(self, *words, status=0):
        result = subprocess.run([str(word) for word in words], text=True, capture_output=True,
                                check=False)
        self.assertEqual(result.returncode, status, result.stderr)
        return result.stdout

    def test_another_program_finds_and_uses_the_store_client(self):
        build, prefix = self.folder / "build", self.folder / "prefix"
        flags = f"-fsanitize={SANITIZE}" if SANITIZE else ""
        self.run_command("cmake", "--install", BUILD, "--prefix", prefix)
        self.run_command("cmake", "-G", "Ninja", "-S", PROJECT / "examples", "-B", build,
                         f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_CXX_FLAGS={flags}")
        self.run_command("cmake", "--build", build)
        example = build / "subscription-status"
        with Store(BUILD):
            self.assertEqual(self.run_command(example, "DEMO-1001"), "active\n")
            self.assertEqual(self.run_command(example, "NO-SUCH", status=1), "none\n")
        self.assertTrue((prefix / "bin" / "storectl").exists())
        self.assertEqual({folder.name for folder in (prefix / "include/subscription-store").iterdir()},
                         {"base", "store"})
        self.assertNotRegex(self.run_command("ldd", example), "lib(glib|gio|Qt)")


class DemoTest(TestCase):
    def run_demo(self):
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        return subprocess.run([sys.executable, PROJECT / "demo" / "demo.py", BUILD,
                               self.folder / "demo"], env=environment, text=True,
                              capture_output=True, timeout=120, check=False)

    def test_it_shows_every_step(self):
        result = self.run_demo()
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(result.stdout.count("[ok]"), 8, result.stdout)
        for name in ("window", "sheet", "end"):
            self.assertTrue((self.folder / "demo" / f"{name}.png").exists(), name)


@unittest.skipIf(SANITIZE, "packages are built by a preset of their own")
class PackagingTest(TestCase):
    def setUp(self):
        super().setUp()
        (self.folder / "Remove Globex").write_text('#!/bin/sh\necho ran >"$HOME/removed"\n')
        (self.folder / "Remove Globex").chmod(0o755)
        (self.folder / "not.svg").write_text("no drawing")
        (self.folder / "globex.svg").write_text(
            '<svg xmlns="http://www.w3.org/2000/svg"><circle cx="9" cy="9" r="9"/></svg>')

    def brand(self, **changes):
        """A brand file with some settings changed, or left out where None."""
        file = self.folder / "brand.cmake"
        file.write_text("".join(f'set(HELPER_{name} "{value}")\n'
                                for name, value in (BRAND | changes).items() if value is not None))
        return file

    def test_a_setting_that_is_wrong_is_named(self):
        for setting, value, message in (
                *((name, None, "is missing") for name in BRAND),
                ("COMPANY_NAME", "", "the company's name"),
                ("PRODUCT_NAME", " ", "the product's display name"),
                ("IDENTIFIER", "../leave", "a reverse domain name"),
                ("PRODUCT_DOMAIN", "draw", "a reverse domain name"),
                ("PRODUCT_DOMAIN", BRAND["IDENTIFIER"], "must differ"),
                ("STORE_HOST", "http://host/", "a host or host:port"),
                ("STORE_HOST", "-host", "a host or host:port"), ("STORE_HOST", "h:70000", "from 1 to 65535"),
                ("STORE_ID", " globex", "such as"), ("STORE_ID", "a@b", "such as"), ("VERSION", "one", "numbers"),
                ("UNINSTALLER", "missing", "there is no"), ("UNINSTALLER", "globex.svg", "an executable file"),
                ("UNINSTALER", "x", "is no setting"), ("ICON", "globex.ico", "an SVG file"),
                ("ICON", "not.svg", "can be drawn")):
            with self.subTest(setting=setting, value=value):
                result = subprocess.run(
                    ["cmake", f"-DHELPER_BRAND={self.brand(**{setting: value})}", "-P",
                     PROJECT / "cmake/Branding.cmake"], text=True, capture_output=True, check=False)
                self.assertNotEqual(result.returncode, 0)
                text = " ".join(result.stderr.split())
                self.assertIn(message, text)
                self.assertIn(f"HELPER_{setting}", text)

    def package(self, name, host):
        """The package of a build of its own."""
        build = self.folder / name
        environment = os.environ | {"HELPER_BRAND": str(self.brand(STORE_HOST=host))}
        for command in (["cmake", "--preset", "brand", "-B", build],
                        ["cmake", "--build", build, "--target", "bundle"],
                        ["cpack", "--config", build / "CPackConfig.cmake"]):
            subprocess.run(command, cwd=PROJECT, env=environment, check=True, capture_output=True)
        return next(build.glob("dist/*.tar.gz"))

    def test_a_package_is_the_same_each_time_and_runs_where_it_is_unpacked(self):
        with desktop() as environment, Store(BUILD, "0") as store:
            host = store.address.split("/")[2]
            package = self.package("one", host)
            self.assertEqual(package.with_name(package.name + ".sha256").read_text().split(),
                             [hashlib.sha256(package.read_bytes()).hexdigest(), package.name])
            self.assertTrue(filecmp.cmp(package, self.package("another folder", host), shallow=False))

            stage = self.make_stage()
            shutil.rmtree(stage.bundle)
            subprocess.run(["tar", "-xzf", package, "-C", stage.applications], check=True)
            (stage.config / f"{BRAND['PRODUCT_DOMAIN']}.conf").write_text("subscriptionReference=DEMO-1001\n")
            process = stage.start(environment)
            window = Window(environment, 'Globex "Draw" 3')
            self.assertTrue(window.wait())
            window.press_remove()
            self.assertTrue(wait_for(stage.trashed_bundle))
            self.assertTrue(wait_for((stage.home / "removed").exists))
            window.keys("Return")
            _, log = process.communicate(timeout=20)
            self.assertEqual((process.returncode, log, len(store.requests)), (0, "", 2))
        self.assertEqual(stage.restore_path(), str(stage.bundle))
        self.assertTrue((stage.config / f"{BRAND['IDENTIFIER']}.conf").exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)
