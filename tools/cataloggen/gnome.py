"""The GNOME Settings catalog of one release, read from a checked-out
gnome-control-center source tree (`git archive TAG | tar -x`).

What comes from where:
- panels: the loader's table (shell/cc-panel-loader.c), in the sidebar's
  order (shell/cc-panel-list.c), grouped where the sidebar draws a separator
  (46 on) or where the panels' desktop categories change (before 46);
- names, icons and the command that opens a panel: its desktop file;
- pages inside a panel: the rows of the panel's main template that push a page
  by tag, kept when the release lets a page be opened from the command line
  and the page is known to the panel without any context;
- string references: the msgid, kept only when the release's German
  translation has it (a msgid missing there is no msgid at all).
Colours, fallback icons and the interface-string map are not in the source;
they come from the overlay (gnome-overlay.json)."""

import glob
import os
import re
import xml.etree.ElementTree as ElementTree

from . import po

MO_TABLE = "/usr/share/locale/%l/LC_MESSAGES/gnome-control-center-2.0.mo"
SETTINGS_DESKTOP = "/usr/share/applications/org.gnome.Settings.desktop"


class SourceError(Exception):
    pass


def read(tree, path):
    with open(os.path.join(tree, path), encoding="utf-8") as f:
        return f.read()


def strip_mnemonic(text):
    return re.sub(r"_(?=[^_])", "", text).replace("__", "_")


def panel_table(tree):
    """(id, type function) of every panel the loader knows, build options ignored."""
    text = read(tree, "shell/cc-panel-loader.c")
    table = text[text.index("default_panels[]"):]
    table = table[:table.index("};")]
    return re.findall(r'PANEL_TYPE\("([^"]+)",\s*(\w+)', table)


def sidebar_order(tree):
    text = read(tree, "shell/cc-panel-list.c")
    block = text[text.index("panel_order[]"):]
    block = block[block.index("{"):block.index("};")]
    block = re.sub(r"/\*.*?\*/", "", block, flags=re.S)
    return re.findall(r'"([^"]+)"', block)


def parse_desktop(text):
    entry = {}
    for line in text.splitlines():
        if "=" in line and not line.startswith("#") and not line.startswith("["):
            key, value = line.split("=", 1)
            entry.setdefault(key.strip(), value.strip())
    return entry


def desktop_files(tree):
    """Desktop entries by the arguments of their Exec line: ("wifi",) or ("system", "about")."""
    entries = {}
    for path in sorted(glob.glob(os.path.join(tree, "panels", "**", "gnome-*-panel.desktop.in*"), recursive=True)):
        entry = parse_desktop(read(tree, os.path.relpath(path, tree)))
        words = entry.get("Exec", "").split()
        if words[:1] == ["gnome-control-center"] and len(words) > 1:
            entries[tuple(words[1:])] = entry
    return entries


def sidebar_categories(tree):
    """The desktop categories that place a panel in the sidebar, in the loader's order."""
    return re.findall(r'"X-GNOME-(\w+)Settings"', read(tree, "shell/cc-panel-loader.c"))


def category(entry, known):
    names = entry.get("Categories", "").split(";")
    for cat in known:
        if f"X-GNOME-{cat}Settings" in names:
            return cat
    return None


# --- templates: .ui (XML) and .blp (Blueprint) ------------------------------

class Node:
    """An object of a template: its class, its properties, its children."""

    def __init__(self, cls):
        self.cls = cls
        self.id = None
        self.props = {}
        self.children = []

    def walk(self):
        yield self
        for child in self.children:
            yield from child.walk()


def parse_ui(text):
    def direct_objects(element):
        # Objects nested in this element but not inside another object.
        found = []
        for sub in element:
            if sub.tag in ("object", "template"):
                found.append(sub)
            else:
                found.extend(direct_objects(sub))
        return found

    def build(element):
        node = Node(element.get("class"))
        node.id = element.get("id")
        node.template = element.tag == "template"
        for prop in element.findall("property"):
            if prop.text is not None and len(prop) == 0:
                node.props[prop.get("name").replace("_", "-")] = prop.text.strip()
        node.children = [build(sub) for sub in direct_objects(element)]
        return node

    return [build(element) for element in direct_objects(ElementTree.fromstring(text))]


