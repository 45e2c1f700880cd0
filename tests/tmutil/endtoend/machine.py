"""A computer of one user for the end-to-end tests: folders and an environment of its own, in which tmutil runs with the
restic of the system. Use: TEST.py TMUTIL [unittest's arguments]; what is given as E2E_SHARE=small makes it shorter."""

import glob
import os
import plistlib
import pwd
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TMUTIL = os.path.abspath(sys.argv[1])
RESTIC = shutil.which("restic") or "/usr/bin/restic"
SMALL = os.environ.get("E2E_SHARE") == "small"
PATIENCE = 120  # seconds that no healthy run takes, however busy the machine is
PRIVATE_MOUNTS = os.environ.get("E2E_PRIVATE_MOUNTS")  # the command that made them
IS_ROOT = os.geteuid() == 0 and PRIVATE_MOUNTS != "unshare -rm"  # there it is root by name only


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.02)
    return result


class MachineTest(unittest.TestCase):
    """Each test has such a computer. It is that of the account `user`, where there is one and root runs the test."""

    maxDiff = 4000
    user = None

    def setUp(self):
        self.top = os.path.realpath(tempfile.mkdtemp(prefix="tmutil-e2e-"))
        self.addCleanup(self.remove)
        self.tool = shutil.copy(TMUTIL, self.top)  # where the account can reach it
        self.identity = {}
        if self.user and IS_ROOT:
            self.become(pwd.getpwnam(self.user))
        self.home, self.disk, self.runtime = (self.folder(name) for name in ("home", "disk", "runtime"))
        self.repository = self.disk + "/Backups.restic"
        self.environment = {
            "PATH": f"{self.folder('bin')}:{os.environ['PATH']}:/usr/sbin:/sbin", "HOME": self.home,
            "XDG_RUNTIME_DIR": self.runtime, "TMPDIR": self.folder("tmp"), "LANG": "C.UTF-8",
            "RESTIC_PACK_SIZE": "4",
        }
        self.slow_down(None)

    def become(self, account):
        os.chown(self.top, account.pw_uid, account.pw_gid)
        for change, identifier in (os.setegid, account.pw_gid), (os.seteuid, account.pw_uid):
            change(identifier)
            self.addCleanup(change, 0)
        self.identity = {"user": account.pw_uid, "group": account.pw_gid}

    def path(self, name):
        return os.path.join(self.top, name)

    def folder(self, name):
        """A folder of the user's; made when it is not there yet."""
        path = self.path(name)
        os.makedirs(path, mode=0o700, exist_ok=True)
        return path

    def write(self, path, content):
        """A file below the home folder, and the folders above it; its path."""
        path = os.path.join(os.fsencode(self.home), os.fsencode(path))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        return os.fsdecode(path)

    def slow_down(self, kibibytes):
        """Makes restic write so much in a second at most; with None as fast as it can."""
        limit = f"--limit-upload {kibibytes}" if kibibytes else ""
        wrapper = self.path("bin/restic")
        with open(wrapper + ".new", "w", encoding="utf-8") as file:
            file.write(f'#!/bin/sh\nexec "{RESTIC}" {limit} "$@"\n')
        os.chmod(wrapper + ".new", 0o755)
        os.replace(wrapper + ".new", wrapper)

    def start(self, *command, environment=None, **options):
        pipes = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
        environment = self.environment | (environment or {})
        return subprocess.Popen(command, env=environment, **(pipes | self.identity | options))

    def call(self, *command, text="", **options):
        process = self.start(*command, stdin=subprocess.PIPE, **options)
        output, errors = process.communicate(text.encode(), timeout=PATIENCE)
        return process.returncode, os.fsdecode(output), os.fsdecode(errors)

    def tmutil(self, *arguments, **options):
        """What it printed; the test fails when it does not succeed."""
        status, output, errors = self.call(self.tool, *arguments, **options)
        self.assertEqual(0, status, f"tmutil {arguments}: {errors}")
        return output

    def refusal(self, *arguments, **options):
        """What it complains of; the test fails when it succeeds, or fails without a word."""
        status, _, errors = self.call(self.tool, *arguments, **options)
        self.assertEqual(1, status, f"tmutil {arguments}: {errors}")
        self.assertRegex(errors, r"^tmutil: .+[.]\n", f"tmutil {arguments}")
        return errors

    def back_up(self, *arguments):
        output = self.tmutil("startbackup", "--block", *arguments)
        self.wait_for_idle()  # thinning comes after the answer
        return output

    def status(self):
        return plistlib.loads(self.tmutil("status", "-X").encode())

    def wait_for_idle(self):
        return wait_until(lambda: not (status := self.status())["Running"] and status, "the end of the backup")

    def record(self, name):
        """What is kept in a file of the state folder; empty where there is none."""
        path = f"{self.home}/.local/state/tmutil/{name}.plist"
        if not os.path.exists(path):
            return {}
        with open(path, "rb") as file:
            return plistlib.load(file)

    def history(self):
        """The runs, the oldest first."""
        return self.record("history").get("Runs", [])

    def results(self):
        return [run["Result"] for run in self.history()]

    def destinations(self):
        return plistlib.loads(self.tmutil("destinationinfo", "-X").encode()).get("Destinations", [])

    def key_file(self):
        """The newest key."""
        return max(glob.glob(self.home + "/.config/tmutil/keys/*.key"), key=os.path.getmtime)

    def restic(self, *arguments):
        """What it printed of the repository, which the newest key opens."""
        status, output, errors = self.call(RESTIC, "-r", self.repository, "-p", self.key_file(), *arguments)
        self.assertEqual(0, status, f"restic {arguments}: {output}{errors}")
        return output

    def assert_sound(self):
        """The repository is whole to the last byte, and nothing locks it."""
        self.assertIn("no errors were found", self.restic("check", "--read-data"))
        self.assertEqual("", self.restic("list", "locks", "--no-lock"))

    def processes(self, name):
        """The process identifiers of the programs of that name that run on this machine."""
        found = []
        for process in filter(str.isdigit, os.listdir("/proc")):
            try:
                with open(f"/proc/{process}/comm", encoding="utf-8") as file:
                    is_it = file.read().strip() == name
                with open(f"/proc/{process}/environ", "rb") as file:
                    if is_it and os.fsencode("HOME=" + self.home) in file.read().split(b"\0"):
                        found.append(int(process))
            except OSError:
                pass  # it has ended, or is another user's
        return found

    def wait_for_processes(self, known):
        """Waits until these and all of restic have ended, and been buried: restic takes a zombie for alive."""
        known = set(known)

        def are_gone():
            known.update(self.processes("restic"))
            return not any(os.path.exists(f"/proc/{process}") for process in known)
        wait_until(are_gone, "the end of restic")

    def remove(self):
        for name in ("tmutil", "restic"):
            for process in self.processes(name):
                os.kill(process, signal.SIGKILL)
        wait_until(lambda: not self.processes("tmutil") + self.processes("restic"), "the end of everything")
        opened = ["find", self.top, "-xdev", "-type", "d", "-exec", "chmod", "u+rwx", "{}", "+"]
        subprocess.run(opened, check=False, stderr=subprocess.DEVNULL)
        subprocess.run(["rm", "-rf", "--one-file-system", self.top], check=True)


def files_below(folder):
    return [os.path.join(top, name) for top, _, names in os.walk(folder) for name in names]


def main():
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
