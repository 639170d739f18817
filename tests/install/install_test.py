#!/usr/bin/env python3
"""Lanternbud as installed: the tree that `cmake --install` makes, its desktop
files checked by the desktop's own validators, the manual pages, the shell
completions, starting the program through the session bus, and the Debian
package.

Usage: install_test.py SOURCE_DIR BUILD_DIR [unittest arguments, e.g. a class]

A tool that is missing skips its tests, saying which; under
LANTERNBUD_REQUIRE_SERVICES=1 (scripts/check) it fails them instead.
"""
import gzip
import itertools
import json
import os
import pathlib
import re
import shlex
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(sys.argv[1]).resolve()
BUILD = pathlib.Path(sys.argv[2]).resolve()
REQUIRED = os.environ.get("LANTERNBUD_REQUIRE_SERVICES") == "1"
SERVICE = "org.lanternbud.Lanternbud"
ICON_SIZES = [16, 22, 24, 32, 48, 64, 128, 256]


def need(test, *tools):
    """Ends the test unless every tool is installed: a failure under
    scripts/check, a skip elsewhere."""
    missing = [tool for tool in tools if not shutil.which(tool)]
    if missing:
        reason = "not installed: " + ", ".join(missing) + " (scripts/install-deps installs them)"
        if REQUIRED:
            test.fail(reason)
        test.skipTest(reason)


def run(*command, env=None, check=True):
    result = subprocess.run(command, capture_output=True, text=True, env=env, timeout=120)
    if check and result.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))} exited {result.returncode}:\n{result.stdout}{result.stderr}")
    return result


def setting_keys():
    return run(BUILD / "app/lanternbud-setting-keys").stdout.split()


class Installed:
    """One install into a DESTDIR with the prefix a package uses, shared by
    the tests."""
    root = None

    @classmethod
    def tree(cls):
        if cls.root is None:
            cls.folder = tempfile.TemporaryDirectory(prefix="lanternbud-install-")
            cls.root = pathlib.Path(cls.folder.name)
            run("cmake", "--install", BUILD, "--prefix", "/usr", env=dict(os.environ, DESTDIR=cls.root))
        return cls.root / "usr"


def png_size(path):
    data = path.read_bytes()[:24]
    assert data[:8] == b"\x89PNG\r\n\x1a\n", f"{path} is no PNG"
    return struct.unpack(">II", data[16:24])


class InstalledTree(unittest.TestCase):
    def setUp(self):
        self.usr = Installed.tree()

    def test_programs_and_the_helper_link_sit_where_the_program_looks(self):
        for name in ["lanternbud", "lanternbud-ctl"]:
            self.assertTrue(os.access(self.usr / "bin" / name, os.X_OK), name)
        helper = self.usr / "bin/LanternbudHelperTool"
        self.assertTrue(helper.is_symlink())
        self.assertEqual(os.readlink(helper), "lanternbud")
        # The program opens its help at ../share/lanternbud/help from its own folder.
        help_folder = self.usr / "bin/../share/lanternbud/help"
        for page in (SOURCE / "docs/help").iterdir():
            if page.suffix in (".html", ".css"):
                self.assertEqual((help_folder / page.name).read_bytes(), page.read_bytes(), page.name)
        self.assertFalse((self.usr / "bin/lanternbud-setting-keys").exists())

    def test_desktop_entry_validates_and_names_the_installed_icon(self):
        need(self, "desktop-file-validate")
        entry = self.usr / "share/applications/lanternbud.desktop"
        result = run("desktop-file-validate", entry, check=False)
        self.assertEqual((result.returncode, result.stdout + result.stderr), (0, ""))
        lines = entry.read_text().splitlines()
        self.assertIn("Exec=lanternbud", lines)
        self.assertIn("Icon=lanternbud", lines)
        self.assertTrue(any(line.startswith("Categories=") for line in lines))
        self.assertTrue(any(line.startswith("Keywords=") for line in lines))

    def test_metainfo_validates_and_points_at_the_desktop_entry(self):
        need(self, "appstreamcli")
        metainfo = self.usr / f"share/metainfo/{SERVICE}.metainfo.xml"
        result = run("appstreamcli", "validate", "--no-net", metainfo, check=False)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        text = metainfo.read_text()
        self.assertIn('<launchable type="desktop-id">lanternbud.desktop</launchable>', text)
        self.assertIn("<project_license>MIT</project_license>", text)

    def test_icon_is_the_drawing_and_pictures_at_every_size(self):
        hicolor = self.usr / "share/icons/hicolor"
        self.assertEqual((hicolor / "scalable/apps/lanternbud.svg").read_bytes(),
                         (SOURCE / "data/icons/lanternbud.svg").read_bytes())
        for size in ICON_SIZES:
            self.assertEqual(png_size(hicolor / f"{size}x{size}/apps/lanternbud.png"), (size, size))

    def test_manual_pages_and_completions_are_in_their_places(self):
        man1 = self.usr / "share/man/man1"
        for page in ["lanternbud.1.gz", "lanternbud-ctl.1.gz"]:
            self.assertTrue(gzip.decompress((man1 / page).read_bytes()).startswith(b".\\\""), page)
        self.assertEqual(os.readlink(man1 / "LanternbudHelperTool.1.gz"), "lanternbud.1.gz")
        for path in ["bash-completion/completions/lanternbud-ctl", "zsh/vendor-completions/_lanternbud-ctl",
                     "fish/vendor_completions.d/lanternbud-ctl.fish"]:
            self.assertIn("LogConnect", (self.usr / "share" / path).read_text(), path)


