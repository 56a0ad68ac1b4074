"""The catalog format: every key, type, enumeration and URL of a document,
and the rules that keep the pane tree and its URLs consistent."""

import re

# The keys of the program's own interface strings; a catalog's "strings" map
# must name every one of them (null where the desktop has no such word).
INTERFACE_STRING_KEYS = [
    "quitApp", "settings", "systemSettings", "openAtLogin", "general", "menus",
    "search", "add", "delete", "duplicate", "remove", "untitled", "copyOf",
    "name", "noSelection", "noItems", "notAvailable", "showSearch",
    "checkForUpdates", "updateAvailable", "automaticUpdates", "dontShow",
    "menu", "submenu", "addFolder", "sortBy", "dateAdded", "dateModified",
    "options", "addShortcut", "itemUnavailable", "show", "allApplications",
    "favorites", "keyboardShortcut", "noShortcut", "pressKeys",
    "removeShortcut", "space", "about", "sendFeedback", "recents", "clearMenu",
    "numberOfItems", "separator", "filesAndFolders", "catalog", "labelFormat",
    "deleteConfirmation", "cantUndo", "content", "shortcutInUse", "other",
    "icon", "none", "blue", "purple", "pink", "red", "orange", "yellow",
    "green", "graphite",
]

KINDS = {"page", "section", "tab", "sheet"}
LABEL_SOURCES = {"fullUserName"}
SYMBOL_RENDERINGS = {"white", "multicolor", "color"}
PATH_SEPARATOR = " \u203a "
MO_CONTEXT_SEPARATOR = "\u0004"
# Characters a URL path segment may hold without percent-encoding.
URL_SEGMENT = re.compile(r"^[A-Za-z0-9._~!$&'()*+,;=:@%-]+$")
MNEMONIC = re.compile(r"(^|[^_])_[^_\s]")

ICON_KEYS = {
    "bundlePath": "string", "symbol": "string", "symbolBackground": "colors",
    "symbolRendering": "rendering", "symbolColor": "color",
    "symbolMirrored": "bool", "symbolSize": "number", "symbolPrivate": "bool",
    "symbolFallback": "string",
}
PANE_KEYS = {"id", "name", "nameRef", "url", "sections", "children"} | set(ICON_KEYS)
ITEM_KEYS = {"label", "labelRefs", "labelSource", "kind", "url"} | set(ICON_KEYS)
SECTION_KEYS = {"title", "titleRef", "items"}
CATALOG_KEYS = {"osVersion", "source", "sections", "panes", "strings"}
STRING_REF_KEYS = {"table", "key"}


def parse_version(text):
    """Parts of a dotted version, or None; empty pieces are dropped."""
    pieces = [p for p in text.split(".") if p]
    if not pieces or not all(re.fullmatch(r"[+-]?[0-9]+", p) for p in pieces):
        return None
    return [int(p) for p in pieces]


def version_key(parts, width=8):
    return tuple(parts + [0] * (width - len(parts)))


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool)


