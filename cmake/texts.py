"""Reads the strings tables for the build: `texts.py RESOURCES OWN [PRODUCT OUTPUT]`.

RESOURCES/<language>.lproj/Localizable.strings contains this project's texts in a language. OWN is a company's directory
of files <language>.strings that replace some of them, or empty. A file for a new language contains all keys.
Exits with one message if a table has an error or a text does not fit. platform/StringsTable.h has the syntax.

With OUTPUT, writes the table of each language to OUTPUT/<language>.lproj. PRODUCT is its "Product Name" if OWN lacks
one. Prints as JSON the lines that name the helper in a desktop entry and in a metainfo file.
"""

import html
import json
import pathlib
import re
import sys

BLANKS = r"(?:[ \t\r\n\f\v\u2028\u2029]|/\*.*?\*/|//[^\n]*)*"
WORD = r'"((?:[^"\\]|\\[Uu][0-9A-Fa-f]{4}|\\[^Uu])*)"|([A-Za-z0-9_$/:.-]+)'
ESCAPE = re.compile(r"\\(?:([0-7]{1,3})|[Uu](.{4})|(.))", re.DOTALL)
LETTERS = dict(zip("ntrfbav", "\n\t\r\f\b\a\v"))
TOGETHER = "Cancel Subscription and &Uninstall", "&Keep Subscription"  # buttons that are shown together
MENU = (("Name", "name", "Cancel %@ Subscription"),
        ("Comment", "summary", "Cancel the subscription and uninstall %@"))


def unescaped(text: str) -> str:
    text = ESCAPE.sub(lambda match: chr(int(match[1], 8)) if match[1] else chr(int(match[2], 16)) if match[2]
                      else LETTERS.get(match[3], match[3]), text)
    return text.encode("utf-16", "surrogatepass").decode("utf-16")  # pairs of code units become characters


def parse(text: str) -> dict[str, str]:
    """Returns the entries of a table's text by key. Raises ValueError at the first error."""
    entries: dict[str, str] = {}
    at = 0

    def take(pattern: str, expected: str | None = None) -> re.Match[str] | None:
        nonlocal at
        match = re.compile(pattern, re.DOTALL).match(text, at)
        if match:
            at = match.end()
        elif expected:
            line = text.count("\n", 0, at) + 1
            raise ValueError(f"line {line}: expected {expected}, not '{text[at:at + 40].partition(chr(10))[0]}'")
        return match

    def word(expected: str) -> str:
        match = take(WORD, expected)
        take(BLANKS)
        return match[2] or unescaped(match[1])

    while take(BLANKS) and at < len(text):
        key = value = word("a key")
        if take("="):
            take(BLANKS)
            value = word("a value")
        take(";", "';'")
        entries.setdefault(key, value)
    return entries


def table(file: pathlib.Path) -> dict[str, str]:
    """Returns the entries of a strings table by key. Exits with a message if the table has an error."""
    data = file.read_bytes()
    try:
        return parse(data.decode("utf-16" if data[:2] in (b"\xff\xfe", b"\xfe\xff") else "utf-8-sig"))
    except ValueError as error:
        return sys.exit(f"{file}: {error}")


def mnemonic(text: str) -> str:
    return text.partition("&")[2][:1].lower()


def check(file: pathlib.Path, own: dict[str, str], known: dict[str, str], ours: dict[str, str] | None) -> None:
    """Checks a file of texts. `ours` are this project's in the same language, or None if the file contains all."""
    for key, value in own.items():
        if key not in known and key != "Product Name":
            sys.exit(f"{file}: unknown text '{key}'. resources/en.lproj contains all of them")
        for mark in ("%@", "&"):
            if key != "Product Name" and key.count(mark) != value.count(mark):
                sys.exit(f"{file}: '{value}' must have {mark} as often as '{key}'")
        if "&" in key and not mnemonic(value).isalnum():
            sys.exit(f"{file}: '{value}' must have a letter after &")
        if not value.strip():
            sys.exit(f"{file}: the text for '{key}' is empty")
    missing = [key for key in known if key not in own]
    if ours is None and missing:
        sys.exit(f"{file}: a new language needs all texts, but '{missing[0]}' is missing")
    one, other = (own.get(key) or ours[key] for key in TOGETHER)
    if mnemonic(one) == mnemonic(other):
        sys.exit(f"{file}: '{one}' and '{other}' have the same mnemonic after &")


def add_own(folder: pathlib.Path, tables: dict[str, dict[str, str]]) -> None:
    """Checks the company's texts in a directory, and replaces the project's by them."""
    known = tables["en"]
    files = sorted(folder.iterdir())
    if not files:
        sys.exit(f"{folder}: the directory is empty. Add a file <language>.strings")
    for file in files:
        if not re.fullmatch(r"[a-z]{2,3}(_[A-Za-z]+)?\.strings", file.name):
            sys.exit(f"{file}: expected a file named by a language, such as de.strings or pt_BR.strings")
        own = table(file)
        check(file, own, known, tables.get(file.stem))
        tables[file.stem] = tables.get(file.stem, {}) | own


def write(tables: dict[str, dict[str, str]], product: str, output: pathlib.Path) -> None:
    desktop = metainfo = ""
    for language, texts in sorted(tables.items(), key=lambda pair: (pair[0] != "en", pair[0])):
        texts.setdefault("Product Name", product)
        folder = output / f"{language}.lproj"
        folder.mkdir(parents=True, exist_ok=True)
        quoted = [[re.sub(r'["\\]', r"\\\g<0>", text).replace("\n", r"\n") for text in pair] for pair in texts.items()]
        (folder / "Localizable.strings").write_bytes("".join(f'"{key}" = "{text}";\n' for key, text in quoted).encode())
        locale = language.replace("zh_Hans", "zh_CN")
        for entry, element, key in MENU:
            text = texts.get(key, key).replace("%@", texts["Product Name"])
            line = text.replace("\\", r"\\").replace("\n", r"\n")
            if language == "en":
                desktop += f"{entry}={line}\n"
                metainfo += f"  <{element}>{html.escape(text, quote=False)}</{element}>\n"
            else:
                metainfo += f'  <{element} xml:lang="{locale}">{html.escape(text, quote=False)}</{element}>\n'
            desktop += f"{entry}[{locale}]={line}\n"
    print(json.dumps({"desktop": desktop, "metainfo": metainfo}))


def main() -> None:
    resources, own, *rest = sys.argv[1:]
    files = {file.parent.stem: file for file in pathlib.Path(resources).glob("*.lproj/Localizable.strings")}
    tables = {language: table(file) for language, file in files.items()}
    for language, file in files.items():
        check(file, tables[language], tables["en"], None)
    if own:
        add_own(pathlib.Path(own), tables)
    if rest:
        write(tables, rest[0], pathlib.Path(rest[1]))


if __name__ == "__main__":
    main()
