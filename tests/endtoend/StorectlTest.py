"""The command line of the store client, against the demo store."""

import json
import os
import pty
import re
import subprocess
import unittest

from tests.endtoend.support import BUILD, TestCase
from kit.desktop import wait_for
from kit.stage import PROJECT, Store

RECORD, NONE, USAGE, FAILURE, UNREACHABLE = range(5)
PROGRAM = f"{BUILD}/tools/storectl"


def run(*words, given=""):
    result = subprocess.run([PROGRAM, *words], text=True, capture_output=True, input=given, check=False)
    return result.returncode, result.stdout, result.stderr


class StorectlTest(TestCase):
    def test_one_question_is_one_request(self):
        none = {"result": "none", "record": None}
        with Store(BUILD) as store:
            for words, status, answer in (
                    (("subscription", "unknown"), NONE, none),
                    (("cancel", "DEMO-KEEP"), NONE, {"result": "refused"}),
                    (("--store", "x", "cancel", "DEMO-1002"), RECORD, {"result": "confirmed"}),
                    (("order", "unknown", "--store", "x"), NONE, none),
                    (("order", "ORDER-2003"), FAILURE, {
                        "result": "failure", "reason": "invalid_argument",
                        "message": "a container ends without a record to append"})):
                code, output, errors = run(*words)
                self.assertEqual((code, json.loads(output), errors), (status, answer, ""), words)
            code, output, errors = run("subscription", "DEMO-1002", "-v", "--timeout", "5")
            self.assertEqual(json.loads(output)["record"]["status"], "canceled")
            self.assertRegex(errors, r"^storectl: GET http\S+DEMO-1002: \d+ bytes after \d+ ms\n$")
            self.assertIn("<reference>DEMO-1001</reference>", run("subscription", "DEMO-1001", "--raw")[1])
            code, output, errors = run("order", "two words")
            self.assertEqual((code, output), (USAGE, ""))
            self.assertRegex(errors, r"^storectl: .*two words makes no address; nothing was sent\n$")
            run("order", "last")
            wait_for(lambda: "last" in "".join(store.requests))
            self.assertEqual(len(store.requests), 8)
        for words, advice in ((("subscription", "A"), ""), (("cancel", "A"), "may have been canceled")):
            code, output, errors = run(*words)
            answer = json.loads(output)
            self.assertEqual((code, answer["result"], answer["record"]), (UNREACHABLE, "unreachable", None))
            self.assertIn("Couldn't connect", answer["message"])
            self.assertIn(advice, errors)

    def test_several_references_have_a_line_each_and_the_worst_status(self):
        with Store(BUILD) as store:
            code, output, _ = run("subscription", "DEMO-1001", "a b", "-", given="unknown\nDEMO-KEEP\n")
            lines = [json.loads(line) for line in output.splitlines()]
            self.assertEqual([(line["reference"], line["result"]) for line in lines], [
                ("DEMO-1001", "record"), ("a b", "invalid"), ("unknown", "none"), ("DEMO-KEEP", "record")])
            self.assertEqual(code, USAGE)
            # A terminal is shown how far it is, and asked before something is canceled.
            ours, terminal = pty.openpty()
            os.write(ours, b"n\n")
            with os.fdopen(ours, "rb", 0) as screen:
                for words in (("subscription", "DEMO-1001", "DEMO-KEEP"), ("cancel", "DEMO-1001")):
                    subprocess.run([PROGRAM, *words], stdin=terminal, stderr=terminal, check=False,
                                   stdout=subprocess.DEVNULL)
                shown = ""
                while "nothing was canceled" not in shown:
                    shown += screen.read(1000).decode()
            os.close(terminal)
            self.assertIn("1 of 2\r2 of 2\r\n", shown)
            self.assertIn("cancel 1 subscription? [y/N] ", shown)
            self.assertFalse([line for line in store.requests if "delete" in line])

    def test_what_is_parsed_and_printed(self):
        file = self.folder / "answer.xml"
        file.write_text("<subscription><quantity>-1</quantity><status>&quot;\u00e9</status>")
        code, output, _ = run("parse", "subscription", str(file))
        record = json.loads(output)["record"]
        self.assertEqual((code, record["quantity"], record["status"]), (RECORD, 18446744073709551615, '"\u00e9'))
        self.assertEqual(run("parse", "subscription", "-")[0], NONE)
        self.assertEqual(json.loads(run("parse", "order", "-", given="<a><total/><statusChanged/></a>")[1])["reason"],
                         "out_of_range")
        code, output, _ = run("parse", "--format", "table", "order", "-", given="<order><total>7</total>"
                              "<city>a\n\"</city><orderItems><orderItem><quantity>1</quantity>"
                              "</orderItem></orderItems></order>")
        self.assertEqual([line.split(None, 1) for line in output.splitlines()], [
            ["isTest", "false"], ["total", "7"], ["city", 'a\\n\\"'], ["orderItems/0/quantity", "1"]])
        for reader, reason in (("/dev/full", "No space left"), (None, "Broken pipe")):
            pipe = os.pipe()
            os.close(pipe[0])
            with open(reader, "wb") if reader else os.fdopen(pipe[1], "wb") as output:
                result = subprocess.run([PROGRAM, "parse", "order", "-"], input=b"<order/>", stdout=output,
                                        stderr=subprocess.PIPE, check=False)
            self.assertEqual(result.returncode, FAILURE)
            self.assertIn(b"storectl: the result cannot be written: " + reason.encode(), result.stderr)

    def test_wrong_usage_names_the_word_that_is_wrong(self):
        for words, message in (
                ((), "a command is needed"),
                (("sub", "A"), "no command sub; did you mean subscription?"),
                (("ordr", "A"), "no command ordr; did you mean order?"),
                (("subscription",), "REF is required"),
                (("order", "A", "--formt", "x"), "no option --formt; did you mean --format?"),
                (("order", "A", "--format", "xml"), "xml is not one of json|table"),
                (("order", "A", "--timeout", "0"), "0 is no number of seconds"),
                (("parse", "invoice", "-"), "invoice is not one of subscription|order"),
                (("parse", "order", "/tmp"), "cannot read /tmp"), (("parse", "order", "/no"), "cannot read /no")):
            code, output, errors = run(*words)
            self.assertEqual((code, output), (USAGE, ""), words)
            self.assertRegex(errors, rf"^storectl: .*{re.escape(message)}.*\n$")

    def test_manual_and_completions_know_every_option(self):
        manual = (PROJECT / "tools/storectl.1").read_text().replace("\\-", "-")
        scripts = {shell: run("completion", shell)[1] for shell in ("bash", "zsh", "fish")}
        for command in ("", "subscription", "cancel", "order", "parse"):
            code, output, _ = run(*command.split(), "--help")
            self.assertEqual(code, RECORD)
            self.assertIn(f"storectl {command}", manual)
            for option in re.findall(r"--([a-z]+)", output.split("Exit status")[0]):
                self.assertIn(f"--{option}", manual)
                for shell, script in scripts.items():
                    self.assertRegex(script, rf"(--|-l ){option}\b", shell)
        for words, expected in ((["su"], ["subscription"]), (["order", "A", "--format", ""], ["json", "table"]),
                                (["parse", "o"], ["order"]), (["cancel", "--y"], ["--yes"])):
            script = scripts["bash"] + ('COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _storectl; '
                                        'echo "${COMPREPLY[@]}"')
            result = subprocess.run(["bash", "-c", script, "bash", "storectl", *words], text=True,
                                    capture_output=True, check=True)
            self.assertEqual(result.stdout.split(), expected, words)
        self.assertRegex(run("--version")[1], r"^storectl \d+\.\d+\.\d+\n$")


if __name__ == "__main__":
    unittest.main(verbosity=2)
