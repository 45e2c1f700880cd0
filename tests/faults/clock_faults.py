"""Faults of the clock and of the time zone. Only the program and what it starts see them."""

import datetime
import glob
import os
import shutil
import signal
import subprocess
import time

from desk import Failure, Outcome, Skip

HOUR = 3600


def fake_clock(desk):
    """What a program is started with that takes it for half past ten in the evening, and obeys `set_clock`."""
    now = datetime.datetime.now()
    desk.evening = round((now.replace(hour=22, minute=30) - now).total_seconds())
    libraries = glob.glob("/usr/lib/*/faketime/libfaketime.so.1")
    if not libraries:
        raise Skip("libfaketime is not installed")
    set_clock(desk, 0)
    return {"LD_PRELOAD": libraries[0], "FAKETIME_TIMESTAMP_FILE": str(desk.folder / "clock"), "FAKETIME_NO_CACHE": "1",
            "FAKETIME_DONT_FAKE_MONOTONIC": "1", "DONT_FAKE_MONOTONIC": "1"}


def set_clock(desk, seconds):
    """Sets the clock to so long after the time of the start."""
    file = desk.folder / "clock"
    file.with_suffix(".new").write_text(f"{desk.evening + seconds:+d}\n")
    file.with_suffix(".new").rename(file)


def await_other_lines(desk, lines):
    return desk.wait_for("other lines", lambda: desk.lines() != lines)


def await_lines(desk, lines):
    return desk.wait_for(f"the lines {lines}", lambda: desk.lines() == lines)


def check_no_backup(desk):
    if desk.calls("startbackup"):
        raise Failure("a backup was started")


def moved(seconds):
    def inject(desk):
        desk.start(**fake_clock(desk))
        before = desk.lines()
        set_clock(desk, seconds)
        await_other_lines(desk, before)
        seen = desk.seen()
        set_clock(desk, 0)
        back = await_lines(desk, before)
        check_no_backup(desk)
        return Outcome(seen, desk.check_kept(), f"set right again, the menu is as before after {back:.1f} s")
    return inject


def suspended(desk):
    """While the computer sleeps, the wall clock goes on and the clock of the timers stands still."""
    desk.start(**fake_clock(desk))
    before = desk.lines()
    desk.program.send_signal(signal.SIGSTOP)
    set_clock(desk, 8 * HOUR)
    time.sleep(5)
    calls = desk.calls()
    desk.program.send_signal(signal.SIGCONT)
    seconds = await_other_lines(desk, before)
    began = time.monotonic()
    time.sleep(3)
    burst, elapsed = desk.calls() - calls, time.monotonic() - began
    if burst > 2 + elapsed // 2:  # one is late, and one is due every two seconds
        raise Failure(f"{burst} refreshes in {elapsed:.1f} s after waking up")
    check_no_backup(desk)
    back = f"the lines are of the new day after {seconds:.1f} s, without a burst: {burst} refreshes in {elapsed:.0f} s"
    return Outcome(desk.seen(), desk.check_kept(), back)


def zone_changed(desk):
    """The system's zone is a file of the desk's, of which the program's mounts make /etc/localtime."""
    zones = "/usr/share/zoneinfo"
    zone = desk.folder / "localtime"

    def set_zone(name, changed):  # the C library takes a file for unchanged whose second of change is the same
        shutil.copyfile(f"{zones}/{name}", zone)
        os.utime(zone, (changed, changed))
    set_zone("Etc/UTC", 1)
    mount = f"mount --bind {zone} /etc/localtime"
    trial = subprocess.run(["unshare", "--mount", "sh", "-c", mount], capture_output=True, text=True, check=False)
    if trial.returncode:
        raise Skip(f"/etc/localtime cannot be replaced for one program here: {trial.stderr.strip()}")
    desk.start("unshare", "--mount", "sh", "-c", f'{mount} && exec "$@"', "sh")
    before = desk.lines()
    set_zone("Asia/Kathmandu", 2)
    await_other_lines(desk, before)
    seen = desk.seen()
    set_zone("Etc/UTC", 3)
    back = await_lines(desk, before)
    check_no_backup(desk)
    return Outcome(seen, desk.check_kept(), f"at home again, the menu is as before after {back:.1f} s")


FAULTS = {
    "The clock is set two days ahead": moved(48 * HOUR),
    "The clock is set two days back": moved(-48 * HOUR),
    "Suspended for eight hours": suspended,
    "The time zone is changed": zone_changed,
}
