"""Faults of the settings file. While each lasts, the user starts a backup, which is to be noted in the settings."""

import contextlib
import datetime
import os
import random
import re
import subprocess
import time
from pathlib import Path

from desk import LIMIT, Failure, Outcome, Skip, countdown

KILLS = 200
CLICKS = 100
GARBAGE = bytes(range(256)) * 8


def start_backup(desk):
    """Starts a backup by the menu: from now on, the settings have to tell of it."""
    began = datetime.datetime.utcnow().replace(microsecond=0)
    desk.click("Create Backup now")
    desk.wait_for("the start of a backup", lambda: desk.calls("startbackup") == 1)
    desk.expected |= {"LastBackup": lambda value: value and value >= began,
                      "MinutesUntilNextBackup": countdown(desk.expected["BackupTimeInterval"])}
    desk.wait_for("the menu tells of the backup", lambda: "Starting Backup ..." in desk.lines())


def await_saved(desk):
    return desk.wait_for("the settings are saved", lambda: not desk.settings_differ())


def damaged(damage):
    """`damage` is done to the file, and returns what then has to be found set aside: contents of files and folders."""
    def inject(desk):
        desk.start()
        expected = damage(desk.settings_file)
        start_backup(desk)
        seen, seconds = desk.seen(), await_saved(desk)
        return Outcome(seen, desk.check_kept(*check_set_aside(desk, expected)), f"saved whole after {seconds:.1f} s")
    return inject


def check_set_aside(desk, expected):
    found = [item for item in desk.config.iterdir() if ".unreadable-" in item.name]
    contents = [os.listdir(item) if item.is_dir() else item.read_bytes() for item in found]
    if contents != expected:
        raise Failure(f"set aside: {contents}")
    return ["what stood in its place, set aside"] if found else []


def corrupt(file):
    file.write_bytes(GARBAGE)
    return [GARBAGE]


def truncate(file):
    start = file.read_bytes()[:100]
    file.write_bytes(start)
    return [start]


def replace_by_folder(file):
    file.unlink()
    file.mkdir()
    (file / "a file").touch()
    return [["a file"]]


def make_read_only(file):
    file.chmod(0o444)
    return []


def corrupt_at_start(desk):
    """There is nothing to read the settings from, so the user is asked what is asked at a first start."""
    desk.settings_file.write_bytes(GARBAGE)
    desk.start()
    desk.wait_for("the welcome", desk.windows)
    seen = desk.windows()
    for title in ("Welcome to Orvello!", "Start at Login?"):
        answer = ["search", "--sync", "--onlyvisible", "--name", re.escape(title), "key", "--window", "%1", "Escape"]
        subprocess.run(["xdotool", *answer], env=desk.environment, check=False, timeout=LIMIT,
                       capture_output=True)
    desk.expected = {"FirstStart": False}
    seconds = await_saved(desk)
    aside, = check_set_aside(desk, [GARBAGE])
    desk.quit()
    return Outcome(seen, aside, f"with the defaults {seconds:.1f} s after the answers")


def unwritable(desk, make_writable):
    """A backup is started while nothing can be written."""
    old = dict(desk.expected)
    start_backup(desk)
    desk.wait_for("the log tells of it", lambda: "The settings could not be saved" in desk.log())
    new, desk.expected = desk.expected, old
    kept = desk.check_kept("those of before the fault while it lasts")
    desk.expected, seen = new, desk.seen()
    make_writable()
    seconds = await_saved(desk)
    desk.check_kept()
    return Outcome(seen, kept, f"saved after {seconds:.1f} s")


def read_only_folder(desk):
    as_user = ["setpriv", "--bounding-set=-all", "--inh-caps=-all"]  # without root's leave to write everywhere
    desk.config.chmod(0o555)
    desk.start(*(as_user if os.geteuid() == 0 else []))
    return unwritable(desk, lambda: desk.config.chmod(0o755))


def disk_full(desk):
    """The settings' folder is a small file system, which only the program and its children see."""
    mount = f"mount -t tmpfs -o size=64k tmpfs {desk.config} && cp -p {desk.folder}/*.plist {desk.config}"
    trial = subprocess.run(["unshare", "--mount", "sh", "-c", f"cp -p {desk.settings_file} {desk.folder} && {mount}"],
                           capture_output=True, text=True, check=False)
    if trial.returncode:
        raise Skip(f"no file system can be mounted here: {trial.stderr.strip()}")
    desk.start("unshare", "--mount", "sh", "-c", f'{mount} && exec "$@"', "sh")
    desk.config = Path(f"/proc/{desk.program.pid}/root{desk.config}")
    ballast = desk.config / "ballast"
    with open(ballast, "wb", buffering=0) as file, contextlib.suppress(OSError):
        while True:
            file.write(bytes(512))
    return unwritable(desk, ballast.unlink)


def killed_while_writing(desk):
    """Every choice of "Start at Login" writes the settings. In the midst of several, the program is killed."""
    chance = random.Random(desk.seed)
    desk.expected["AutoStart"] = lambda value: value in (True, False)
    amid = half_written = 0
    desk.start()
    for kill in range(KILLS):
        if kill:
            desk.launch()
            desk.wait_for("the icon", desk.has_icon)
        saves = desk.log().count("Setting Autostart")
        desk.click_unanswered(desk.entry("Start at Login"), CLICKS)
        time.sleep(chance.uniform(0, 0.03))
        desk.stop("orvello")
        amid += 0 < desk.log().count("Setting Autostart") - saves < CLICKS
        half_written += bool(list(desk.config.glob("*.new-*")))
        if wrong := desk.settings_differ():
            raise Failure(f"kill {kill + 1} of {KILLS}: {wrong}")
    if not amid:
        raise Failure("no kill came while the settings were being written")
    desk.launch()
    seconds = desk.await_icon()
    seen = desk.seen()
    desk.click("Start at Login")  # the first save removes what the kills have left
    desk.wait_for("what was half written is removed", lambda: not list(desk.config.glob("*.new-*")))
    kept = f"after each kill; {amid} came amid the saves, {half_written} left half a file for the next save to remove"
    return Outcome(seen, desk.check_kept(kept), f"the icon is there {seconds:.1f} s after the next start")


FAULTS = {
    "The settings file is corrupt": damaged(corrupt),
    "The settings file is corrupt at the start": corrupt_at_start,
    "The settings file is truncated": damaged(truncate),
    "The settings file is replaced by a folder": damaged(replace_by_folder),
    "The settings file is read-only": damaged(make_read_only),
    "The settings' folder is read-only": read_only_folder,
    "The disk is full": disk_full,
    f"Killed {KILLS} times while writing the settings": killed_while_writing,
}
