"""Compares a package's list of libraries with the distribution: `python3 -m kit.updates LIBRARIES.spdx.json`.

Reads the versions of Debian's source packages in the list and the newest ones that apt knows. Prints each package that
has a newer version, and exits with 1 if there is one.
"""

import json
import pathlib
import subprocess
import sys


def is_newer(one: str, other: str) -> bool:
    return subprocess.run(["dpkg", "--compare-versions", one, "gt", other], check=False).returncode == 0


def newest_sources(wanted: set[str]) -> dict[str, str]:
    """Returns the newest version of each wanted source package that apt offers."""
    newest: dict[str, str] = {}
    for record in subprocess.check_output(["apt-cache", "dumpavail"], text=True).split("\n\n"):
        fields = dict(line.split(": ", 1) for line in record.splitlines() if ": " in line and line[0] != " ")
        if not fields:
            continue
        source, _, version = fields.get("Source", fields["Package"]).partition(" ")
        version = version.strip("()") or fields["Version"]
        if source in wanted and (source not in newest or is_newer(version, newest[source])):
            newest[source] = version
    return newest


def main() -> None:
    listed = json.loads(pathlib.Path(sys.argv[1]).read_text())
    ours = {package["name"]: package["versionInfo"] for package in listed["packages"]
            if package["supplier"] == "Organization: Debian"}
    newest = newest_sources(set(ours))
    found = [f"{name}: {version} is shipped, {newest[name]} is newer" for name, version in sorted(ours.items())
             if name in newest and is_newer(newest[name], version)]
    found += [f"{name}: the distribution no longer has it" for name in sorted(ours) if name not in newest]
    print("\n".join(found) or f"All {len(ours)} packages are the newest.")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
