'''BlueZ model for Lanternbud's tests: python-dbusmock's bluez5 template
with two faults of its Debian 12 version mended. Device1.Connect and
Disconnect announce the Connected change but do not store it, and
PairDevice does not store the Class it is given.'''

import dbus

from dbusmock import mockobject
from dbusmock.templates import bluez5
from dbusmock.templates.bluez5 import *  # noqa: F401,F403 (the template's methods, names and load())
from dbusmock.templates.bluez5 import BLUEZ_MOCK_IFACE, DEVICE_IFACE


def _set_connected(device, connected, error_name, error_text):
    if bool(device.props[DEVICE_IFACE]['Connected']) == connected:
        raise dbus.exceptions.DBusException(error_text, name=error_name)
    device.UpdateProperties(DEVICE_IFACE, {'Connected': dbus.Boolean(connected)})


def _connect(device):
    _set_connected(device, True, 'org.bluez.Error.AlreadyConnected', 'Already Connected')


def _disconnect(device):
    _set_connected(device, False, 'org.bluez.Error.NotConnected', 'Not Connected')


@dbus.service.method(BLUEZ_MOCK_IFACE, in_signature='sss', out_signature='s')
def AddDevice(self, adapter_device_name, device_address, alias):
    path = bluez5.AddDevice(self, adapter_device_name, device_address, alias)
    mockobject.objects[path].AddMethods(DEVICE_IFACE, [
        ('Connect', '', '', _connect),
        ('Disconnect', '', '', _disconnect),
    ])
    return path


@dbus.service.method(BLUEZ_MOCK_IFACE, in_signature='ssi', out_signature='')
def PairDevice(self, adapter_device_name, device_address, class_):
    bluez5.PairDevice(self, adapter_device_name, device_address, class_)
    path = f'/org/bluez/{adapter_device_name}/dev_{device_address.replace(":", "_").upper()}'
    mockobject.objects[path].UpdateProperties(DEVICE_IFACE, {'Class': dbus.UInt32(class_)})
