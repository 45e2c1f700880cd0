#!/usr/bin/env python3
"""What is backed up comes back bit for bit, and what is to be left out is left out."""

import hashlib
import os
import stat
import unittest

from machine import SMALL, Machine, main

FILES = 1000 if SMALL else 10000
NAMES = [
    b"two  blanks ", b" leading", b"line\nbreak\ttab\r", b"'single' \"double\"", b"back\\slash\\", b"*?[a-z]{x,y}",
    b"[", b"\\*", b"$HOME", b"-n", b"--include", b"!bang", b"#hash;&|<>`id`", b"\xff\xfe\x80 no UTF-8",
    "Ünïcödé 🚲 e\u0301".encode(), b"n" * 255, b"...", b"a=b:c,d%41",
]


def describe(item):
    """All there is to compare of an item and what is below it: by path relative to it, and what is linked together."""
    top = os.fsencode(item)
    paths = [top]
    for folder, folders, names in os.walk(top):
        paths += [os.path.join(folder, name) for name in folders + names]
    found, links = {}, {}
    for path in paths:
        status = os.lstat(path)
        content = b""
        if stat.S_ISLNK(status.st_mode):
            content = os.readlink(path)
        elif stat.S_ISREG(status.st_mode):
            with open(path, "rb") as file:
                content = hashlib.sha256(file.read()).digest()
            links.setdefault(status.st_ino, []).append(os.path.relpath(path, top))
        found[os.path.relpath(path, top)] = (oct(status.st_mode), status.st_mtime_ns, content)
    return found, sorted(sorted(group) for group in links.values() if len(group) > 1)


