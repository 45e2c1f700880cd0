"""Faults of the backup tool. Unless told otherwise, a backup that goes on all the time has come to the copying."""

import os
import shutil

from desk import HERE, Outcome


def start_copying(desk):
    desk.play_backup(0.4)
    desk.start()
    # A tool that does not answer is taken for one that does nothing: what was copied so far is then counted.
    for key in [key for key in desk.expected if key.startswith(("Files", "Bytes"))]:
        least = desk.expected[key] if key.endswith("Total") else 0
        desk.expected[key] = lambda value, least=least: value is not None and value >= least


def fault_of_the_answer(name):
    def inject(desk):
        start_copying(desk)
        return desk.ride_out(lambda: desk.set_fault(name), lambda: desk.set_fault(None))
    return inject


def hangs_at_the_start(desk):
    desk.set_fault("hang")
    desk.start_display()
    desk.start_bus()
    desk.start_panel()
    desk.launch()
    icon = desk.wait_for("the icon", desk.has_icon)
    seen = desk.seen()
    desk.set_fault(None)
    desk.open_menu()
    seconds = desk.wait_for("the menu", lambda: "No Backup running" in desk.lines())
    return Outcome([f"the icon after {icon:.1f} s", *seen], desk.check_kept(),
                   f"the menu says “{desk.lines()[1]}” after {seconds:.1f} s")


def loses_its_run_bit(desk):
    start_copying(desk)
    return desk.ride_out(lambda: desk.tool.chmod(0o644), lambda: desk.tool.chmod(0o755))


def is_replaced_during_a_run(desk):
    """The old tool is idle and slow, the new one copies; a run of the old one is under way when it is replaced."""
    desk.set_fault("slow")
    desk.start()
    seen = desk.seen()
    desk.wait_for("a run", desk.left)
    new_tool = desk.folder / "new-tool"
    shutil.copy(HERE / "tool", new_tool)
    os.replace(new_tool, desk.tool)
    desk.set_fault(None)
    desk.play_backup(0.4)
    seconds = desk.wait_for("the new tool", lambda: "Copying Data ..." in desk.lines())
    return Outcome(seen, desk.check_kept(), f"“{desk.lines()[1]}” of the new tool after {seconds:.1f} s")


FAULTS = {
    "The tool hangs": fault_of_the_answer("hang"),
    "The tool hangs at the start": hangs_at_the_start,
    "The tool hangs after half an answer": fault_of_the_answer("half-and-hang"),
    "The tool floods": fault_of_the_answer("flood"),
    "The tool dies by a signal after half an answer": fault_of_the_answer("half-and-die"),
    "The tool leaves a child that holds the pipe": fault_of_the_answer("child"),
    "The tool loses its run bit": loses_its_run_bit,
    "The tool is replaced during a run": is_replaced_during_a_run,
}
