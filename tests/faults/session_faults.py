"""Faults of the session around the program: bus, panel, display, signals."""

import random
import signal
import time

from desk import Failure, Outcome

SIGNALS = 200


def with_icon_back(desk, seen, start):
    """What is missing is started; the icon has to come by itself, with a menu as that of a first day."""
    start()
    seconds = desk.await_icon()
    desk.wait_for("the menu", lambda: "No Backup running" in desk.lines())
    back = f"the icon is there after {seconds:.1f} s, its menu says “{desk.lines()[1]}”"
    return Outcome(seen, desk.check_kept(), back)


def start_bus_and_panel(desk):
    desk.start_bus()
    desk.start_panel()


def bus_restarted(desk):
    desk.start()
    desk.stop_bus()
    desk.stop("panel")
    desk.await_refresh()
    return with_icon_back(desk, desk.seen(), lambda: start_bus_and_panel(desk))


def no_bus_at_start(desk):
    desk.start_display()
    desk.launch()
    desk.await_refresh()
    return with_icon_back(desk, desk.seen(), lambda: start_bus_and_panel(desk))


def bus_gone_for_good(desk):
    """The program goes on without, and ends when it is told to."""
    desk.start()
    desk.stop_bus()
    desk.stop("panel")
    seconds, seen = desk.await_refresh(), desk.seen()
    kept = desk.check_kept()
    desk.quit()
    return Outcome(seen, kept, f"the tool was asked {seconds:.1f} s later; the program ended when asked to")


def panel_restarted(desk):
    desk.start()
    desk.stop("panel")
    desk.wait_for("the icon is gone", lambda: desk.seen() == ["no icon"])
    desk.await_refresh()
    return with_icon_back(desk, desk.seen(), desk.start_panel)


def no_tray(desk):
    desk.start_display()
    desk.start_bus()
    desk.launch()
    desk.wait_for("a window", desk.windows)
    return with_icon_back(desk, desk.seen(), desk.start_panel)


def no_screen_saver(desk):
    desk.start_display("-extension", "MIT-SCREEN-SAVER")
    desk.start()
    desk.wait_for("the log tells of it", lambda: "Idle time: unknown to this session" in desk.log())
    seconds = desk.await_refresh()
    back = f"it does not end; the tool is asked for the status, {seconds:.1f} s later"
    return Outcome(desk.seen(), desk.check_kept(), back)


def display_gone(desk):
    desk.start()
    desk.stop("display")
    program = desk.processes.pop("orvello")
    seconds = desk.wait_for("the program ends with its display", lambda: program.poll() is not None)
    kept = desk.check_kept()
    desk.start_display()
    desk.launch()
    desk.await_icon()
    seen = [f"the program has ended, {seconds:.1f} s later"]
    return Outcome(seen, kept, f"when started again, the menu says “{desk.lines()[1]}”")


def told_to_quit(desk):
    """At any moment from the start on, also while the tool hangs and while settings are being written."""
    chance = random.Random(desk.seed)
    desk.start_display()
    start_bus_and_panel(desk)
    desk.expected["AutoStart"] = lambda value: value in (True, False)
    longest, early = 0, 0
    for run in range(SIGNALS):
        fault = chance.choice(["hang", "half-and-hang", "linger", None, None, None])
        with_signal = chance.choice([signal.SIGTERM, signal.SIGINT, signal.SIGHUP])
        if run % 2:
            desk.set_fault(fault)
            desk.launch()
            time.sleep(chance.uniform(0, 0.1))
        else:
            desk.set_fault(None)
            desk.launch()
            desk.wait_for("the icon", desk.has_icon)
            entry = desk.entry("Start at Login")
            desk.set_fault(fault)
            desk.click_unanswered(entry, 1)
            desk.menu_event(0, "opened", no_reply=True)
            time.sleep(chance.uniform(0, 0.03))
        began = time.monotonic()
        status = desk.stop("orvello", with_signal)
        longest = max(longest, time.monotonic() - began)
        early += status == -with_signal  # before the program had made its arrangements
        if status not in (0, -with_signal):
            raise Failure(f"run {run + 1} of {SIGNALS}: {with_signal.name} ended the program with {status}")
        if wrong := desk.settings_differ():
            raise Failure(f"run {run + 1} of {SIGNALS}: {wrong}")
    kept = desk.check_kept(f"after each of {SIGNALS} signals")
    desk.set_fault(None)
    desk.launch()
    seconds = desk.await_icon()
    seen = [f"the program has ended within {longest:.1f} s, each time; {early} times while it was still starting"]
    return Outcome(seen, kept, f"the icon is there {seconds:.1f} s after the next start")


FAULTS = {
    "The session bus is restarted": bus_restarted,
    "The session bus is gone for good": bus_gone_for_good,
    "No session bus at the start": no_bus_at_start,
    "The panel is killed and restarted": panel_restarted,
    "No tray at all": no_tray,
    "An X server without the screen-saver extension": no_screen_saver,
    "The display is gone": display_gone,
    f"Told to quit {SIGNALS} times, at random moments": told_to_quit,
}
