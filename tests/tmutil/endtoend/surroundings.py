#!/usr/bin/python3
"""Disks that are full or come and go, a system without restic, log and desktop: what needs mounts of its own."""

import os
import socket
import subprocess
import sys
import unittest

import dbusmock
from machine import IS_ROOT, PATIENCE, PRIVATE_MOUNTS, RESTIC, MachineTest, files_below, main

MEBIBYTE = 1024 * 1024


@unittest.skipUnless(PRIVATE_MOUNTS, "mount namespaces are not allowed here")
class Surroundings(MachineTest, dbusmock.DBusTestCase):
    def mount(self, *arguments):
        subprocess.run(["mount", *arguments], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", arguments[-1]], check=False, stderr=subprocess.DEVNULL)

    def make_private_devices(self):
        """Puts a /dev of our own over the system's, with single devices of it. The system's /dev itself appears nowhere
        else, so that nothing that is cleaned up leads there."""
        folder = self.folder("devices")
        self.mount("-t", "tmpfs", "none", folder)
        for name in os.listdir("/dev"):
            if name in ("null", "zero", "random", "urandom", "tty") or name.startswith("loop"):
                path = os.path.join(folder, name)
                with open(path, "xb"):
                    pass
                self.mount("--bind", os.path.join("/dev", name), path)
        self.mount("--rbind", folder, "/dev")

    @unittest.skipUnless(IS_ROOT, "changing a disk's size needs root")
    def test_full_disk(self):
        self.mount("-t", "tmpfs", "-o", "size=1m", "none", self.disk)
        filler = self.disk + "/filler"
        with open(filler, "wb", buffering=0) as file, self.assertRaises(OSError):
            while True:
                file.write(bytes(4096))
        self.assertIn("not enough space", self.refusal("setdestination", self.disk))
        self.assertEqual(["filler"], os.listdir(self.disk))  # nothing half-made
        self.assertEqual([], self.destinations())

        os.unlink(filler)
        self.mount("-o", "remount,size=48m", self.disk)
        self.tmutil("setdestination", self.disk)
        self.back_up()
        self.write("Documents/big", os.urandom(60 * MEBIBYTE))
        for _ in range(2):  # it becomes too little in the middle, and is known to be before the start
            self.assertIn("not enough space", self.refusal("startbackup", "--block"))
            self.assertIn("not enough space", self.wait_for_idle()["LastFailure"]["Reason"])
        self.mount("-o", "remount,size=400m", self.disk)
        self.back_up()
        self.assertEqual(["Completed", "Failed", "Failed", "Completed"], self.results())
        self.assert_sound()

    @unittest.skipUnless(IS_ROOT, "loop devices need root")
    def test_disk_that_comes_and_goes(self):
        image = self.write("image", b"")
        os.truncate(image, 200 * MEBIBYTE)
        subprocess.run(["/usr/sbin/mkfs.ext4", "-q", image], check=True)
        loop = subprocess.run(["/usr/sbin/losetup", "--find", "--show", image], capture_output=True, text=True,
                              check=False)
        if loop.returncode != 0:
            self.skipTest(f"no loop device: {loop.stderr}")
        device = loop.stdout.strip()
        self.addCleanup(subprocess.run, ["/usr/sbin/losetup", "--detach", device], check=True)
        self.make_private_devices()
        os.makedirs("/dev/disk/by-uuid")
        os.symlink(device, "/dev/disk/by-uuid/1234-ABCD")

        here, there = self.folder("here"), self.folder("there")
        self.mount(device, here)
        self.tmutil("setdestination", self.folder("here/in it"))
        self.back_up()
        subprocess.run(["umount", here], check=True)
        self.assertIn("is not there", self.refusal("startbackup"))
        self.mount(device, there)
        self.assertEqual(there + "/in it", self.destinations()[0]["MountPoint"])
        self.back_up()
        self.assertTrue(self.tmutil("latestbackup").startswith(there + "/in it/"))
        self.assertEqual([], os.listdir(here))
        self.assertIn("intact", self.tmutil("verifychecksums"))

        # Another disk in the place of this one, even with the same folders in it, is not this one.
        subprocess.run(["cp", "-a", there + "/in it", here], check=True)
        subprocess.run(["umount", there], check=True)
        before = sorted(files_below(here))
        self.assertIn("is not there", self.refusal("startbackup"))
        self.assertEqual(before, sorted(files_below(here)))

    def test_no_restic(self):
        self.tmutil("setdestination", self.disk)
        os.unlink(self.path("bin/restic"))
        empty = self.write("empty", b"")  # not executable
        for path in {RESTIC, "/usr/bin/restic", "/usr/local/bin/restic"}:
            if os.path.exists(path):
                self.mount("--bind", empty, path)
                self.addCleanup(subprocess.run, ["umount", path], check=True)
        for arguments in (["startbackup"], ["setdestination", self.disk], ["listbackups"], ["verifychecksums"]):
            self.assertRegex(self.refusal(*arguments), "restic, which makes the backups, is not installed|be reached")
        self.assertIn("not installed", self.status()["LastFailure"]["Reason"])
        self.assertTrue(self.destinations())

    def test_failures_are_told_once(self):
        terminal = os.openpty()
        for end in terminal:
            self.addCleanup(os.close, end)
        self.make_private_devices()
        log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(log.close)
        log.settimeout(PATIENCE)
        log.bind("/dev/log")
        bus, address = self.start_dbus()
        self.addCleanup(self.stop_dbus, bus)
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        server, service = self.spawn_server_template("notification_daemon", {})
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)

        disk = self.folder("A & <b>B")
        self.tmutil("setdestination", disk)
        os.rename(disk, self.path("away"))
        notices = lambda: service.GetMethodCalls("Notify", dbus_interface=dbusmock.MOCK_IFACE)
        for failures in range(1, 5):
            self.refusal("startbackup", "--auto")
            failure = self.wait_for_idle()["LastFailure"]
            self.assertRegex(log.recv(65536), b'tmutil.*the backup failed: .* "A & <b>B" is not there')
            *_, title, body, _, hints, _ = notices()[failures - 1][1]
            many = failures >= 3
            self.assertEqual(f"The last {failures} backups failed" if many else "The backup failed", title)
            self.assertEqual(2 if many else 1, hints["urgency"])
            self.assertIn('"A &amp; &lt;b&gt;B" is not there', body)
            run = self.history()[-1]
            expected = {"Date": run["End"], "Reason": run["Reason"], "FailuresInARow": failures}
            self.assertEqual(expected, failure)

        # A user at a terminal is told there, as long as the call lasts.
        def call_at_terminal(*arguments):
            return self.start(self.tool, *arguments, stderr=terminal[1], stdout=None).wait(PATIENCE)

        self.assertEqual(1, call_at_terminal("startbackup"))
        os.rename(self.path("away"), disk)
        right = self.key_file()
        os.rename(right, self.path("key"))
        with open(right, "w", encoding="ascii") as file:
            file.write("wrong\n")
        self.assertEqual(1, call_at_terminal("startbackup", "--block"))
        self.assertEqual(failures, len(notices()))
        self.assertEqual(0, call_at_terminal("startbackup"))
        self.assertIn("does not open it", self.wait_for_idle()["LastFailure"]["Reason"])
        self.assertEqual(failures + 1, len(notices()))
        os.rename(self.path("key"), right)
        self.back_up()
        self.assertNotIn("LastFailure", self.status())
        lines = []
        while not lines or b" completed: " not in lines[-1]:
            lines.append(log.recv(65536))
        self.assertEqual(3, sum(b"the backup failed" in line for line in lines))


if __name__ == "__main__":
    # Anew, where mounts are nobody else's affair, if that is allowed.
    for command in (["unshare", "-m"], ["unshare", "-rm"]):
        if not PRIVATE_MOUNTS and subprocess.run([*command, "true"], check=False).returncode == 0:
            os.environ["E2E_PRIVATE_MOUNTS"] = " ".join(command)
            os.execvp(command[0], [*command, sys.executable, *sys.argv])
    main()