BLP_PROPERTY = re.compile(r'^\s*([\w-]+):\s*(?:_\("((?:[^"\\]|\\.)*)"\)|"((?:[^"\\]|\\.)*)"|([^;{]+?))\s*;')
BLP_OPEN = re.compile(r'^\s*(?:\[[^\]]*\]\s*)?(?:[\w-]+:\s*)?(template\s+)?\$?([\w.]+)(?:\s+(\w+))?(?::\s*\$?[\w.]+)?\s*\{')


def parse_blp(text):
    roots, stack = [], []
    for line in text.splitlines():
        line = re.sub(r"^\s*//.*", "", line)
        opened = BLP_OPEN.match(line)
        if opened and not BLP_PROPERTY.match(line):
            node = Node(opened.group(2).split(".")[-1] if opened.group(2) else None)
            node.cls = opened.group(2).replace("Adw.", "Adw").replace("Gtk.", "Gtk")
            node.template = bool(opened.group(1))
            node.id = opened.group(3)
            (stack[-1].children if stack else roots).append(node)
            stack.append(node)
            line = line[opened.end():]
        prop = BLP_PROPERTY.match(line)
        if prop and stack:
            value = next(v for v in prop.groups()[1:] if v is not None)
            stack[-1].props[prop.group(1)] = value.replace('\\"', '"')
        closes = line.count("}") - line.count("{")
        for _ in range(max(closes, 0)):
            if stack:
                stack.pop()
    return roots


def templates(tree, folder):
    """Every template under a folder: class name -> (root node, file)."""
    found = {}
    for path in sorted(glob.glob(os.path.join(tree, folder, "**", "*"), recursive=True)):
        if path.endswith(".ui"):
            try:
                roots = parse_ui(read(tree, os.path.relpath(path, tree)))
            except ElementTree.ParseError:
                continue
        elif path.endswith(".blp"):
            roots = parse_blp(read(tree, os.path.relpath(path, tree)))
        else:
            continue
        for root in roots:
            if getattr(root, "template", False) and root.cls:
                found[root.cls] = (root, path)
    return found


def class_of(type_function):
    """cc_date_time_panel_get_type -> CcDateTimePanel."""
    words = type_function[:-len("_get_type")].split("_")
    return "".join(w.capitalize() for w in words)


def type_macro_class(macro):
    """CC_TYPE_SEARCH_LOCATIONS_PAGE -> CcSearchLocationsPage."""
    words = macro.split("_")
    return "".join(w.capitalize() for w in [words[0]] + words[2:])


def unquote_target(value):
    match = re.fullmatch(r"""\s*'([^']*)'\s*""", value or "")
    return match.group(1) if match else None


# --- pages a panel opens from its arguments ----------------------------------

def subpage_mode(tree):
    """How the release opens a page from the first argument: "any" panel,
    "listening" panels only, or "none"."""
    shell = read(tree, "shell/cc-panel.c")
    if "push_by_tag" in shell:
        return "any"
    if '"subpage"' in shell:
        return "listening"
    return "none"


def panel_sources(tree, folder):
    text = ""
    for path in sorted(glob.glob(os.path.join(tree, folder, "**", "*.c"), recursive=True)):
        text += read(tree, os.path.relpath(path, tree))
    return text


