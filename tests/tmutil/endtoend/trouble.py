#!/usr/bin/env python3
"""What goes wrong with destinations, keys, the configuration and the clock is said and costs nothing."""

import os
import shutil
import signal
import socket
import unittest

from machine import RESTIC, SMALL, Machine, files_below, main, needs_root, wait_until


class Trouble(unittest.TestCase):
    def setUp(self):
        self.machine = Machine(self)

    def assert_failed(self, complaint, *arguments):
        """A backup fails, and says so on standard error, in the history and in the status."""
        before = len(self.machine.history())
        self.assertIn(complaint, self.machine.refusal("startbackup", "--block", *arguments))
        status = self.machine.wait_for_idle()
        self.assertIn(complaint, status["LastFailure"]["Reason"])
        self.assertEqual(before + 1, len(self.machine.history()))
        self.assertIn(complaint, self.machine.history()[-1]["Reason"])

    def test_no_destination(self):
        self.assert_failed("No backup destination is set.")
        self.assertEqual([], self.machine.destinations())
        self.machine.refusal("setdestination", self.machine.path("nowhere"))
        self.machine.refusal("startbackup", "-d", "nobody")

    def test_absent_destination_stays_empty(self):
        machine = self.machine
        machine.write("Documents/a", b"a")
        machine.set_destination()
        machine.back_up()
        away = machine.path("away")
        os.rename(machine.disk, away)
        os.mkdir(machine.disk)
        self.assert_failed("is not there")
        for verb in ("listbackups", "latestbackup", "verifychecksums"):
            machine.refusal(verb)
        self.assertNotIn("MountPoint", machine.destinations()[0])
        self.assertEqual([], os.listdir(machine.disk))
        os.rmdir(machine.disk)
        os.rename(away, machine.disk)
        machine.back_up()
        machine.assert_sound()

    def test_destination_goes_in_the_middle(self):
        machine = self.machine
        machine.write("Documents/big", os.urandom(12_000_000))
        machine.set_destination()
        machine.slow_down(3000)
        away = machine.path("away")
        machine.tmutil("startbackup")
        wait_until(lambda: files_below(os.path.join(machine.repository, "data")), "the first data")
        os.rename(machine.disk, away)
        os.mkdir(machine.disk)
        self.assertIn("went away", machine.wait_for_idle()["LastFailure"]["Reason"])
        self.assertEqual([], os.listdir(machine.disk))
        os.rmdir(machine.disk)
        os.rename(away, machine.disk)
        machine.slow_down(None)
        machine.back_up()
        machine.assert_sound()

    def test_unreadable_configuration_is_left_alone(self):
        machine = self.machine
        machine.set_destination()
        damaged = b"<plist><dict><key>Destinations</key>"
        with open(machine.configuration, "wb") as file:
            file.write(damaged)
        self.assert_failed("is no property list")
        for arguments in (["setdestination", machine.disk], ["addsource", "/etc"], ["removedestination", "x"],
                          ["addexclusion", machine.home], ["destinationinfo"], ["listsources"], ["listbackups"]):
            status, _, errors = machine.run(machine.tool, *arguments)
            self.assertEqual(1, status, arguments)
            self.assertIn("is no property list" if arguments[0] != "addexclusion" else machine.home, errors)
        with open(machine.configuration, "rb") as file:
            self.assertEqual(damaged, file.read())

    def test_keys_and_passwords(self):
        machine = self.machine
        machine.write("Documents/a", b"a")
        machine.set_destination()
        machine.back_up()
        identifier = machine.destinations()[0]["ID"]
        key_file = machine.key_file(machine.repository)
        with open(key_file, encoding="ascii") as file:
            key = file.read()

        # Removed, and set again with the key that was kept.
        self.assertIn(key_file, machine.tmutil("removedestination", identifier))
        self.assertEqual([], machine.destinations())
        self.assertIn("there already stay", machine.tmutil("setdestination", machine.disk))
        machine.back_up()
        machine.assert_sound()

        # A wrong key opens nothing and changes nothing.
        with open(key_file, "w", encoding="ascii") as file:
            file.write("wrong\n")
        before = sorted(files_below(machine.repository))
        self.assert_failed("does not open it")
        self.assertEqual(before, sorted(files_below(machine.repository)))

        # Without the key the password is asked for, from wherever it may come.
        os.unlink(key_file)
        self.assertIn("none of your keys opens them", machine.refusal("setdestination", machine.disk))
        self.assertIn("does not open", machine.refusal("setdestination", "-p", machine.disk, text="wrong\n"))
        for options in ({"text": key}, {"environment": {"RESTIC_PASSWORD": key.rstrip("\n")}}):
            flags = ["-p"] if "text" in options else []
            machine.tmutil("setdestination", *flags, machine.disk, **options)
            with open(machine.key_file(machine.repository), encoding="ascii") as file:
                self.assertEqual(key, file.read())
            os.unlink(key_file)
        with open(machine.write("password", key.encode()), encoding="ascii"):
            machine.tmutil("setdestination", machine.disk,
                           environment={"RESTIC_PASSWORD_FILE": os.path.join(machine.home, "password")})
        machine.back_up()
        machine.assert_sound()
        self.assertEqual(["keys"], [name for name in os.listdir(os.path.dirname(machine.configuration))
                                    if not name.startswith("tmutil.plist")])

    def test_repository_of_restic_itself_is_adopted(self):
        machine = self.machine
        machine.write("Documents/a", b"a")
        own = {"RESTIC_PASSWORD": "an own one", "RESTIC_REPOSITORY": machine.disk}
        for arguments in (["init"], ["backup", machine.write("before", b"b")]):
            self.assertEqual(0, machine.run(RESTIC, *arguments, environment=own)[0])
        machine.tmutil("setdestination", "-p", machine.disk, text="an own one\n")
        machine.back_up()
        self.assertEqual(1, len(machine.tmutil("listbackups").splitlines()))
        self.assertEqual(2, len(machine.restic("list", "snapshots", repository=machine.disk).splitlines()))
        machine.assert_sound(repository=machine.disk)

    @unittest.skipUnless(shutil.which("faketime") and not SMALL, "faketime is not there, or not to be used")
    def test_clock_set_back(self):
        machine = self.machine
        machine.write("Documents/a", b"a")
        machine.set_destination()
        machine.back_up()
        first = machine.tmutil("listbackups").splitlines()
        status, _, errors = machine.run("faketime", "-f", "-40d", machine.tool, "startbackup", "--block")
        self.assertEqual(0, status, errors)
        self.assertNotIn("LastFailure", machine.wait_for_idle())
        self.assertEqual(["Completed"] * 2, [run["Result"] for run in machine.history()])
        self.assertLess(machine.history()[1]["Start"], machine.history()[0]["Start"])
        self.assertLess(set(first), set(machine.tmutil("listbackups").splitlines()))
        machine.back_up()
        machine.assert_sound()

    @needs_root
    def test_two_users_do_not_meet(self):
        one, other = Machine(self, user="nobody"), Machine(self, user="daemon")
        other.environment["XDG_RUNTIME_DIR"] = one.runtime  # as it stays behind where a user becomes another one
        for machine in (one, other):
            machine.write("Documents/big", os.urandom(12_000_000))
            machine.set_destination()
            machine.slow_down(3000)
        one.tmutil("startbackup")
        running = one.wait_for_phase("Copying")
        self.assertFalse(other.status()["Running"])
        other.tmutil("stopbackup")
        other.slow_down(None)
        other.back_up()
        self.assertEqual(running["ProcessID"], one.status()["ProcessID"])
        one.wait_for_idle()
        for machine in (one, other):
            self.assertEqual(["Completed"], [run["Result"] for run in machine.history()])
            machine.assert_sound()


