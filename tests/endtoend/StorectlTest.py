"""The command line of the store client, against the demo store."""

import json
import subprocess
import unittest

from support import BUILD, TestCase
from stage import PROJECT, Store

RECORD, NONE, USAGE, FAILURE = range(4)
ORDER = ["reference", "status", "statusChangedDate", "isTest", "dueDate", "currency", "referrer",
         "originIP", "total", "tax", "shipping", "sourceName", "sourceKey", "sourceCampaign",
         "customerFirstName", "customerLastName", "customerCompany", "customerEmail",
         "customerPhoneNumber", "purchaserFirstName", "purchaserLastName", "purchaserCompany",
         "purchaserEmail", "purchaserPhoneNumber", "addressLine1", "addressLine2", "city", "region",
         "regionCustom", "postalCode", "country", "orderItems", "payments"]


def run(*words, given=None):
    return subprocess.run([f"{BUILD}/tools/storectl", *words], text=True, capture_output=True,
                          input=given, check=False)


def storectl(*words, given=None):
    result = run(*words, given=given)
    return result.returncode, json.loads(result.stdout) if result.stdout else result.stderr


class StorectlTest(TestCase):
    def test_requests(self):
        with Store(BUILD) as store:
            status, answer = storectl("subscription", "DEMO-1002")
            self.assertEqual((status, answer["result"]), (RECORD, "record"))
            self.assertEqual(answer["record"] | {"customerURL": None}, {
                "reference": "DEMO-1002", "status": "active",
                "statusChangedDate": "2026-03-15T08:30:00Z", "statusReason": "",
                "isCancelable": True, "isTest": True, "referrer": None, "sourceName": None,
                "sourceKey": None, "sourceCampaign": None, "customerFirstName": "Bob",
                "customerLastName": "Sample & Sons", "customerCompany": "",
                "customerEmail": "bob@example.com", "customerPhoneNumber": "+1 555 0100",
                "customerURL": None, "productName": "acme-studio", "quantity": 1,
                "endDate": "2027-03-15T00:00:00Z"})
            rows = [
                (("subscription", "unknown"), NONE, {"result": "none", "record": None}),
                (("cancel", "DEMO-KEEP", "--store", "acme"), NONE, {"result": "refused"}),
                (("cancel", "unknown", "--store", "acme"), NONE, {"result": "refused"}),
                (("cancel", "--store", "acme", "DEMO-1002"), RECORD, {"result": "confirmed"}),
                (("subscription", "two words"), NONE, {"result": "none", "record": None}),
            ]
            for words, status, answer in rows:
                self.assertEqual(storectl(*words), (status, answer), words)
            _, answer = storectl("subscription", "DEMO-1002", "--store", "acme")
            self.assertEqual(answer["record"]["status"], "canceled")
            self.assertNotIn("two words", "".join(store.requests))
        self.assertEqual(storectl("subscription", "DEMO-1002")[0], NONE)  # nobody listens

    def test_orders(self):
        with Store(BUILD):
            status, answer = storectl("order", "ORDER-2001", "--store", "acme")
            order = answer["record"]
            self.assertEqual((status, list(order)), (RECORD, ORDER))
            self.assertEqual((order["total"], order["purchaserFirstName"], order["country"],
                              order["dueDate"]), (119, "Paul", "US", None))
            self.assertEqual(order["orderItems"], [
                {"productDisplay": "Acme Colours", "productName": "acme-colours", "quantity": 3,
                 "subscriptionReference": "DEMO-1002"}])
            self.assertEqual(order["payments"], [
                {"status": "completed", "statusChangedDate": "2026-02-01T10:15:30Z",
                 "methodType": "creditcard", "declinedReason": "", "currency": "EUR",
                 "total": 119}])
            status, answer = storectl("order", "ORDER-2003", "--store", "acme")
            self.assertEqual((status, answer["reason"]), (FAILURE, "invalid_argument"))
            self.assertEqual(storectl("order", "unknown", "--store", "acme")[0], NONE)
            self.assertEqual(storectl("order", "ORDER-2001")[0], USAGE)
        status, answer = storectl("parse", "order", "-", given="<order><payments>")
        self.assertEqual((status, answer["record"]["payments"]), (RECORD, []))
        self.assertIsNone(answer["record"]["orderItems"])

    def test_parse(self):
        file = self.folder / "answer.xml"
        file.write_text("<subscription><quantity>-1</quantity><status>&quot;\u00e9</status>")
        status, answer = storectl("parse", "subscription", str(file))
        self.assertEqual(status, RECORD)
        self.assertEqual(answer["record"]["quantity"], 18446744073709551615)
        self.assertEqual(answer["record"]["status"], '"\u00e9')
        none = {"result": "none", "record": None}
        self.assertEqual(storectl("parse", "subscription", "-", given=""), (NONE, none))
        status, answer = storectl("parse", "subscription", "-", given="<a><end/></a>")
        self.assertEqual((status, answer["result"], answer["reason"]),
                         (FAILURE, "failure", "out_of_range"))
        self.assertTrue(answer["message"])

    def test_wrong_usage_is_told_apart(self):
        for words in ((), ("unknown",), ("subscription",), ("cancel", "DEMO-1001"),
                      ("parse", "subscription"), ("parse", "invoice", "-"),
                      ("parse", "subscription", "/no/such/file"),
                      ("parse", "subscription", "/tmp"), ("subscription", "A", "--unknown")):
            status, message = storectl(*words)
            self.assertEqual(status, USAGE, (words, message))
            self.assertTrue(message.strip(), words)
        self.assertEqual(run("subscription", "A", "--format", "xml").returncode, USAGE)

    def test_a_table_has_one_line_for_each_value(self):
        result = run("parse", "--format", "table", "order", "-", given="<order><total>7</total>"
                     "<city>a\n\"</city><orderItems><orderItem><quantity>1</quantity>"
                     "</orderItem></orderItems></order>")
        self.assertEqual([line.split(None, 1) for line in result.stdout.splitlines()], [
            ["isTest", "false"], ["total", "7"], ["city", 'a\\n\\"'],
            ["orderItems/0/quantity", "1"]])
        result = run("parse", "--format", "table", "order", "-", given="<order><orderItems/></order>")
        self.assertEqual(result.returncode, FAILURE)
        self.assertRegex(result.stdout, "(?m)^reason  +invalid_argument$")

    def test_a_store_that_cannot_be_reached_is_told_from_one_that_says_no(self):
        reachable = "nothing answers at http://127.0.0.1:"
        for words in (("subscription", "A"), ("cancel", "A", "--store", "s"),
                      ("order", "A", "--store", "s")):
            result = run(*words)
            self.assertEqual(result.returncode, NONE)
            self.assertIn(reachable, result.stderr)
            with Store(BUILD):
                self.assertEqual(run(*words).stderr, "")

    def test_help_manual_and_completion_know_every_command(self):
        manual = (PROJECT / "tools/storectl.1").read_text()
        for command in ("subscription", "cancel", "order", "parse"):
            result = run(command, "--help")
            self.assertEqual(result.returncode, RECORD)
            self.assertIn("--format", result.stdout)
            self.assertIn(f"storectl {command}", manual)
        for words, expected in ((["storectl", "su"], ["subscription"]),
                                (["storectl", "order", "A", "--format", ""], ["json", "table"]),
                                (["storectl", "parse", "o"], ["order"]),
                                (["storectl", "cancel", "--s"], ["--store"])):
            script = (f". '{PROJECT}/tools/storectl.bash-completion'; COMP_WORDS=(\"$@\"); "
                      "COMP_CWORD=$(($# - 1)); _storectl; echo \"${COMPREPLY[@]}\"")
            result = subprocess.run(["bash", "-c", script, "bash", *words], text=True,
                                    capture_output=True, check=True)
            self.assertEqual(result.stdout.split(), expected, words)


if __name__ == "__main__":
    unittest.main(verbosity=2)
