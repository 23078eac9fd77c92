"""Collects the licenses of a bundle's libraries: `licenses.py CONTENTS ORIGINS IDENTIFIER VERSION COMPANY [LICENSE]`.

Each line of ORIGINS contains a path below CONTENTS, a tab, and the original: the file that was copied or statically
linked there. Writes the license texts of the originals' Debian packages to CONTENTS/Resources/licenses, and an SPDX 2.3
list of packages, versions, licenses and files, which includes our own programs and libraries and the uninstaller. Fails
if the license of a file is unknown.
"""

import datetime
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import urllib.parse
from typing import Any

# SPDX license expressions of Debian's source packages, from their copyright files.
LICENSES = {
    "curl": "curl",
    "double-conversion": "BSD-3-Clause",
    "expat": "MIT",
    "gcc-12": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "gcc-12-cross": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "icu": "Unicode-DFS-2016",
    "libb2": "CC0-1.0",
    "libglvnd": "MIT AND BSD-1-Clause",
    "libpng1.6": "libpng-2.0",
    "libxcb": "MIT",
    "libxkbcommon": "MIT",
    "libzstd": "BSD-3-Clause OR GPL-2.0-only",
    "md4c": "MIT",
    "openssl": "Apache-2.0",
    "pcre2": "BSD-3-Clause",
    "qt6-base": "LGPL-3.0-only OR GPL-2.0-only OR GPL-3.0-only",
    "qt6-wayland": "LGPL-3.0-only OR GPL-2.0-only OR GPL-3.0-only",
    "uriparser": "BSD-3-Clause",
    "wayland": "MIT",
    "xcb-util": "MIT",
    "xcb-util-image": "MIT",
    "xcb-util-keysyms": "MIT",
    "xcb-util-renderutil": "MIT",
    "xcb-util-wm": "MIT",
}
OWN = "Frameworks/SubscriptionHelper", "Linux/"  # this project's files, which others are linked into
COMMON = pathlib.Path("/usr/share/common-licenses")


def output_of(*command: str) -> str:
    return subprocess.run(command, text=True, check=True, stdout=subprocess.PIPE).stdout.strip()


def package_of(origin: pathlib.Path) -> tuple[str, str, pathlib.Path]:
    """Returns the name, version and license file of the source package that a file came from."""
    # Our own builds keep the texts of their sources in src/. Those of Qt are told apart by their files' names.
    for folder in origin.parents:
        is_wayland = "wayland" in str(origin.relative_to(folder)).lower()
        source = "curl" if origin.name == "libcurl.a" else "qt6-wayland" if is_wayland else "qt6-base"
        texts = folder / "src" / source / "debian"
        if texts.is_dir():
            version = output_of("dpkg-parsechangelog", "-l", str(texts / "changelog"), "-S", "Version")
            return source, version, texts / "copyright"
    # Some packages still list their files below /lib, which is now a part of /usr.
    for path in (str(origin), str(origin).removeprefix("/usr")):
        found = subprocess.run(["dpkg-query", "--search", path], text=True, capture_output=True, check=False)
        if found.returncode == 0:
            package = found.stdout.split(": ")[0]
            name, version = output_of("dpkg-query", "--show", "--showformat",
                                      "${source:Package} ${source:Version}", package).split()
            return name, version, pathlib.Path("/usr/share/doc", package.split(":")[0], "copyright")
    sys.exit(f"licenses: cannot find the Debian package of {origin}")


def digest(file: pathlib.Path, kind: str) -> str:
    return hashlib.new(kind, file.read_bytes()).hexdigest()


def identifier_of(*names: str) -> str:
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.]", "-", "-".join(names))


def described(name: str, version: str, license_: str, supplier: str) -> dict[str, Any]:
    return {"SPDXID": identifier_of("Package", name), "name": name, "versionInfo": version,
            "supplier": supplier, "downloadLocation": "NOASSERTION", "licenseDeclared": license_,
            "licenseConcluded": license_, "copyrightText": "NOASSERTION", "filesAnalyzed": False}


