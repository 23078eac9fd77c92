"""The installed store client, used by another program through find_package."""

import subprocess
import unittest

from support import BUILD, SANITIZE, TestCase
from stage import PROJECT, Store


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


if __name__ == "__main__":
    unittest.main(verbosity=2)
