#!/usr/bin/env python3
"""A backup starts once however often it is asked for, tells how far it is, and ends when it is told to or killed."""

import fcntl
import os
import plistlib
import random
import signal
import struct
import time

from machine import SMALL, MachineTest, files_below, main, wait_until

PHASES = ["Starting", "MountingBackupVol", "Starting", "Copying", "Finishing", "ThinningPostBackup"]
KIBIBYTES_PER_SECOND = 4096
KILLS = 3 if SMALL else 10
SIZE = 24 * 1024 * 1024  # six seconds of copying at that speed


class StartStop(MachineTest):
    def setUp(self):
        super().setUp()
        self.tmutil("setdestination", self.disk)
        self.data = self.repository + "/data"
        for i in range(4):
            self.write(f"Documents/{i}", os.urandom(SIZE // 4))
        self.slow_down(KIBIBYTES_PER_SECOND)

    def stored(self):
        """Bytes in the finished files of the repository."""
        return sum(os.stat(path).st_size for path in files_below(self.data) if "-tmp-" not in path)

    def test_a_hundred_calls_start_one_backup(self):
        reading, writing = os.pipe()
        self.addCleanup(os.close, reading)
        calls = [self.start(self.tool, "startbackup", "--auto", pass_fds=[writing]) for _ in range(100)]
        os.close(writing)
        restic, = wait_until(lambda: self.processes("restic"), "restic")
        os.kill(restic, signal.SIGSTOP)  # however long the calls take
        for call in calls:
            # The pipes close although the backup goes on.
            self.assertEqual((b"", b""), call.communicate(timeout=60))
            self.assertEqual(0, call.returncode)
        self.assertEqual(b"", os.read(reading, 1))
        answers = [self.status()]
        self.assertTrue(answers[0]["Running"])
        self.assertEqual(1, len(self.processes("tmutil")))
        os.kill(restic, signal.SIGCONT)
        while answers[-1]["Running"]:
            answers.append(self.status())
        last = answers[-2]["Progress"]
        self.assertGreater(last["bytes"], SIZE)
        self.assertEqual((last["totalBytes"], last["totalFiles"], 1), (last["bytes"], last["files"], last["Percent"]))
        phases = [answer["BackupPhase"] for answer in answers[:-1]]
        changes = [phase for i, phase in enumerate(phases) if i == 0 or phases[i - 1] != phase]
        expected = iter(PHASES)
        self.assertTrue(all(phase in expected for phase in changes), changes)
        self.assertLessEqual({"Copying", "ThinningPostBackup"}, set(changes))
        self.assertEqual(["Completed"], self.results())
        self.assertEqual(1, len(self.restic("list", "snapshots").splitlines()))

    def test_stopped_in_the_middle(self):
        # A caller without standard descriptors is answered as well.
        status, _, _ = self.call("sh", "-c", 'exec "$0" startbackup <&- >&- 2>&-', self.tool)
        self.assertEqual(0, status)
        waiting = self.start(self.tool, "startbackup", "--block")
        wait_until(lambda: self.stored() > SIZE / 2, "half of the data")
        restic, = self.processes("restic")
        os.kill(restic, signal.SIGSTOP)
        self.tmutil("stopbackup")
        wait_until(lambda: self.status().get("Stopping"), "the stop to be seen")
        os.kill(restic, signal.SIGCONT)
        self.assertNotIn("LastFailure", self.wait_for_idle())
        self.assertEqual((b"", b"tmutil: The backup was stopped.\n"), waiting.communicate(timeout=60))
        self.assertEqual(["Stopped"], self.results())
        self.assertEqual([], self.processes("restic"))
        self.assert_sound()

        unfinished = [path for path in files_below(self.data) if "-tmp-" in path]
        there = self.stored()
        self.slow_down(None)
        said = self.back_up()
        added = self.history()[-1]["AddedBytes"]
        self.assertRegex(said, rf"^Total copied: .* MB \({added} bytes\)\nAvg speed: .* bytes/sec\)\n$")
        slack = 1024 * 1024  # of folders and of the chunk that was being written
        self.assertLess(added, SIZE - there + slack)
        self.tmutil("stopbackup")  # nothing runs: nothing to do

        # What restic had begun to write goes when data is cleaned up that no backup needs, once it is old.
        for path in unfinished:
            os.utime(path, (1, 1))
        for _ in range(3):  # a second backup in the same hour replaces the first
            self.back_up()
        self.assertEqual([], [path for path in unfinished if os.path.exists(path)])
        kept, = self.record("bookkeeping")["Destinations"].values()
        self.assertEqual((True, False), (kept["Forgotten"], kept["NeedsRepair"]))  # that is done once a day at most
        self.assert_sound()

    def test_killed_worker_leaves_an_idle_status(self):
        caller = self.start(self.tool, "startbackup", "--block")
        status = wait_until(lambda: (status := self.status()).get("BackupPhase") == "Copying" and status, "copying")
        restic = wait_until(lambda: self.processes("restic"), "restic")
        os.kill(status["ProcessID"], signal.SIGKILL)
        self.assertEqual((b"", b"tmutil: The backup was ended before its time.\n"), caller.communicate(timeout=60))
        self.assertFalse(self.status()["Running"])
        self.wait_for_processes(restic)
        # The lock that restic could not remove is in nobody's way.
        self.assertIn("All backups are intact", self.tmutil("verifychecksums"))
        self.assert_sound()

    def test_what_an_earlier_backup_noted_is_not_believed(self):
        bystander = self.start("sleep", "60")
        self.addCleanup(bystander.communicate)
        self.addCleanup(bystander.kill)
        path = self.write(".local/state/tmutil/backup.lock", b"%d\n" % bystander.pid)
        # The lock is held, by one that has noted itself or not yet, and what is shown is not of it.
        for locked, shown in (1, bystander.pid), (2, 1):
            state = {"ProcessID": shown, "BackupPhase": "Copying", "Running": True}
            self.write(self.folder("runtime/tmutil") + "/status.plist", plistlib.dumps(state))
            with open(path, "r+b") as lock:
                fcntl.fcntl(lock, fcntl.F_OFD_SETLK, struct.pack("hhqqi", fcntl.F_WRLCK, os.SEEK_SET, 0, locked, 0))
                self.assertEqual(("Starting", True), (self.status()["BackupPhase"], self.status()["Running"]))
                if locked == 1:
                    self.tmutil("stopbackup")
                    self.assertIsNone(bystander.poll())

    def test_random_kills(self):
        """Whatever is killed, and whenever: the next backup is good, and the history tells of the one that is lost.
        E2E_SEED repeats a series of moments that an earlier run has printed."""
        seed = os.environ.get("E2E_SEED") or str(random.randrange(10**6))
        print(f"E2E_SEED={seed}", flush=True)
        chance = random.Random(seed)
        for number in range(KILLS):
            victim = ("tmutil", "restic")[number % 2]
            moment = chance.uniform(0, 4)
            with self.subTest(seed=seed, number=number, victim=victim, moment=moment):
                self.write("Documents/0", os.urandom(4_000_000))
                self.slow_down(1024)
                self.tmutil("startbackup")
                time.sleep(moment)
                known = self.processes("restic")
                self.call("kill", "-KILL", *map(str, self.processes(victim)))  # unless it was quicker
                self.wait_for_idle()
                self.wait_for_processes(known)
                self.slow_down(None)
                self.back_up()
                killed, good = self.history()[-2:]
                self.assertEqual(2 * number + 2, len(self.history()))
                self.assertEqual("Completed", good["Result"])
                if killed["Result"] != "Completed":  # it may have been when the kill came
                    self.assertEqual("Failed", killed["Result"])
                    self.assertRegex(killed["Reason"], "interrupted" if victim == "tmutil" else "signal|status")
                self.assert_sound()
        self.assertIn("Failed", self.results(), "no kill met a backup")


if __name__ == "__main__":
    main()
