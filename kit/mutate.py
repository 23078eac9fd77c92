"""Plants faults in copies of sources and reports those that no test notices: see scripts/mutate --help."""

import argparse
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time
from collections.abc import Iterator

from kit.stage import PROJECT

Fault = tuple[str, str, int, str]  # kind, file, line number, and the line with the fault
FOLDERS = ("app/", "base/", "store/", "housekeeping/", "platform/", "tools/")
# Each kind of fault: a pattern in code, and its replacements for a match.
KINDS = {
    "statement": (r"^ +[\w>.:\-]+\([^{}]*\);$", lambda match: [re.sub(r"\S.*", ";", match.group())]),
    "relation": (r"(?<= )(==|!=|<=|>=|<|>|&&|\|\|)(?= )", lambda match: {
        "==": ["!="], "!=": ["=="], "<=": ["<"], ">=": [">"], "<": ["<=", ">"], ">": [">=", "<"],
        "&&": ["||"], "||": ["&&"]}[match.group()]),
    "constant": (r"(?<![\w.])[0-9]+(?![\w.])", lambda match: [str(int(match.group()) + 1)]),
    "text": (r'(?<!include )"[^"\\]{2,}"', lambda match: [match.group()[:-2] + '"']),
    "boolean": (r"\b(true|false)\b", lambda match: ["false" if match.group() == "true" else "true"]),
}


def faults_of(file: str) -> Iterator[Fault]:
    """Yields all faults of a source."""
    lines = (PROJECT / file).read_text().splitlines()
    for number, line in enumerate(lines):
        code = re.sub(r"(^| )///?<? .*", "", line).rstrip()
        if code.lstrip().startswith(("#", "*", "static_assert")):
            continue
        for kind, (pattern, replacements) in KINDS.items():
            for match in re.finditer(pattern, code):
                for text in replacements(match):
                    yield kind, file, number, code[:match.start()] + text + code[match.end():]


def changed(since: str) -> list[str]:
    names = subprocess.run(["git", "diff", "--name-only", "--diff-filter=d", since], cwd=PROJECT, text=True, check=True,
                           stdout=subprocess.PIPE).stdout.splitlines()
    return [name for name in names if name.startswith(FOLDERS)]


def sources(paths: list[str]) -> list[str]:
    """The C++ files among and below the paths, without those of macOS."""
    found = {file.relative_to(PROJECT) for path in paths for root in [PROJECT / path]
             for file in (root.rglob("*") if root.is_dir() else [root])}
    return sorted(str(file) for file in found if file.suffix in (".h", ".cpp") and "macos" not in file.parts)


def selected(faults: list[Fault], seed: int) -> list[Fault]:
    """The faults in a random order in which the kinds alternate."""
    random.Random(seed).shuffle(faults)
    ranks = {kind: 0 for kind in KINDS}
    ranked = []
    for fault in faults:
        ranks[fault[0]] += 1
        ranked.append((ranks[fault[0]], fault))
    return [fault for _, fault in sorted(ranked, key=lambda each: each[0])]


class Copy:
    """A copy of the project with a build directory of its own."""

    def __init__(self, folder: pathlib.Path, seconds: int, tests: list[str]) -> None:
        self.folder, self.seconds = folder, seconds
        self.tests = ["ctest", "--test-dir", "build/dev", "--stop-on-failure", "--parallel", "2", *tests]
        names = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=PROJECT,
                               text=True, check=True, stdout=subprocess.PIPE).stdout.split("\0")
        for name in filter(None, names):
            if (PROJECT / name).is_file():
                (folder / name).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(PROJECT / name, folder / name)
        subprocess.run(["git", "init", "-q"], cwd=folder, check=True)

    def succeeds(self, *words: str) -> bool:
        """Runs a command in the copy, in a process group that ends with it. A time limit counts as a failure."""
        cache = {"CMAKE_C_COMPILER_LAUNCHER": "ccache", "CMAKE_CXX_COMPILER_LAUNCHER": "ccache",
                 "CCACHE_BASEDIR": str(self.folder), "CCACHE_NOHASHDIR": "1"} if shutil.which("ccache") else {}
        with (self.folder / "build.log").open("w") as log:
            return subprocess.run(["timeout", "--kill-after=5", str(self.seconds), *words], cwd=self.folder, stdout=log,
                                  stderr=log, env=os.environ | cache, check=False).returncode == 0

    def builds(self) -> bool:
        return self.succeeds("cmake", "--build", "--preset", "dev")

    def outcome(self, file: str, number: int, line: str) -> str:
        """Plants a fault, builds and tests, and restores the source."""
        path = self.folder / file
        original = path.read_text()
        lines = original.splitlines()
        lines[number] = line
        path.write_text("\n".join(lines) + "\n")
        try:
            if not self.builds():
                return "does not build"
            return "SURVIVED" if self.succeeds(*self.tests) else "noticed"
        finally:
            path.write_text(original)


def main() -> None:
    parser = argparse.ArgumentParser(
        prog="scripts/mutate", description="Plants faults in a copy of the project, one after the other, and reports "
        "those that no test notices. A fault in a path check can delete all files that its user may delete. So root is "
        "refused. Run it as a user without valuable files, who owns the clone.")
    parser.add_argument("paths", nargs="*", help="files and directories. Default: files that differ from --since")
    parser.add_argument("--since", default="origin/main", help="commit to compare with (default: %(default)s)")
    parser.add_argument("--count", type=int, default=20, help="number of faults (default: %(default)s)")
    parser.add_argument("--seed", type=int, default=1, help="seed of the selection (default: %(default)s)")
    parser.add_argument("--minutes", type=float, default=60, help="time for all faults (default: %(default)s)")
    parser.add_argument("--seconds", type=int, default=600, help="time of a build or a test run (default: %(default)s)")
    parser.add_argument("--tests", default="-E ^form|Packaging|Shipping|bench|Faults",
                        help="arguments for ctest (default: %(default)s)")
    given = parser.parse_args()
    if os.geteuid() == 0:
        sys.exit("mutate: cannot run as root, because a fault in a path check could delete any file. "
                 "Run it as an ordinary user")
    end = time.monotonic() + given.minutes * 60
    faults = [fault for file in sources(given.paths or changed(given.since)) for fault in faults_of(file)]
    faults = selected(faults, given.seed)[:given.count]
    counts = {"noticed": 0, "SURVIVED": 0, "does not build": 0}
    with tempfile.TemporaryDirectory(prefix="helper-mutate-") as folder:
        copy = Copy(pathlib.Path(folder), given.seconds, given.tests.split())
        if not (copy.succeeds("cmake", "--preset", "dev") and copy.builds() and copy.succeeds(*copy.tests)):
            sys.exit("mutate: cannot start: a test fails without a fault\n" + (copy.folder / "build.log").read_text())
        for kind, file, number, line in faults:
            if time.monotonic() > end:
                print("mutate: the time is over")
                break
            outcome = copy.outcome(file, number, line)
            counts[outcome] += 1
            print(f"{outcome}: {kind}, {file}:{number + 1}: {line.strip()}", flush=True)
    print(", ".join(f"{count} {outcome}" for outcome, count in counts.items()))
    sys.exit(1 if counts["SURVIVED"] else 0)


if __name__ == "__main__":
    main()