def panel_pages(tree, panel_class, all_templates, mode):
    """The pages that the panel opens by tag: (tag, row title, page title, icon)."""
    if panel_class not in all_templates or mode == "none":
        return []
    root, path = all_templates[panel_class]
    folder = os.path.relpath(os.path.dirname(path), tree)
    code = panel_sources(tree, folder)
    if 'PROP_PARAMETERS, "parameters"' in code:
        return []  # the panel reads its arguments its own way
    if mode == "listening" and "notify::subpage" not in code:
        return []

    # Pages the panel holds without context: declared in its template, or
    # registered with their type.
    known = {}
    for node in root.walk():
        if "tag" in node.props:
            known[node.props["tag"]] = node.props.get("title")
        elif node.cls in all_templates and node is not root:
            page = all_templates[node.cls][0]
            if "tag" in page.props:
                known[page.props["tag"]] = page.props.get("title")
    for tag, macro in re.findall(r'add_static_subpage\s*\([^,]+,\s*("[^"]+"|\w+)\s*,\s*(\w+)\s*\)', code):
        cls = type_macro_class(macro)
        page = all_templates.get(cls, (None,))[0]
        if tag.startswith('"'):
            tag = tag.strip('"')
        elif page is not None and "tag" in page.props:
            tag = page.props["tag"]
        else:
            define = re.search(rf'#define\s+{tag}\s+"([^"]+)"', code)
            tag = define.group(1) if define else None
        if tag:
            known[tag] = page.props.get("title") if page is not None else None

    # Pages the panel makes in its code and adds to its navigation, or makes
    # from the tag it is given.
    if re.search(r"cc_panel_add_subpage|adw_navigation_view_add|page_type\s*=", code):
        made = {type_macro_class(m) for m in re.findall(r"\b(CC_TYPE_\w+_PAGE)\b", code)}
        made |= {class_of(m + "_get_type") for m in re.findall(r"\b(cc_\w+_page)_new\b", code)}
        for cls in made:
            page = all_templates.get(cls, (None,))[0]
            if page is not None and "tag" in page.props:
                known.setdefault(page.props["tag"], page.props.get("title"))

    pages = []
    for node in root.walk():
        if node.props.get("action-name") == "navigation.push":
            tag = unquote_target(node.props.get("action-target"))
        elif node.id and node.id.endswith("_row"):
            # A row whose handler pushes the page named like the row.
            tag = node.id[:-len("_row")].replace("_", "-")
        else:
            continue
        if tag in known and tag not in [p[0] for p in pages]:
            pages.append((tag, node.props.get("title"), known[tag], node.props.get("icon-name")))
    # A page no row leads to (a row may name it wrongly) still opens by its tag.
    # A page without a title of its own is titled by what the panel picked
    # for it (a monitor, an app): no place by itself.
    for tag, title in known.items():
        if tag not in [p[0] for p in pages] and title:
            pages.append((tag, None, title, None))
    return pages


# --- the document --------------------------------------------------------------

def string_ref(text, msgids):
    if text and text in msgids:
        return {"table": MO_TABLE, "key": text}
    return None


def apply_icon(record, icon_name, overlay_icon):
    symbol = overlay_icon.get("symbol") or icon_name
    if symbol and not symbol.endswith("-symbolic"):
        symbol += "-symbolic"
    if symbol:
        record["symbol"] = symbol
    for key in ("symbolBackground", "symbolFallback"):
        if key in overlay_icon:
            record[key] = overlay_icon[key]


def with_children(record, children):
    """The record with its children where the format lists them: after sections."""
    ordered = {}
    for key, value in record.items():
        ordered[key] = value
        if key == "sections":
            ordered["children"] = children
    return ordered


def shipped_icons(tree):
    names = set()
    for path in glob.glob(os.path.join(tree, "**", "*.svg"), recursive=True):
        names.add(os.path.basename(path)[:-len(".svg")])
    return names


def privacy_heading(tree):
    """Before 45 Privacy was a list of panels behind a row of the sidebar:
    its label and icon, from the sidebar's template."""
    text = read(tree, "shell/cc-panel-list.ui")
    at = text.find('translatable="yes">Privacy<')
    if at < 0:
        return None
    icons = re.findall(r'name="icon_name">([^<]+)<', text[:at])
    return {"name": "Privacy", "icon": icons[-1] if icons else None}


