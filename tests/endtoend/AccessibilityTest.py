"""What a screen reader finds: the tree of the running helper on the accessibility bus."""

import re
import subprocess
import unittest

from support import BUILD, TestCase
from desktop import desktop, wait_for
from stage import Store, Window

ACCESSIBLE = "org.a11y.atspi.Accessible"
WINDOW = {
    ("dialog", "Acme Studio", ""),
    ("label", "Leaving Acme Studio?", ""),
    ("label", "This cancels your subscription at the store and starts the Acme Studio uninstaller. "
              "The helper itself then moves to the Trash.", ""),
    ("label", "If the store cannot cancel it, your account page opens in the browser.", ""),
    ("push button", "Cancel Subscription and Remove", "Cancels the subscription, starts the "
     "uninstaller and moves this helper to the Trash."),
    ("push button", "Not Now", "Closes this helper and keeps your subscription."),
    ("push button", "Close", "Closes this helper."),
    ("frame", "Progress", ""),
    ("animation", "Working", "")}


class AccessibilityTest(TestCase):
    def call(self, *words):
        return subprocess.run(["gdbus", "call", *words], env=self.environment, text=True,
                              capture_output=True, check=True).stdout

    def ask(self, place, method, *words):
        return self.call("--address", self.address, "--dest", place[0], "--object-path", place[1],
                         "--method", method, *words)

    def tree(self, place=("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")):
        """Role, name and description of a place and all below it."""
        def text(name):
            answer = self.ask(place, "org.freedesktop.DBus.Properties.Get", ACCESSIBLE, name)
            return re.search(r"<['\"](.*)['\"]>", answer).group(1)

        role = re.search("'(.*)'", self.ask(place, f"{ACCESSIBLE}.GetRoleName")).group(1)
        found = [(role, text("Name"), text("Description"))]
        children = self.ask(place, f"{ACCESSIBLE}.GetChildren")
        for child in re.findall(r"\('([^']*)', (?:objectpath )?'([^']*)'\)", children):
            found += self.tree(child)
        return found

    def test_each_control_has_a_role_a_name_and_a_description(self):
        stage = self.make_stage()
        with desktop() as base, Store(BUILD, "--delay", "3000"):
            self.environment = base | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
            process = stage.start(self.environment)
            self.addCleanup(process.stderr.close)
            self.addCleanup(process.wait)
            self.addCleanup(process.kill)
            window = Window(self.environment)
            self.assertTrue(window.wait())
            self.address = re.search("'(.*)'", self.call(
                "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
                "--method", "org.a11y.Bus.GetAddress")).group(1)
            self.assertLessEqual(WINDOW, set(wait_for(
                lambda: (lambda tree: tree if len(tree) > 10 else None)(self.tree()))))
            window.press_remove()
            self.assertTrue(wait_for(
                lambda: ("label", "Canceling your subscription ...", "") in self.tree()))


if __name__ == "__main__":
    unittest.main(verbosity=2)
