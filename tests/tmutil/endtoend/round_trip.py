#!/usr/bin/env python3
"""What is backed up comes back bit for bit, and what is to be left out is left out."""

import os
import stat

from machine import SMALL, MachineTest, main

FILES = 1000 if SMALL else 10000

NAMES = [
    b"two  blanks ", b" leading", b"line\nbreak\ttab\r", b"'single' \"double\"", b"back\\slash\\", b"*?[a-z]{x,y}",
    b"[", b"\\*", b"$HOME", b"-n", b"--include", b"!bang", b"#hash;&|<>`id`", b"\xff\xfe\x80 no UTF-8",
    "Ünïcödé 🚲 e\u0301".encode(), b"n" * 255, b"...", b"a=b:c,d%41",
]


def describe(item):
    """All there is to compare of an item and what is below it, by path relative to it."""
    top = os.fsencode(item)
    paths = [top]
    for folder, folders, names in os.walk(top):
        paths += [os.path.join(folder, name) for name in folders + names]
    found = {}
    for path in paths:
        status = os.lstat(path)
        content = b""
        if stat.S_ISLNK(status.st_mode):
            content = os.readlink(path)
        elif stat.S_ISREG(status.st_mode):
            with open(path, "rb") as file:
                content = file.read()
        found[os.path.relpath(path, top)] = (oct(status.st_mode), status.st_mtime_ns, content)
    return found


