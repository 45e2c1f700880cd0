"""A computer of one user for the end-to-end tests: folders and an environment of its own, in which tmutil runs with the
restic of the system. Use: TEST.py TMUTIL [unittest's arguments]; what is given as E2E_SHARE=small makes it shorter."""

import os
import plistlib
import pwd
import re
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
PRIVATE_MOUNTS = "E2E_PRIVATE_MOUNTS"
IS_ROOT = os.geteuid() == 0 and os.environ.get(PRIVATE_MOUNTS) != "unshare -rm"  # there it is root by name only


def wait_until(condition, what, seconds=PATIENCE):
    end = time.monotonic() + seconds
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.02)
    return result


class Machine:
    """user: the name of the account that everything runs as; needs root, and is not used without it."""

    def __init__(self, test, user=None):
        self.test = test
        self.account = pwd.getpwnam(user) if user and IS_ROOT else None
        self.top = os.path.realpath(tempfile.mkdtemp(prefix="tmutil-e2e-"))
        test.addCleanup(self.remove)
        os.chmod(self.top, 0o755)
        self.home, self.disk, self.runtime = (self.folder(name) for name in ("home", "disk", "runtime"))
        self.repository = os.path.join(self.disk, "Backups.restic")
        self.configuration = os.path.join(self.home, ".config/tmutil/tmutil.plist")
        self.tool = shutil.copy(TMUTIL, self.top)  # where the account can reach it
        self.environment = {
            "PATH": f"{self.folder('bin')}:{os.environ['PATH']}:/usr/sbin:/sbin", "HOME": self.home,
            "XDG_RUNTIME_DIR": self.runtime, "TMPDIR": self.folder("tmp"), "LANG": "C.UTF-8",
            "RESTIC_PACK_SIZE": "4",
        }
        self.slow_down(None)

    def path(self, name):
        return os.path.join(self.top, name)

    def folder(self, name):
        """A folder of the account's; made when it is not there yet."""
        path = self.path(name)
        os.makedirs(path, mode=0o700, exist_ok=True)
        self.give(path)
        return path

    def give(self, path):
        if self.account:
            os.chown(path, self.account.pw_uid, self.account.pw_gid, follow_symlinks=False)

    def write(self, path, content):
        """A file below the home folder, and the folders above it; its path."""
        path = os.path.join(os.fsencode(self.home), os.fsencode(path))
        missing = os.path.dirname(path)
        while not os.path.isdir(missing):
            missing = os.path.dirname(missing)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        for made in (path, *parents(path, missing)):
            self.give(made)
        return os.fsdecode(path)

    def slow_down(self, kibibytes):
        """Makes restic write so much in a second at most; with None as fast as it can."""
        limit = f"--limit-upload {kibibytes}" if kibibytes else ""
        wrapper = self.path("bin/restic")
        with open(wrapper + ".new", "w", encoding="utf-8") as file:
            file.write(f'#!/bin/sh\nexec "{RESTIC}" {limit} "$@"\n')
        os.chmod(wrapper + ".new", 0o755)
        os.replace(wrapper + ".new", wrapper)

    def popen(self, *command, environment=None, **options):
        if self.account:
            options |= {"user": self.account.pw_uid, "group": self.account.pw_gid, "extra_groups": []}
        pipes = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
        return subprocess.Popen(command, env=self.environment | (environment or {}), **(pipes | options))

    def run(self, *command, text="", environment=None):
        process = self.popen(*command, environment=environment, stdin=subprocess.PIPE)
        output, errors = process.communicate(text.encode(), timeout=PATIENCE)
        return process.returncode, os.fsdecode(output), os.fsdecode(errors)

    def tmutil(self, *arguments, **options):
        """What it printed; the test fails when it does not succeed."""
        status, output, errors = self.run(self.tool, *arguments, **options)
        self.test.assertEqual(0, status, f"tmutil {arguments}: {errors}")
        return output

    def refusal(self, *arguments, **options):
        """What it complains of; the test fails when it succeeds, or fails without a word."""
        status, _, errors = self.run(self.tool, *arguments, **options)
        self.test.assertNotEqual(0, status, f"tmutil {arguments} succeeded")
        self.test.assertRegex(errors, r"^tmutil: .+[.]\n", f"tmutil {arguments}")
        self.test.assertEqual(1, status, errors)
        return errors

    def set_destination(self):
        self.tmutil("setdestination", self.disk)

    def back_up(self, **options):
        self.tmutil("startbackup", "--block", **options)
        self.wait_for_idle()  # thinning comes after the answer

    def status(self):
        return plistlib.loads(self.tmutil("status", "-X").encode())

    def wait_for_phase(self, phase):
        def has_come():
            status = self.status()
            self.test.assertTrue(status["Running"], f"the backup ended before {phase}")
            return status["BackupPhase"] == phase and status
        return wait_until(has_come, phase)

    def wait_for_idle(self):
        return wait_until(lambda: not (status := self.status())["Running"] and status, "the end of the backup")

    def history(self):
        """The runs, the oldest first."""
        try:
            with open(os.path.join(self.home, ".local/state/tmutil/history.plist"), "rb") as file:
                return plistlib.load(file)["Runs"]
        except FileNotFoundError:
            return []

    def destinations(self):
        return plistlib.loads(self.tmutil("destinationinfo", "-X").encode()).get("Destinations", [])

    def key_file(self, repository):
        """The file with the key of a destination's repository."""
        with open(self.configuration, "rb") as file:
            for known in plistlib.load(file)["Destinations"]:
                if repository == os.path.join(known["Location"], known.get("RepositoryFolder", "")).rstrip("/"):
                    return os.path.join(os.path.dirname(self.configuration), "keys", known["RepositoryID"] + ".key")
        raise AssertionError(f"{repository} is in no destination")

    def restic(self, *arguments, repository=None):
        """What it printed; the repository is that of the disk unless another one is named."""
        repository = repository or self.repository
        key = self.key_file(repository)
        status, output, errors = self.run(RESTIC, "-r", repository, "-p", key, *arguments)
        self.test.assertEqual(0, status, f"restic {arguments}: {output}{errors}")
        return output

    def assert_sound(self, repository=None):
        """The repository is whole to the last byte, and nothing locks it."""
        self.test.assertIn("no errors were found", self.restic("check", "--read-data", repository=repository))
        self.test.assertEqual("", self.restic("list", "locks", "--no-lock", repository=repository))

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
        for point in mounts_below(self.top):
            subprocess.run(["umount", "-l", point], check=True)
        if mounts_below(self.top):
            raise AssertionError(f"{self.top} is left alone, as something is mounted in it")
        opened = ["find", self.top, "-xdev", "-type", "d", "-exec", "chmod", "u+rwx", "{}", "+"]
        subprocess.run(opened, check=False, stderr=subprocess.DEVNULL)
        subprocess.run(["rm", "-rf", "--one-file-system", self.top], check=True)


