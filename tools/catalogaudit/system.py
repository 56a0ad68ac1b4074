"""Checks against what is installed: the desktop's settings program, its
translation tables and its icon themes."""

import glob
import os
import shutil
import struct
import subprocess
import xml.etree.ElementTree as ElementTree

from .document import parse_version, version_key

# What each desktop folder's settings program is called, how to find it and
# where it states its version.
DESKTOPS = {
    "gnome": {
        "title": "GNOME Settings",
        "program": "gnome-control-center",
        "metainfo": ["/usr/share/metainfo/org.gnome.Settings.metainfo.xml",
                     "/usr/share/metainfo/org.gnome.Settings.appdata.xml"],
    },
    "kde": {
        "title": "KDE System Settings",
        "program": "systemsettings",
        "metainfo": ["/usr/share/metainfo/org.kde.systemsettings.metainfo.xml"],
    },
}


CHECKED_LOCALE = "de"


def read_mo_ids(path):
    """The msgids of a GNU MO file (with their context prefix), or None."""
    try:
        with open(path, "rb") as f:
            data = f.read()
        magic = struct.unpack_from("<I", data, 0)[0]
        order = "<" if magic == 0x950412DE else ">" if magic == 0xDE120495 else None
        if order is None:
            return None
        count, originals = struct.unpack_from(order + "II", data, 8)
        ids = set()
        for i in range(count):
            length, offset = struct.unpack_from(order + "II", data, originals + 8 * i)
            ids.add(data[offset:offset + length].split(b"\0")[0].decode("utf-8"))
        return ids
    except (OSError, struct.error, UnicodeDecodeError):
        return None


def read_desktop_keys(path):
    """The entries of a desktop entry's [Desktop Entry] group, or None."""
    try:
        with open(path, encoding="utf-8") as f:
            lines = f.read().splitlines()
    except (OSError, UnicodeDecodeError):
        return None
    entries, in_entry = {}, False
    for line in lines:
        if line.startswith("["):
            in_entry = line.strip() == "[Desktop Entry]"
        elif in_entry and "=" in line:
            key, value = line.split("=", 1)
            entries.setdefault(key.strip(), value.strip())
    return entries


class StringTables:
    """Answers, per table path, in how many installed locales a key resolves."""

    def __init__(self):
        self.cache = {}

    def localizations(self, table):
        if table not in self.cache:
            if table.endswith(".so"):
                # Plugin metadata is CBOR inside the library; Quillon reads it
                # through Qt, this audit does not.
                self.cache[table] = None
            elif "%l" in table:
                pattern = table.replace("%l", "*")
                found = {}
                for path in sorted(glob.glob(pattern)):
                    ids = read_mo_ids(path)
                    if ids is not None:
                        found[path] = ids
                self.cache[table] = found or None
            else:
                keys = read_desktop_keys(table)
                self.cache[table] = None if keys is None else {table: keys}
        return self.cache[table]

    def resolves(self, table, key):
        tables = self.localizations(table)
        if tables is None:
            return None
        if table.endswith(".desktop"):
            keys = next(iter(tables.values()))
            return key in keys and any(k.startswith(key + "[") for k in keys)
        return any(key in ids for ids in tables.values())

    def resolves_in(self, table, key, locale):
        """Whether the key has a translation for the locale; None when the table is absent."""
        tables = self.localizations(table)
        if tables is None:
            return None
        if table.endswith(".desktop"):
            keys = next(iter(tables.values()))
            return f"{key}[{locale}]" in keys
        path = table.replace("%l", locale)
        return path in tables and key in tables[path]

    def desktop_value(self, table, key):
        """The untranslated value of a desktop entry key, None for other tables."""
        if not table.endswith(".desktop"):
            return None
        tables = self.localizations(table)
        return tables[table].get(key) if tables else None


