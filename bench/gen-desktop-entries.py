#!/usr/bin/env python3
"""Writes a tree of desktop entries that looks like a well-stocked desktop.

    gen-desktop-entries.py COUNT ROOT [--seed N] [--probe WORD]

ROOT/share/applications holds the system's entries (some in vendor
subfolders, whose desktop file IDs carry the folder as a prefix),
ROOT/home/.local/share/applications the user's own (some override a system
entry, some mask one with Hidden=true), ROOT/share/desktop-directories the
localized category names. Each entry has 10 to 88 translations of Name,
GenericName, Comment and Keywords; some are NoDisplay, OnlyShowIn or
NotShowIn another desktop, some have a TryExec that resolves and some one
that does not, many have desktop actions. Every Exec program is installed
in ROOT/bin (put it on PATH: GLib leaves out entries whose program it cannot
find). The same seed writes the same files byte for byte.

With --probe, one visible entry carries WORD in its name and nowhere else,
and runs `true`: a launcher filtering for WORD finds exactly it.
"""

import argparse
import os
import random
import stat

LOCALES = (
    "af am an ar as ast az be be@latin bg bn bn_IN br bs ca ca@valencia ckb cs cy da de de_AT de_CH "
    "dz el en_AU en_CA en_GB eo es es_AR es_MX et eu fa fi fil fr fr_CA fur fy ga gd gl gu he hi hr hu "
    "hy ia id ie is it ja ka kab kk km kn ko ku ky lb lt lv mai mk ml mn mr ms my nb nds ne nl nn oc or "
    "pa pl ps pt pt_BR ro ru rw si sk sl sq sr sr@ijekavian sr@ijekavianlatin sr@latin sv ta te tg th "
    "tr ug uk ur uz uz@cyrillic vi wa xh zh_CN zh_HK zh_TW"
).split()

MAIN_CATEGORIES = (
    "AudioVideo Development Education Game Graphics Network Office Science Settings System Utility"
).split()
ADDITIONAL = {
    "AudioVideo": ["Audio", "Video", "Player", "Recorder", "Mixer", "TV"],
    "Development": ["IDE", "Debugger", "RevisionControl", "GUIDesigner", "Profiling", "Building"],
    "Education": ["Languages", "Math", "Geography", "Chemistry", "Literature"],
    "Game": ["ArcadeGame", "BoardGame", "CardGame", "LogicGame", "StrategyGame", "Simulation"],
    "Graphics": ["2DGraphics", "VectorGraphics", "RasterGraphics", "Photography", "Scanning", "Viewer"],
    "Network": ["WebBrowser", "Email", "Chat", "InstantMessaging", "FileTransfer", "P2P", "Feed"],
    "Office": ["WordProcessor", "Spreadsheet", "Presentation", "Calendar", "ContactManagement", "Finance"],
    "Science": ["Astronomy", "Biology", "Physics", "DataVisualization", "Electronics"],
    "Settings": ["DesktopSettings", "HardwareSettings", "Accessibility", "Security", "Printing"],
    "System": ["TerminalEmulator", "FileManager", "Monitor", "PackageManager", "Emulator", "Filesystem"],
    "Utility": ["TextEditor", "Calculator", "Archiving", "Clock", "Compression", "FileTools"],
}
GENERIC = {
    "AudioVideo": ["Music Player", "Video Player", "Audio Editor", "Sound Recorder", "Media Center"],
    "Development": ["Integrated Development Environment", "Debugger", "Git Client", "Profiler", "API Client"],
    "Education": ["Vocabulary Trainer", "Periodic Table", "Typing Tutor", "Globe", "Graph Plotter"],
    "Game": ["Card Game", "Puzzle Game", "Board Game", "Arcade Game", "Strategy Game"],
    "Graphics": ["Image Viewer", "Photo Editor", "Vector Drawing", "Scanner Utility", "Color Picker"],
    "Network": ["Web Browser", "Email Client", "Chat Client", "File Sharing", "Feed Reader"],
    "Office": ["Word Processor", "Spreadsheet", "Presentation", "Calendar", "Personal Finance"],
    "Science": ["Planetarium", "Molecule Viewer", "Data Plotter", "Circuit Simulator", "Lab Notebook"],
    "Settings": ["Display Settings", "Printer Settings", "Keyboard Layout", "Power Settings", "Firewall"],
    "System": ["Terminal", "File Manager", "System Monitor", "Package Manager", "Disk Usage Analyzer"],
    "Utility": ["Text Editor", "Calculator", "Archive Manager", "Clock", "Screenshot Tool"],
}
VENDORS = "GNOME KDE Xfce LibreOffice Mozilla Qt Open Free Simple Tiny Super Smart Quick Micro Neo".split()
SYLLABLES = (
    "ka ri to ne mo la vi so pe ta ru lo me di ba ko fi na zu ga bo li ke sa du po mi no he ve"
).split()
NOUNS = (
    "Studio Viewer Editor Player Manager Reader Writer Browser Monitor Center Tracker Maker Suite "
    "Explorer Designer Planner Notes Board Works Lab Desk Hub Box Pad"
).split()
DIRECTORY_FILES = [
    ("AudioVideo", "Sound & Video"), ("Development", "Programming"), ("Education", "Education"),
    ("Game", "Games"), ("Graphics", "Graphics"), ("Network", "Internet"), ("Office", "Office"),
    ("GnomeScience", "Science"), ("Settings", "Settings"), ("System-Tools", "System Tools"),
    ("Utility", "Accessories"), ("X-GNOME-Other", "Other"),
]
DESKTOPS = ["KDE", "XFCE", "LXQt", "MATE", "Cinnamon", "Budgie"]
ACTIONS = ["new-window", "new-private-window", "preferences", "new-document", "open-recent", "quit"]