class RoundTrip(unittest.TestCase):
    maxDiff = 4000

    def setUp(self):
        self.machine = Machine(self, user="nobody")
        self.machine.set_destination()

    def make_awkward_tree(self):
        machine = self.machine
        tree = os.path.join(machine.home, "Documents")
        inside = os.fsencode(tree)
        for name in NAMES:
            machine.write(os.path.join(inside, name), b"content of " + name)
            machine.write(os.path.join(inside, b"folders", name, name), name * 100)
        for i in range(FILES):
            machine.write(f"Documents/many/{i % 100}/{i}", b"%d" % i)
        machine.write("Documents/empty", b"")
        machine.write("Documents/big", os.urandom(9_000_000))
        with open(machine.write("Documents/sparse", b"start"), "r+b") as file:
            file.truncate(30_000_000)
        for link, target in {"dangling": "no such file", "absolute": "/etc/passwd", "to folder": "many",
                             "strange": "\n* 🚲\\"}.items():
            os.symlink(target, os.path.join(tree, link))
            machine.give(os.path.join(tree, link))
        os.link(os.path.join(tree, "big"), os.path.join(tree, "big too"))
        os.link(os.path.join(tree, "empty"), os.path.join(tree, "many", "empty too"))
        os.mkfifo(os.path.join(tree, "fifo"))
        machine.give(os.path.join(tree, "fifo"))
        for name, mode in {"suid": 0o4755, "read only": 0o400, "all": 0o777, "odd": 0o1642}.items():
            os.chmod(machine.write("Documents/modes/" + name, b"x"), mode)
        for name, mode in {"sticky": 0o1777, "closed": 0o500}.items():
            machine.write(f"Documents/{name} folder/inside", b"y")
            os.chmod(os.path.join(tree, name + " folder"), mode)
        for name, time in {"old": -86_400 * 10**9 + 1, "new": 4_000_000_000 * 10**9 + 123_456_789}.items():
            os.utime(machine.write("Documents/" + name, b"time"), ns=(time, time))
        os.utime(os.path.join(tree, "dangling"), ns=(5, 1_000_000_007), follow_symlinks=False)
        os.utime(os.path.join(tree, "closed folder"), ns=(5, 1_500_000_007))
        return tree

    def restore(self, item, target, *more):
        backup = self.machine.tmutil("latestbackup").rstrip("\n")
        self.assertEqual(backup, self.machine.tmutil("listbackups").splitlines()[-1])
        operands = [os.fsencode(backup) + os.fsencode(path) for path in (item, *more)]
        return self.machine.tmutil("restore", *operands, target)

    def test_everything_comes_back(self):
        machine = self.machine
        tree = self.make_awkward_tree()
        unreadable = [machine.write("Documents/unreadable", b"secret"), machine.write("Documents/dark/inside", b"s")]
        for path in (unreadable[0], os.path.dirname(unreadable[1])):
            os.chmod(path, 0)
        machine.back_up()
        self.assertEqual("Completed", machine.history()[-1]["Result"])
        if os.geteuid() != 0 or machine.account:
            self.assertEqual(2, machine.history()[-1]["Skipped"])
            os.unlink(unreadable[0])
            os.chmod(os.path.dirname(unreadable[1]), 0o700)
            os.unlink(unreadable[1])
            os.rmdir(os.path.dirname(unreadable[1]))
            os.utime(tree, ns=(0, 0))
        machine.assert_sound()

        # Changed, backed up again, and restored in whole and in parts.
        machine.write("Documents/big", os.urandom(8_000_000))
        os.unlink(os.path.join(tree, "sparse"))
        machine.write("Documents/later", b"later")
        os.utime(tree, ns=(1, 1_600_000_000_000_000_123))
        machine.back_up()
        whole = os.path.join(machine.folder("restored"), "whole")
        self.restore(machine.home, whole)
        expected, links = describe(tree)
        self.assertGreater(len(expected), FILES + len(NAMES) * 2)
        self.assertEqual((expected, links), describe(os.path.join(whole, "Documents")))

        items = machine.folder("items")
        single = [name for name in NAMES if any(c in name for c in b"*[\\\n\xff")] + [b"closed folder", b"dangling"]
        names = [os.path.join(os.fsencode(tree), name) for name in single]
        self.restore(names[0], items, *names[1:])
        for name in map(os.path.basename, names):
            alone = os.path.join(os.fsencode(items), name)
            self.assertEqual(describe(os.path.join(os.fsencode(tree), name)), describe(alone))
        self.assertEqual(sorted(map(os.path.basename, names)), sorted(os.listdir(os.fsencode(items))))
        machine.assert_sound()

    def test_what_is_there_is_never_replaced(self):
        machine = self.machine
        path = machine.write("notes", b"old")
        machine.back_up()
        machine.write("notes", b"new")
        backup = machine.tmutil("latestbackup").rstrip("\n")
        folder = machine.folder("there")
        for target, complaint in {path: "exists already", machine.home: "exists already",
                                  machine.path("no/such/folder"): "No such file"}.items():
            self.assertIn(complaint, machine.refusal("restore", backup + path, target))
        with open(path, "rb") as file:
            self.assertEqual(b"new", file.read())
        self.assertIn("is not in that backup", machine.refusal("restore", backup + path + "s", folder))
        self.assertIn("no such backup", machine.refusal("restore", "/nowhere" + path, folder))
        self.assertIn("is no folder", machine.refusal("restore", backup + path, backup + path, machine.path("new")))
        self.assertEqual([], os.listdir(folder))
        self.assertEqual([], [name for name in os.listdir(machine.home) if "restore" in name])

    def test_selection(self):
        machine = self.machine
        inside = machine.folder("home/backups")
        machine.tmutil("setdestination", "-a", inside)
        tag = b"Signature: 8a477f597d28d172789f06886806bc55\n"
        left_out = [machine.write(path, b"left out") for path in (
            ".cache/a", ".local/share/Trash/files/b", ".var/app/org.example/cache/c", "tagged/data", "left [out]/d",
            "Trash/.Trash-%d/e" % (machine.account.pw_uid if machine.account else os.getuid()), "out*")]
        kept = [machine.write(path, b"kept") for path in ("left o/d", "out of it", "untagged/f", ".config/g", "Trash/h")]
        machine.write("tagged/CACHEDIR.TAG", tag)
        machine.write("untagged/CACHEDIR.TAG", b"no " + tag)
        machine.write("sub/only", b"kept")
        machine.tmutil("addexclusion", os.path.dirname(left_out[4]), left_out[6])
        other = machine.folder("other")
        machine.write(os.path.join(other, "elsewhere"), b"kept")

        def stored():
            machine.back_up()
            folder = next(d["MountPoint"] for d in machine.destinations() if "LastDestination" in d)
            return set(machine.restic("ls", "latest", repository=os.path.join(folder, "Backups.restic")).splitlines())

        for _ in range(2):  # one into each destination
            paths = stored()
            self.assertLessEqual(set(kept), paths)
            self.assertEqual([], [p for p in left_out if p in paths])
            self.assertEqual([], [p for p in paths if p.startswith(inside + "/")])
        for path in left_out + kept:
            mark = "Excluded" if path in left_out else "Included"
            self.assertEqual(f"[{mark}]  {path}\n", machine.tmutil("isexcluded", path))
        machine.tmutil("addsource", other)
        machine.tmutil("addsource", os.path.join(machine.home, "sub"))
        machine.tmutil("removesource", machine.home)
        self.assertEqual([other, os.path.join(machine.home, "sub")], machine.tmutil("listsources").splitlines())
        paths = stored()
        self.assertLessEqual({os.path.join(other, "elsewhere"), os.path.join(machine.home, "sub/only")}, paths)
        self.assertEqual([], [p for p in kept if p in paths])


if __name__ == "__main__":
    main()
