"""Tests the running helper on the accessibility bus: its objects for a screen reader, and the announced focus."""

import re
import subprocess
import time
import unittest
from collections.abc import Iterable

from tests.endtoend.support import BUILD, TestCase
from kit.desktop import Environment, desktop, end, wait_for, wayland_desktop
from kit.stage import PROJECT, Store

ACCESSIBLE = "org.a11y.atspi.Accessible"
Place = tuple[str, str]  # a name on the bus and the path of an object
FOCUSED, SHOWING = 1 << 12, 1 << 25  # ATSPI_STATE_...
REMOVE = "Cancels the subscription, starts the uninstaller and moves this helper to the Trash."


def texts_of(language: str) -> dict[str, str]:
    """Returns a language's displayed texts by their keys."""
    table = (PROJECT / f"resources/{language}.lproj/Localizable.strings").read_text()
    return {key: text.replace("&", "").replace("%@", "Acme Studio").replace("\\n", "\n")
            for key, text in re.findall(r'^"(.*)" = "(.*)";$', table, re.MULTILINE)}


def window(texts: dict[str, str]) -> set[tuple[str, str, str]]:
    """Returns the roles, names and descriptions of the window's objects."""
    title = texts["Cancel your %@ subscription?"]
    return {
        ("dialog", "Acme Studio", title), ("graphic", "Acme Studio", ""), ("label", title, ""),
        *(("label", text, "") for key, text in texts.items() if key.startswith(("Your sub", "If "))),
        ("label", texts["Subscription reference: %@"].replace("Acme Studio", "DEMO-1001"), ""),
        ("push button", texts["Cancel Subscription and &Uninstall"], texts[REMOVE]),
        ("push button", texts["Not Now"], texts["Closes this helper. You can open it again after four hours."]),
        ("push button", texts["&Keep Subscription"], texts["Closes this helper. Your subscription continues."]),
        ("frame", texts["Progress"], ""), ("animation", texts["Working"], "")}


class AccessibilityTest(TestCase):
    def call(self, *words: str) -> str:
        return self.run_command("gdbus", "call", *words, env=self.environment).stdout

    def ask(self, place: Place, method: str, *words: str) -> str:
        return self.call("--address", self.address, "--dest", place[0], "--object-path", place[1],
                         "--method", method, *words)

    def text(self, place: Place, name: str) -> str:
        answer = self.ask(place, "org.freedesktop.DBus.Properties.Get", ACCESSIBLE, name)
        return re.search(r"<['\"](.*)['\"]>", answer).group(1).replace("\\n", "\n")

    def tree(self, place: Place = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
             ) -> dict[tuple[str, str, str], Place]:
        """Returns the paths of each role, name and description, from an object and all below it."""
        role = re.search("'(.*)'", self.ask(place, f"{ACCESSIBLE}.GetRoleName")).group(1)
        found = {(role, self.text(place, "Name"), self.text(place, "Description")): place}
        children = self.ask(place, f"{ACCESSIBLE}.GetChildren")
        for child in re.findall(r"\('([^']*)', (?:objectpath )?'([^']*)'\)", children):
            found |= self.tree(child)
        return found

    def names(self, places: Iterable[Place], state: int) -> list[str]:
        """Returns the names of the objects that have a state."""
        return [self.text(place, "Name") for place in places
                if int(re.search(r"uint32 (\d+)", self.ask(place, f"{ACCESSIBLE}.GetState")).group(1)) & state]

    def check(self, environment: Environment, language: str, has_keyboard: bool) -> None:
        self.environment = environment | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LANGUAGE": language}
        self.address = re.search("'(.*)'", self.call(
            "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
            "--method", "org.a11y.Bus.GetAddress")).group(1)
        texts = texts_of(language)
        with Store(BUILD, "--delay", "3000"):
            process = subprocess.Popen([self.stage.program()],
                                       env=self.stage.environment(self.environment) | {
                                           "LANGUAGE": language, "LC_ALL": "en_US.UTF-8"})
            try:
                wait_for(lambda: window(texts) <= set(self.tree()))
                tree = self.tree()
                self.assertLessEqual(window(texts), set(tree))
                if has_keyboard:
                    self.assertIn(texts["&Keep Subscription"], self.names(tree.values(), FOCUSED))
                message = texts["Cancel your %@ subscription?"]
                self.assertIn(message, self.names(tree.values(), SHOWING))
                remove = ("push button", texts["Cancel Subscription and &Uninstall"], texts[REMOVE])
                time.sleep(1)  # until it is enabled
                self.ask(tree[remove], "org.a11y.atspi.Action.DoAction", "0")
                for key in ("Canceling your subscription. This can take up to half a minute.", "&Close"):
                    self.assertTrue(wait_for(lambda: texts[key] in self.names(
                        tree.values(), FOCUSED if has_keyboard else SHOWING), 30), key)
                    self.assertNotIn(message, self.names(tree.values(), SHOWING))
            finally:
                end(process)

    def test_each_kind_of_desktop_in_two_languages(self) -> None:
        with desktop() as x11, wayland_desktop(self.folder / "runtime", x11) as wayland:
            for number, arguments in enumerate(((x11, "en", True), (x11, "de", True), (wayland, "en", False))):
                self.stage = self.make_stage(str(number))
                self.check(*arguments)


if __name__ == "__main__":
    unittest.main(verbosity=2)
