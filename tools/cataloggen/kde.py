"""The Plasma System Settings catalog of one release, read from the source of
the repositories that ship settings modules, each checked out at the release's
tag under one folder:
    <tree>/systemsettings, <tree>/plasma-desktop, <tree>/plasma-workspace, ...

What comes from where:
- the groups of the sidebar: systemsettings' categories/*.desktop, as its
  build installs them (only those named in categories/CMakeLists.txt);
- the modules: every plugin metadata file (a JSON with "KPlugin") that names
  an X-KDE-System-Settings-Parent-Category, with the plugin's file name and
  Qt plugin folder taken from the CMake target that embeds it;
- the order: X-KDE-Weight (100 when absent), then the English name, as the
  sidebar sorts; a category without modules below it is not shown.
Modules of repositories too big to read here (kwin), fallback icons and the
interface-string map come from the overlay (kde-overlay.json)."""

import glob
import json
import os
import re

CATEGORY_TABLE = "/usr/share/systemsettings/categories/{}"
PLUGIN_TABLE = "%p/{}/{}.so"
DEFAULT_WEIGHT = 100
# The sidebar's own page, listed apart from the categories.
LANDING_PAGE = "kcm_landingpage"
ROOT_CATEGORY = "rootcategory"
# The namespace kcmutils_add_qml_kcm installs into unless told otherwise.
DEFAULT_NAMESPACE = "plasma/kcms/systemsettings"


class SourceError(Exception):
    pass


def parse_desktop(text):
    entry, in_entry = {}, False
    for line in text.splitlines():
        if line.startswith("["):
            in_entry = line.strip() == "[Desktop Entry]"
        elif in_entry and "=" in line and not line.startswith("#"):
            key, value = line.split("=", 1)
            entry.setdefault(key.strip(), value.strip())
    return entry


def weight_of(value):
    try:
        return int(value)
    except (TypeError, ValueError):
        return DEFAULT_WEIGHT


# --- categories ----------------------------------------------------------------

def installed_categories(tree):
    """Category records of systemsettings' categories folder, as installed."""
    folder = os.path.join(tree, "systemsettings", "categories")
    try:
        with open(os.path.join(folder, "CMakeLists.txt"), encoding="utf-8") as f:
            cmake = f.read()
    except OSError as error:
        raise SourceError(f"no systemsettings categories: {error}") from error
    names = re.findall(r"([\w-]+\.desktop)", cmake)
    categories = []
    for name in names:
        with open(os.path.join(folder, name), encoding="utf-8") as f:
            entry = parse_desktop(f.read())
        category = entry.get("X-KDE-System-Settings-Category", "")
        if not category:
            continue
        categories.append({
            "file": name,
            "id": category,
            "parent": entry.get("X-KDE-System-Settings-Parent-Category", ""),
            "weight": weight_of(entry.get("X-KDE-Weight")),
            "name": entry.get("Name", category),
            "icon": entry.get("Icon") or None,
        })
    return categories


# --- modules -------------------------------------------------------------------

TARGET_PATTERNS = [
    # kcmutils_add_qml_kcm(name [SOURCES ...] [INSTALL_NAMESPACE "ns"])
    (re.compile(r"kcmutils_add_qml_kcm\s*\(\s*([\w-]+)([^)]*)\)", re.S), DEFAULT_NAMESPACE),
    # kcoreaddons_add_plugin(name SOURCES ... INSTALL_NAMESPACE "ns")
    (re.compile(r"kcoreaddons_add_plugin\s*\(\s*([\w-]+)([^)]*)\)", re.S), None),
    # add_library(name MODULE ...) + install(TARGETS name DESTINATION .../ns)
    (re.compile(r"add_library\s*\(\s*([\w-]+)\s+MODULE([^)]*)\)", re.S), None),
]