# Letters stand-ins so translations are not ASCII: Cyrillic, Greek, CJK,
# Arabic, Hebrew, Thai and Devanagari scripts, and Latin with diacritics.
SCRIPTS = {
    "cyrillic": "абвгдежзийклмнопрстуфхцчшщыэюя",
    "greek": "αβγδεζηθικλμνξοπρστυφχψω",
    "cjk": "日本語中文软件编辑器浏览器音乐播放设置系统工具文件管理",
    "arabic": "ابتثجحخدذرزسشصضطظعغفقكلمنهوي",
    "hebrew": "אבגדהוזחטיכלמנסעפצקרשת",
    "thai": "กขคงจฉชซญดตถทนบปผพฟมยรลวศสหอฮ",
    "devanagari": "अआइईउऊएऐओऔकखगघचछजझटठडढणतथदधनपफबभमयरलवशसह",
}
SCRIPT_OF = {
    "be": "cyrillic", "bg": "cyrillic", "kk": "cyrillic", "ky": "cyrillic", "mk": "cyrillic",
    "mn": "cyrillic", "ru": "cyrillic", "sr": "cyrillic", "sr@ijekavian": "cyrillic", "tg": "cyrillic",
    "uk": "cyrillic", "uz@cyrillic": "cyrillic", "el": "greek", "ja": "cjk", "ko": "cjk", "zh_CN": "cjk",
    "zh_HK": "cjk", "zh_TW": "cjk", "ar": "arabic", "fa": "arabic", "ps": "arabic", "ug": "arabic",
    "ur": "arabic", "ckb": "arabic", "he": "hebrew", "th": "thai", "hi": "devanagari",
    "mr": "devanagari", "ne": "devanagari", "mai": "devanagari",
}
ACCENTS = str.maketrans("aeiouncAEIOU", "áéîõüñçÀÉÎÕÜ")


