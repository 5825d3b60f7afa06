#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What the drawn shop does with the parts of Qt and of OrlixKit that a device has or has not.

usage: drawn_installation_test.py ORLIX_SHOP PLUGIN LIBRARIES ORLIX_SANDBOX QTPATHS

PLUGIN is the web engine's; LIBRARIES the path from the folder of programs to that of libraries, in an
installation. The shop is copied into one, so that nothing of the build tree is beside it.
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

SHOP, PLUGIN, LIBRARIES, SANDBOX, QTPATHS = sys.argv[1:]
STORIES = pathlib.Path(__file__).parents[2] / "examples/shop/scripts"
CANNOT_SHOW = pathlib.Path(__file__).with_name("no_web_engine.shop")
TO_THE_ISSUER = STORIES / "secure/01-issuers-page.shop"
BY_PIN = STORIES / "wallet/01-pin.shop"


class Device:
    """An installation of the shop, with a Qt that lacks some QML modules."""

    def __init__(self, folder, sandbox, plugin=None, without=()):
        self.folder, self.sandbox = pathlib.Path(folder), sandbox
        programs = self.folder / "bin"
        programs.mkdir(parents=True)
        shutil.copy(SHOP, programs)
        if plugin is not None:
            plugins = programs / LIBRARIES / pathlib.Path(PLUGIN).parent.name
            plugins.mkdir(parents=True)
            (plugins / pathlib.Path(PLUGIN).name).write_bytes(plugin)
        self._choose_modules(programs, without)

    def _choose_modules(self, programs, without):
        said = subprocess.run([QTPATHS, "--query"], check=True, capture_output=True, text=True).stdout
        qt = dict(line.split(":", 1) for line in said.splitlines())
        modules = self.folder / "qml"
        for source in pathlib.Path(qt["QT_INSTALL_QML"]).rglob("qmldir"):
            place = source.parent.relative_to(qt["QT_INSTALL_QML"])
            if str(place) in without:
                continue
            (modules / place).mkdir(parents=True, exist_ok=True)
            for file in source.parent.iterdir():
                if file.is_file():
                    (modules / place / file.name).symlink_to(file)
        (programs / "qt.conf").write_text(
            f"[Paths]\nPlugins={qt['QT_INSTALL_PLUGINS']}\nData={qt['QT_INSTALL_DATA']}\n"
            f"LibraryExecutables={qt['QT_INSTALL_LIBEXECS']}\n"
            f"Translations={qt['QT_INSTALL_TRANSLATIONS']}\nQml2Imports={modules}\n")

    def run(self, script):
        home = self.folder / "home"
        home.mkdir(mode=0o700)
        environment = {name: value for name, value in os.environ.items() if "DISPLAY" not in name}
        return subprocess.run(
            [self.folder / "bin/orlix-shop", "--server", self.sandbox["base"],
             "--anchor", self.sandbox["anchor"], "--state", self.folder / "state",
             "--snapshots", self.folder / "pictures", "--script", script],
            env=environment | {"HOME": str(home), "XDG_RUNTIME_DIR": str(home)},
            stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=100)


def links_no_web_engine():
    for file in (SHOP, pathlib.Path(PLUGIN).parents[1] / "liborlixkit-shell.so"):
        if pathlib.Path(file).exists():
            linked = subprocess.run(["readelf", "-d", file], check=True, capture_output=True, text=True).stdout
            if "libQt6Quick" not in linked or "WebEngine" in linked:
                return f"{file} links:\n{linked}"
    return ""


def missing(module):
    return (f"orlix-shop: OrlixKit: The screens cannot be drawn. The QML module {module} is not installed "
            f"(Debian package qml6-module-{module.lower().replace('.', '-')}).\n")


def main():
    plugin = pathlib.Path(PLUGIN).read_bytes()
    version = b"orlixkit.WebEngine/"
    of_another_version = plugin.replace(version, version[:-1] + b"-")
    # name: (the plug-in's bytes, modules that are missing, script, exit status, what standard error says)
    rows = {
        "pays through the issuer's page with the plug-in": (plugin, [], TO_THE_ISSUER, 0, ""),
        "says without it that the page cannot be shown":
            (None, [], CANNOT_SHOW, 0, "(Debian package orlixkit-shell-webengine)"),
        "says so when the plug-in is damaged":
            (plugin[:4000], [], CANNOT_SHOW, 0, "orlixkit-webengine.so cannot be used: "),
        "says so when the plug-in is of another version":
            (of_another_version, [], CANNOT_SHOW, 0, "cannot be used: it is of another version"),
        "says so when the web engine's QML module is missing":
            (plugin, ["QtWebEngine"], CANNOT_SHOW, 0, "(Debian package qml6-module-qtwebengine)"),
        "needs no web engine to pay by PIN":
            (None, ["QtWebEngine", "QtQuick/Controls"], BY_PIN, 0, ""),
        "names the missing layouts": (None, ["QtQuick/Layouts"], BY_PIN, 1, missing("QtQuick.Layouts")),
        "names the missing templates": (None, ["QtQuick/Templates"], BY_PIN, 1, missing("QtQuick.Templates")),
        "names what a module asks for in turn":
            (None, ["QtQml/WorkerScript"], BY_PIN, 1, missing("QtQml.WorkerScript")),
    }
    failed = 0

    def report(name, wrong):
        nonlocal failed
        failed += bool(wrong)
        print(f"{'not ok' if wrong else 'ok'}: {name}{wrong and chr(10) + wrong}", flush=True)

    report("links no web engine", links_no_web_engine())
    with tempfile.TemporaryDirectory() as folder:
        with subprocess.Popen([SANDBOX, "--enrolled", "--dir", folder], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, text=True) as server:
            try:
                sandbox = json.loads(server.stdout.readline())
                for name, (file, without, script, status, said) in rows.items():
                    device = Device(pathlib.Path(folder) / name, sandbox, file, without)
                    run = device.run(script)
                    held = run.returncode == status and said in run.stderr
                    report(name, "" if held else
                           f"exit status {run.returncode}\n{run.stdout}{run.stderr}")
            finally:
                server.terminate()
    sys.exit(bool(failed))


if __name__ == "__main__":
    main()