def plugin_targets(cmake):
    """(target, namespace or None) of every plugin a CMakeLists.txt builds."""
    targets = []
    for pattern, default in TARGET_PATTERNS:
        for name, rest in pattern.findall(cmake):
            namespace = re.search(r'INSTALL_NAMESPACE\s+"?([\w/.-]+)"?', rest)
            if namespace:
                namespace = namespace.group(1)
            else:
                install = re.search(r"install\s*\(\s*TARGETS\s+" + re.escape(name) +
                                    r"\s+DESTINATION\s+\$\{KDE_INSTALL_PLUGINDIR\}/([\w/.-]+)\s*\)", cmake)
                namespace = install.group(1) if install else default
            targets.append((name, namespace))
    return targets


def module_target(json_path, repo_root):
    """The plugin file name and namespace for a metadata file: the target of
    the same name, else the one plugin built in its folder or a folder above."""
    stem = os.path.basename(json_path)[:-len(".json")]
    folder = os.path.dirname(json_path)
    while True:
        cmake_path = os.path.join(folder, "CMakeLists.txt")
        if os.path.exists(cmake_path):
            with open(cmake_path, encoding="utf-8") as f:
                targets = [t for t in plugin_targets(f.read()) if t[1] and t[1].startswith("plasma/kcms")]
            named = [t for t in targets if t[0] == stem]
            if named:
                return named[0]
            if len(targets) == 1:
                return targets[0]
        if os.path.samefile(folder, repo_root):
            return None
        folder = os.path.dirname(folder)


def source_modules(tree, report):
    """Module records of every repository folder under the tree."""
    modules = {}
    for repo in sorted(os.listdir(tree)):
        repo_root = os.path.join(tree, repo)
        if not os.path.isdir(repo_root):
            continue
        for path in sorted(glob.glob(os.path.join(repo_root, "**", "*.json"), recursive=True)):
            relative = os.path.relpath(path, repo_root)
            if re.search(r"(^|/)(autotests|tests?)/", relative):
                continue
            try:
                with open(path, encoding="utf-8") as f:
                    data = json.load(f)
            except (OSError, ValueError):
                continue
            if not isinstance(data, dict) or "KPlugin" not in data:
                continue
            parent = data.get("X-KDE-System-Settings-Parent-Category")
            if not parent:
                continue
            kplugin = data["KPlugin"]
            if kplugin.get("Hidden") is True or data.get("Hidden") is True:
                continue
            form_factors = kplugin.get("FormFactors")
            if form_factors and "desktop" not in form_factors:
                report(f"{repo}/{relative}: a module for {', '.join(form_factors)} only, left out")
                continue
            target = module_target(path, repo_root)
            if target is None:
                report(f"{repo}/{relative}: no plugin target builds it, left out")
                continue
            name, namespace = target
            if name in modules:
                report(f"{repo}/{relative}: module {name} already read from {modules[name]['origin']}")
                continue
            modules[name] = {
                "id": name,
                "namespace": namespace,
                "parent": parent,
                "weight": weight_of(data.get("X-KDE-Weight")),
                "name": kplugin.get("Name", name),
                "icon": kplugin.get("Icon") or None,
                "origin": f"{repo}/{relative}",
            }
    return modules


def overlay_modules(overlay, release):
    """Modules the overlay adds for this release (those of unread repositories)."""
    modules = {}
    for record in overlay.get("modules", []):
        first, last = record.get("from"), record.get("until")
        if first and version(release) < version(first):
            continue
        if last and version(release) > version(last):
            continue
        module = {k: record[k] for k in ("id", "namespace", "parent", "name", "icon")}
        module["weight"] = record.get("weight", DEFAULT_WEIGHT)
        module["origin"] = "overlay"
        modules[module["id"]] = module
    return modules


def version(text):
    return tuple(int(p) for p in text.split("."))


def repository_tags(tree):
    """"KDE/<repo> <tag>" for every repository folder, from the .tag file
    the checkout left beside it."""
    sources = []
    for repo in sorted(os.listdir(tree)):
        tag_file = os.path.join(tree, repo, ".tag")
        if os.path.exists(tag_file):
            with open(tag_file, encoding="utf-8") as f:
                sources.append(f"KDE/{repo} {f.read().strip()}")
    return sources


