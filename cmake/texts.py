"""Checks a company's own texts: `texts.py FOLDER RESOURCES`.

FOLDER holds a strings table `<language>.strings` for each language in which some texts are to be others than those in
RESOURCES/<language>.lproj. A language that is new has all of them. Ends with one message where a file holds anything
else than entries `"key" = "value";` and comments, a key that there is not, or a value with other placeholders.
"""

import pathlib
import re
import sys

ENTRY = re.compile(r'"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)"\s*;', re.DOTALL)
TOGETHER = "Cancel Subscription and &Uninstall", "&Keep Subscription"  # buttons that are shown together
COMMENT = re.compile(r"/\*.*?\*/|//[^\n]*", re.DOTALL)


def table(file):
    """The entries of a strings table, by key."""
    entries = {}

    def keep(match):
        entries.setdefault(*match.groups())
        return ""
    try:
        text = file.read_text(encoding="utf-8")
    except UnicodeDecodeError as error:
        sys.exit(f"{file}: this is not UTF-8: {error}")
    # An entry or a comment, whichever begins first.
    rest = re.sub(f"{COMMENT.pattern}|{ENTRY.pattern}",
                  lambda match: keep(ENTRY.fullmatch(match[0])) if match[0][0] == '"' else "", text,
                  flags=re.DOTALL).strip()
    if rest:
        sys.exit(f"{file}: expected entries \"key\" = \"value\"; but there is '{rest.splitlines()[0]}'")
    return entries


def mnemonic(text):
    return text.partition("&")[2][:1].lower()


def check(file, known, ours):
    """Checks a file of own texts. `ours` are this project's in the same language, or None."""
    own = table(file)
    for key, value in own.items():
        if key not in known:
            sys.exit(f"{file}: there is no text '{key}'; resources/en.lproj has them all")
        for mark in ("%@", "&"):
            if key != "Product Name" and key.count(mark) != value.count(mark):
                sys.exit(f"{file}: '{value}' must have {mark} as often as '{key}'")
        if "&" in key and not mnemonic(value).isalnum():
            sys.exit(f"{file}: '{value}' must have a letter after &")
        if not value.strip():
            sys.exit(f"{file}: the text for '{key}' is empty")
    missing = [key for key in known if key not in own]
    if ours is None and missing:
        sys.exit(f"{file}: a new language needs all texts, but has none for '{missing[0]}'")
    one, other = (own.get(key) or ours[key] for key in TOGETHER)
    if mnemonic(one) == mnemonic(other):
        sys.exit(f"{file}: '{one}' and '{other}' have the same mnemonic after &")


def main():
    folder, resources = map(pathlib.Path, sys.argv[1:])
    known = table(resources / "en.lproj" / "Localizable.strings")
    files = sorted(folder.iterdir())
    if not files:
        sys.exit(f"{folder}: there is no <language>.strings in it")
    for file in files:
        if not re.fullmatch(r"[a-z]{2,3}(_[A-Za-z]+)?\.strings", file.name):
            sys.exit(f"{file}: expected a file named by a language, such as de.strings or pt_BR.strings")
        ours = resources / f"{file.stem}.lproj" / "Localizable.strings"
        check(file, known, table(ours) if ours.exists() else None)


if __name__ == "__main__":
    main()
