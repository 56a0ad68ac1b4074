"""The settings window as a person (or a screen reader) uses it: every step
goes through the accessibility tree or the keyboard, and is checked in what
Quillon saved and in the menu it would show next.

Run by settings.sh: python3 settings.py QUILLON ARTIFACTS."""

import os
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from atspi import act, application, choose, click, find, find_all, keys, labelled, open_tab, select_only, set_text  # noqa: E402

quillon, artifacts = sys.argv[1], sys.argv[2]
home = os.environ["HOME"]


def shot(name):
    path = os.path.join(artifacts, name + ".png")
    subprocess.run(["import", "-window", "root", path], check=True)
    print("screenshot:", path)


def printed(*arguments):
    """What Quillon prints for its saved configuration, without a display."""
    env = dict(os.environ)
    for key in ("DISPLAY", "WAYLAND_DISPLAY", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"):
        env.pop(key, None)
    return subprocess.run([quillon, *arguments], env=env, capture_output=True, text=True, timeout=60).stdout


def layout():
    return [line.split("\t") for line in printed("--print-layout").splitlines()]


def until(check, what, timeout=10):
    deadline = time.time() + timeout
    while time.time() < deadline:
        if check():
            return
        time.sleep(0.2)
    shot("failure")
    raise AssertionError(what)


passed = 0


def step(name):
    global passed
    passed += 1
    print("ok", passed, "-", name)


app = application("Quillon")
window = find(app, "filler", "Quillon Settings")
shot("settings-general")

# General: the menu's search field goes away.
act(find(window, "check box", "Show Search"), "Toggle")
until(lambda: "(search field)" not in printed("--print-menu", "--depth", "1"), "Show Search did not turn off")
step("General: Show Search off")

# Content: hide Recents.
open_tab(window, "Content")
shot("settings-content")
rows = find(window, "tree", "Content")
select_only(rows, "Recents")
choose(labelled(window, "Show"), "Don’t Show")
until(lambda: ["hidden", '{"recents":{}}'] in layout(), f"Recents was not hidden: {layout()}")
until(lambda: "Recents" not in printed("--print-menu", "--depth", "1"), "the menu still shows Recents")
step("Content: Recents hidden")

# Content: move Shortcuts up, from the keyboard.
select_only(rows, "Shortcuts")
keys("alt+Up")
order = lambda: [entry[1] for entry in layout()]  # noqa: E731
until(lambda: order().index('{"shortcuts":{}}') < order().index('{"systemSettings":{}}'),
      "Alt+Up did not move Shortcuts above System Settings")
step("Content: Shortcuts moved up")

# Content: add a folder through the file chooser, then sort it by date added.
reports = os.path.join(home, "Reports")
act(find(window, "push button", "Add Folder"), "Press")
dialog = find(app, "dialog")
field = [f for f in find_all(dialog, "text") if f.name != "" or True][-1]
set_text(field, reports)
keys("Return")
until(lambda: any('"folder"' in entry[1] for entry in layout()), "the folder was not added")
until(lambda: "Q3 figures.ods" in printed("--print-menu", "--depth", "2"), "the folder's files are not in the menu")
step("Content: folder added")
select_only(rows, "Reports")
act(find(window, "push button", "Options"), "Press")
# The menu takes the keyboard: Sort By, then its second choice.
keys("Down", "Right", "Down", "Return")
until(lambda: '"sort":"dateAdded"' in subprocess.run(
    ["grep", "-o", '"sort[^,}]*', os.path.join(os.environ["XDG_CONFIG_HOME"], "Quillon", "Quillon.conf")],
    capture_output=True, text=True).stdout.replace('\\"', '"').replace(" ", ""), "the folder's sort did not change")
shot("settings-content-edited")
step("Content: folder sorted by date added")

# Applications: one favourite, and only favourites.
open_tab(window, "Applications")
apps = find(window, "list", "Favorites")
search = find(window, "text", "Search")
set_text(search, "marker")
find(apps, "list item", "Quillon Marker Probe")
# From the filter field to the list, and tick the selected application.
act(search, "SetFocus")
keys("Tab", "Home", "space")
choose(labelled(window, "Show"), "Favorites")
until(lambda: printed("--print-menu", "--depth", "2").count("Quillon Marker Probe") == 1
      and "Vim" not in printed("--print-menu", "--depth", "2"), "the menu does not show only the favourite")
shot("settings-applications")
step("Applications: a favourite, favourites only")

# Menus: add one and name it, duplicate it, delete the copy.
open_tab(window, "Menus")
act(find(window, "push button", "Add"), "Press")
keys("ctrl+a", "W", "o", "r", "k", "Return")
menu_names = lambda: [line for line in printed("--print-menu", "--depth", "1").splitlines() if "▸" in line]  # noqa: E731
until(lambda: any(line.startswith("Work  ▸") for line in menu_names()), f"no menu named Work: {menu_names()}")
step("Menus: a new menu, renamed")
act(find(window, "push button", "Duplicate"), "Press")
until(lambda: any(line.startswith("Work copy  ▸") for line in menu_names()), "Duplicate made no copy")
step("Menus: duplicated")
# The confirmation is modal: press Delete from the keyboard, then confirm.
act(find(window, "push button", "Delete"), "SetFocus")
keys("space")
act(find(find(app, "alert"), "push button", "Delete"), "Press")
until(lambda: not any(line.startswith("Work copy") for line in menu_names()), "the copy was not deleted")
step("Menus: the copy deleted")

# Menus: Work gets a settings place and an application, from the choosers.
select_only(find(window, "list", "Menus"), "Work")
act(find(window, "push button", "System Settings"), "Press")
chooser = find(app, "dialog", "System Settings")
click(find(find(chooser, "tree", "System Settings"), "table cell", "Wi-Fi"))
keys("space")
act(find(chooser, "push button", "Close"), "Press")
act(find(window, "push button", "Applications"), "Press")
chooser = find(app, "dialog", "Applications")
set_text(find(chooser, "text", "Search"), "marker")
time.sleep(0.5)  # the filter settles
# Point at the application (that also gives the list the keyboard), tick it.
click(find(find(chooser, "tree", "Applications"), "table cell", "Quillon Marker Probe"))
keys("space")
shot("settings-menus-chooser")
act(find(chooser, "push button", "Close"), "Press")
work = lambda: printed("--print-menu", "--depth", "2").split("Work  ▸", 1)[-1].split("▸", 1)[0]  # noqa: E731
until(lambda: "Quillon Marker Probe" in work() and "Vim" not in work() and "settings://gnome/wifi" in work(),
      f"Work does not hold the chosen place and application: {work()}")
shot("settings-menus")
step("Menus: a settings place and an application included")

print(f"{passed} passed, 0 failed")
