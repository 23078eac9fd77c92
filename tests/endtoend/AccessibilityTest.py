"""What a screen reader finds: the tree of the running helper on the accessibility bus."""

import re
import subprocess
import unittest

from support import BUILD, TestCase
from desktop import desktop, wait_for, wayland_desktop
from stage import Store

ACCESSIBLE = "org.a11y.atspi.Accessible"
REMOVE = ("push button", "Cancel Subscription and Remove",
          "Cancels the subscription, starts the uninstaller and moves this helper to the Trash.")
WINDOW = {
    ("dialog", "Acme Studio", ""),
    ("label", "Leaving Acme Studio?", ""),
    ("label", "This cancels your subscription at the store and starts the Acme Studio uninstaller. "
              "The helper itself then moves to the Trash.", ""),
    ("label", "If the store cannot cancel it, your account page opens in the browser.", ""),
    REMOVE,
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
        """Where each role, name and description is found, at a place and all below it."""
        def text(name):
            answer = self.ask(place, "org.freedesktop.DBus.Properties.Get", ACCESSIBLE, name)
            return re.search(r"<['\"](.*)['\"]>", answer).group(1)

        role = re.search("'(.*)'", self.ask(place, f"{ACCESSIBLE}.GetRoleName")).group(1)
        found = {(role, text("Name"), text("Description")): place}
        children = self.ask(place, f"{ACCESSIBLE}.GetChildren")
        for child in re.findall(r"\('([^']*)', (?:objectpath )?'([^']*)'\)", children):
            found |= self.tree(child)
        return found

    def check(self, environment):
        self.environment = environment | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        self.address = re.search("'(.*)'", self.call(
            "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
            "--method", "org.a11y.Bus.GetAddress")).group(1)
        self.stage.forget_last_run()
        with Store(BUILD, "--delay", "3000"):
            process = self.stage.start(self.environment)
            try:
                wait_for(lambda: WINDOW <= set(self.tree()))
                tree = self.tree()
                self.assertLessEqual(WINDOW, set(tree))
                self.ask(tree[REMOVE], "org.a11y.atspi.Action.DoAction", "0")
                self.assertTrue(wait_for(
                    lambda: ("label", "Canceling your subscription ...", "") in self.tree()))
            finally:
                process.kill()
                process.communicate()

    def test_each_control_can_be_found_and_pressed_on_each_kind_of_desktop(self):
        self.stage = self.make_stage()
        with desktop() as x11, wayland_desktop(self.folder / "runtime", x11) as wayland:
            self.check(x11)
            self.check(wayland)


if __name__ == "__main__":
    unittest.main(verbosity=2)
