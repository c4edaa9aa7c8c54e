#!/usr/bin/python3
"""A blind user's update, from Connect to "Update: finished": what the accessibility bus tells is all that this user
knows of the program, the keyboard all that it is used with. Each thing heard is written to the standard output. Ends
with 1, having said what was awaited, when that does not come within the limit.

    blinduser.py APPLICATION
"""

import json
import subprocess
import os
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
import pyatspi
from gi.repository import GLib

LIMIT_S = int(os.environ["TALVEX_HANG_LIMIT_S"])  # for hangs only
LOOK_MS = 20
MOST_STOPS = 6  # of Tab, in one window
TEXTS = json.loads(os.environ["TALVEX_TEXTS"])  # of the program, as tests expect them
CONTAINERS = ("application", "frame", "alert", "dialog", "panel", "filler")

EVENTS = (
    "object:property-change:accessible-name",
    "object:state-changed:enabled",
    "object:state-changed:focused",
)


class Missed(Exception):
    """Something awaited did not come."""


class User:
    def __init__(self, application):
        self.application = application
        self.said = []  # what was heard, in order
        self.bars = []
        pyatspi.Registry.getDesktop(0).setCacheMask(pyatspi.cache.NONE)  # a path may come to mean another thing
        pyatspi.Registry.registerEventListener(self.hear, *EVENTS)

    def say(self, line):
        self.said.append(line)
        print(line, flush=True)

    def hear(self, event):
        try:
            name = event.source.name
            if event.type.minor == "accessible-name":
                self.say(f"says: {name}")
            elif event.type.minor == "focused":
                if event.detail1:
                    self.say(f"focus: {name}")
            else:
                self.say(f"{name}: {'enabled' if event.detail1 else 'disabled'}")
        except (GLib.Error, LookupError, NotImplementedError):
            pass  # gone before it could be asked

    def wait(self, what, condition):
        """Returns what the condition comes to, once that is true."""
        deadline = time.monotonic() + LIMIT_S
        context = GLib.MainContext.default()
        while True:
            while context.pending():
                context.iteration(False)
            try:
                met = condition()
            except (GLib.Error, LookupError, NotImplementedError):
                met = None  # the window changed in the midst of the look
            if met:
                return met
            if time.monotonic() > deadline:
                raise Missed(what)
            wake = GLib.timeout_add(LOOK_MS, lambda: True)
            context.iteration(True)
            GLib.source_remove(wake)

    # What is on the screen

    def root(self):
        for application in pyatspi.Registry.getDesktop(0):
            if application is not None and application.name == self.application:
                return application
        return None

    def everything(self):
        pending = [self.root()]
        while pending:
            thing = pending.pop()
            if thing is not None:
                yield thing
                if thing.getRoleName() in CONTAINERS:
                    pending.extend(reversed(list(thing)))

    def find(self, role, name):
        for thing in self.everything():
            if thing.getRoleName() == role and thing.name == name and self.has(thing, pyatspi.STATE_SHOWING):
                return thing
        return None

    def reads(self, text):
        """Whether a label on the screen reads so, whatever its role."""
        return any(thing.name == text and self.has(thing, pyatspi.STATE_SHOWING) for thing in self.everything())

    @staticmethod
    def has(thing, state):
        return thing.getState().contains(state)

    def focused(self):
        """(role, name) of what has the keyboard, and of what only lends its focus to that (a row of buttons)."""
        return [
            (thing.getRoleName(), thing.name)
            for thing in self.everything()
            if self.has(thing, pyatspi.STATE_FOCUSED)
        ]

    # What this user does

    def press(self, key):
        subprocess.run(["xdotool", "key", key], check=True)

    def await_focus(self, role, name):
        self.wait(f"the focus on {role} {name!r}", lambda: (role, name) in self.focused())

    def tab_to(self, role, name):
        for _ in range(MOST_STOPS):
            before = self.focused()
            if (role, name) in before:
                return
            self.press("Tab")
            self.wait(f"the focus elsewhere than on {before}", lambda: self.focused() not in ([], before))
        raise Missed(f"no way by Tab to {role} {name!r}")

    def await_said(self, line):
        self.wait(f"hearing {line!r}", lambda: line in self.said)

    def await_texts(self, beginning, texts):
        """Each change of a label is announced, and is heard as it reads then, or later when the listener is late."""
        for number in range(len(texts)):
            announced = self.wait(
                f"change {number + 1} of {beginning!r}",
                lambda: [line for line in self.said if line.startswith(f"says: {beginning}")][number:],
            )
            self.expect(
                f"{texts[number]!r} or what follows it instead of {announced[0]!r}",
                announced[0].removeprefix("says: ") in texts[number:],
            )

    def expect(self, what, good):
        if not good:
            raise Missed(what)


def look_around(user):
    user.wait("the window", lambda: user.find("push button", "Connect"))
    for bar_name, label_name in (("Transfer progress", TEXTS["transferIdle"]), ("Update progress", TEXTS["updateIdle"])):
        bar = user.wait(f"a bar named {bar_name!r}", lambda: user.find("progress bar", bar_name))
        user.bars.append(bar)
        labels = [
            relation.getTarget(0).name
            for relation in bar.getRelationSet()
            if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY
        ]
        user.expect(f"{bar_name!r} labelled by {label_name!r}, not {labels}", labels == [label_name])


def connect(user):
    user.await_focus("push button", "Connect")
    user.press("space")
    user.await_focus("push button", "OK")
    user.expect("a box that says what is connected", user.reads(TEXTS["connected"]))
    user.press("Return")


def take_the_offer(user):
    user.await_focus("push button", "Yes")
    user.expect("the versions", user.reads(TEXTS["offer"]))
    user.expect("the question", user.reads(TEXTS["question"]))
    user.tab_to("push button", "Show Details...")
    user.press("space")
    user.wait("the change log on the screen", lambda: user.find("text", ""))
    user.tab_to("text", "")
    change_log = user.find("text", "").queryText().getText(0, -1)
    user.expect(f"the change log, not {change_log!r}", "Brighter pads." in change_log)
    user.tab_to("push button", "Yes")
    user.press("space")


def update(user):
    user.await_said("Update Device: enabled")
    frame = user.wait("the window", lambda: user.find("frame", TEXTS["title"]))
    user.wait("the window in front", lambda: user.has(frame, pyatspi.STATE_ACTIVE))
    user.tab_to("push button", "Update Device")
    user.press("space")
    transfer = [TEXTS["transferDownload"], TEXTS["transferInProgress"], TEXTS["transferCompleted"]]
    user.await_texts(TEXTS["transferIdle"], transfer)
    user.await_texts(TEXTS["updateIdle"], [TEXTS["updateInProgress"], TEXTS["updateFinished"]])
    for bar in user.bars:
        user.expect(f"the end of {bar.name!r}", bar.queryValue().currentValue == 100)


def leave(user):
    # By what is announced alone: a program that awaits its unit answers each question late.
    def box_text():
        beginning = "says: " + TEXTS["finished"][:30]
        return [number for number, line in enumerate(user.said) if line.startswith(beginning)]

    shown = user.wait("the box of the end", box_text)[0]
    user.wait("the focus on its button", lambda: "focus: OK" in user.said[shown:])
    user.press("Return")


def main():
    user = User(sys.argv[1])
    try:
        for stage in (look_around, connect, take_the_offer, update, leave):
            stage(user)
    except Missed as missed:
        print(f"missed: {missed}; the focus is on {user.focused()}", flush=True)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
