"""What was built is hardened: every program and library of ours, by what is in the file."""

import pathlib
import subprocess
import unittest

from support import BUILD
from stage import BUNDLE

CONTENTS = pathlib.Path(BUILD) / BUNDLE / "Contents"
BUILT = [CONTENTS / "Linux" / "Subscription Helper",
         CONTENTS / "Frameworks" / "SubscriptionHelperApplication.so",
         pathlib.Path(BUILD) / "tools" / "storectl"]


def readelf(option, file):
    return subprocess.run(["readelf", "--wide", option, file], text=True, capture_output=True,
                          check=True).stdout


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


if __name__ == "__main__":
    unittest.main(verbosity=2)