# --- the document ----------------------------------------------------------------

def sort_key(record):
    return (record["weight"], record["name"])


def build(tree, tags, overlay, release, report):
    categories = installed_categories(tree)
    modules = source_modules(tree, report)
    for module_id, module in overlay_modules(overlay, release).items():
        if module_id in modules:
            report(f"module {module_id}: the source has it, the overlay's record is not used")
        else:
            modules[module_id] = module
    for module_id in overlay.get("omit", {}).get(release, {}):
        modules.pop(module_id, None)

    by_category = {}
    for category in categories:
        if category["id"] == ROOT_CATEGORY:
            continue  # the home of the landing page, not a group of the sidebar
        by_category.setdefault(category["parent"], []).append(("category", category))
    known = {c["id"] for c in categories}
    for module in modules.values():
        if module["parent"] not in known and module["parent"] != ROOT_CATEGORY:
            report(f"module {module['id']}: category \"{module['parent']}\" does not exist, not shown")
            continue
        by_category.setdefault(module["parent"], []).append(("module", module))

    icons = overlay.get("icons", {})
    generic = overlay["genericIcon"]
    panes = []

    def icon_fields(record, key, inherited):
        icon = record["icon"] or icons.get(key, {}).get("symbol")
        fallback = icons.get(key, {}).get("symbolFallback") or inherited or generic
        if not icon:
            report(f"{key}: no icon in the source, the generic one")
            icon = fallback
        return {"symbol": icon, "symbolFallback": fallback}

    def module_pane(module, inherited):
        pane = {
            "id": module["id"],
            "name": module["name"],
            "nameRef": {"table": PLUGIN_TABLE.format(module["namespace"], module["id"]), "key": "Name"},
            "url": f"settings://kde/{module['id']}",
            "sections": [],
        }
        pane.update(icon_fields(module, module["id"], inherited))
        return pane

    def emit(category, inherited):
        """Adds the category's pane and those below it; False when it shows nothing."""
        entries = sorted(by_category.get(category["id"], []), key=lambda e: sort_key(e[1]))
        own = icon_fields(category, category["id"], inherited)
        # What stands in for a child's icon: the category's own, unless the
        # overlay knows it to be missing from older icon themes.
        below = icons.get(category["id"], {}).get("symbolFallback") or own["symbol"]
        start = len(panes)
        pane = {
            "id": category["id"],
            "name": category["name"],
            "nameRef": {"table": CATEGORY_TABLE.format(category["file"]), "key": "Name"},
            "sections": [],
            "children": [],
        }
        pane.update(own)
        panes.append(pane)
        children = []
        for kind, record in entries:
            if kind == "category":
                if emit(record, below):
                    children.append(record["id"])
            else:
                panes.append(module_pane(record, below))
                children.append(record["id"])
        if not children:
            del panes[start:]
            return False
        # A category opens nothing by itself: the module that answers for
        # it (X-KDE-System-Settings-Category-Module) is one of its children.
        pane["children"] = [children]
        return True

    top = []
    landing = [m for _, m in by_category.get(ROOT_CATEGORY, []) if m["id"] == LANDING_PAGE]
    if landing:
        panes.append(module_pane(landing[0], None))
    for _, category in sorted(by_category.get("", []), key=lambda e: sort_key(e[1])):
        if emit(category, None):
            top.append(category["id"])
    sections = ([[LANDING_PAGE]] if landing else []) + [top]

    listed = {p["id"] for p in panes}
    for module in modules.values():
        if module["id"] not in listed and module["parent"] in known:
            report(f"module {module['id']}: not reached from the top categories")

    return {
        "osVersion": tags[-1],
        "source": [f"Plasma {t}: " + ", ".join(repository_tags(tree) + overlay.get("sources", [])) for t in tags],
        "sections": sections,
        "panes": panes,
        "strings": overlay["strings"],
    }
