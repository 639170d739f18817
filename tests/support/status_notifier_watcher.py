#!/usr/bin/python3
'''A tray host's watcher for Lanternbud's tests: owns
org.kde.StatusNotifierWatcher on the session bus of DBUS_SESSION_BUS_ADDRESS,
keeps the list of registered items, and prints "ready" once the name is its.'''

import signal
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

NAME = 'org.kde.StatusNotifierWatcher'
PATH = '/StatusNotifierWatcher'
PROPERTIES = 'org.freedesktop.DBus.Properties'

# Written out by hand: dbus-python's own introspection leaves properties out,
# and Qt reads a watcher's properties only when they are declared.
INTROSPECTION = f'''<!DOCTYPE node PUBLIC "-//freedesktop//DTD D-BUS Object Introspection 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd">
<node>
  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect"><arg name="xml" type="s" direction="out"/></method>
  </interface>
  <interface name="{PROPERTIES}">
    <method name="Get">
      <arg name="interface" type="s" direction="in"/><arg name="name" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="GetAll">
      <arg name="interface" type="s" direction="in"/><arg name="values" type="a{{sv}}" direction="out"/>
    </method>
    <method name="Set">
      <arg name="interface" type="s" direction="in"/><arg name="name" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
  </interface>
  <interface name="{NAME}">
    <method name="RegisterStatusNotifierItem"><arg name="service" type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg name="service" type="s" direction="in"/></method>
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
    <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
    <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
    <signal name="StatusNotifierHostRegistered"/>
  </interface>
</node>
'''


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, PATH)
        self.items = []
        bus.add_signal_receiver(self._name_owner_changed, 'NameOwnerChanged',
                                'org.freedesktop.DBus', 'org.freedesktop.DBus', '/org/freedesktop/DBus')

    def _properties(self):
        return {
            'RegisteredStatusNotifierItems': dbus.Array(self.items, signature='s'),
            'IsStatusNotifierHostRegistered': dbus.Boolean(True),  # the test plays the host
            'ProtocolVersion': dbus.Int32(0),
        }

    def _name_owner_changed(self, name, old_owner, new_owner):
        if new_owner:
            return
        # An item is "bus name" or "bus name/object path".
        for item in [i for i in self.items if i.split('/', 1)[0] in (name, old_owner)]:
            self.items.remove(item)
            self.StatusNotifierItemUnregistered(item)

    @dbus.service.method('org.freedesktop.DBus.Introspectable', out_signature='s')
    def Introspect(self):
        return INTROSPECTION

    @dbus.service.method(NAME, in_signature='s', sender_keyword='sender')
    def RegisterStatusNotifierItem(self, service, sender):
        # An object path alone names an object of the caller.
        item = sender + service if service.startswith('/') else service
        if item not in self.items:
            self.items.append(item)
            self.StatusNotifierItemRegistered(item)

    @dbus.service.method(NAME, in_signature='s')
    def RegisterStatusNotifierHost(self, service):
        self.StatusNotifierHostRegistered()

    @dbus.service.signal(NAME, signature='s')
    def StatusNotifierItemRegistered(self, item):
        pass

    @dbus.service.signal(NAME, signature='s')
    def StatusNotifierItemUnregistered(self, item):
        pass

    @dbus.service.signal(NAME)
    def StatusNotifierHostRegistered(self):
        pass

    @dbus.service.method(PROPERTIES, in_signature='ss', out_signature='v')
    def Get(self, interface, name):
        values = self.GetAll(interface)
        if name not in values:
            raise dbus.exceptions.DBusException(f'No property {name}',
                                                name='org.freedesktop.DBus.Error.UnknownProperty')
        return values[name]

    @dbus.service.method(PROPERTIES, in_signature='s', out_signature='a{sv}')
    def GetAll(self, interface):
        if interface not in (NAME, ''):
            raise dbus.exceptions.DBusException(f'No interface {interface}',
                                                name='org.freedesktop.DBus.Error.UnknownInterface')
        return self._properties()

    @dbus.service.method(PROPERTIES, in_signature='ssv')
    def Set(self, interface, name, value):
        raise dbus.exceptions.DBusException(f'{name} is read-only',
                                            name='org.freedesktop.DBus.Error.PropertyReadOnly')


def main():
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    Watcher(bus)
    # Not queued: a test must learn at once that another watcher holds the name.
    if bus.request_name(NAME, dbus.bus.NAME_FLAG_DO_NOT_QUEUE) != dbus.bus.REQUEST_NAME_REPLY_PRIMARY_OWNER:
        print(f'{NAME} is owned by another connection', file=sys.stderr)
        return 1
    loop = GLib.MainLoop()
    GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGTERM, loop.quit)
    print('ready', flush=True)
    loop.run()
    return 0


if __name__ == '__main__':
    sys.exit(main())
