"""A desk for one fault: the program with a display, a session bus, a panel and a home of its own, and ways to look at it."""

import datetime
import os
import plistlib
import re
import shutil
import signal
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

from gi.repository import Gio, GLib

HERE = Path(__file__).resolve().parent
LIMIT = 45  # seconds; what has not come by then never comes
BUS = """<busconfig>
  <type>session</type>
  <listen>unix:path={}</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
  </policy>
</busconfig>
"""
WATCHER = "org.kde.StatusNotifierWatcher"


class Failure(Exception):
    """The program did not do what it has to."""


class Skip(Exception):
    """The machine cannot inject this fault."""


@dataclass
class Outcome:
    seen: list  # what the user sees while the fault lasts
    kept: str
    back: str  # what is back to normal, and after how long


def initial_settings():
    """A value for each key, hardly one the default. No fixed hour comes while the suite runs, moved clocks included."""
    now = datetime.datetime.now()
    hour = lambda ahead: (now.hour + ahead) % 24
    return {
        "AndOr": "or", "AutoStart": False, "BackupTimeInterval": 180, "FirstStart": False, "IdleTime": 15,
        "LastBackup": datetime.datetime.utcnow().replace(microsecond=0) - datetime.timedelta(minutes=70),
        "MinutesUntilNextBackup": 170, "ScriptRemind": False, "Time1": hour(5), "Time2": hour(11),
        "FilesThisBackup": 0, "FilesLastBackup": 123, "FilesTotal": 4567,
        "BytesThisBackup": 0, "BytesLastBackup": 89012, "BytesTotal": 3456789,
    }


def countdown(minutes):
    """The test of a countdown that may have gone on from there while the suite runs."""
    return lambda value: value in range(minutes - 5, minutes + 1)


def shape(lines):
    """The lines without what changes by itself while a backup goes on."""
    return [re.sub(r"[\d.,]+", "#", line.split(":")[0]) for line in lines]


