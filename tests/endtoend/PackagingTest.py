"""Tests a branded package: its settings, licenses, sizes, bytes, and a removal where it is unpacked."""

import filecmp
import hashlib
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from tests.endtoend.support import BUILD, LONG, SANITIZE, TestCase, put, rows
from kit.desktop import Process, desktop, wait_for
from kit.stage import BUNDLE, PROJECT, Store, Window

BRAND = {
    "COMPANY_NAME": r"Globex \"#1\"", "PRODUCT_NAME": r"Globex \"Draw\" #3; $<1:x>",
    "IDENTIFIER": "org.example.globex.leave", "PRODUCT_DOMAIN": "org.example.globex.draw",
    "STORE_HOST": "localhost:80", "STORE_ID": "globex", "UNINSTALLER": "Remove Globex",
    "ICON": "globex.svg"}
LARGEST = {"packed": 30.2, "unpacked": 76.8, "small": 0.33, "entry": 0.23}  # in millions of bytes


@unittest.skipIf(SANITIZE, "packages are built by a preset of their own")
class PackagingTest(TestCase):
    def setUp(self) -> None:
        super().setUp()
        put(self.folder / "script", '#!/bin/sh\necho ran >"$HOME/removed"\n', 0o755)
        for name in ("Remove Globex", "It's.sh", "Subscription Helper"):
            (self.folder / name).symlink_to("script")
        (self.folder / "Empty.app").mkdir()
        (self.folder / "license.txt").write_text("You may leave.\n")
        (self.folder / "not.svg").write_text("no drawing")
        (self.folder / "globex.svg").write_text(
            '<svg xmlns="http://www.w3.org/2000/svg"><circle cx="9" cy="9" r="9"/></svg>')

    def brand(self, **changes: str | None) -> pathlib.Path:
        """Writes a brand file with changed settings, without those set to None, and returns its path."""
        file = self.folder / "brand.cmake"
        file.write_text("".join(f'set(HELPER_{name} "{value}")\n'
                                for name, value in (BRAND | changes).items() if value is not None))
        return file

    def test_a_setting_that_is_wrong_is_named(self) -> None:
        for setting, value, message in (
                *((name, None, "is missing") for name in BRAND),
                ("COMPANY_NAME", "", "the company's name"), ("PRODUCT_NAME", '\\"Draw\\', "line 2 lacks a quote"),
                ("PRODUCT_NAME", " ", "the product's display name"),
                ("PRODUCT_NAME", r"Draw\\next", "the product's display name"), ("STORE_ID", r"a\;b", "such as"),
                ("IDENTIFIER", "../leave", "a reverse domain name"),
                ("PRODUCT_DOMAIN", "draw", "a reverse domain name"),
                ("PRODUCT_DOMAIN", BRAND["IDENTIFIER"], "must differ"),
                ("STORE_HOST", "http://host/", "a host or host:port"),
                ("STORE_HOST", "-host", "a host or host:port"), ("STORE_HOST", "h:70000", "from 1 to 65535"),
                ("STORE_HOST", "h:0", "from 1 to 65535"), ("STORE_HOST", "127.0.0.256:80", "an invalid IPv4 address"),
                ("STORE_ID", " globex", "such as"), ("STORE_ID", "a@b", "such as"), ("VERSION", "one", "numbers"),
                ("UNINSTALLER", "missing", "names a missing file"), ("UNINSTALLER", "globex.svg", "an executable file"),
                ("UNINSTALLER", "Empty.app", "an executable file"), ("UNINSTALLER", "It's.sh", "a single quote"),
                ("UNINSTALLER", "Subscription Helper", "must differ"),
                ("UNINSTALER", "x", "an unknown setting"), ("ICON", "globex.ico", "an SVG file"),
                ("ICON", "not.svg", "can be drawn"), ("LICENSE", "missing", "names a missing file"),
                ("LICENSE", "Empty.app", "in UTF-8"), ("TEXTS", "globex.svg", "a directory of texts"),
                ("TEXTS", "missing", "names a missing file"),
                ("TEXTS", self.texts("German", "x"), "named by a language"),
                ("TEXTS", self.texts("de", '"Leave" "x";'), "line 1: expected ';'"),
                ("TEXTS", self.texts("de", '"Leave" = "x";'), "unknown text 'Leave'"),
                ("TEXTS", self.texts("de", '"Cancel your %@ subscription?" = "x?";'), "must have %@ as often"),
                ("TEXTS", self.texts("de", '"&Keep Subscription" = "&Da";'), "the same mnemonic"),
                ("ACCOUNT_PAGE", "ftp://globex.com/", "an http or https URL"),
                ("TEXTS", self.texts("de", '"&Close" = "x";'), "must have & as often"),
                ("TEXTS", self.texts("de", '"&Close" = "x&";'), "a letter after &"),
                ("TEXTS", self.texts("de", '"Not Now" = " ";'), "is empty"),
                ("TEXTS", self.texts("xx", '"Not Now" = "x";'), "needs all texts")):
            with self.subTest(setting=setting, value=value):
                brand = self.brand(**{setting: value})
                text = " ".join(self.run_command("cmake", f"-DHELPER_BRAND={brand}", "-P", "cmake/Branding.cmake",
                                                 status=1, cwd=PROJECT).stderr.split())
                self.assertIn(message, text)
                self.assertIn(f"HELPER_{setting}", text)
        shutil.copytree(PROJECT / "resources", self.folder / "resources")
        put(self.folder / "resources/de.lproj/Localizable.strings", '"Progress" = "x";')
        self.assertIn("needs all texts", self.run_command(sys.executable, PROJECT / "cmake/texts.py",
                                                          self.folder / "resources", "", status=1).stderr)

    def texts(self, language: str, content: str) -> str:
        """Writes a directory of texts next to the brand file, and returns its name."""
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.folder))
        (folder / f"{language}.strings").write_text(content)
        return folder.name

    def package(self, name: str, host: str, *options: str) -> pathlib.Path:
        """Builds a package in a new build directory, and returns its path."""
        build = self.folder / name
        brand = self.brand(STORE_HOST=host, LICENSE="license.txt", VERSION="3.1",
                           TEXTS=self.texts("en", '// "Product Name" = "";\n'
                                            r'/***/ "Product Name" = "Globex \"Draw\" 4";'
                                            r'"Cancel %@ Subscription" = "\U00c9cole @globex@: %@";'))
        for command in rows(["cmake", "--preset", "brand", "-B", build, "-DHELPER_QT=system", *options],
                            ["cmake", "--build", build, "--target", "bundle"],
                            ["cpack", "--config", build / "CPackConfig.cmake"]):
            self.run_command(*command, cwd=PROJECT, env=os.environ | {"HELPER_BRAND": str(brand)})
        return next(build.glob("dist/*-3.1-*.tar.gz"))

    def check_size(self, what: str, file: pathlib.Path) -> None:
        size = int(self.run_command("du", "--apparent-size", "--bytes", "--summarize", file).stdout.split()[0]) / 1e6
        self.assertTrue(LARGEST[what] * 0.8 < size < LARGEST[what], f"{what}: {size} MB")

    def check_licenses(self, contents: pathlib.Path) -> None:
        """Checks that the list has each program and library, and that each package has a license text."""
        folder = contents / "Resources/licenses"
        listed = json.loads((folder / "libraries.spdx.json").read_text())
        shipped = {f"./Contents/{file.relative_to(contents)}" for name in ("Frameworks", "PlugIns", "Linux")
                   for file in (contents / name).rglob("*") if file.is_file()}
        self.assertEqual({file["fileName"] for file in listed["files"]}, shipped)
        identifiers = {part["SPDXID"] for part in [listed, *listed["files"], *listed["packages"]]}
        linked = {relation["spdxElementId"] for relation in listed["relationships"]}
        linked |= {relation["relatedSpdxElement"] for relation in listed["relationships"]}
        self.assertEqual(linked, identifiers)
        self.assertNotIn("CONTAINS", str(listed["relationships"]))  # not all files are listed
        for package in listed["packages"]:
            self.assertTrue((folder / f"{package['name']}.txt").exists(), package["name"])
        for word in ("You may leave.", "pkg:deb/debian/curl@", "pkg:deb/debian/gcc-12@"):
            self.assertIn(word, str(listed))
        for package in listed["packages"]:
            package["versionInfo"] = "0" if package["name"] == "curl" else "9999"
        (self.folder / "old.json").write_text(json.dumps(listed))
        outdated = self.run_command(PROJECT / "scripts/check-updates", self.folder / "old.json", status=1).stdout
        self.assertRegex(outdated, r"^curl: 0 is shipped, \S+ is newer\n$")

    def test_a_file_without_a_license_ends_the_build(self) -> None:
        contents, origins = self.folder / "Contents", self.folder / "origins"
        (contents / "Resources").mkdir(parents=True)
        for origin, message in ((self.folder / "not.svg", "cannot find the Debian package"),
                                ("/usr/bin/env", "unknown license")):
            origins.write_text(f"Frameworks/some.so\t{origin}\n")
            self.assertIn(message, self.run_command(sys.executable, PROJECT / "cmake/licenses.py", contents, origins,
                                                    "id", "1", "Co", status=1).stderr)

    def check_libraries(self, process: Process) -> None:
        """Checks that libraries that a desktop may lack are loaded from the bundle, whatever the environment."""
        maps = pathlib.Path(f"/proc/{process.pid}/maps").read_text()
        self.assertRegex(maps, r"\.app/Contents/PlugIns/platforms/libqxcb\.so")
        self.assertNotRegex(maps, r"/usr/\S*/(qt6/|lib(Qt6|icu|curl|ssl|crypto|uriparser|xcb-|OpenGL))")

    def check_fetch(self) -> None:
        """Checks that a fetch works with the packaged libcurl."""
        build = self.folder / "one"
        self.run_command("cmake", "-D", "BUILD_TESTING=ON", build)
        self.run_command("cmake", "--build", build, "--target", "base-test")
        self.assertNotIn("libcurl", self.run_command("ldd", build / "tests/base-test").stdout)
        self.run_command(build / "tests/base-test", "--gtest_filter=Fetch*")

    @unittest.skipUnless(LONG, "it builds once more")
    def test_the_demonstration_shows_ones_own_brand(self) -> None:
        shown = self.run_command("env", "--unset=DISPLAY", f"HELPER_BRAND={self.brand()}",
                                 PROJECT / "scripts/demo").stdout
        self.assertEqual(shown.count("[ok]"), 6, shown)

    def test_a_package_is_the_same_each_time_and_runs_where_it_is_unpacked(self) -> None:
        with desktop() as environment, Store(BUILD, "0") as store:
            host = store.address.split("/")[2]
            package = self.package("one", host)
            self.assertEqual(package.with_name(package.name + ".sha256").read_text().split(),
                             [hashlib.sha256(package.read_bytes()).hexdigest(), package.name])
            self.check_fetch()
            self.check_size("packed", package)
            options = ["-DHELPER_SELF_CONTAINED=OFF"]
            small = self.package("small", host, *options)
            self.check_size("small", small)
            # To save time, the small package stands for both, except in a long run.
            again = self.package("another folder", host, *([] if LONG else options))
            self.assertTrue(filecmp.cmp(package if LONG else small, again, shallow=False))
            self.brand(IDENTIFIER="org.example.other", UNINSTALLER="")
            self.run_command("cmake", self.folder / "small")
            left = [file.name for file in (self.folder / "small" / BUNDLE / "Contents").rglob("*")]
            self.assertFalse({name for name in left if "globex" in name.lower()}, left)

            stage = self.make_stage()
            shutil.rmtree(stage.bundle)
            settings = stage.config / f"{BRAND['PRODUCT_DOMAIN']}.conf"
            settings.write_bytes(b"colour=caf\xe9\nsubscriptionReference=OLD\n")
            plugins = "/usr/lib/x86_64-linux-gnu/qt6/plugins"
            process = subprocess.Popen(
                [PROJECT / "examples/install-helper", package, stage.applications, BRAND["PRODUCT_DOMAIN"],
                 "DEMO-1001"], stderr=subprocess.PIPE, text=True, env=stage.environment(environment) | {
                     "QT_PLUGIN_PATH": plugins, "QT_QPA_PLATFORM_PLUGIN_PATH": f"{plugins}/platforms",
                     "LD_LIBRARY_PATH": "/usr/lib/x86_64-linux-gnu"})
            window = Window(environment, 'Globex "Draw" 4')
            self.assertTrue(window.wait())
            self.check_libraries(process)
            self.assertEqual(settings.read_bytes(), b"subscriptionReference=DEMO-1001\ncolour=caf\xe9\n")
            self.assertIn('leave Globex "Draw" #3; $<1:x>: ', self.run_command(stage.program(), "--help").stdout)
            entry = stage.home / f".local/share/applications/{BRAND['IDENTIFIER']}.desktop"
            self.run_command("desktop-file-validate", entry)
            self.assertIn(f"\nTryExec={stage.program()}\n", entry.read_text())
            self.assertIn('\nName[en]=École @globex@: Globex "Draw" 4\n', entry.read_text())
            self.check_size("unpacked", stage.bundle)
            self.check_size("entry", stage.program())
            self.check_licenses(stage.bundle / "Contents")
            window.press_remove()
            self.assertTrue(wait_for(stage.trashed_bundle))
            self.assertTrue(wait_for((stage.home / "removed").exists))
            window.keys("Return")
            _, log = process.communicate(timeout=20)
            self.assertEqual((process.returncode, len(log.splitlines()), len(store.requests)), (0, 1, 2))
            self.assertIn("Cancellation: confirmed. Uninstaller: started. Bundle: moved to the Trash", log)
        self.assertEqual(stage.restore_path(), str(stage.bundle))
        self.assertTrue((stage.config / f"{BRAND['IDENTIFIER']}.conf").exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)
