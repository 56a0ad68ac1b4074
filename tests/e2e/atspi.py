"""Finding and working Quillon's controls through the accessibility tree
(AT-SPI), the way a screen reader does: by role and accessible name."""

import subprocess
import time

import pyatspi


def application(name, timeout=15):
    deadline = time.time() + timeout
    while time.time() < deadline:
        desktop = pyatspi.Registry.getDesktop(0)
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            if app is not None and app.name == name:
                return app
        time.sleep(0.2)
    raise AssertionError(f"no application {name!r} on the accessibility bus")


def _walk(node, depth=0):
    if node is None or depth > 30:
        return
    yield node
    try:
        children = [node.getChildAtIndex(i) for i in range(node.childCount)]
    except Exception:  # a node that went away while we looked
        return
    for child in children:
        yield from _walk(child, depth + 1)


def showing(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


def find_all(root, role, name=None, only_showing=True):
    found = []
    for node in _walk(root):
        try:
            if node.getRoleName() != role or (name is not None and node.name != name):
                continue
            if only_showing and not showing(node):
                continue
        except Exception:
            continue
        found.append(node)
    return found


def find(root, role, name=None, timeout=10, only_showing=True):
    """The first control of this role and name, waiting for it to appear."""
    deadline = time.time() + timeout
    while True:
        # Windows that popped up since the last look (menus, dialogs) are
        # only seen once the cached children are dropped.
        root.clearCache()
        nodes = find_all(root, role, name, only_showing)
        if nodes:
            return nodes[0]
        if time.time() > deadline:
            raise AssertionError(f"no {role} {name!r} showing")
        time.sleep(0.2)


def labelled(root, label, timeout=10):
    """The control a visible label names (Qt names combo boxes by their value
    and points their label at them instead)."""
    deadline = time.time() + timeout
    while True:
        for node in find_all(root, "label", label):
            for relation in node.getRelationSet():
                if relation.getRelationType() == pyatspi.RELATION_LABEL_FOR and relation.getNTargets():
                    return relation.getTarget(0)
        if time.time() > deadline:
            raise AssertionError(f"no control labelled {label!r} showing")
        time.sleep(0.2)


def act(node, action):
    actions = node.queryAction()
    names = [actions.getName(i) for i in range(actions.nActions)]
    if action not in names:
        raise AssertionError(f"{node.getRoleName()} {node.name!r} has no action {action!r}, only {names}")
    actions.doAction(names.index(action))
    time.sleep(0.3)


def select_only(view, name):
    """Selects the row whose first cell is `name`, and nothing else."""
    role = "list item" if view.getRoleName() == "list" else "table cell"
    wanted = find(view, role, name)
    for cell in find_all(view, role):
        # A row's cells select together: look again before each toggle.
        if cell.getState().contains(pyatspi.STATE_SELECTED):
            act(cell, "Toggle")
    act(wanted, "Toggle")


def click(node):
    """A click in the middle of a control, where the accessibility tree says it is."""
    x, y, width, height = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    subprocess.run(["xdotool", "mousemove", "--sync", str(x + width // 2), str(y + height // 2), "click", "1"],
                   check=True)
    time.sleep(0.4)


def keys(*names):
    """Keys pressed on the keyboard, into whatever has the focus."""
    subprocess.run(["xdotool", "key", "--delay", "80", *names], check=True)
    time.sleep(0.4)


def choose(combo, text):
    """Picks an entry of a combo box as a keyboard user does: opens its list,
    goes to the top, down to the entry, and takes it."""
    items = find_all(combo, "list item", only_showing=False)
    names = [item.name for item in items]
    if text not in names:
        raise AssertionError(f"combo box {combo.name!r} has no {text!r}, only {names}")
    act(combo, "ShowMenu")
    keys("Home", *["Down"] * names.index(text), "Return")


def set_text(field, text):
    editable = field.queryEditableText()
    editable.setTextContents(text)
    time.sleep(0.2)


def open_tab(window, name):
    act(find(window, "page tab", name), "Press")
    time.sleep(0.4)
