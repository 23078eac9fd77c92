"""The command line of the store client, against the demo store and a store that answers anything."""

import http.server
import json
import os
import re
import shlex
import signal
import subprocess
import textwrap
import threading
import unittest
from collections.abc import Callable
from typing import Any

import pexpect  # type: ignore[import]

from tests.endtoend.support import BUILD, TestCase, rows
from kit.desktop import wait_for
from kit.stage import PROJECT, Store

Reply = Callable[[str, int], tuple[str, str] | None]
RECORD, NONE, USAGE, FAILURE, UNREACHABLE = range(5)
PROGRAM = f"{BUILD}/tools/storectl"
LOOK_UP = ". It may have been canceled: look the subscription up before canceling again"
ACTIVE = "<subscription><status>active</status></subscription>"


def run(*words: str, given: str = "", redirection: str = "", **options: Any) -> tuple[int, str, str]:
    """Runs the program without a terminal, even if the tests have one, with a redirection of the shell."""
    result = subprocess.run(["bash", "-c", f'exec "$0" "$@" {redirection}', PROGRAM, *words], text=True, input=given,
                            capture_output=True, check=False, start_new_session=True, **options)
    return result.returncode, result.stdout, result.stderr


def in_terminal(*words: str, given: str = "", reply: str = "") -> tuple[str, int]:
    """Runs the program on a terminal of its own, and types a reply to its question. Returns what the terminal shows and
    the status."""
    command = shlex.join(["sh", "-c", 'printf %s "$0" | "$@"', given, PROGRAM, *words])
    return pexpect.run(command, 60, True, [(r"\[y/N\] ", reply)], encoding="utf-8", codec_errors="replace")


def references_of(store: Store) -> list[str]:
    return [re.sub(r".*Ref=(.*) \d+$", r"\1", line) for line in store.requests]


class AnyStore(http.server.ThreadingHTTPServer):
    """A store at the address of the build. `reply` gets a reference and the number of the request on its connection.
    It returns the status and the body, or None to close the connection."""

    def __init__(self, reply: Reply) -> None:
        self.reply = reply
        self.targets: list[str] = []
        port = int(re.search(r"127\.0\.0\.1:(\d+)", run("--help")[1])[1])
        super().__init__(("127.0.0.1", port), self.Handler)

    def __enter__(self) -> "AnyStore":
        threading.Thread(target=self.serve_forever, args=(0.01,), daemon=True).start()
        return self

    def __exit__(self, *_: object) -> None:
        self.shutdown()
        self.server_close()

    class Handler(http.server.BaseHTTPRequestHandler):
        server: "AnyStore"
        protocol_version = "HTTP/1.1"
        number = 0

        def do_GET(self) -> None:
            self.server.targets.append(self.path)
            reply = self.server.reply(self.path.split("Ref=")[1], self.number)
            self.number += 1
            self.close_connection = reply is None
            if reply is not None:
                self.wfile.write(f"HTTP/1.1 {reply[0]}\r\nContent-Length: {len(reply[1].encode())}\r\n\r\n"
                                 f"{reply[1]}".encode())