class ManPages(unittest.TestCase):
    def page(self, name):
        return BUILD / f"docs/man/{name}.1"

    def rendered(self, name):
        return run("man", "-l", self.page(name), env=dict(os.environ, MANWIDTH="80")).stdout

    def test_pages_render_without_warnings(self):
        need(self, "man")
        for name in ["lanternbud", "lanternbud-ctl"]:
            result = run("sh", "-c", f"man --warnings -l '{self.page(name)}' 2>&1 >/dev/null",
                         env=dict(os.environ, MANWIDTH="80"))
            self.assertEqual(result.stdout, "", name)

    def test_every_setting_key_is_documented(self):
        need(self, "man")
        text = self.rendered("lanternbud")
        missing = [key for key in setting_keys() if key not in text]
        self.assertEqual(missing, [])
        self.assertIn("shortcutDictForDevice", text)
        for option in ["--demo", "-PrintBatteryInfo", "--help", "EXIT STATUS", "FILES"]:
            self.assertIn(option, text)

    def test_every_command_of_the_usage_is_documented(self):
        need(self, "man")
        text = self.rendered("lanternbud-ctl")
        usage = run(BUILD / "app/lanternbud-ctl", "--help").stdout
        commands = usage.split("Commands:")[1].split("\n\n")[0]
        for line in commands.strip().splitlines():
            words = line.split()
            command = " ".join(itertools.takewhile(lambda word: word[0] not in "<[", words))
            self.assertRegex(text, rf"(?m)^ {{7}}{re.escape(command)}\b", line)
        for option in ["--json", "--no-wait", "report", "--no-mask"]:
            self.assertIn(option, text)
        for status in range(5):
            self.assertRegex(text, rf"\n\s+{status}\n")