def parents(path, top):
    """The folders above the path, below the top."""
    while (path := os.path.dirname(path)) != top and len(path) > 1:
        yield path


def files_below(folder):
    return [os.path.join(top, name) for top, _, names in os.walk(folder) for name in names]


def size_of(folder):
    """Bytes in the files below the folder, which may change meanwhile."""
    total = 0
    for path in files_below(folder):
        try:
            total += os.lstat(path).st_size
        except FileNotFoundError:
            pass
    return total


def enter_private_mounts():
    """Starts this program anew where mounts are nobody else's affair; does nothing where that is not allowed."""
    for command in (["unshare", "-m"], ["unshare", "-rm"]):
        if PRIVATE_MOUNTS not in os.environ and subprocess.run([*command, "true"], check=False).returncode == 0:
            os.environ[PRIVATE_MOUNTS] = " ".join(command)
            os.execvp(command[0], [*command, sys.executable, *sys.argv])


needs_private_mounts = unittest.skipUnless(PRIVATE_MOUNTS in os.environ, "mount namespaces are not allowed here")
needs_root = unittest.skipUnless(IS_ROOT, "needs a second account, which only root can use")


def mount(*arguments):
    subprocess.run(["mount", *arguments], check=True)


def mounts_below(folder):
    """The mount points in the folder, the innermost first."""
    with open("/proc/self/mountinfo", encoding="utf-8", errors="surrogateescape") as file:
        points = [re.sub(r"\\([0-7]{3})", lambda code: chr(int(code[1], 8)), line.split()[4]) for line in file]
    return sorted((point for point in points if point.startswith(folder + "/")), key=len, reverse=True)


def make_private_devices(folder):
    """Puts a /dev of our own over the system's, with single devices of it; it is put together in the folder. The
    system's /dev itself appears nowhere else, so that nothing that is cleaned up leads there."""
    mount("-t", "tmpfs", "none", folder)
    for name in os.listdir("/dev"):
        if name in ("null", "zero", "random", "urandom", "tty") or name.startswith("loop"):
            path = os.path.join(folder, name)
            with open(path, "xb"):
                pass
            mount("--bind", os.path.join("/dev", name), path)
    mount("--rbind", folder, "/dev")


def main():
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
