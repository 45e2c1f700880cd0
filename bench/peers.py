"""Programs of other makers that do a comparable job, with the least configuration that has them keep a schedule.

Each lives in the background of a desktop and starts backups when they are due. They run with the home folder of the
environment, and have nothing due while they are measured.
"""

import os
import signal
import sqlite3
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

HOME = Path(os.environ["HOME"])
CONFIG = Path(os.environ["XDG_CONFIG_HOME"])
DOCUMENTS = HOME / "documents"
TARGET = HOME / "target"


@dataclass
class Peer:
    package: str
    command: list[str]
    bus_name: str | None  # owned once the program is ready, where it has no icon; else its icon says so
    configure: Callable[[], None]


def configure_kup():
    """One plan, weekly by synchronisation into a folder; its last backup has just been made."""
    (CONFIG / "kuprc").write_text(
        "[Kup settings]\nBackups enabled=true\nNumber of backup plans=1\n\n"
        "[Plan/1]\nBackup type=1\nDescription=Documents\nDestination type=0\nSchedule type=1\n"
        "Schedule interval=1\nSchedule interval unit=3\n"
        f"Filesystem destination path={TARGET}\nPaths included={DOCUMENTS}\n"
        f"Last complete backup={time.strftime('%Y,%m,%d,%H,%M,%S', time.gmtime())}\n")


def configure_deja_dup():
    """Backups once a week, the last of them now."""
    for key, value in [("periodic", "true"), ("last-run", f"'{time.strftime('%Y-%m-%dT%H:%M:%SZ', time.gmtime())}'"),
                       ("last-backup", f"'{time.strftime('%Y-%m-%dT%H:%M:%SZ', time.gmtime())}'")]:
        subprocess.run(["gsettings", "set", "org.gnome.DejaDup", key, value], check=True, stderr=subprocess.DEVNULL)


def configure_vorta():
    """No window at the start, and its profile every three hours into a folder. Its first start makes the database."""
    database = HOME / ".local/share/Vorta/settings.db"
    with subprocess.Popen(["vorta"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as first:
        time.sleep(10)
        first.send_signal(signal.SIGTERM)
    now = time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime())
    with sqlite3.connect(database) as opened:
        opened.execute("UPDATE settingsmodel SET value = 0 WHERE key = 'foreground'")
        opened.execute("INSERT INTO repomodel (id, url, added_at, encryption, create_backup_cmd, extra_borg_arguments) "
                       "VALUES (1, ?, ?, 'none', '', '')", (str(TARGET), now))
        opened.execute("INSERT INTO sourcedirmodel (dir, dir_size, dir_files_count, path_isdir, profile_id, added_at) "
                       "VALUES (?, 0, 0, 1, 1, ?)", (str(DOCUMENTS), now))
        opened.execute("UPDATE backupprofilemodel SET repo_id = 1, schedule_mode = 'interval', validation_on = 0")
        # A first backup would be due at once.
        opened.execute("INSERT INTO eventlogmodel (start_time, end_time, category, subcommand, message, returncode, "
                       "params, profile, repo_url) VALUES (?, ?, 'user', 'create', '', 0, '{}', '1', ?)",
                       (now, now, str(TARGET)))


PEERS = {
    "Vorta": Peer("vorta", ["vorta"], None, configure_vorta),
    "Kup": Peer("kup-backup", ["kup-daemon"], "org.kde.kupdaemon", configure_kup),
    "Déjà Dup's monitor": Peer("deja-dup", ["/usr/libexec/deja-dup/deja-dup-monitor"], "org.gnome.DejaDup.Monitor",
                               configure_deja_dup),
}


def configure_all():
    for folder in (DOCUMENTS, TARGET):
        folder.mkdir()
    for peer in PEERS.values():
        peer.configure()


def version(package):
    return subprocess.run(["dpkg-query", "--show", "--showformat=${Version}", package], check=True,
                          capture_output=True, text=True).stdout
