#!/usr/bin/env python3
"""A backup starts once however often it is asked for, tells how far it is, and stops when it is told to."""

import os
import signal
import unittest

from machine import Machine, files_below, main, size_of, wait_until

PHASES = ["Starting", "MountingBackupVol", "Starting", "Copying", "Finishing", "ThinningPostBackup"]
KIBIBYTES_PER_SECOND = 4096
SIZE = 24 * 1024 * 1024  # six seconds of copying at that speed


class StartStop(unittest.TestCase):
    def setUp(self):
        self.machine = Machine(self)
        self.machine.set_destination()
        for i in range(4):
            self.machine.write(f"Documents/{i}", os.urandom(SIZE // 4))
        self.machine.slow_down(KIBIBYTES_PER_SECOND)

    def assert_never_backwards(self, answers):
        counts = {"files": 0, "bytes": 0, "totalFiles": 0, "totalBytes": 0, "Percent": -1}
        for progress in (answer["Progress"] for answer in answers if "Progress" in answer):
            for name, before in counts.items():
                self.assertGreaterEqual(progress[name], before, name)
            self.assertLessEqual(progress["files"], progress["totalFiles"])
            self.assertLessEqual(progress["bytes"], progress["totalBytes"])
            self.assertLessEqual(progress["Percent"], 1)
            counts = {name: progress[name] for name in counts}
        self.assertGreater(counts["bytes"], SIZE)

    def test_a_hundred_calls_start_one_backup(self):
        machine = self.machine
        calls = [machine.popen(machine.tool, "startbackup", "--auto") for _ in range(100)]
        for call in calls:
            # The pipes close although the backup goes on.
            self.assertEqual((b"", b""), call.communicate(timeout=60))
            self.assertEqual(0, call.returncode)
        answers = [machine.status()]
        self.assertTrue(answers[0]["Running"])
        self.assertEqual(1, len(machine.processes("tmutil")))
        while answers[-1]["Running"]:
            answers.append(machine.status())
        self.assert_never_backwards(answers)
        phases = [answer["BackupPhase"] for answer in answers[:-1]]
        changes = [phase for i, phase in enumerate(phases) if i == 0 or phases[i - 1] != phase]
        expected = iter(PHASES)
        self.assertTrue(all(phase in expected for phase in changes), changes)
        self.assertLessEqual({"Copying", "Finishing"}, set(changes))
        self.assertEqual(["Completed"], [run["Result"] for run in machine.history()])
        self.assertEqual(1, len(machine.restic("list", "snapshots").splitlines()))

    def test_stopped_in_the_middle(self):
        machine = self.machine
        machine.tmutil("startbackup")
        data = os.path.join(machine.repository, "data")
        wait_until(lambda: size_of(data) > SIZE / 2, "half of the data")
        restic = machine.processes("restic")
        self.assertEqual(1, len(restic))
        os.kill(restic[0], signal.SIGSTOP)
        machine.tmutil("stopbackup")
        wait_until(lambda: machine.status().get("Stopping"), "the stop to be seen")
        os.kill(restic[0], signal.SIGCONT)
        self.assertNotIn("LastFailure", machine.wait_for_idle())
        self.assertEqual(["Stopped"], [run["Result"] for run in machine.history()])
        self.assertEqual([], machine.processes("restic"))
        machine.assert_sound()

        unfinished = [path for path in files_below(data) if "-tmp-" in path]
        there = size_of(data) - sum(map(os.path.getsize, unfinished))
        machine.slow_down(None)
        machine.back_up()
        self.assertEqual("Completed", machine.history()[-1]["Result"])
        slack = 1024 * 1024  # of folders and of the chunk that was being written
        self.assertLess(machine.history()[-1]["AddedBytes"], SIZE - there + slack)
        machine.assert_sound()
        machine.tmutil("stopbackup")  # nothing runs: nothing to do

        # What restic had begun to write goes when data is cleaned up that no backup needs, once it is old.
        for path in unfinished:
            os.utime(path, (1, 1))
        for _ in range(3):  # a second backup in the same hour replaces the first
            machine.back_up()
        self.assertEqual([], [path for path in unfinished if os.path.exists(path)])
        machine.assert_sound()

    def test_killed_worker_leaves_an_idle_status(self):
        machine = self.machine
        machine.tmutil("startbackup")
        status = machine.wait_for_phase("Copying")
        restic = wait_until(lambda: machine.processes("restic"), "restic")
        os.kill(status["ProcessID"], signal.SIGKILL)
        wait_until(lambda: not machine.processes("tmutil"), "the end of the worker")
        self.assertFalse(machine.status()["Running"])
        machine.wait_for_processes(restic)
        # The lock that restic could not remove is in nobody's way.
        self.assertIn("All backups are intact", machine.tmutil("verifychecksums"))
        machine.assert_sound()


if __name__ == "__main__":
    main()