class SessionBus:
    """A private session bus whose service folder may hold Lanternbud's
    service file, pointing at the installed program run as the demo (the
    simulated devices stand in for BlueZ)."""

    def __init__(self, with_service):
        self.folder = tempfile.TemporaryDirectory(prefix="lanternbud-bus-")
        root = pathlib.Path(self.folder.name)
        services = root / "services"
        services.mkdir()
        if with_service:
            # The installed file, but for the program's place: the tests below
            # start the program through it.
            installed = (Installed.tree() / f"share/dbus-1/services/{SERVICE}.service").read_text().splitlines()
            assert installed == ["[D-BUS Service]", f"Name={SERVICE}", "Exec=/usr/bin/lanternbud"], installed
            program = Installed.tree() / "bin/lanternbud"
            (services / f"{SERVICE}.service").write_text(
                "\n".join(installed[:2] + [f"Exec={program} --demo"]) + "\n")
        config = root / "bus.conf"
        config.write_text(f"""<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={root}/socket</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
""")
        self.address = f"unix:path={root}/socket"
        self.env = {key: value for key, value in os.environ.items()
                    if key not in ("DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS")}
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self.address
        self.env["HOME"] = str(root)
        for kind in ["config", "data", "state", "cache"]:
            self.env[f"XDG_{kind.upper()}_HOME"] = str(root / kind)
        # What the bus starts inherits the bus's environment. It prints its
        # address once it listens.
        self.daemon = subprocess.Popen(["dbus-daemon", "--nofork", "--print-address", "--config-file", str(config)],
                                       env=self.env, stdout=subprocess.PIPE, text=True)
        self.daemon.stdout.readline()

    def program_runs(self):
        result = run("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                     "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner", f"string:{SERVICE}",
                     env=self.env)
        return "boolean true" in result.stdout

    def devices(self):
        """The program's devices, starting it if need be."""
        listed = self.ctl("list", "--json")
        assert listed.returncode == 0, listed.stderr
        return json.loads(listed.stdout)

    def ctl(self, *arguments):
        return run(Installed.tree() / "bin/lanternbud-ctl", *arguments, env=self.env, check=False)

    def close(self):
        if self.program_runs():
            owner = run("dbus-send", "--session", "--print-reply=literal", "--dest=org.freedesktop.DBus",
                        "/org/freedesktop/DBus", "org.freedesktop.DBus.GetConnectionUnixProcessID",
                        f"string:{SERVICE}", env=self.env)
            exited = os.pidfd_open(int(owner.stdout.split()[-1]))
            run("dbus-send", "--session", "--print-reply", f"--dest={SERVICE}", "/org/lanternbud/Lanternbud",
                f"{SERVICE}.Quit", env=self.env, check=False)
            # It saves as it quits, into the folder about to be removed.
            select.select([exited], [], [], 10)
            os.close(exited)
        self.daemon.terminate()
        self.daemon.communicate(timeout=10)
        self.folder.cleanup()


class BusTestCase(unittest.TestCase):
    def start_bus(self, with_service=True):
        need(self, "dbus-daemon", "dbus-send", "busctl")
        bus = SessionBus(with_service)
        self.addCleanup(bus.close)
        return bus


class Activation(BusTestCase):
    def test_commands_that_need_the_program_have_the_bus_start_it(self):
        bus = self.start_bus()
        self.assertFalse(bus.program_runs())
        listed = bus.ctl("list")
        self.assertEqual(listed.returncode, 0, listed.stderr)
        self.assertIn("Lantern Headset", listed.stdout)
        self.assertTrue(bus.program_runs())

    def test_config_never_starts_the_program(self):
        bus = self.start_bus()
        self.assertEqual(bus.ctl("config", "set", "LogConnect", "YES").returncode, 0)
        got = bus.ctl("config", "get", "LogConnect")
        self.assertEqual((got.returncode, got.stdout.strip()), (0, "true"))
        self.assertFalse(bus.program_runs())

    def test_without_a_service_file_a_command_says_the_program_is_not_running(self):
        bus = self.start_bus(with_service=False)
        listed = bus.ctl("list")
        self.assertEqual(listed.returncode, 4)
        self.assertIn("not running", listed.stderr)