def build(tree, tags, overlay, release, report):
    msgids = po.msgids(os.path.join(tree, "po", "de.po"))
    loader = panel_table(tree)
    panels = {pid: fn for pid, fn in loader}
    omitted = overlay.get("omit", {}).get(release, {})
    for pid, reason in omitted.items():
        if pid in panels:
            report(f"panel {pid} left out: {reason}")
            del panels[pid]
    entries = desktop_files(tree)
    order = sidebar_order(tree)
    mode = subpage_mode(tree)
    all_templates = templates(tree, "panels")
    icons_in_source = shipped_icons(tree)
    icons = overlay["icons"]

    def index(pid):
        # The sidebar puts panels missing from its order first.
        return order.index(pid) if pid in order else -1

    heading = None
    known_categories = sidebar_categories(tree)
    privacy_members = [pid for pid in panels if category(entries.get((pid,), {}), known_categories) == "Privacy"]
    if privacy_members and "privacy" not in panels:
        heading = privacy_heading(tree)
        if heading is None:
            raise SourceError("panels of the Privacy category but no Privacy row in the sidebar")

    top = sorted([pid for pid in panels if pid not in privacy_members or heading is None] +
                 (["privacy"] if heading else []), key=index)

    sections, group, last = [], [], None
    if "separator" in order:
        for name in [n for n in order if n in top or n == "separator"]:
            if name == "separator":
                if group:
                    sections.append(group)
                group = []
            else:
                group.append(name)
    else:
        for pid in top:
            cat = "Account" if pid == "privacy" and heading else category(entries.get((pid,), {}), known_categories)
            if group and cat != last:
                sections.append(group)
                group = []
            group.append(pid)
            last = cat
    if group:
        sections.append(group)

    panes = []

    def pane_record(pid, name, url, icon_name, msg_name=None, icon_key=None):
        record = {"id": pid, "name": name}
        ref = string_ref(msg_name or name, msgids)
        if ref:
            record["nameRef"] = ref
        else:
            report(f"pane {pid}: \"{name}\" is not a msgid of this release, no nameRef")
        if url:
            record["url"] = url
        record["sections"] = []
        if icon_name and icon_name.endswith("-symbolic") and icon_name.startswith("org.gnome.Settings-") \
                and icon_name[:-len("-symbolic")] not in icons_in_source and icon_name not in icons_in_source:
            report(f"pane {pid}: icon {icon_name} is not shipped by this release")
        apply_icon(record, icon_name, icons.get(icon_key or pid, {}))
        return record

    child_panels = set(overlay.get("pagesAsChildPanes", []))
    for pid in top:
        if pid == "privacy" and heading:
            members = sorted(privacy_members, key=index)
            record = pane_record("privacy", heading["name"], None, heading["icon"], icon_key="privacy@heading")
            record = with_children(record, [members])
            panes.append(record)
            for member in members:
                entry = entries[(member,)]
                panes.append(pane_record(member, entry["Name"], f"settings://gnome/{member}", entry.get("Icon")))
            continue
        entry = entries.get((pid,))
        if entry is None:
            raise SourceError(f"panel {pid} has no desktop file")
        record = pane_record(pid, entry["Name"], f"settings://gnome/{pid}", entry.get("Icon"))
        pages = panel_pages(tree, class_of(panels[pid]), all_templates, mode)
        children = []
        if pid in child_panels and pages:
            for tag, row_title, page_title, row_icon in pages:
                sub = entries.get((pid, tag), {})
                name = sub.get("Name") or page_title or strip_mnemonic(row_title or tag)
                children.append(pane_record(tag, name, f"settings://gnome/{pid}/{tag}", sub.get("Icon") or row_icon))
            record = with_children(record, [[c["id"] for c in children]])
        elif pages:
            items = []
            for tag, row_title, page_title, _ in pages:
                label = page_title or strip_mnemonic(row_title or tag)
                item = {"label": label}
                ref = string_ref(label, msgids)
                if ref:
                    item["labelRefs"] = [ref]
                item.update({"kind": "page", "url": f"settings://gnome/{pid}/{tag}"})
                items.append(item)
            record["sections"] = [{"items": items}]
        extra = overlay.get("items", {}).get(pid, {})
        if release in extra.get("releases", []):
            record["sections"] = record["sections"] + extra["sections"]
        panes.append(record)
        panes.extend(children)

    document = {
        "osVersion": tags[-1],
        "source": [f"GNOME/gnome-control-center {t}" for t in tags],
        "sections": sections,
        "panes": panes,
        "strings": strings_for(overlay, release, msgids, report),
    }
    return document


def strings_for(overlay, release, msgids, report):
    chosen = None
    for first, table in sorted(overlay["strings"].items(), key=lambda kv: int(kv[0])):
        if int(first) <= int(release):
            chosen = table
    strings = {}
    for key, ref in chosen.items():
        if ref and ref["table"] == MO_TABLE and ref["key"] not in msgids:
            report(f"interface string {key}: \"{ref['key']}\" is not a msgid of this release, left null")
            ref = None
        strings[key] = ref
    return strings