def translate(text, locale, rng):
    script = SCRIPT_OF.get(locale)
    if script is None:
        # A Latin language: the words with diacritics and a small change.
        return text.translate(ACCENTS) + ("" if rng.random() < 0.5 else " " + locale.split("_")[0])
    letters = SCRIPTS[script]
    return " ".join(
        "".join(rng.choice(letters) for _ in range(max(2, len(word) * 2 // 3))) for word in text.split()
    )


class Names:
    """Product names: a vendor or none, one or two invented words, a noun."""

    def __init__(self, rng, probe):
        self.rng = rng
        self.probe = probe.lower() if probe else None
        self.used = set()

    def word(self):
        return "".join(self.rng.choice(SYLLABLES) for _ in range(self.rng.randint(2, 3))).capitalize()

    def make(self):
        while True:
            parts = []
            if self.rng.random() < 0.3:
                parts.append(self.rng.choice(VENDORS))
            parts.append(self.word())
            if self.rng.random() < 0.6:
                parts.append(self.rng.choice(NOUNS))
            if self.rng.random() < 0.1:
                parts.append(str(self.rng.randint(2, 12)))
            name = " ".join(parts)
            # A few same-named applications, as with a Flatpak beside the package.
            if name not in self.used or self.rng.random() < 0.02:
                if not self.probe or self.probe not in name.lower():
                    self.used.add(name)
                    return name


def entry_text(rng, name, category, locales, executable, extra, name_translated=True):
    generic = rng.choice(GENERIC[category])
    comment = "{} for {} people".format(generic, rng.choice(["busy", "curious", "careful", "all"]))
    keywords = [rng.choice(SYLLABLES) + rng.choice(SYLLABLES) for _ in range(rng.randint(2, 6))]
    lines = ["[Desktop Entry]", "Type=Application", "Version=1.5", "Name=" + name]
    for locale in locales:
        lines.append("Name[{}]={}".format(locale, translate(name, locale, rng) if name_translated else name))
    lines.append("GenericName=" + generic)
    for locale in locales:
        lines.append("GenericName[{}]={}".format(locale, translate(generic, locale, rng)))
    lines.append("Comment=" + comment)
    for locale in locales:
        lines.append("Comment[{}]={}".format(locale, translate(comment, locale, rng)))
    lines.append("Keywords=" + ";".join(keywords) + ";")
    for locale in locales:
        lines.append(
            "Keywords[{}]={};".format(locale, ";".join(translate(k, locale, rng) for k in keywords))
        )
    lines.append("Exec={} %U".format(executable))
    lines.append("Icon=" + executable.rsplit("/", 1)[-1])
    lines.append("Terminal=" + ("true" if rng.random() < 0.05 else "false"))
    categories = ["GTK" if rng.random() < 0.5 else "Qt", category]
    categories += rng.sample(ADDITIONAL[category], rng.randint(0, 2))
    lines.append("Categories=" + ";".join(categories) + ";")
    if rng.random() < 0.6:
        lines.append(
            "MimeType="
            + ";".join(
                "{}/x-{}".format(rng.choice(["text", "image", "audio", "application"]), rng.choice(SYLLABLES))
                for _ in range(rng.randint(1, 8))
            )
            + ";"
        )
    lines.append("StartupNotify=" + ("true" if rng.random() < 0.7 else "false"))
    if rng.random() < 0.5:
        lines.append("StartupWMClass=" + name.replace(" ", ""))
    if rng.random() < 0.3:
        lines.append("X-GNOME-UsesNotifications=true")
    if rng.random() < 0.3:
        lines.append("X-KDE-Protocols=file;http;https;")
    lines += extra
    actions = rng.sample(ACTIONS, rng.randint(1, 4)) if rng.random() < 0.35 else []
    if actions:
        lines.append("Actions=" + ";".join(actions) + ";")
    for action in actions:
        title = action.replace("-", " ").capitalize()
        lines += ["", "[Desktop Action {}]".format(action), "Name=" + title]
        for locale in locales:
            lines.append("Name[{}]={}".format(locale, translate(title, locale, rng)))
        lines.append("Exec={} --{}".format(executable, action))
    return "\n".join(lines) + "\n"


def install(bin_dir, program):
    """Puts `program` on ROOT/bin, as the package of its entry would."""
    link = os.path.join(bin_dir, program)
    if not os.path.lexists(link):
        os.symlink("installed-tool", link)


def write(path, text, mode=0o644):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as out:
        out.write(text)
    os.chmod(path, mode)


def generate(count, root, seed, probe):
    rng = random.Random(seed)
    share = os.path.join(root, "share")
    user = os.path.join(root, "home", ".local", "share", "applications")
    system = os.path.join(share, "applications")
    bin_dir = os.path.join(root, "bin")
    os.makedirs(user, exist_ok=True)
    os.makedirs(os.path.join(root, "config"), exist_ok=True)
    os.makedirs(os.path.join(root, "cache"), exist_ok=True)
    write(os.path.join(bin_dir, "installed-tool"), "#!/bin/sh\nexit 0\n", 0o755)

    # The category folders' names, in the files GNOME's menus install.
    for stem, name in DIRECTORY_FILES:
        lines = ["[Desktop Entry]", "Type=Directory", "Name=" + name]
        for locale in LOCALES:
            lines.append("Name[{}]={}".format(locale, translate(name, locale, rng)))
        lines.append("Icon=applications-" + stem.lower())
        write(os.path.join(share, "desktop-directories", stem + ".directory"), "\n".join(lines) + "\n")

    names = Names(rng, probe)
    system_ids = []
    probe_index = count // 2 if probe else -1
    for index in range(count):
        name = names.make()
        category = rng.choice(MAIN_CATEGORIES)
        locales = sorted(rng.sample(LOCALES, rng.randint(10, 88)))
        slug = name.lower().replace(" ", "-")
        executable = slug
        extra = []
        if index == probe_index:
            name = "{} {}".format(probe.capitalize(), "Probe")
            executable = "true"
        else:
            roll = rng.random()
            if roll < 0.07:
                extra.append("NoDisplay=true")
            elif roll < 0.10:
                extra.append("OnlyShowIn={};".format(rng.choice(DESKTOPS)))
            elif roll < 0.12:
                extra.append("NotShowIn=GNOME;")
            elif roll < 0.20:
                extra.append("TryExec=" + os.path.join(bin_dir, "installed-tool"))
            elif roll < 0.25:
                extra.append("TryExec=sh")
            elif roll < 0.30:
                extra.append("TryExec=not-installed-" + slug)
            elif roll < 0.32:
                extra.append("Hidden=true")
        # Vendor folders give IDs such as kde4-name.desktop.
        folder = ""
        roll = rng.random()
        if roll < 0.08:
            folder = "kde4"
        elif roll < 0.12:
            folder = os.path.join("wine", "Programs", rng.choice(["Games", "Tools"]))
        elif roll < 0.15:
            folder = "screensavers"
        file_name = "org.{}.{}-{}.desktop".format(
            rng.choice(["gnome", "kde", "example", "freedesktop"]), slug.replace("-", ""), index)
        path = os.path.join(system, folder, file_name)
        if index == probe_index:
            path = os.path.join(system, "app.quillon.bench-probe.desktop")
        # The probe keeps its name in every language, so that a launcher
        # without accent folding finds it too.
        write(path, entry_text(rng, name, category, locales, executable, extra, index != probe_index))
        if executable != "true":
            install(bin_dir, executable)
        if index != probe_index:
            system_ids.append((os.path.relpath(path, system).replace(os.sep, "-"), name, category, locales))

    # The user's own: about one in twenty entries overrides or masks a
    # system one by its desktop file ID.
    for desktop_id, name, category, locales in rng.sample(system_ids, len(system_ids) // 20):
        if rng.random() < 0.3:
            text = "[Desktop Entry]\nType=Application\nName={}\nExec=true\nHidden=true\n".format(name)
        else:
            text = entry_text(rng, name + " (mine)", category, locales, "my-" + desktop_id[:-8], [])
            install(bin_dir, "my-" + desktop_id[:-8])
        write(os.path.join(user, desktop_id), text)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("count", type=int)
    parser.add_argument("root")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--probe", default="")
    arguments = parser.parse_args()
    generate(arguments.count, arguments.root, arguments.seed, arguments.probe)


if __name__ == "__main__":
    main()