class StorectlTest(TestCase):
    def test_one_reference_is_one_request(self) -> None:
        none = {"result": "none", "httpStatus": 200, "record": None}
        with Store(BUILD) as store:
            for words, status, answer, message in rows(
                    (("subscription", "unknown"), NONE, none, ""),
                    (("cancel", "DEMO-KEEP", "-y"), NONE, {"result": "refused", "httpStatus": 200}, "1 refused"),
                    (("--yes", "--store", "x", "cancel", "DEMO-1002"), RECORD,
                     {"result": "confirmed", "httpStatus": 200}, "1 confirmed"),
                    (("order", "unknown", "--store=", "--raw=false"), NONE, none, ""),
                    (("order", "ORDER-2003"), FAILURE, {
                        "result": "failure", "httpStatus": 200, "reason": "invalid_argument",
                        "message": "a container ends without a record to append"}, "ORDER-2003: a container ends")):
                code, output, errors = run(*words)
                self.assertEqual((code, json.loads(output)), (status, answer), words)
                self.assertRegex(errors, rf"^storectl: .*{message}.*\n$" if message else "^$")
            code, output, errors = run("-v", "--timeout", "5", "subscription", "DEMO-1002")
            self.assertEqual(json.loads(output)["record"]["status"], "canceled")
            self.assertRegex(errors, r"^storectl: GET http\S+DEMO-1002: HTTP status 200, \d+ bytes after \d+ ms\n$")
            self.assertTrue(wait_for(lambda: len(store.requests) == 6))
        for words, advice in ((("subscription", "A"), ""), (("cancel", "A", "--yes"), "may have been canceled")):
            code, output, errors = run(*words)
            answer = json.loads(output)
            self.assertEqual((code, answer["result"], answer["record"]), (UNREACHABLE, "unreachable", None))
            self.assertIn("Couldn't connect", answer["message"])
            self.assertIn(advice, answer["message"])
            self.assertIn(advice, errors)
            self.assertEqual(run(*words, "--raw")[:2], (UNREACHABLE, ""))

    def test_references_are_sent_as_given(self) -> None:
        sent = ["++", "A,B", "A&f=x", "a/b", "(A)", "'A'", "", "%5BA%5D", "order", "complete", "--yes", "-", "--", "@x"]
        invalid = ["[A,B]", "[[A]]", "{A}", "two words", "A\n", "50%", "\u00e9"]
        with Store(BUILD) as store:
            code, output, _ = run("subscription", *sent[:10], "-v", *invalid, "--", *sent[10:],
                                  given="A\r\n\n \nA\nB\r\r")
            results = [json.loads(line) for line in output.splitlines()]
            listed = sent[:11] + ["A", "A"] + sent[12:]
            self.assertEqual((code, [line["reference"] for line in results if line["result"] != "invalid"]),
                             (USAGE, listed))
            self.assertEqual([line["reference"] for line in results if line["result"] == "invalid"],
                             invalid + ["B\r"])
            self.assertEqual(references_of(store), listed)
        code, output, errors = run("order", "two words")
        self.assertEqual((code, output), (USAGE, ""))
        self.assertRegex(errors, r"^storectl: \S+two words is not a valid URL\. Nothing was sent\n$")

    def test_cancel_asks_first(self) -> None:
        listed = "A\n\nDEMO-1001\r\nDEMO-KEEP\nA\nDEMO-1002\nA"
        with Store(BUILD) as store:
            for words in (("DEMO-1001",), ("-",), ("DEMO-1001", "--dry-run")):
                code, output, errors = run("cancel", *words, given=listed)
                isDry = "--dry-run" in words
                self.assertEqual((code, bool(output)), (RECORD, True) if isDry else (USAGE, False))
                self.assertIn("1 found. Nothing was canceled" if isDry else "without a terminal", errors)
            for reply, status in (("\n", USAGE), ("no\n", USAGE), ("yet\n", USAGE), ("yes\n", NONE)):
                self.assertFalse([line for line in store.requests if "delete" in line])
                shown, ended = in_terminal("cancel", "-", given=listed, reply=reply)
                self.assertEqual(ended, status)
                self.assertRegex(shown, r"left out 2 duplicates\r\nstorectl: cancel 4 subscriptions at "
                                 r"127\.0\.0\.1:\d+: A, DEMO-1001, DEMO-KEEP and 1 more\? \[y/N\] ")
                self.assertIn("nothing was canceled" if status == USAGE else "2 confirmed, 2 refused", shown)
            self.assertEqual(references_of(store)[1:], ["A", "DEMO-1001", "DEMO-KEEP", "DEMO-1002"])
            code, _, errors = run("cancel", "-y", "DEMO-1001", "A", redirection=">/dev/full")
            self.assertEqual(code, FAILURE)
            self.assertIn("No space left on device. The request to cancel DEMO-1001 was sent: confirmed", errors)
            self.assertTrue(wait_for(lambda: len(store.requests) == 6))

    def test_answers_of_others_are_failures(self) -> None:
        html = "<html><body><p>Down</p><subscription/></body></html>"
        page, malformed = "the answer is an HTML page", "the answer is not well-formed XML and contains no record"
        cut = "the answer is malformed or cut off, and the record contains only the part before that"
        for status, body, code, reason, message in rows(
                ("503 Down", html, FAILURE, "http_503", "the answer has the HTTP status 503"),
                ("404 No", "<response/>", FAILURE, "http_404", "the answer has the HTTP status 404"),
                ("399 No", "<response/>", NONE, None, ""), ("500 No", ACTIVE, RECORD, None, ""),
                ("200 OK", html, FAILURE, "html", page), ("200 OK", ACTIVE[:-5], RECORD, None, cut),
                ("200 OK", "<!doctype HTML><p>Sign in", FAILURE, "html", page),
                ("204 Empty", "", FAILURE, "malformed", malformed), ("200 OK", "!", FAILURE, "malformed", malformed)):
            with AnyStore(lambda *_: (status, body)):
                for command, names in rows(("subscription", {RECORD: "record", NONE: "none"}),
                                           ("cancel", {RECORD: "confirmed", NONE: "refused"})):
                    result, output, errors = run(command, "A", *(["-y"] if command == "cancel" else []))
                    said = message + (LOOK_UP if reason and command == "cancel" else "")
                    expected = {"result": names.get(code, "failure"), "httpStatus": int(status[:3])}
                    if message:
                        expected |= {"reason": reason, "message": said} if reason else {"isParsingError": True}
                    answer = json.loads(output)
                    self.assertNotIn("record" if command == "cancel" else None, answer)
                    answer.pop("record", None)
                    self.assertEqual((result, answer), (code, expected), (command, body))
                    self.assertRegex(errors, rf"^storectl: \S+=A: {said}\n" if said else r"^(storectl: 1 .*\n)?$")
                result, output, _ = run("subscription", "A", "B", "--raw")
                self.assertEqual((result, output), (code, body * 2))

    def test_lookups_run_at_the_same_time_and_cancellations_do_not(self) -> None:
        ahead = 0  # the requests that arrive before the first answer

        def reply(reference: str, number: int) -> tuple[str, str] | None:
            nonlocal ahead
            if reference == "first":
                wait_for(lambda: len(store.targets) > 100, 2)
                ahead = len(store.targets)
            return ("200 OK", ACTIVE) if number == 0 else None  # a kept connection closes without an answer
        with AnyStore(reply) as store:
            code, output, _ = run("subscription", "first", "second", "third", "-", "--jobs", "2",
                                  given="\n".join(map(str, range(200))))
            lines = [json.loads(line) for line in output.splitlines()]
            self.assertEqual((code, [line["reference"] for line in lines]),
                             (RECORD, ["first", "second", "third", *map(str, range(200))]))
            self.assertEqual({line["result"] for line in lines}, {"record"})
            self.assertGreater(len(store.targets), 203)  # repeated, so connections were kept
            self.assertTrue(1 < ahead <= 100, ahead)
            store.targets.clear()
            self.assertEqual(run("cancel", "A", "B", "C", "--yes")[0], RECORD)
            self.assertEqual(len(store.targets), 3)
            self.assertEqual(run("order", "-", "--jobs=8", given="A\n" * 2000, redirection=">/dev/full")[0], FAILURE)
            self.assertLess(len(store.targets), 1000)

    def test_a_signal_waits_for_the_outcome_of_a_cancellation(self) -> None:
        def reply(*_: object) -> tuple[str, str] | None:
            process.send_signal(signal.SIGINT)
            return "200 OK", ACTIVE
        with AnyStore(reply) as store:
            process = subprocess.Popen([PROGRAM, "cancel", "-", "-y", "--format", "table"], text=True,
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE)
            output = process.communicate("A\nB\n")[0]
            self.assertEqual((process.returncode, output.split()[2:], len(store.targets)),
                             (-signal.SIGINT, ["A", "confirmed"], 1))

    def test_terminals_get_no_controls_and_the_progress(self) -> None:
        controls = "\u009b\u009d\u202e\u2028\x7f\x1b"
        answer = f"<a><subscription><status>{controls[:-1]}</status></subscription></a>"
        with Store(BUILD, "--answer", answer):
            for words in (("A", "B"), ("A", controls, "--format", "table"), ("A", "--format=table")):
                shown, _ = in_terminal("subscription", *words)
                self.assertFalse([each for each in controls if each in shown], shown)
                self.assertIn("\\u009b" if "B" in words else "\\xc2\\x9b", shown)
                self.assertEqual("\r      \r" in shown, "--format=table" not in words)
            self.assertRegex(shown, r"isCancelable +false")
            self.assertNotIn(" of ", run("subscription", "A", "B")[2])

    def test_tables_are_aligned(self) -> None:
        command, table = re.search(r"^    \$ storectl (.*)\n((?:    .*\n)+)", (PROJECT / "README.md").read_text(),
                                   re.MULTILINE).groups()
        with Store(BUILD):
            self.assertEqual(run(*command.split())[1], textwrap.dedent(table))
        name = "\u65e5\u672c e\u0301"
        with Store(BUILD, "--answer", f"<order><total>7</total><city>{name}</city><orderItems><orderItem><quantity>1"
                   "</quantity></orderItem></orderItems></order>"):
            self.assertEqual(run("order", "A1", "\u65e5\u672c\u8a9e", "--fields", "reference,city,total,result,"
                                 "orderItems/0/quantity,orderItems/99999999999999999999")[1].splitlines(), [
                "reference  city    total  result   orderItems/0/quantity  orderItems/99999999999999999999",
                f"A1         {name}  7      record   1                      -",
                "\u65e5\u672c\u8a9e     -       -      invalid  -                      -"])
            self.assertEqual(run("order", "A", "--format", "table")[1].splitlines(), [
                "isTest                 false", "total                  7", f"city                   {name}",
                "orderItems/0/quantity  1"])
            self.assertEqual(run("cancel", "A", "LONGER-REFERENCE", "-y", "--format", "table")[1].splitlines(), [
                "reference         result", "A                 refused", "LONGER-REFERENCE  refused"])
            for command, header in (("order", "reference result status total currency customerEmail"),
                                    ("subscription", "reference result status productName endDate customerEmail")):
                self.assertEqual(run("--format", "table", command, "A", "B")[1].splitlines()[0].split(), header.split())

    def test_files_are_parsed(self) -> None:
        file = self.folder / "answer.xml"
        file.write_text("<subscription><quantity>-1</quantity><status>&quot;\u00e9</status>")
        code, output, errors = run("parse", "subscription", str(file))
        record = json.loads(output)["record"]
        self.assertEqual((code, record["quantity"], record["status"]), (RECORD, 18446744073709551615, '"\u00e9'))
        self.assertIn(f"storectl: {file}: the answer is malformed or cut off", errors)
        for answer, status, reason in (("", FAILURE, "malformed"), ("<a/>", NONE, None), ("<html/>", FAILURE, "html"),
                                       ("<a><total/><statusChanged/></a>", FAILURE, "out_of_range")):
            code, output, _ = run("parse", "order", "-", given=answer)
            self.assertEqual((code, json.loads(output).get("reason")), (status, reason), answer)
        reading, writing = os.pipe()
        os.close(reading)
        self.addCleanup(os.close, writing)
        for redirection, reason in ((">/dev/full", "No space left"), (f">&{writing}", "Broken pipe"), (">&-", "")):
            code, _, errors = run("subscription", "A", redirection=redirection, pass_fds=[writing])
            self.assertEqual(code, FAILURE)
            self.assertIn(f"storectl: cannot write the result: {reason}", errors)

    def test_wrong_usage_names_the_word_that_is_wrong(self) -> None:
        for words, message in (
                ((), "a command is missing: subscription, cancel, order, parse, completion"),
                (("sub", "A"), "unknown command sub. Did you mean subscription?"),
                (("ordr", "A"), "unknown command ordr. Did you mean order?"), (("print", "A"), "unknown command print"),
                (("subscription",), "subscription: REF is required"),
                (("order", "A", "--formt", "x"), "unknown option --formt. Did you mean --format?"),
                (("order", "A", "--frob=x"), "unknown option --frob"), (("order", "---A"), "unknown option ---A"),
                (("cancel", "A", "--jobs", "2"), "unknown option --jobs"),
                (("--yes", "order", "A"), "order does not take --yes"),
                (("cancel", "A", "--yes="), "--yes has no value after ="),
                (("order", "A", "--format=xml="), "order: --format: xml= is not one of json|table"),
                (("order", "A", "--jobs", "33"), "order: --jobs: Value 33 not in range 1 to 32"),
                (("order", "A", "--timeout", "0"), "order: --timeout: 0 is not a number of seconds from 0.001 to 3600"),
                (("order", "A", "--timeout"), "order: --timeout: 1 required SECONDS missing"),
                (("order", "A", "--fields", "stats"), "unknown field stats. Did you mean status?"),
                (("order", "A", "--fields", "city", "--format", "json"), "order: --fields excludes --format json"),
                (("order", "A", "--fields", "city", "--raw"), "order: --raw excludes tables"),
                (("parse", "invoice", "-"), "parse: KIND: invoice is not one of subscription|order"),
                (("parse", "order"), "parse: FILE is required"),
                (("parse", "order", "a", "b"), "parse does not take b"),
                (("parse", "order", "/tmp"), "cannot read /tmp"), (("parse", "order", "--", "-n"), "cannot read -n")):
            self.assertEqual(run(*words), (USAGE, "", f"storectl: {message}\n"), words)
        self.assertEqual(run("order", "-", redirection="</"), (USAGE, "", "storectl: cannot read standard input\n"))

    def test_manual_and_shells_know_every_option(self) -> None:
        manual = (PROJECT / "tools/storectl.1").read_text().replace("\\-", "-")
        helps = ""
        for command in ("", "subscription", "cancel", "order", "parse", "completion"):
            code, output, _ = run(*command.split(), "--help")
            helps += re.sub(r"0.1:\d+", "0.1:PORT", output)
            self.assertEqual(code, RECORD)
            self.assertIn(f"storectl {command}", manual)
            options = re.findall(r"--?[a-z][a-z-]*", output.split("Options:")[1].split("\n\n")[0])
            self.assertEqual([option for option in options if option not in manual], [])
            candidates = run("complete", "--", *command.split(), "-")[1].splitlines()
            self.assertEqual({line.split("\t")[0] for line in candidates}, set(options))
        for text in ("119.95", "UTC"):
            self.assertIn(text, manual)
        self.assertEqual(helps, (PROJECT / "tests/endtoend/storectl-help.txt").read_text())
        self.assertEqual(run("complete", "--", "parse", "order", "A", ""), (RECORD, "", ""))
        self.assertRegex(run("--version")[1], r"^storectl \d+\.\d+\.\d+\n$")
        (self.folder / "answer.xml").write_text("<a/>")
        for shell, *words in (("bash", "--norc", "--noprofile", "-i"), ("zsh", "-f", "-i"),
                              ("fish", "--no-config", "-i")):
            terminal = pexpect.spawn(shell, words, 60, cwd=self.folder, env=os.environ | {
                "HOME": str(self.folder), "TERM": "dumb", "PATH": f"{os.path.dirname(PROGRAM)}:{os.environ['PATH']}"})
            setup = {"bash": "source <(storectl completion bash)", "fish": "storectl completion fish | source",
                     "zsh": "autoload -U compinit; compinit -u -D; source <(storectl completion zsh)"}[shell]
            terminal.send(f"{setup}; echo re''ady\n")
            terminal.expect_exact("ready")
            for typed, expected in (("su", "subscription: REF is required"), ("cancel --dr", "cancel: REF is required"),
                                    ("order --format t", "order: REF is required"),
                                    ("order --format=t", "order: REF is required"),
                                    ("parse sub\tans", '"result": "none"')):
                terminal.send(f"storectl {typed}\t\n")
                terminal.expect_exact(expected)
            terminal.send("exit\n")
            terminal.expect(pexpect.EOF)


if __name__ == "__main__":
    unittest.main(verbosity=2)
