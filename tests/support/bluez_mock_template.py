'''BlueZ model for Lanternbud's tests: python-dbusmock's bluez5 template
with two faults of its Debian 12 version mended. Device1.Connect and
Disconnect announce the Connected change but do not store it, and
PairDevice does not store the Class it is given. A connection resolves the
device's GATT services, which AddBatteryService gives it.'''

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


GATT_SERVICE_IFACE = 'org.bluez.GattService1'
GATT_CHARACTERISTIC_IFACE = 'org.bluez.GattCharacteristic1'


def _uuid(short):
    return f'0000{short}-0000-1000-8000-00805f9b34fb'


@dbus.service.method(BLUEZ_MOCK_IFACE, in_signature='oay', out_signature='')
def AddBatteryService(self, device_path, level):
    '''The Battery Service under a device: Battery Level answering `level`
    (any number of bytes), and the Manufacturer Name beside it.'''
    service = f'{device_path}/service0010'
    properties = {'UUID': dbus.String(_uuid('180f')), 'Device': dbus.ObjectPath(device_path),
                  'Primary': dbus.Boolean(True)}
    self.AddObject(service, GATT_SERVICE_IFACE, properties, [])
    self.EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesAdded', 'oa{sa{sv}}',
                    [dbus.ObjectPath(service), {GATT_SERVICE_IFACE: properties}])
    for number, (short, value) in enumerate([('2a19', bytes(level)), ('2a29', b'Lantern')], start=1):
        path = f'{service}/char001{number}'
        properties = {'UUID': dbus.String(_uuid(short)), 'Service': dbus.ObjectPath(service),
                      'Flags': dbus.Array(['read'], signature='s')}
        code = f"ret = dbus.Array([dbus.Byte(b) for b in {list(value)}], signature='y')"
        self.AddObject(path, GATT_CHARACTERISTIC_IFACE, properties, [('ReadValue', 'a{sv}', 'ay', code)])
        self.EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesAdded', 'oa{sa{sv}}',
                        [dbus.ObjectPath(path), {GATT_CHARACTERISTIC_IFACE: properties}])
