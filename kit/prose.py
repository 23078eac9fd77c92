"""Checks the English of documents and comments for habits that a script can see: `python3 -m kit.prose`.

The habits are semicolons, sentences above 35 words, sentences that start with a clause, and "is no ...". Prints each
one outside code, tables, headings and quotes with its file and sentence, and exits with 1 if there is one.
"""

import re
import subprocess
import sys
from collections.abc import Iterator

LONGEST = 35  # words
HABITS = (
    ("replace the semicolon by a full stop", re.compile(r";(?=\s|$)")),
    ("start with a noun that acts", re.compile(r"^(What|Who|Whose|Where|That|Whether) \w")),
    ("state it positively", re.compile(r"\b(is|are|was) (no (?!longer)|none\b|nothing\b)")),
)
DOCUMENT = re.compile(r"```.*?```|^( {4}|\t|\s*\||#).*?$|<[^>]*>", re.DOTALL | re.MULTILINE)
ITEM = re.compile(r"^\s*([-*]|\d+\.)\s+", re.MULTILINE)
COMMENT = {"cpp": r"(?:^|\s)//[/!<]*( .*)$", "script": r"(?:^|\s)#( .*)$"}
QUOTED = re.compile(r"`[^`]*`|\"[^\"]*\"|\(`?https?:[^)]*\)")


def paragraphs_of_comments(text: str, kind: str) -> Iterator[str]:
    """Yields each comment. Indented lines, which are code or tables, separate paragraphs."""
    lines: list[str] = []
    for line in [*text.splitlines(), ""]:
        match = re.search(COMMENT[kind], line)
        if lines and not (match and not line[:match.start()].strip() and re.match(r" [^ @]", match[1])):
            yield " ".join(lines)
            lines = []
        if match and re.match(r" \S", match[1]):
            lines.append(re.sub(r"^ @\w+( \w+)?", "", match[1]).strip())


def paragraphs(name: str, text: str) -> list[str]:
    if name.endswith(".md"):
        return [ITEM.sub("\n\n", DOCUMENT.sub("\n\n", text))]
    docstrings = re.findall(r'"""(.*?)"""', text, re.DOTALL) if name.endswith(".py") else []
    kind = "cpp" if name.endswith((".h", ".cpp")) else "script"
    return ["\n\n".join(docstrings), *paragraphs_of_comments(text, kind)]


def main() -> None:
    files = ["*.md", "*.h", "*.cpp", "*.py", "*CMakeLists.txt", "cmake", "scripts", "kit", ".ci", "examples"]
    found = []
    for name in subprocess.check_output(["git", "ls-files", *files], text=True).splitlines():
        text = "\n\n".join(paragraphs(name, open(name, encoding="utf-8").read()))
        for paragraph in text.split("\n\n"):
            for sentence in re.split(r"(?<=[.!?:])\**\s+(?=[\w*-])", " ".join(QUOTED.sub("X", paragraph).split())):
                habits = [advice for advice, pattern in HABITS if pattern.search(sentence)]
                if len(re.findall(r"[A-Za-z][\w'-]*", sentence)) > LONGEST:
                    habits.append(f"shorten it to at most {LONGEST} words")
                found += [f"{name}: {advice}: {sentence}" for advice in habits]
    sys.exit("\n".join(found) or 0)


if __name__ == "__main__":
    main()
