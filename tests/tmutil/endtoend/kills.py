#!/usr/bin/env python3
"""Whatever is killed, and whenever: the next backup is good, and the history tells of the one that is lost.

E2E_SEED repeats a series of moments that an earlier run has printed.
"""

import os
import random
import signal
import time
import unittest

from machine import SMALL, Machine, main

KILLS = 3 if SMALL else 10
LATEST = 4  # seconds after the start


class Kills(unittest.TestCase):
    def test_random_kills(self):
        seed = os.environ.get("E2E_SEED") or str(random.randrange(10**6))
        print(f"E2E_SEED={seed}", flush=True)
        chance = random.Random(seed)
        machine = Machine(self)
        machine.set_destination()
        for number in range(KILLS):
            victim = ("tmutil", "restic")[number % 2]
            moment = chance.uniform(0, LATEST)
            with self.subTest(seed=seed, number=number, victim=victim, moment=moment):
                machine.write(f"data/{number}", os.urandom(4_000_000))
                machine.slow_down(1024)
                machine.tmutil("startbackup")
                time.sleep(moment)
                known = machine.processes("restic")
                for process in machine.processes(victim):
                    try:
                        os.kill(process, signal.SIGKILL)
                    except ProcessLookupError:
                        pass  # it was quicker
                machine.wait_for_idle()
                machine.wait_for_processes(known)
                machine.slow_down(None)
                machine.back_up()
                killed, good = machine.history()[-2:]
                self.assertEqual(2 * number + 2, len(machine.history()))
                self.assertEqual("Completed", good["Result"])
                if killed["Result"] != "Completed":  # it may have been when the kill came
                    self.assertEqual("Failed", killed["Result"])
                    self.assertRegex(killed["Reason"], "interrupted" if victim == "tmutil" else "signal|status")
                machine.assert_sound()
        results = [run["Result"] for run in machine.history()]
        self.assertGreater(results.count("Failed"), 0, "no kill met a backup")
        print(f"{results.count('Failed')} of {KILLS} kills met a backup")


if __name__ == "__main__":
    main()