def debian(name: str, version: str) -> dict[str, Any]:
    """Describes a source package of Debian, whose archive keeps every version."""
    quoted = urllib.parse.quote(version, safe="")
    return described(name, version, LICENSES[name], "Organization: Debian") | {
        "downloadLocation": f"https://snapshot.debian.org/package/{name}/{quoted}/",
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                          "referenceLocator": f"pkg:deb/debian/{name}@{quoted}?arch=source"}]}


def described_file(contents: pathlib.Path, target: str, license_: str) -> dict[str, Any]:
    return {"SPDXID": identifier_of("File", target), "fileName": f"./Contents/{target}",
            "checksums": [{"algorithm": kind.upper(), "checksumValue": digest(contents / target, kind)}
                          for kind in ("sha1", "sha256")],
            "licenseConcluded": license_, "copyrightText": "NOASSERTION"}


def main() -> None:
    bundle, origins, identifier, version, company, license_ = (*sys.argv[1:], "")[:6]
    contents = pathlib.Path(bundle)
    folder = contents / "Resources" / "licenses"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()

    packages: dict[str, Any] = {}
    files: dict[str, Any] = {}
    relations: list[tuple[str, str, str]] = []
    for line in sorted(pathlib.Path(origins).read_text().splitlines()):
        target, origin = line.split("\t")
        name, package_version, text = package_of(pathlib.Path(origin))
        if name not in LICENSES or not text.is_file():
            sys.exit(f"licenses: unknown license of {target} from the package {name}. Add it to LICENSES in {__file__}")
        if name not in packages:
            packages[name] = debian(name, package_version)
            shutil.copyfile(text, folder / f"{name}.txt")
            for common in set(re.findall(rf"{COMMON}/([\w.+-]*\w)", text.read_text())):
                shutil.copyfile(COMMON / common, folder / f"{common}.txt")
        license_of_file = "NOASSERTION" if target.startswith(OWN) else LICENSES[name]
        file = files.setdefault(target, described_file(contents, target, license_of_file))
        relation = (file["SPDXID"], "STATIC_LINK" if target.startswith(OWN) else "GENERATED_FROM",
                    packages[name]["SPDXID"])
        relations += [relation] if relation not in relations else []

    for folder_of_ours in ("Frameworks", "Linux"):
        for path in sorted((contents / folder_of_ours).rglob("*")):
            target = str(path.relative_to(contents))
            if target.startswith(OWN) and path.is_file() and not path.is_symlink() and target not in files:
                files[target] = described_file(contents, target, "NOASSERTION")

    own = described(identifier, version, "NOASSERTION", f"Organization: {company}")
    document: dict[str, Any] = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"{identifier}-{version}", "packages": [own, *packages.values()],
        "files": list(files.values())}
    if license_:
        shutil.copyfile(license_, folder / f"{identifier}.txt")
        own["licenseDeclared"] = own["licenseConcluded"] = "LicenseRef-company"
        document["hasExtractedLicensingInfos"] = [
            {"licenseId": "LicenseRef-company", "extractedText": pathlib.Path(license_).read_text()}]
    # SPDX lets a package contain files only if all are listed. This list leaves out the resources.
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", own["SPDXID"]),
                 *((own["SPDXID"], "DISTRIBUTION_ARTIFACT", file["SPDXID"]) for file in files.values()), *relations]
    document["relationships"] = [
        {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
        for one, kind, other in relations]
    epoch = int(os.environ.get("SOURCE_DATE_EPOCH") or output_of(
        "git", "-C", str(pathlib.Path(__file__).parent), "log", "-1", "--format=%ct"))
    document["creationInfo"] = {
        "creators": [f"Organization: {company}"],
        "created": datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")}
    whole = hashlib.sha256(json.dumps(document).encode()).hexdigest()
    document["documentNamespace"] = f"https://spdx.org/spdxdocs/{identifier}-{version}-{whole}"
    (folder / "libraries.spdx.json").write_text(json.dumps(document, indent=1) + "\n")


if __name__ == "__main__":
    main()
