"""Runs clang-tidy on all sources of a build directory: `python3 -m kit.lint BUILD [--all]`,
with an absolute path.

Skips each source that has passed with the same content, headers, compile command and checks, unless --all is given.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

from kit.stage import PROJECT

TIDY = "clang-tidy-14"
# These have no command, and include headers of macOS.
OF_MACOS = [f"platform/macos/{name}.cpp" for name in ("ExecutablePath", "Preferences", "UserDefaults")]


def output(*words: str | pathlib.Path) -> str:
    return subprocess.run(words, cwd=PROJECT, text=True, check=True, stdout=subprocess.PIPE).stdout


@functools.cache
def digest(path: str) -> str:
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def dependencies(build: pathlib.Path) -> dict[str, list[str]]:
    """Maps each source to all files that it includes, as the last build recorded them."""
    found = {}
    for record in output("ninja", "-C", build, "-t", "deps").split("\n\n"):
        paths = [os.path.normpath(os.path.join(build, line.strip())) for line in record.splitlines()[1:]]
        if paths:
            found[paths[0]] = paths
    return found


def check(records: pathlib.Path, key: str | None, source: str) -> bool:
    """Returns whether a source passes, and remembers it by its key. Prints what clang-tidy finds."""
    result = subprocess.run([TIDY, "-p", records, "--quiet", source], cwd=PROJECT, text=True, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    print(result.stdout, end="", flush=True)
    if result.returncode == 0 and key:
        (records / key).touch()
    return result.returncode == 0


def main() -> None:
    build = pathlib.Path(sys.argv[1])
    records = build / "lint"
    records.mkdir(exist_ok=True)
    # clang-tidy runs once for each command of a source. One is enough.
    commands = {each["file"]: each for each in json.loads((build / "compile_commands.json").read_text())}
    (records / "compile_commands.json").write_text(json.dumps(list(commands.values())))
    included = dependencies(build)
    version = output(TIDY, "--version")
    work = []
    for name in output("git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cpp").splitlines():
        source = str(PROJECT / name)
        key = None
        if source in included and source in commands:
            checks = filter(pathlib.Path.exists, (folder / ".clang-tidy" for folder in pathlib.Path(source).parents))
            command = re.sub(r" -o .*", "", commands[source]["command"])
            parts = [version, command, *map(digest, [*checks, *included[source]])]
            key = hashlib.sha256("\n".join(parts).encode()).hexdigest()
        if name not in OF_MACOS and ("--all" in sys.argv or not key or not (records / key).exists()):
            work.append((key, source))
    print(f"lint: {len(work)} sources to check", flush=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        sys.exit(not all(list(pool.map(lambda each: check(records, *each), work))))


if __name__ == "__main__":
    main()
