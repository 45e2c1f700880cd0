#!/usr/bin/env python3
"""A backup that fails while nobody watches is told on the desktop, in the system log, in the history and in the status."""

import json
import os
import socket
import unittest

from machine import PATIENCE, Machine, enter_private_mounts, main, make_private_devices, needs_private_mounts, wait_until

SERVICE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "notification_service.py")


class FailuresTold(unittest.TestCase):
    def setUp(self):
        self.machine = Machine(self)
        self.disk = self.machine.folder("A & <b>B")
        self.machine.tmutil("setdestination", self.disk)
        os.rename(self.disk, self.machine.path("away"))

    def start(self, *command):
        process = self.machine.popen(*command)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def call_at_terminal(self, *arguments):
        """The exit status of a call whose complaints go to a terminal."""
        ends = os.openpty()
        for end in ends:
            self.addCleanup(os.close, end)
        return self.machine.popen(self.machine.tool, *arguments, stderr=ends[1], stdout=None).wait(PATIENCE)

    def test_on_the_desktop(self):
        machine = self.machine
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address")
        machine.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        service = self.start("/usr/bin/python3", SERVICE)
        self.assertEqual(b"ready\n", service.stdout.readline())
        for failures in range(1, 5):
            machine.refusal("startbackup", "--auto")
            title, body, urgency = json.loads(service.stdout.readline())
            many = failures >= 3
            self.assertEqual(f"The last {failures} backups failed" if many else "The backup failed", title)
            self.assertEqual(2 if many else 1, urgency)
            self.assertIn('"A &amp; &lt;b&gt;B" is not there', body)
            machine.wait_for_idle()
            self.assertEqual(failures, len(machine.history()))
            failure = machine.status()["LastFailure"]
            self.assertEqual((failures, machine.history()[-1]["Reason"]), (failure["FailuresInARow"], failure["Reason"]))
        # A user at a terminal is told there, as long as the call lasts.
        self.assertEqual(1, self.call_at_terminal("startbackup"))
        machine.wait_for_idle()
        os.rename(machine.path("away"), self.disk)
        key = machine.key_file(os.path.join(self.disk, "Backups.restic"))
        os.rename(key, key + ".right")
        with open(key, "w", encoding="ascii") as file:
            file.write("wrong\n")
        self.assertEqual(1, self.call_at_terminal("startbackup", "--block"))
        machine.wait_for_idle()
        self.assertEqual(0, self.call_at_terminal("startbackup"))
        title, body, _ = json.loads(service.stdout.readline())
        self.assertEqual("The last 7 backups failed", title)
        self.assertIn("does not open it", body)
        machine.wait_for_idle()
        os.rename(key + ".right", key)
        machine.back_up()
        self.assertNotIn("LastFailure", machine.status())

    @needs_private_mounts
    def test_in_the_system_log(self):
        make_private_devices(self.machine.folder("devices"))
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as log:
            log.bind("/dev/log")
            log.setblocking(False)
            lines = []

            def is_told(text):
                try:
                    lines.append(log.recv(65536).decode())
                except BlockingIOError:
                    pass
                return any("tmutil" in line and text in line for line in lines)
            self.machine.refusal("startbackup", "--auto")
            wait_until(lambda: is_told('the backup failed: The backup destination "A & <b>B" is not there'), "the log")
            os.rename(self.machine.path("away"), self.disk)
            self.machine.back_up()
            wait_until(lambda: is_told(" completed: "), "the log")


if __name__ == "__main__":
    enter_private_mounts()
    main()
