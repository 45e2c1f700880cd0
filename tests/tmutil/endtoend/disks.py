#!/usr/bin/env python3
"""Disks that are full or come and go, and a system without restic: what needs mounts of its own."""

import os
import subprocess
import unittest

from machine import (IS_ROOT, RESTIC, Machine, enter_private_mounts, files_below, main, make_private_devices, mount,
                     needs_private_mounts)

MEBIBYTE = 1024 * 1024


@needs_private_mounts
class Disks(unittest.TestCase):
    def setUp(self):
        self.machine = Machine(self)

    @unittest.skipUnless(IS_ROOT, "changing a disk's size needs root")
    def test_full_disk(self):
        machine = self.machine
        mount("-t", "tmpfs", "-o", "size=1m", "none", machine.disk)
        filler = os.path.join(machine.disk, "filler")
        with open(filler, "wb", buffering=0) as file, self.assertRaises(OSError):
            while True:
                file.write(bytes(4096))
        self.assertIn("not enough space", machine.refusal("setdestination", machine.disk))
        self.assertEqual(["filler"], os.listdir(machine.disk))  # nothing half-made
        self.assertEqual([], machine.destinations())

        os.unlink(filler)
        mount("-o", "remount,size=48m", machine.disk)
        machine.set_destination()
        machine.write("Documents/small", b"small")
        machine.back_up()
        machine.write("Documents/big", os.urandom(60 * MEBIBYTE))
        for _ in range(2):  # it becomes too little in the middle, and is known to be before the start
            self.assertIn("not enough space", machine.refusal("startbackup", "--block"))
            self.assertIn("not enough space", machine.wait_for_idle()["LastFailure"]["Reason"])
        mount("-o", "remount,size=400m", machine.disk)
        machine.back_up()
        self.assertEqual(["Completed", "Failed", "Failed", "Completed"], [run["Result"] for run in machine.history()])
        machine.assert_sound()

    @unittest.skipUnless(IS_ROOT, "loop devices need root")
    def test_disk_that_comes_and_goes(self):
        machine = self.machine
        image = machine.path("image")
        with open(image, "wb") as file:
            file.truncate(200 * MEBIBYTE)
        subprocess.run(["/usr/sbin/mkfs.ext4", "-q", image], check=True)
        loop = subprocess.run(["/usr/sbin/losetup", "--find", "--show", image], capture_output=True, text=True, check=False)
        if loop.returncode != 0:
            self.skipTest(f"no loop device: {loop.stderr}")
        device = loop.stdout.strip()
        self.addCleanup(subprocess.run, ["/usr/sbin/losetup", "--detach", device], check=True)
        make_private_devices(machine.folder("devices"))
        uuid = subprocess.run(["/usr/sbin/blkid", "-p", "-s", "UUID", "-o", "value", device], capture_output=True,
                              text=True, check=True).stdout.strip()
        os.makedirs("/dev/disk/by-uuid")
        os.symlink(device, "/dev/disk/by-uuid/" + uuid)

        here, there = machine.folder("here"), machine.folder("there")
        mount(device, here)
        os.mkdir(os.path.join(here, "in it"))
        machine.tmutil("setdestination", os.path.join(here, "in it"))
        machine.write("Documents/a", b"a")
        machine.back_up()
        subprocess.run(["umount", here], check=True)
        self.assertIn("is not there", machine.refusal("startbackup"))
        self.assertNotIn("MountPoint", machine.destinations()[0])
        self.assertEqual([], os.listdir(here))
        mount(device, there)
        self.assertEqual(os.path.join(there, "in it"), machine.destinations()[0]["MountPoint"])
        machine.write("Documents/b", b"b")
        machine.back_up()
        self.assertTrue(machine.tmutil("latestbackup").startswith(os.path.join(there, "in it/")))
        self.assertEqual([], os.listdir(here))
        self.assertIn("intact", machine.tmutil("verifychecksums"))

        # Another disk in the place of this one, even with the same folders in it, is not this one.
        subprocess.run(["cp", "-a", os.path.join(there, "in it"), here], check=True)
        subprocess.run(["umount", there], check=True)
        before = sorted(files_below(here))
        self.assertIn("is not there", machine.refusal("startbackup"))
        self.assertEqual(before, sorted(files_below(here)))

    def test_no_restic(self):
        machine = self.machine
        machine.set_destination()
        os.unlink(machine.path("bin/restic"))
        empty = machine.write("empty", b"")  # not executable
        for path in {RESTIC, "/usr/bin/restic", "/usr/local/bin/restic"}:
            if os.path.exists(path):
                mount("--bind", empty, path)
                self.addCleanup(subprocess.run, ["umount", path], check=True)
        for arguments in (["startbackup"], ["setdestination", machine.disk], ["listbackups"], ["verifychecksums"]):
            self.assertRegex(machine.refusal(*arguments), "restic, which makes the backups, is not installed|be reached")
        self.assertIn("not installed", machine.status()["LastFailure"]["Reason"])
        self.assertTrue(machine.destinations())


if __name__ == "__main__":
    enter_private_mounts()
    main()