class RoundTrip(MachineTest):
    user = "nobody"  # whom modes keep out

    def make_awkward_tree(self):
        tree = os.path.join(self.home, "Documents")
        for name in NAMES:
            self.write(os.path.join(os.fsencode(tree), name), b"content of " + name)
            self.write(os.path.join(os.fsencode(tree), b"folders", name, name), name * 100)
        self.write("Documents/big", os.urandom(9_000_000))
        for number in range(FILES):
            self.write(f"Documents/many/{number % 100}/{number}", b"small %d" % number)
        os.truncate(self.write("Documents/sparse", b"start"), 30_000_000)
        os.link(self.write("Documents/empty", b""), tree + "/many/empty too")
        for link, target in {"dangling": "no such file", "absolute": "/etc/passwd", "strange": "\n* 🚲\\"}.items():
            os.symlink(target, os.path.join(tree, link))
        os.mkfifo(tree + "/fifo")
        for name, mode in {"suid": 0o4755, "read only": 0o400, "odd": 0o1642}.items():
            os.chmod(self.write("Documents/modes/" + name, b"x"), mode)
        for name, mode in {"sticky": 0o1777, "closed": 0o500}.items():
            self.write(f"Documents/{name} folder/inside", b"y")
            os.chmod(f"{tree}/{name} folder", mode)
        for name, time in {"dangling": 1_000_000_007, "closed folder": -86_400 * 10**9 + 1}.items():
            os.utime(f"{tree}/{name}", ns=(5, time), follow_symlinks=False)
        return tree

    def restore(self, target, *items):
        backup = self.tmutil("latestbackup").rstrip("\n")
        self.assertEqual(backup, self.tmutil("listbackups").splitlines()[-1])
        return self.tmutil("restore", *(os.fsencode(backup) + os.fsencode(item) for item in items), target)

    def test_everything_comes_back(self):
        self.tmutil("setdestination", self.disk)
        tree = self.make_awkward_tree()
        unreadable = [self.write("unreadable", b"secret"), os.path.dirname(self.write("dark/inside", b"s"))]
        for path in unreadable:
            os.chmod(path, 0)
        self.back_up()
        self.assertEqual("Completed", self.history()[-1]["Result"])
        if os.geteuid() != 0:
            self.assertEqual(2, self.history()[-1]["Skipped"])
        for path in unreadable:
            os.chmod(path, 0o700)
        self.assert_sound()

        # Changed, backed up again, and restored in whole and in parts.
        os.unlink(tree + "/big")
        os.utime(tree, ns=(1, 1_600_000_000_000_000_123))
        self.back_up()
        whole = os.path.join(self.folder("restored"), "whole")
        self.restore(whole, self.home)
        self.assertGreater(len(describe(tree)), len(NAMES) * 3)
        self.assertEqual(describe(tree), describe(whole + "/Documents"))

        items = os.fsencode(self.folder("items"))
        single = [name for name in NAMES if any(c in name for c in b"*[\\\n\xff")] + [b"closed folder", b"dangling"]
        inside = os.fsencode(tree)
        self.restore(items, *(os.path.join(inside, name) for name in single))
        for name in single:
            self.assertEqual(describe(os.path.join(inside, name)), describe(os.path.join(items, name)))
        self.assertEqual(sorted(single), sorted(os.listdir(items)))
        self.assert_sound()

        # What is there is never replaced.
        notes = self.write("Documents/...", b"new")
        backup = self.tmutil("latestbackup").rstrip("\n")
        empty = self.folder("empty")
        for operands, complaint in (
                ([notes, notes], "exists already"),
                ([notes, tree], "exists already"),
                ([notes, self.path("no/such/folder")], "No such file"),
                ([notes + "s", empty], "is not in that backup"),
                (["s" + notes, empty], "no such backup"),
                ([notes, backup + notes, self.path("new")], "is no folder")):
            self.assertIn(complaint, self.refusal("restore", backup + operands[0], *operands[1:]))
        with open(notes, "rb") as file:
            self.assertEqual(b"new", file.read())
        self.assertEqual([], os.listdir(empty))
        self.assertEqual([], [name for name in os.listdir(tree) if "restore" in name])

    def test_selection(self):
        # The home folder is a link, as it is where homes are on another disk.
        home, real = os.fsencode(self.home), os.fsencode(self.home) + b".real"
        os.rename(home, real)
        os.symlink(real, home)
        self.tmutil("setdestination", self.disk)
        inside = self.folder("home/backups")
        self.tmutil("setdestination", "-a", inside)
        self.repository = inside + "/Backups.restic"
        trash = b".Trash-%d" % (self.identity["user"] if self.identity else os.getuid())
        odd = [b"out*", b"line\nend", b"carriage\rreturn", b"\x1b[m", b"no character \xef\xbf\xbf"]
        left_out = [b".cache/a", b".local/share/Trash/files/b", b".var/app/org.example/cache/c", b"tagged/sub/d",
                    b"sub/" + trash + b"/e", b"left [out]/f", b"\xff\xfe/g", *odd]
        kept = [b".config/h", b".local/share/i", b".var/app/org.example/data/j", b"untagged/k",
                b"sub/" + trash + b"0/l", b"left o/m", b"left [out].n", b"out of it", b"line"]
        for path in left_out + kept:
            self.write(path, b"content")
        tag = b"Signature: 8a477f597d28d172789f06886806bc55\n"
        self.write("tagged/CACHEDIR.TAG", tag)
        self.write("untagged/CACHEDIR.TAG", b"no " + tag)
        os.symlink("left [out]", home + b"/link")
        for path in b"link/../left [out]/", b"\xff\xfe", *odd:
            self.tmutil("addexclusion", os.path.join(home, path))

        def stored():
            output = self.restic("ls", "latest")
            return [path for path in left_out + kept if f"\n{os.fsdecode(os.path.join(real, path))}\n" in output]

        for _ in range(2):  # one into each destination
            self.back_up()
        self.assertEqual(2, len({run["DestinationID"] for run in self.history()}))
        self.assertTrue(self.tmutil("latestbackup").startswith(os.fsdecode(real) + "/backups/"))
        self.assertEqual(kept, stored())
        self.assertNotIn("Backups.restic", self.restic("ls", "latest"))
        for path in left_out + kept + [b"link/f", b"link"]:
            mark = "Excluded" if path in left_out + [b"link/f"] else "Included"
            for asked in os.path.join(home, path), os.path.join(real, path):
                self.assertEqual(f"[{mark}]  {os.fsdecode(asked)}\n", self.tmutil("isexcluded", asked))
        self.tmutil("addsource", os.path.join(home, b"sub"), self.tool)
        self.tmutil("removesource", home)
        self.back_up("-d", self.destinations()[1]["ID"])
        self.assertEqual([path for path in kept if path.startswith(b"sub/")], stored())
        self.assertIn(self.tool, self.restic("ls", "latest").splitlines())


if __name__ == "__main__":
    main()
