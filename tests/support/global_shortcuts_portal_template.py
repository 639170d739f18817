'''The desktop portal's GlobalShortcuts for Lanternbud's tests, as a
python-dbusmock template: sessions, bindings answered through Request
objects as the portal does, and the Activated signal on demand. With the
parameter {"without": true} it is a portal without that interface.'''

import dbus

from dbusmock import mockobject

BUS_NAME = 'org.freedesktop.portal.Desktop'
MAIN_OBJ = '/org/freedesktop/portal/desktop'
MAIN_IFACE = 'org.freedesktop.portal.GlobalShortcuts'
SYSTEM_BUS = False
TEST_IFACE = 'org.lanternbud.TestPortal'
REQUEST_IFACE = 'org.freedesktop.portal.Request'


def load(mock, parameters):
    mock.session = ''
    mock.bound = []
    mock.AddProperties(MAIN_IFACE, {'version': dbus.UInt32(1)})


def _answer(mock, sender, token, results):
    '''The request's handle, where its Response is emitted.'''
    path = f'{MAIN_OBJ}/request/{sender[1:].replace(".", "_")}/{token}'
    mock.AddObject(path, REQUEST_IFACE, {}, [])
    mockobject.objects[path].EmitSignal(REQUEST_IFACE, 'Response', 'ua{sv}', [dbus.UInt32(0), results])
    mock.RemoveObject(path)
    return dbus.ObjectPath(path)


@dbus.service.method(MAIN_IFACE, in_signature='a{sv}', out_signature='o', sender_keyword='sender')
def CreateSession(self, options, sender=None):
    self.session = f'{MAIN_OBJ}/session/{sender[1:].replace(".", "_")}/{options["session_handle_token"]}'
    return _answer(self, sender, options['handle_token'], {'session_handle': dbus.String(self.session)})


@dbus.service.method(MAIN_IFACE, in_signature='oa(sa{sv})sa{sv}', out_signature='o', sender_keyword='sender')
def BindShortcuts(self, session, shortcuts, parent_window, options, sender=None):
    self.bound = [(str(id_), str(properties.get('preferred_trigger', ''))) for id_, properties in shortcuts]
    taken = dbus.Array([(id_, {'description': properties['description'],
                               'trigger_description': dbus.String(properties.get('preferred_trigger', ''))})
                        for id_, properties in shortcuts], signature='(sa{sv})')
    return _answer(self, sender, options['handle_token'], {'shortcuts': taken})


@dbus.service.method(TEST_IFACE, in_signature='', out_signature='a(ss)')
def Bound(self):
    return self.bound


@dbus.service.method(TEST_IFACE, in_signature='s', out_signature='')
def Activate(self, shortcut_id):
    self.EmitSignal(MAIN_IFACE, 'Activated', 'osta{sv}',
                    [dbus.ObjectPath(self.session), shortcut_id, dbus.UInt64(0), dbus.Dictionary({}, signature='sv')])