class CatalogChecker:
    """Checks one decoded document against the format and the house rules."""

    def __init__(self, audit, where, desktop):
        self.audit = audit
        self.where = where
        self.desktop = desktop
        self.string_refs = []  # (place, ref, English text or None)
        self.urls = {}  # url -> first place that uses it
        self.item_count = 0

    def fail(self, place, message):
        self.audit.fail(f"{self.where} {place}", message)

    # --- value checks -----------------------------------------------------

    def check_keys(self, place, obj, allowed):
        for key in obj:
            if key not in allowed:
                self.fail(place, f"unknown key \"{key}\" (a typo? the program ignores it)")

    def present(self, obj, key):
        return key in obj and obj[key] is not None

    def require(self, place, obj, key, kind):
        if not self.present(obj, key):
            self.fail(place, f"required key \"{key}\" is missing")
            return None
        return self.typed(place, obj, key, kind)

    def optional(self, place, obj, key, kind):
        return self.typed(place, obj, key, kind) if self.present(obj, key) else None

    def typed(self, place, obj, key, kind):
        value = obj[key]
        ok = {
            "string": isinstance(value, str),
            "list": isinstance(value, list),
            "object": isinstance(value, dict),
            "bool": isinstance(value, bool),
            "number": is_number(value),
        }[kind]
        if not ok:
            self.fail(place, f"\"{key}\" must be a JSON {kind}")
            return None
        return value

    def check_id_groups(self, place, obj, key, required):
        groups = (self.require if required else self.optional)(place, obj, key, "list")
        if groups is None:
            return []
        ids = []
        for group in groups:
            if not isinstance(group, list) or not all(isinstance(i, str) for i in group):
                self.fail(place, f"\"{key}\" must be a list of lists of pane ids")
                continue
            if not group:
                self.fail(place, f"\"{key}\" holds an empty group")
            ids.extend(group)
        return ids

    def check_string_ref(self, place, ref, english):
        if not isinstance(ref, dict):
            self.fail(place, "a string reference must be an object with \"table\" and \"key\"")
            return
        self.check_keys(place, ref, STRING_REF_KEYS)
        table = self.require(place, ref, "table", "string")
        key = self.require(place, ref, "key", "string")
        if table is None or key is None:
            return
        if table.endswith(".so"):
            # A Qt plugin's metadata, %p standing for Qt's plugin folders.
            if not table.startswith(("/", "%p/")):
                self.fail(place, f"plugin \"{table}\" is neither an absolute path nor under %p/")
            elif key not in ("Name", "Description"):
                self.fail(place, f"plugin metadata key \"{key}\" is not a localized name")
        elif not table.startswith("/"):
            self.fail(place, f"table \"{table}\" is not an absolute path")
        elif table.endswith(".mo"):
            if "%l" not in table:
                self.fail(place, f"message catalog \"{table}\" has no %l where the locale goes")
            msgid = key.split(MO_CONTEXT_SEPARATOR)[-1]
            if MNEMONIC.search(msgid):
                self.fail(place, f"key \"{key}\" carries a mnemonic underscore, which would be shown")
            elif english is not None and msgid != english:
                self.fail(place, f"key \"{key}\" does not match its English text \"{english}\"")
        elif table.endswith(".desktop"):
            if key not in ("Name", "GenericName", "Comment"):
                self.fail(place, f"desktop entry key \"{key}\" is not a localized name")
        else:
            self.fail(place, f"table \"{table}\" is neither a .mo catalog nor a desktop entry")
        self.string_refs.append((place, ref, english))

    def check_url(self, place, obj, required=True):
        url = (self.require if required else self.optional)(place, obj, "url", "string")
        if url is None:
            return None
        prefix = f"settings://{self.desktop}/"
        if not url.startswith(prefix):
            self.fail(place, f"url \"{url}\" does not start with {prefix}")
            return url
        segments = url[len(prefix):].split("/")
        if not all(URL_SEGMENT.match(s) for s in segments):
            self.fail(place, f"url \"{url}\" has an empty segment or a character that needs escaping")
        return url

    def check_icon(self, place, obj):
        for key, kind in ICON_KEYS.items():
            if not self.present(obj, key):
                continue
            value = obj[key]
            if kind in ("string", "bool", "number"):
                self.typed(place, obj, key, kind)
            elif kind == "rendering":
                if value not in SYMBOL_RENDERINGS:
                    self.fail(place, f"symbolRendering \"{value}\" is not one of {sorted(SYMBOL_RENDERINGS)}")
            elif kind == "color":
                if not self.is_rgb(value):
                    self.fail(place, f"{key} must be three numbers from 0 to 1")
            elif kind == "colors":
                # The renderer skips any stop that is not exactly RGB.
                if not isinstance(value, list) or not value or not all(self.is_rgb(c) for c in value):
                    self.fail(place, f"{key} must be a list of colours of three numbers from 0 to 1")
        if self.present(obj, "symbol") and not self.present(obj, "symbolFallback"):
            self.fail(place, "a symbol without symbolFallback leaves other icon themes without an icon")

    @staticmethod
    def is_rgb(value):
        return (isinstance(value, list) and len(value) == 3
                and all(is_number(c) and 0 <= c <= 1 for c in value))

    def claim_url(self, place, url):
        if url is None:
            return
        if url in self.urls:
            self.fail(place, f"url \"{url}\" is already used by {self.urls[url]}")
        else:
            self.urls[url] = place

    # --- records ----------------------------------------------------------

    def check_item(self, place, item, pane_url):
        if not isinstance(item, dict):
            self.fail(place, "an item must be an object")
            return
        self.item_count += 1
        self.check_keys(place, item, ITEM_KEYS)
        label = self.require(place, item, "label", "string")
        kind = self.require(place, item, "kind", "string")
        if kind is not None and kind not in KINDS:
            self.fail(place, f"kind \"{kind}\" is not one of {sorted(KINDS)}")
        source = self.optional(place, item, "labelSource", "string")
        if source is not None and source not in LABEL_SOURCES:
            self.fail(place, f"labelSource \"{source}\" is not one of {sorted(LABEL_SOURCES)}")
        refs = self.optional(place, item, "labelRefs", "list")
        components = label.split(PATH_SEPARATOR) if label is not None else []
        if refs is not None:
            if len(refs) > len(components):
                self.fail(place, f"{len(refs)} labelRefs for a label of {len(components)} part(s)")
            for i, ref in enumerate(refs):
                if ref is not None:
                    english = components[i] if i < len(components) else None
                    self.check_string_ref(f"{place} labelRefs[{i}]", ref, english)
        url = self.check_url(place, item)
        # An item is a place inside its pane: its URL adds arguments to the
        # pane's own, or it opens some other pane by mistake.
        if url is not None and pane_url is not None and not url.startswith(pane_url + "/"):
            self.fail(place, f"url \"{url}\" does not lie under its pane's \"{pane_url}\"")
        self.claim_url(place, url)
        self.check_icon(place, item)

    def check_pane(self, pane, index):
        place = f"panes[{index}]"
        if not isinstance(pane, dict):
            self.fail(place, "a pane must be an object")
            return None, [], None
        pane_id = self.require(place, pane, "id", "string")
        if pane_id is not None:
            place = f"pane \"{pane_id}\""
        self.check_keys(place, pane, PANE_KEYS)
        name = self.require(place, pane, "name", "string")
        if self.present(pane, "nameRef"):
            self.check_string_ref(f"{place} nameRef", pane["nameRef"], name)
        # A pane without a URL is a heading over its children.
        url = self.check_url(place, pane, required=False)
        sections = self.require(place, pane, "sections", "list") or []
        for s, section in enumerate(sections):
            where = f"{place} sections[{s}]"
            if not isinstance(section, dict):
                self.fail(where, "a section must be an object")
                continue
            self.check_keys(where, section, SECTION_KEYS)
            title = self.optional(where, section, "title", "string")
            if self.present(section, "titleRef"):
                self.check_string_ref(f"{where} titleRef", section["titleRef"], title)
            items = self.require(where, section, "items", "list") or []
            if not items:
                self.fail(where, "a section without items")
            for i, item in enumerate(items):
                self.check_item(f"{where} items[{i}]", item, url)
        children = self.check_id_groups(place, pane, "children", required=False)
        if url is None and not children and not self.present(pane, "url"):
            self.fail(place, "has neither a URL nor children, so it leads nowhere")
        if self.desktop == "kde":
            self.check_module_pane(place, pane, url, children)
        self.check_icon(place, pane)
        return pane_id, children, url

    def check_module_pane(self, place, pane, url, children):
        # System Settings opens modules, never a category: a category is a
        # heading over its modules, even one that a module answers for.
        if url is not None and children:
            self.fail(place, f"url \"{url}\" on a group of modules, which System Settings cannot open")
        ref = pane.get("nameRef")
        table = ref.get("table") if isinstance(ref, dict) else None
        if not isinstance(table, str) or not table.endswith(".so"):
            return
        plugin = table.rsplit("/", 1)[-1][:-len(".so")]
        if url is None:
            self.fail(place, f"named by module {plugin} but opens nothing")
            return
        module = url[len(f"settings://{self.desktop}/"):].split("/")[0]
        if module != plugin:
            self.fail(place, f"opens module \"{module}\" but is named by plugin \"{plugin}\"")

    def check(self, doc):
        if not isinstance(doc, dict):
            self.fail("document", "the top level must be an object")
            return None
        self.check_keys("document", doc, CATALOG_KEYS)
        os_version = self.require("document", doc, "osVersion", "string")
        if os_version is not None and parse_version(os_version) is None:
            self.fail("document", f"osVersion \"{os_version}\" is not a version")
        # Where the document came from: "<repository> <tag>" per release.
        source = self.optional("document", doc, "source", "list")
        if source is not None and not all(isinstance(s, str) and " " in s for s in source):
            self.fail("document", "\"source\" must list \"<repository> <tag>\" strings")
        top_ids = self.check_id_groups("document", doc, "sections", required=True)
        panes = self.require("document", doc, "panes", "list") or []

        ids, parents, urls = [], {}, {}
        for index, pane in enumerate(panes):
            pane_id, children, url = self.check_pane(pane, index)
            if pane_id is None:
                continue
            if pane_id in ids:
                self.fail(f"pane \"{pane_id}\"", "the id is used by an earlier pane")
            ids.append(pane_id)
            urls[pane_id] = url
            for child in children:
                parents.setdefault(child, []).append(pane_id)
        self.check_tree(ids, top_ids, parents)
        self.check_pane_urls(panes, urls)
        self.check_strings(doc)
        return {"panes": panes, "ids": ids}

    def check_tree(self, ids, top_ids, parents):
        known = set(ids)
        for pane_id in top_ids + list(parents):
            if pane_id not in known:
                self.fail("document", f"pane id \"{pane_id}\" is listed but no pane has it")
        for pane_id in ids:
            homes = top_ids.count(pane_id) + len(parents.get(pane_id, []))
            if homes == 0:
                self.fail(f"pane \"{pane_id}\"", "is neither in the top sections nor a child of a pane")
            elif homes > 1:
                self.fail(f"pane \"{pane_id}\"", "is listed in more than one place")
        for pane_id in ids:
            seen, current = set(), pane_id
            while current in parents and current not in seen:
                seen.add(current)
                current = parents[current][0]
            if current in seen:
                self.fail(f"pane \"{pane_id}\"", "is its own ancestor")

    def check_pane_urls(self, panes, urls):
        # One URL names one place: recents, custom menus and search results
        # keep only the URL, so two places sharing one could not be told
        # apart. A group that cannot be opened on its own has no URL.
        for pane in panes:
            if isinstance(pane, dict) and isinstance(pane.get("id"), str):
                self.claim_url(f"pane \"{pane['id']}\"", urls.get(pane["id"]))

    def check_strings(self, doc):
        strings = self.optional("document", doc, "strings", "object")
        if strings is None:
            self.fail("document", "no \"strings\" map: every interface string would stay English")
            return
        for key in INTERFACE_STRING_KEYS:
            if key not in strings:
                self.fail("strings", f"interface string \"{key}\" is missing (write null if the desktop has no such word)")
        for key, ref in strings.items():
            if key not in INTERFACE_STRING_KEYS:
                self.fail("strings", f"\"{key}\" is not an interface string")
            elif ref is not None:
                self.check_string_ref(f"strings.{key}", ref, None)
