#!/usr/bin/python3
"""A desktop's notification service that writes each notification to standard output, as a line of JSON: title, body and
urgency. Use: DBUS_SESSION_BUS_ADDRESS=… notification_service.py; the first line says that it is ready."""

import json

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "org.freedesktop.Notifications"


class Notifications(dbus.service.Object):
    @dbus.service.method(NAME, in_signature="susssasa{sv}i", out_signature="u")
    def Notify(self, _program, _replaced, _icon, title, body, _actions, hints, _timeout):
        print(json.dumps([str(title), str(body), int(hints.get("urgency", 1))]), flush=True)
        return dbus.UInt32(1)

    @dbus.service.method(NAME, out_signature="ssss")
    def GetServerInformation(self):
        return "recorder", "tests", "1", "1.2"

    @dbus.service.method(NAME, out_signature="as")
    def GetCapabilities(self):
        return ["body", "body-markup"]


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
owned = dbus.service.BusName(NAME, bus, do_not_queue=True)
service = Notifications(bus, "/org/freedesktop/Notifications")
print("ready", flush=True)
GLib.MainLoop().run()