@unittest.skipUnless(shutil.which("rclone"), "rclone, which serves the store, is not there")
class Store(unittest.TestCase):
    def serve(self, machine):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            address = "127.0.0.1:%d" % probe.getsockname()[1]
        server = machine.popen("rclone", "serve", "restic", "--addr", address, "--user", "user", "--pass", "hidden",
                               machine.folder("served"), environment={"RCLONE_CONFIG": ""})
        self.addCleanup(server.communicate)
        self.addCleanup(server.kill)

        def answers():
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", int(address.split(":")[1]))) == 0
        wait_until(answers, "the store")
        return server, address

    def test_store_on_the_network(self):
        machine = Machine(self)
        path = machine.write("Documents/a", b"over the wire")
        server, address = self.serve(machine)
        location = f"rest:http://user:hidden@{address}/backups"
        said = machine.tmutil("setdestination", location)
        machine.back_up()
        machine.write("Documents/a", b"changed")
        said += machine.tmutil("destinationinfo") + machine.tmutil("destinationinfo", "-X")
        destination = machine.destinations()[0]
        self.assertEqual("Network", destination["Kind"])
        self.assertEqual(f"rest:http://user@{address}/backups", destination["URL"])
        self.assertNotIn("MountPoint", destination)
        backup = machine.tmutil("latestbackup").rstrip("\n")
        machine.tmutil("restore", backup + path, machine.path("restored"))
        with open(machine.path("restored"), "rb") as file:
            self.assertEqual(b"over the wire", file.read())
        machine.assert_sound(repository=location)

        # Set again, and gone: nowhere is the password said.
        said += machine.tmutil("setdestination", location) + backup
        server.send_signal(signal.SIGTERM)
        server.wait()
        said += machine.refusal("startbackup", "--block") + machine.tmutil("status") + str(machine.history())
        self.assertIn("LastFailure", machine.status())
        self.assertNotIn("hidden", said)


if __name__ == "__main__":
    main()
