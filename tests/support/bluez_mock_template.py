'''BlueZ model for Lanternbud's tests: python-dbusmock's bluez5 template
with two faults of its Debian 12 version mended. Device1.Connect and
Disconnect announce the Connected change but do not store it, and
PairDevice does not store the Class it is given. A connection resolves the
device's GATT services, which AddBatteryService gives it: as bluetoothd's
battery plugin does, the Battery Service it claims is not exported, and its
level appears on the device as org.bluez.Battery1 once it is connected.'''

import dbus

from dbusmock import mockobject
from dbusmock.templates import bluez5
from dbusmock.templates.bluez5 import *  # noqa: F401,F403 (the template's methods, names and load())
from dbusmock.templates.bluez5 import BLUEZ_MOCK_IFACE, DEVICE_IFACE, OBJECT_MANAGER_IFACE


def _set_connected(device, connected, error_name, error_text):
    if bool(device.props[DEVICE_IFACE]['Connected']) == connected:
        raise dbus.exceptions.DBusException(error_text, name=error_name)
    device.UpdateProperties(DEVICE_IFACE, {'Connected': dbus.Boolean(connected)})
    device.UpdateProperties(DEVICE_IFACE, {'ServicesResolved': dbus.Boolean(connected)})


BATTERY_IFACE = 'org.bluez.Battery1'
# Battery levels by device path, shown once the device is connected.
_battery_levels = {}


def _connect(device):
    path = device.__dbus_object_path__
    if path in _battery_levels and BATTERY_IFACE not in device.props:
        properties = {'Percentage': dbus.Byte(_battery_levels[path])}
        device.AddProperties(BATTERY_IFACE, properties)
        mockobject.objects['/'].EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesAdded', 'oa{sa{sv}}',
                                           [dbus.ObjectPath(path), {BATTERY_IFACE: properties}])
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


GATT_SERVICE_IFACE = 'org.bluez.GattService1'
GATT_CHARACTERISTIC_IFACE = 'org.bluez.GattCharacteristic1'


def _uuid(short):
    return f'0000{short}-0000-1000-8000-00805f9b34fb'


@dbus.service.method(BLUEZ_MOCK_IFACE, in_signature='oy', out_signature='')
def AddBatteryService(self, device_path, level):
    '''A device with a Battery Service at `level` percent, and a Device
    Information service whose Manufacturer Name reads "Lantern".'''
    _battery_levels[device_path] = level
    service = f'{device_path}/service0010'
    properties = {'UUID': dbus.String(_uuid('180a')), 'Device': dbus.ObjectPath(device_path),
                  'Primary': dbus.Boolean(True)}
    self.AddObject(service, GATT_SERVICE_IFACE, properties, [])
    self.EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesAdded', 'oa{sa{sv}}',
                    [dbus.ObjectPath(service), {GATT_SERVICE_IFACE: properties}])
    path = f'{service}/char0011'
    properties = {'UUID': dbus.String(_uuid('2a29')), 'Service': dbus.ObjectPath(service),
                  'Flags': dbus.Array(['read'], signature='s')}
    code = f"ret = dbus.Array([dbus.Byte(b) for b in {list(b'Lantern')}], signature='y')"
    self.AddObject(path, GATT_CHARACTERISTIC_IFACE, properties, [('ReadValue', 'a{sv}', 'ay', code)])
    self.EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesAdded', 'oa{sa{sv}}',
                    [dbus.ObjectPath(path), {GATT_CHARACTERISTIC_IFACE: properties}])
