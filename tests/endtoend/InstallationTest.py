"""The installed store client, used by another program through find_package."""

import subprocess
import unittest

from support import BUILD, SANITIZE, TestCase

PROGRAM = """#include "store/FastSpringSubscriptionParser.h"
int main() {
    const auto record = store::FastSpringSubscriptionParser("<subscription/>").parseSubscription();
    return record && !record->status ? 0 : 1;
}
"""
PROJECT = """cmake_minimum_required(VERSION 3.25)
project(Consumer CXX)
find_package(SubscriptionHelper REQUIRED)
add_executable(consumer consumer.cpp)
target_link_libraries(consumer PRIVATE SubscriptionHelper::store)
"""


class InstallationTest(TestCase):
    def test_another_program_finds_and_uses_the_store_client(self):
        run = lambda *words: subprocess.run([str(word) for word in words], check=True,  # noqa: E731
                                            stdout=subprocess.DEVNULL)
        source, prefix = self.folder / "consumer", self.folder / "prefix"
        source.mkdir()
        (source / "CMakeLists.txt").write_text(PROJECT)
        (source / "consumer.cpp").write_text(PROGRAM)
        run("cmake", "--install", BUILD, "--prefix", prefix)
        flags = f"-fsanitize={SANITIZE}" if SANITIZE else ""
        run("cmake", "-G", "Ninja", "-S", source, "-B", source / "build",
            f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_CXX_FLAGS={flags}")
        run("cmake", "--build", source / "build")
        run(source / "build" / "consumer")
        self.assertTrue((prefix / "bin" / "storectl").exists())
        self.assertFalse((prefix / "include" / "subscription-helper" / "app").exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)