class Completions(BusTestCase):
    def completion(self, shell):
        return BUILD / {"bash": "completions/bash/lanternbud-ctl", "zsh": "completions/zsh/_lanternbud-ctl",
                        "fish": "completions/fish/lanternbud-ctl.fish"}[shell]

    def test_scripts_parse(self):
        need(self, "bash", "zsh", "fish")
        for shell in ["bash", "zsh", "fish"]:
            result = run(shell, "-n", self.completion(shell), check=False)
            self.assertEqual((result.returncode, result.stderr), (0, ""), shell)

    def complete(self, bus, line):
        """What bash offers for the last word of `line`."""
        words = re.split(r"(?<!\\) ", line)  # as typed: "Lantern\ H" is one word
        script = (f"source '{self.completion('bash')}'\n"
                  f"COMP_WORDS=({' '.join(shlex.quote(w) for w in words)}); COMP_CWORD={len(words) - 1}\n"
                  "_lanternbud_ctl; printf '%s\\n' \"${COMPREPLY[@]}\"\n")
        return [word for word in run("bash", "-c", script, env=bus.env).stdout.splitlines() if word]

    def test_bash_offers_the_known_setting_keys(self):
        need(self, "bash")
        bus = self.start_bus()
        offered = self.complete(bus, "lanternbud-ctl config get ")
        self.assertEqual(sorted(offered), sorted(setting_keys()))
        self.assertEqual(self.complete(bus, "lanternbud-ctl config set LogCo"), ["LogConnect", "LogConnectNotifications",
                                                                                  "LogConnectionOnlyMode"])
        self.assertFalse(bus.program_runs())

    def test_bash_offers_the_running_programs_devices_and_never_starts_it(self):
        need(self, "bash")
        bus = self.start_bus()
        self.assertEqual(self.complete(bus, "lanternbud-ctl connect "), [])
        self.assertFalse(bus.program_runs())
        devices = bus.devices()
        offered = self.complete(bus, "lanternbud-ctl connect ")
        self.assertEqual(sorted(offered), sorted([str(d["id"]) for d in devices] +
                                                 [d["name"].replace(" ", "\\ ") for d in devices]))
        self.assertIn("Lantern\\ Headset", offered)
        self.assertEqual(self.complete(bus, "lanternbud-ctl toggle Lantern\\ H"), ["Lantern\\ Headset"])
        self.assertEqual(sorted(self.complete(bus, "lanternbud-ctl config set shortcut")),
                         sorted(f"shortcutDictForDevice{d['id']}" for d in devices))


class Package(unittest.TestCase):
    """The package that `cpack -G DEB` made in the build folder (scripts/check
    makes it before running these)."""

    def setUp(self):
        packages = sorted(BUILD.glob("lanternbud_*_amd64.deb"))
        if not packages:
            reason = f"no lanternbud_*_amd64.deb in {BUILD}: make it with `cpack -G DEB` there first"
            if REQUIRED:
                self.fail(reason)
            self.skipTest(reason)
        self.package = packages[-1]

    def field(self, name):
        return run("dpkg-deb", "--field", self.package, name).stdout.strip()

    def test_dependencies_come_from_the_binaries_and_the_services(self):
        need(self, "dpkg-deb")
        depends = [alternative.strip() for alternative in self.field("Depends").split(",")]
        self.assertIn("bluez", depends)
        self.assertTrue(any(d.startswith("libqt6core6") for d in depends), depends)
        self.assertTrue(any(d.startswith("libpulse0") for d in depends), depends)
        self.assertIn("pulseaudio | pipewire-pulse", self.field("Recommends"))
        self.assertIn("qt6-wayland", self.field("Recommends"))
        self.assertEqual(self.field("Package"), "lanternbud")
        self.assertIn("Description", run("dpkg-deb", "--info", self.package).stdout)

    def test_files_are_in_place(self):
        need(self, "dpkg-deb")
        # Every file of the installed tree, whose places the tests above check.
        listed = run("dpkg-deb", "--contents", self.package).stdout.splitlines()
        contents = {line.split(None, 5)[-1].split(" -> ")[0].removeprefix(".") for line in listed}
        tree = Installed.tree()
        installed = {"/usr/" + str(path.relative_to(tree)) for path in tree.rglob("*") if not path.is_dir()}
        self.assertEqual(installed - contents, set())
        self.assertIn("/usr/share/doc/lanternbud/copyright", contents)

    def test_lintian_finds_nothing_unexplained(self):
        need(self, "lintian")
        result = run("lintian", "--fail-on", "error,warning", self.package, check=False)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        unexplained = [line for line in result.stdout.splitlines() if line[:2] in ("E:", "W:")]
        self.assertEqual(unexplained, [])


if __name__ == "__main__":
    outcome = unittest.main(argv=[sys.argv[0]] + sys.argv[3:], verbosity=2, exit=False).result
    # All skipped: ctest reports the part as skipped (SKIP_RETURN_CODE), not passed.
    skipped_all = outcome.wasSuccessful() and outcome.testsRun and len(outcome.skipped) == outcome.testsRun
    sys.exit(77 if skipped_all else 0 if outcome.wasSuccessful() else 1)