def installed_version(desktop):
    """The version of the desktop's settings program, or None.

    AppStream files list releases, but Debian 12's GNOME Settings ships one
    without any, so the program's own --version is asked next."""
    info = DESKTOPS[desktop]
    program = shutil.which(info["program"])
    if program is None:
        return None
    versions = []
    for path in info["metainfo"]:
        try:
            tree = ElementTree.parse(path)
        except (OSError, ElementTree.ParseError):
            continue
        versions += [parse_version(r.get("version", "")) for r in tree.iter("release")]
    versions = [v for v in versions if v]
    if versions:
        return max(versions, key=version_key)
    try:
        done = subprocess.run([program, "--version"], capture_output=True, text=True, timeout=60,
                              env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
    except (OSError, subprocess.TimeoutExpired):
        return None
    words = done.stdout.split()
    return parse_version(words[-1]) if done.returncode == 0 and words else None


def chosen_catalog(files, running, aliases=None):
    """The file Quillon picks for a running version: the newest release not
    newer, through the alias table when that release shares a document."""
    releases = {f: (v, f) for f, v in files.items()}
    releases.update(aliases or {})
    ordered = sorted(releases.values(), key=lambda r: version_key(r[0]))
    for parts, path in reversed(ordered):
        if version_key(parts) <= version_key(running):
            return path
    return ordered[0][1]


def gnome_panels(program):
    """The panel ids that `gnome-control-center --list` prints, or an error."""
    try:
        done = subprocess.run([program, "--list"], capture_output=True, text=True, timeout=60)
    except (OSError, subprocess.TimeoutExpired) as error:
        return None, str(error)
    if done.returncode != 0:
        return None, f"exit {done.returncode}: {done.stderr.strip()}"
    lines = [line.strip() for line in done.stdout.splitlines()]
    return {line for line in lines[1:] if line}, None


def kde_modules():
    """The settings modules installed: plugins under Qt's plasma/kcms folders,
    their generated launchers and the older service files."""
    found = set()
    for root in ("/usr/lib/*/qt[56]/plugins", "/usr/lib64/qt[56]/plugins", "/usr/lib/qt[56]/plugins",
                 "/usr/lib/*/plugins", "/usr/lib64/plugins"):
        pattern = f"{root}/plasma/kcms/**/*.so"
        found.update(os.path.basename(p)[:-len(".so")] for p in glob.glob(pattern, recursive=True))
    for pattern in ("/usr/share/applications/kcm*.desktop", "/usr/share/kservices5/*.desktop"):
        found.update(os.path.basename(p)[:-len(".desktop")] for p in glob.glob(pattern))
    return found


def panel_of(url, desktop):
    return url[len(f"settings://{desktop}/"):].split("/")[0]


def icon_names():
    names = set()
    for base in ("/usr/share/icons", "/usr/share/pixmaps"):
        for _, _, files in os.walk(base):
            names.update(os.path.splitext(f)[0].removesuffix(".symbolic") for f in files)
    return names


def shorter_name(name):
    """The name an icon theme falls back to, or None for a symbolic icon."""
    if name.endswith("-symbolic") or "-" not in name:
        return None
    return name.rsplit("-", 1)[0]


def walk_records(panes):
    for pane in panes:
        if not isinstance(pane, dict):
            continue
        yield f"pane \"{pane.get('id')}\"", pane
        for section in pane.get("sections") or []:
            for item in (section.get("items") or []) if isinstance(section, dict) else []:
                if isinstance(item, dict):
                    yield f"item \"{item.get('url')}\"", item


def check_against_system(audit, where, desktop, checker, decoded, args, version):
    title = DESKTOPS[desktop]["title"]
    shown = ".".join(map(str, version))
    panes = decoded["panes"]

    if desktop == "gnome":
        panels, error = gnome_panels(DESKTOPS[desktop]["program"])
        if panels is None:
            audit.fail(where, f"gnome-control-center --list failed: {error}")
        else:
            used = {panel_of(r["url"], desktop) for _, r in walk_records(panes)
                    if isinstance(r.get("url"), str)}
            for panel in sorted(used - panels):
                audit.fail(where, f"panel \"{panel}\" is not offered by {title} {shown}")
            covered = {panel_of(p["url"], desktop) for p in panes
                       if isinstance(p, dict) and isinstance(p.get("url"), str)}
            for panel in sorted(panels - covered):
                audit.fail(where, f"{title} {shown} offers panel \"{panel}\", which no pane opens")
            audit.note(where, f"{len(panels)} panels of {title} {shown} compared with the panes' URLs")

    elif desktop == "kde":
        modules = kde_modules()
        used = {panel_of(r["url"], desktop) for _, r in walk_records(panes) if isinstance(r.get("url"), str)}
        # Plasma's modules come from many packages (printers, Bluetooth,
        # Flatpak permissions...), and a system need not have them all; a
        # catalog most of whose modules are missing is for another Plasma.
        missing = sorted(used - modules)
        if len(missing) * 2 > len(used):
            audit.fail(where, f"{len(missing)} of {len(used)} modules are not installed with {title} {shown}")
        elif missing:
            audit.note(where, "modules from packages not installed here: " + ", ".join(missing))
        audit.note(where, f"{len(used)} modules compared with the {len(modules)} installed settings modules")

    names = icon_names()
    icons, shortened = 0, 0
    for place, record in walk_records(panes):
        for key in ("symbol", "symbolFallback"):
            name = record.get(key)
            if not isinstance(name, str):
                continue
            icons += 1
            if name in names:
                continue
            # Icon themes answer a missing name with its shorter form (a-b-c
            # gives a-b), and KDE's own modules rely on it; symbolic names
            # and the generic fallback must exist as written.
            if key == "symbol" and shorter_name(name) in names:
                shortened += 1
            else:
                audit.fail(f"{where} {place}", f"{key} \"{name}\" is in no installed icon theme")
    audit.note(where, f"{icons} icon names found in the installed icon themes"
                      f" ({shortened} through a shorter form)")

    tables = StringTables()
    resolved, absent, german = 0, set(), 0
    for place, ref, english in checker.string_refs:
        found = tables.resolves(ref["table"], ref["key"])
        if found is None:
            absent.add(ref["table"])
        elif found:
            resolved += 1
            written = tables.desktop_value(ref["table"], ref["key"])
            if english is not None and written is not None and written != english:
                audit.fail(f"{where} {place}", f"{ref['table']} calls it \"{written}\", not \"{english}\"")
        else:
            audit.fail(f"{where} {place}", f"\"{ref['key']}\" is in no locale of {ref['table']}")
            continue
        # German stands for every language: a label the installed
        # translations lack stays English for everyone.
        if tables.resolves_in(ref["table"], ref["key"], CHECKED_LOCALE) is False:
            audit.fail(f"{where} {place}", f"\"{ref['key']}\" has no {CHECKED_LOCALE} translation in {ref['table']}")
        else:
            german += 1
    audit.note(where, f"{resolved} string references resolve in the installed tables, "
                      f"{german} of them in {CHECKED_LOCALE}")
    for table in sorted(absent):
        audit.note(where, f"not checked: {table} is not installed")


BREEZE = ["/usr/share/icons/breeze", "/usr/share/icons/breeze-dark"]


def breeze_names():
    """The icon names of the installed Breeze theme, or None without it."""
    if not any(os.path.isdir(folder) for folder in BREEZE):
        return None
    names = set()
    for folder in BREEZE:
        for _, _, files in os.walk(folder):
            names.update(os.path.splitext(f)[0] for f in files)
    return names


def check_breeze_icons(audit, where, decoded, names):
    """Every pane and item of a Plasma document must get an icon from Breeze:
    its symbol, the symbol's shorter form, or else its fallback, which must
    exist as written. A symbol this Breeze lacks is noted: a newer Breeze, or
    the module's own package, may ship it."""
    drawn_by_fallback = []
    for place, record in walk_records(decoded["panes"]):
        fallback = record.get("symbolFallback")
        if isinstance(fallback, str) and fallback not in names:
            audit.fail(f"{where} {place}", f"symbolFallback \"{fallback}\" is not in the installed Breeze theme")
        symbol = record.get("symbol")
        if isinstance(symbol, str) and symbol not in names and shorter_name(symbol) not in names:
            drawn_by_fallback.append(symbol)
    if drawn_by_fallback:
        audit.note(where, "not in the installed Breeze, drawn from the fallback: "
                   + ", ".join(sorted(drawn_by_fallback)))