class Desk:
    def __init__(self, build, folder, seed):
        self.build, self.folder, self.seed = build, folder, seed
        self.home, self.runtime = folder / "home", folder / "runtime"
        self.config = self.home / ".config"
        self.tool = folder / "tool"
        self.processes = {}
        self.program = self.connection = None
        for made in (self.config, self.runtime, folder / "state"):
            made.mkdir(parents=True)
        self.runtime.chmod(0o700)
        self.expected = initial_settings()  # a value for each key, or the test that the value has to pass
        self.settings_file.write_bytes(plistlib.dumps(self.expected))
        self.expected["MinutesUntilNextBackup"] = countdown(self.expected["MinutesUntilNextBackup"])
        shutil.copy(HERE / "tool", self.tool)
        (folder / "player").symlink_to(build / "tests/player/player")
        (folder / "bus.conf").write_text(BUS.format(self.runtime / "bus"))
        kept = {name: os.environ[name] for name in ("PATH", "TMPDIR") if name in os.environ}
        self.environment = {
            **kept, "HOME": str(self.home), "XDG_RUNTIME_DIR": str(self.runtime), "LC_ALL": "C.UTF-8",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.runtime}/bus", "ORVELLO_TOOL_URL": self.tool.as_uri(),
            "ORVELLO_LOG_STDERR": "1", "ORVELLO_PLAYER_STATE": str(folder / "state"), "ORVELLO_PLAYER_SECONDS": "600",
        }

    # What stands on the desk

    def _spawn(self, name, command, environment=None, **options):
        with open(self.folder / f"{name}.log", "ab") as log:
            process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *command], stdin=subprocess.DEVNULL,
                                       stdout=log, stderr=log, env=environment or self.environment, **options)
        self.processes[name] = process
        return process

    def stop(self, name, with_signal=signal.SIGKILL):
        """Ends a process of the desk; its exit status."""
        process = self.processes.pop(name)
        process.send_signal(with_signal)
        try:
            return process.wait(LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
            raise Failure(f"{name}: {with_signal.name} did not end it") from None

    def start_display(self, *options):
        reading, writing = os.pipe()
        self._spawn("display", ["Xvfb", "-displayfd", str(writing), "-screen", "0", "800x600x24", "-nolisten", "tcp",
                                "-noreset", *options], pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as number:
            self.environment["DISPLAY"] = f":{number.readline().strip()}"

    def start_bus(self):
        self._spawn("bus", ["dbus-daemon", f"--config-file={self.folder}/bus.conf", "--nofork", "--nopidfile"])
        self.wait_for("the session bus", self.connect)

    def stop_bus(self):
        self.stop("bus")
        self.connection = None

    def connect(self):
        flags = Gio.DBusConnectionFlags
        self.connection = Gio.DBusConnection.new_for_address_sync(
            self.environment["DBUS_SESSION_BUS_ADDRESS"],
            flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
        return True

    def start_panel(self):
        self._spawn("panel", [HERE / "panel"])

    def launch(self, *prefix, **environment):
        """Starts the program, through other commands that run it if any are given."""
        marked = {**self.environment, **environment, "ORVELLO_DESK": str(self.folder)}
        self.program = self._spawn("orvello", [*prefix, self.build / "orvello"], marked)

    def start(self, *prefix, **environment):
        """Starts everything; when it is done the menu is open, so that it is refreshed every two seconds."""
        if "display" not in self.processes:
            self.start_display()
        self.start_bus()
        self.start_panel()
        self.launch(*prefix, **environment)
        self.await_icon()

    def end(self):
        for name in reversed(list(self.processes)):
            self.processes[name].kill()
            self.processes[name].wait()
        for process in self.left():
            os.kill(process, signal.SIGKILL)

    def quit(self):
        if (status := self.stop("orvello", signal.SIGTERM)) != 0:
            raise Failure(f"asked to quit, the program ended with {status}")

    # What the user and the bus see

    def wait_for(self, what, condition, limit=LIMIT):
        """Waits until the condition holds; no answer from the bus counts as no. The seconds that it took."""
        began = time.monotonic()
        while True:
            try:
                if condition():
                    return time.monotonic() - began
            except GLib.Error:
                pass
            if time.monotonic() - began > limit:
                raise Failure(f"{what}: not within {limit} s; the user sees {self.seen()}")
            time.sleep(0.05)

    def call(self, service, path, interface, method, arguments):
        return self.connection.call_sync(service, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                         LIMIT * 1000, None).unpack()

    def service(self):
        return f"org.kde.StatusNotifierItem-{self.program.pid}-1"

    def has_icon(self):
        items, = self.call(WATCHER, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
                           GLib.Variant("(ss)", (WATCHER, "RegisteredStatusNotifierItems")))
        return self.service() in items

    def await_icon(self):
        """The seconds until the icon is there. Its menu is then opened, which fills its lines."""
        seconds = self.wait_for("the icon", self.has_icon)
        self.open_menu()
        return seconds

    def menu(self):
        """The visible entries of the menu: pairs of number and properties."""
        _, (_, _, entries) = self.call(self.service(), "/MenuBar", "com.canonical.dbusmenu", "GetLayout",
                                       GLib.Variant("(iias)", (0, -1, [])))
        return [(number, properties) for number, properties, _ in entries if properties.get("visible", True)]

    def menu_event(self, entry, event, no_reply=False):
        call = self.connection.call if no_reply else self.connection.call_sync
        further = (None,) if no_reply else ()
        call(self.service(), "/MenuBar", "com.canonical.dbusmenu", "Event",
             GLib.Variant("(isvu)", (entry, event, GLib.Variant("s", ""), 0)), None, Gio.DBusCallFlags.NONE,
             LIMIT * 1000, None, *further)

    def open_menu(self):
        self.menu_event(0, "opened")

    def entry(self, title):
        for number, properties in self.menu():
            if properties.get("label") == title:
                return number
        raise Failure(f"the menu has no entry '{title}': {self.seen()}")

    def click(self, title):
        self.menu_event(self.entry(title), "clicked")

    def click_unanswered(self, entry, times):
        """Clicks without waiting for what comes of it."""
        for _ in range(times):
            self.menu_event(entry, "clicked", no_reply=True)
        self.connection.flush_sync(None)

    def lines(self):
        """The menu's lines above the first separator."""
        titles = []
        for _, properties in self.menu():
            if properties.get("type") == "separator":
                break
            titles.append(properties["label"])
        return titles

    def windows(self):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", ".", "getwindowname", "%@"],
                               env=self.environment, capture_output=True, text=True, check=False)
        return [f"window “{title}”" for title in found.stdout.splitlines()]

    def seen(self):
        try:
            lines = self.lines() if self.has_icon() else ["no icon"]
        except (GLib.Error, AttributeError):
            lines = ["no icon"]
        return lines + self.windows()

    def log(self):
        return (self.folder / "orvello.log").read_text(errors="replace")

    # The tool

    def set_fault(self, name):
        """The fault that the tool has from the next call on; None for none."""
        file = self.folder / "fault"
        if name is None:
            file.unlink(missing_ok=True)
        else:
            file.with_suffix(".new").write_text(name)
            file.with_suffix(".new").rename(file)

    def play_backup(self, part):
        """Has a backup run of which this part is over."""
        ticks = time.monotonic_ns() - int(part * 600e9)
        (self.folder / "state/started").write_text(f"{ticks}\n")

    def calls(self, verb="status"):
        file = self.folder / "state/calls.log"
        return sum(line.split()[1] == verb for line in file.read_text().splitlines()) if file.exists() else 0

    def await_refresh(self):
        """The seconds until the program has asked the tool for the status once more."""
        calls = self.calls()
        return self.wait_for("a refresh", lambda: self.calls() > calls)

    # What must not be lost

    @property
    def settings_file(self):
        return self.config / "org.orvello.Orvello.plist"

    def settings_differ(self):
        """What is wrong with the settings on the disk; empty when they hold all that is expected."""
        try:
            found = plistlib.loads(self.settings_file.read_bytes())
        except (OSError, ValueError, plistlib.InvalidFileException) as error:
            return f"settings: {error!r}"
        wrong = []
        for key, value in self.expected.items():
            if not (value(found.get(key)) if callable(value) else found.get(key) == value):
                wrong.append(f"{key} is {found.get(key)}")
        return ", ".join(wrong)

    def left(self):
        """The processes that the program has started and that are there still."""
        mark = f"ORVELLO_DESK={self.folder}\0".encode()
        found = []
        for process in Path("/proc").glob("[0-9]*"):
            try:
                if mark in (process / "environ").read_bytes() and int(process.name) != self.program.pid:
                    found.append(int(process.name))
            except OSError:  # it has ended, or is another user's
                pass
        return found

    def zombies(self):
        try:
            children = Path(f"/proc/{self.program.pid}/task/{self.program.pid}/children").read_text().split()
            return [child for child in children if ") Z " in Path(f"/proc/{child}/stat").read_text()]
        except OSError:
            return []

    def check_kept(self, *others):
        """Checks that nothing is lost and nothing is left over; says what was checked."""
        if wrong := self.settings_differ():
            raise Failure(wrong)
        self.wait_for("no process is left", lambda: not self.left() and not self.zombies(), 10)
        if leftovers := [file.name for file in self.config.glob("*.new-*")]:
            raise Failure(f"left over: {leftovers}")
        return ", ".join([f"all {len(self.expected)} settings", *others])

    def ride_out(self, inject, undo, comes=None):
        """Injects a fault, waits until the user sees something else (or `comes` holds), and ends it."""
        before = shape(self.seen())
        inject()
        self.wait_for("the fault shows", comes or (lambda: shape(self.seen()) != before))
        seen = self.seen()
        undo()
        calls = self.calls()
        seconds = self.wait_for("back to normal", lambda: self.calls() > calls and shape(self.seen()) == before)
        return Outcome(seen, self.check_kept(), f"the menu is as before after {seconds:.1f} s")
