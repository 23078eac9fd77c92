"""Checks a macOS bundle with readers that are independent of the build's tools.

    python3 -m kit.macos "Subscription Helper.app"
"""
import plistlib
import sys
from pathlib import Path

from PIL import Image  # type: ignore[import]
from macholib.mach_o import LC_LOAD_DYLIB, LC_RPATH  # type: ignore[import]
from macholib.MachO import MachO, MachOHeader  # type: ignore[import]

PROCESSORS = {0x01000007: "x86_64", 0x0100000C: "arm64"}
LIBRARY = "SubscriptionHelperApplication.dylib"


def texts(header: MachOHeader, kind: int) -> list[str]:
    """Returns the paths in the load commands of one kind."""
    return [data.rstrip(b"\0").decode() for load, _, data in header.commands if load.cmd == kind]


def errors_in(contents: Path) -> list[str]:
    """Returns a message for each check that fails."""
    with open(contents / "Info.plist", "rb") as file:
        properties = plistlib.load(file)
    errors = []
    icon = contents / "Resources" / f"{properties['CFBundleIconFile']}.icns"
    if not icon.is_file() or max(Image.open(icon).info["sizes"]) < (256, 256, 1):
        errors.append(f"{icon.name}: not an icon of 256 pixels")
    for path in (contents / "MacOS" / properties["CFBundleExecutable"], contents / "Frameworks" / LIBRARY):
        headers = MachO(str(path)).headers
        processors = sorted(PROCESSORS.get(header.header.cputype, "unknown") for header in headers)
        if processors != ["arm64", "x86_64"]:
            errors.append(f"{path.name}: built for {processors}")
        for header in headers:
            if "@loader_path" not in texts(header, LC_RPATH) and path.name == LIBRARY:
                errors.append(f"{path.name}: does not search its own directory")
            for needed in texts(header, LC_LOAD_DYLIB):
                own = contents / "Frameworks" / needed.removeprefix("@rpath/")
                if not (needed.startswith("/usr/lib/") or needed.startswith("@rpath/") and own.is_file()):
                    errors.append(f"{path.name}: needs {needed} from outside its bundle")
    return errors


if __name__ == "__main__":
    found = errors_in(Path(sys.argv[1]) / "Contents")
    sys.exit("\n".join(f"check-macos: {error}" for error in found) or 0)
