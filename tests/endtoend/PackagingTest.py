"""What a company does: its own brand file, one package, unpacked and run in a customer's home."""

import filecmp
import hashlib
import os
import shutil
import subprocess
import unittest

from support import BUILD, TestCase
from desktop import desktop, wait_for
from stage import PROJECT, Store, Window

BRAND = {
    "COMPANY_NAME": "Globex", "PRODUCT_NAME": r"Globex \"Draw\" 3",
    "IDENTIFIER": "org.example.globex.leave", "PRODUCT_DOMAIN": "org.example.globex.draw",
    "STORE_HOST": "localhost:80", "STORE_ID": "globex", "UNINSTALLER": "Remove Globex",
    "ICON": "globex.svg"}


class PackagingTest(TestCase):
    def setUp(self):
        super().setUp()
        (self.folder / "Remove Globex").write_text('#!/bin/sh\necho ran >"$HOME/removed"\n')
        (self.folder / "Remove Globex").chmod(0o755)
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
                ("UNINSTALLER", "missing", "there is no"), ("ICON", "globex.ico", "an SVG file")):
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
                        ["cpack", "--config", build / "CPackConfig.cmake", "-B", build]):
            subprocess.run(command, cwd=PROJECT, env=environment, check=True, capture_output=True)
        return next(build.glob("*.tar.gz"))

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
