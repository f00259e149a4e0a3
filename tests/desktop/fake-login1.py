#!/usr/bin/python3
"""A stand-in for systemd-logind's inhibitors and the desktop's screen saver service, for tests.

Speaks the real protocol: org.freedesktop.login1.Manager.Inhibit on the system bus returns the write end
of a pipe, and the inhibitor lasts until every copy of it is closed (seen as a hang-up on the read end);
org.freedesktop.ScreenSaver.Inhibit on the session bus returns a cookie until UnInhibit, or until the
caller leaves the bus. Each event is one line in the log file, flushed at once:
    ready
    inhibit ID WHAT WHO MODE pid=PID WHY...
    released ID
    screensaver-inhibit COOKIE APP REASON...
    screensaver-uninhibit COOKIE
    screensaver-vanished COOKIE
Usage: fake-login1.py LOG [--no-login1] [--no-screensaver]
The buses are the ones in DBUS_SYSTEM_BUS_ADDRESS and DBUS_SESSION_BUS_ADDRESS.
"""
import os
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

LOG = open(sys.argv[1], "a", buffering=1)


def log(line):
    LOG.write(line + "\n")


class Manager(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/login1")
        self.next_id = 1
        self.inhibitors = {}  # id -> (what, who, why, mode, uid, pid, read end)

    @dbus.service.method("org.freedesktop.login1.Manager", in_signature="ssss", out_signature="h",
                         sender_keyword="sender")
    def Inhibit(self, what, who, why, mode, sender=None):
        if mode not in ("block", "delay"):
            raise dbus.exceptions.DBusException("invalid mode", name="org.freedesktop.DBus.Error.InvalidArgs")
        read_end, write_end = os.pipe()
        ident = self.next_id
        self.next_id += 1
        pid = int(self.connection.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                                "GetConnectionUnixProcessID", "s", (sender,)))
        self.inhibitors[ident] = (what, who, why, mode, os.getuid(), pid, read_end)
        GLib.io_add_watch(read_end, GLib.PRIORITY_DEFAULT, GLib.IO_HUP | GLib.IO_ERR, self.hung_up, ident)
        log(f"inhibit {ident} {what} {who} {mode} pid={pid} {why}")
        fd = dbus.types.UnixFd(write_end)  # a copy: ours is closed now, the caller's travels in the reply
        os.close(write_end)
        return fd

    @dbus.service.method("org.freedesktop.login1.Manager", in_signature="", out_signature="a(ssssuu)")
    def ListInhibitors(self):
        return [(w, who, why, mode, uid, pid) for (w, who, why, mode, uid, pid, _) in self.inhibitors.values()]

    def hung_up(self, fd, condition, ident):
        os.close(fd)
        self.inhibitors.pop(ident, None)
        log(f"released {ident}")
        return False


class ScreenSaver(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/ScreenSaver")
        self.next_cookie = 1
        self.cookies = {}  # cookie -> sender
        bus.add_signal_receiver(self.owner_changed, "NameOwnerChanged", "org.freedesktop.DBus")

    @dbus.service.method("org.freedesktop.ScreenSaver", in_signature="ss", out_signature="u",
                         sender_keyword="sender")
    def Inhibit(self, app, reason, sender=None):
        cookie = self.next_cookie
        self.next_cookie += 1
        self.cookies[cookie] = sender
        log(f"screensaver-inhibit {cookie} {app} {reason}")
        return dbus.UInt32(cookie)

    @dbus.service.method("org.freedesktop.ScreenSaver", in_signature="u", out_signature="")
    def UnInhibit(self, cookie):
        if self.cookies.pop(int(cookie), None) is not None:
            log(f"screensaver-uninhibit {int(cookie)}")

    def owner_changed(self, name, old, new):
        if new:
            return
        for cookie, sender in list(self.cookies.items()):
            if sender == name:
                del self.cookies[cookie]
                log(f"screensaver-vanished {cookie}")


def main():
    DBusGMainLoop(set_as_default=True)
    keep = []
    if "--no-login1" not in sys.argv:
        system = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
        keep += [system, dbus.service.BusName("org.freedesktop.login1", system), Manager(system)]
    if "--no-screensaver" not in sys.argv:
        session = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        keep += [session, dbus.service.BusName("org.freedesktop.ScreenSaver", session), ScreenSaver(session)]
    log("ready")
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
