"""The parts of the catalog generator that read the settings program's
source: template parsers, the .po reader, the page rules, and the document
format the shipped catalogs are kept in."""

import glob
import json
import os
import sys
import tempfile
import types
import unittest

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.join(HERE, "..", "..")
sys.path.insert(0, os.path.join(ROOT, "tools"))

from catalogaudit.system import check_breeze_icons  # noqa: E402
from cataloggen import gnome, kde, po  # noqa: E402
from cataloggen.jsonfmt import dumps  # noqa: E402

BLP = """using Gtk 4.0;

template $CcPrivacyPanel: $CcPanel {
  [subpage]
  Adw.NavigationPage {
    title: _("Privacy &amp; Security");

    child: Adw.PreferencesPage {
      Adw.PreferencesGroup {
        $CcListRow screen_row {
          title: _("_Screen Lock");
          icon-name: "lock-symbolic";
          action-name: "navigation.push";
          action-target: "'screenlock'";
        }
        // $CcListRow { action-target: "'commented'"; }
        $CcListRow {
          title: _("Se_cure Shell");
          activated => $on_secure_shell(template);
        }
      }
    };
  }

  Adw.NavigationPage {
    tag: "night-light";
    title: _("Night Light");
  }
}
"""

UI = """<?xml version="1.0"?>
<interface>
  <template class="CcScreenPage" parent="AdwNavigationPage">
    <property name="title" translatable="yes">Screen Lock</property>
    <property name="tag">screenlock</property>
    <child>
      <object class="AdwPreferencesPage">
        <child>
          <object class="CcListRow" id="lock_row">
            <property name="title" translatable="yes">_Automatic Screen Lock</property>
          </object>
        </child>
      </object>
    </child>
  </template>
</interface>
"""

PO = r'''# Translators
msgid ""
msgstr "Content-Type: text/plain; charset=UTF-8\n"

msgid "Wi-Fi"
msgstr "WLAN"

msgctxt "keybinding"
msgid "Screen"
msgstr "Bildschirm"

msgid ""
"Region & "
"Language"
msgstr "Region und Sprache"

#~ msgid "Gone"
#~ msgstr "Weg"
'''


def write_tree(root, files):
    for path, text in files.items():
        os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
        with open(os.path.join(root, path), "w", encoding="utf-8") as f:
            f.write(text if isinstance(text, str) else json.dumps(text))


class Templates(unittest.TestCase):
    def test_blueprint_rows_pages_and_comments(self):
        root = gnome.parse_blp(BLP)[0]
        self.assertTrue(root.template)
        self.assertEqual(root.cls, "CcPrivacyPanel")
        nodes = list(root.walk())
        row = next(n for n in nodes if n.id == "screen_row")
        self.assertEqual(row.props["title"], "_Screen Lock")
        self.assertEqual(gnome.unquote_target(row.props["action-target"]), "screenlock")
        self.assertEqual(row.props["icon-name"], "lock-symbolic")
        page = next(n for n in nodes if n.props.get("tag") == "night-light")
        self.assertEqual(page.props["title"], "Night Light")
        # The commented-out row and the handler line are no properties.
        self.assertNotIn("commented", json.dumps([n.props for n in nodes]))
        # Properties land on the innermost open block, not on its parent.
        self.assertNotIn("tag", root.props)

    def test_ui_templates_nest_through_properties_and_children(self):
        page = gnome.parse_ui(UI)[0]
        self.assertTrue(page.template)
        self.assertEqual((page.cls, page.props["tag"], page.props["title"]),
                         ("CcScreenPage", "screenlock", "Screen Lock"))
        row = next(n for n in page.walk() if n.id == "lock_row")
        self.assertEqual(row.props["title"], "_Automatic Screen Lock")
        self.assertNotIn("title", page.children[0].props)

    def test_names_from_code(self):
        self.assertEqual(gnome.class_of("cc_date_time_panel_get_type"), "CcDateTimePanel")
        self.assertEqual(gnome.type_macro_class("CC_TYPE_SEARCH_LOCATIONS_PAGE"), "CcSearchLocationsPage")
        self.assertEqual(gnome.strip_mnemonic("Device _Security"), "Device Security")
        self.assertEqual(gnome.strip_mnemonic("snake__case"), "snake_case")


class Pages(unittest.TestCase):
    """Which pages a panel opens by tag, over a small source tree."""

    def tree(self, panel_code, shell_code):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        write_tree(folder.name, {
            "shell/cc-panel.c": shell_code,
            "panels/privacy/cc-privacy-panel.blp": BLP,
            "panels/privacy/cc-privacy-panel.c": panel_code,
            "panels/privacy/cc-screen-page.ui": UI,
        })
        return folder.name

    def pages(self, panel_code, shell_code="adw_navigation_view_push_by_tag"):
        tree = self.tree(panel_code, shell_code)
        mode = gnome.subpage_mode(tree)
        return [p[0] for p in gnome.panel_pages(tree, "CcPrivacyPanel", gnome.templates(tree, "panels"), mode)]

    def test_rows_of_pages_the_panel_holds(self):
        # screenlock: made in code and added; night-light: declared in the template.
        code = "page = cc_screen_page_new (); cc_panel_add_subpage (panel, \"x\", page);"
        self.assertEqual(self.pages(code), ["screenlock", "night-light"])
        # A row alone opens nothing: the page must be known to the panel.
        self.assertEqual(self.pages(""), ["night-light"])

    def test_releases_and_panels_that_open_no_page(self):
        code = "cc_panel_add_subpage (panel, \"x\", cc_screen_page_new ());"
        self.assertEqual(self.pages(code, shell_code="no subpages here"), [])
        self.assertEqual(self.pages(code, shell_code='g_param_spec_string ("subpage"'), [])
        self.assertEqual(self.pages(code + ' "notify::subpage"', shell_code='"subpage"'),
                         ["screenlock", "night-light"])
        overriding = code + ' g_object_class_override_property (o, PROP_PARAMETERS, "parameters");'
        self.assertEqual(self.pages(overriding), [])


class Translations(unittest.TestCase):
    def test_msgids_with_context_continuations_and_no_obsolete(self):
        with tempfile.NamedTemporaryFile("w", suffix=".po", delete=False, encoding="utf-8") as f:
            f.write(PO)
        self.addCleanup(os.unlink, f.name)
        self.assertEqual(po.msgids(f.name), {"Wi-Fi", "keybinding\u0004Screen", "Region & Language"})


def category(name, parent, weight, module=None):
    lines = ["[Desktop Entry]", f"X-KDE-System-Settings-Category={name}",
             f"X-KDE-System-Settings-Parent-Category={parent}", f"X-KDE-Weight={weight}",
             f"Icon=icon-{name}", f"Name={name.title()}", f"Name[de]={name} (de)"]
    if module:
        lines.append(f"X-KDE-System-Settings-Category-Module={module}")
    return "\n".join(lines) + "\n"


def module(name, parent, weight=None, **extra):
    data = {"KPlugin": {"Name": name.title(), "Name[de]": "x", "Icon": f"icon-{name}", **extra},
            "X-KDE-System-Settings-Parent-Category": parent}
    if weight is not None:
        data["X-KDE-Weight"] = weight
    return data


class PlasmaSource(unittest.TestCase):
    """The Plasma generator over a small tree of repositories."""

    def test_plugin_targets_and_their_folders(self):
        cmake = """
kcmutils_add_qml_kcm(kcm_mouse)
kcmutils_add_qml_kcm(kcm_about-distro SOURCES a.cpp INSTALL_NAMESPACE "plasma/kcms")
kcoreaddons_add_plugin(kcm_fontinst SOURCES b.cpp INSTALL_NAMESPACE "plasma/kcms/systemsettings_qwidgets")
add_library(kcm_device_automounter MODULE ${SRCS})
install(TARGETS kcm_device_automounter DESTINATION ${KDE_INSTALL_PLUGINDIR}/plasma/kcms/systemsettings_qwidgets)
add_library(helper MODULE x.cpp)
"""
        self.assertEqual(kde.plugin_targets(cmake), [
            ("kcm_mouse", "plasma/kcms/systemsettings"),
            ("kcm_about-distro", "plasma/kcms"),
            ("kcm_fontinst", "plasma/kcms/systemsettings_qwidgets"),
            ("kcm_device_automounter", "plasma/kcms/systemsettings_qwidgets"),
            ("helper", None),
        ])

    def build(self, files, overlay_modules=(), release="6.0"):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        base = {
            "systemsettings/categories/CMakeLists.txt":
                "install(FILES settings-root.desktop settings-a.desktop settings-b.desktop settings-sub.desktop "
                "settings-empty.desktop DESTINATION x)",
            "systemsettings/categories/settings-root.desktop": category("rootcategory", "", 1),
            "systemsettings/categories/settings-a.desktop": category("a", "", 20),
            "systemsettings/categories/settings-b.desktop": category("b", "", 10),
            "systemsettings/categories/settings-sub.desktop": category("sub", "a", 5, module="kcm_owner"),
            "systemsettings/categories/settings-empty.desktop": category("empty", "b", 1),
            "systemsettings/.tag": "v6.0.5\n",
        }
        base.update(files)
        write_tree(folder.name, base)
        overlay = {"genericIcon": "generic", "modules": list(overlay_modules), "icons": {}, "strings": {},
                   "sources": ["KDE/big abc123"]}
        reports = []
        document = kde.build(folder.name, ["6.0.5"], overlay, release, reports.append)
        return document, {p["id"]: p for p in document["panes"]}, reports

    def test_tree_order_names_and_urls(self):
        document, panes, reports = self.build({
            "desk/kcms/landing/kcm_landingpage.json": module("kcm_landingpage", "rootcategory"),
            "desk/kcms/landing/CMakeLists.txt": "kcmutils_add_qml_kcm(kcm_landingpage)",
            # Named after the target, not the metadata file; in a folder above.
            "desk/automount/kcm/automount_kcm.json": module("kcm_device_automounter", "sub", 30),
            "desk/automount/CMakeLists.txt":
                "add_library(kcm_device_automounter MODULE a.cpp)\n"
                "install(TARGETS kcm_device_automounter DESTINATION ${KDE_INSTALL_PLUGINDIR}/plasma/kcms/x)",
            "desk/kcms/owner/kcm_owner.json": module("kcm_owner", "sub", 30),
            "desk/kcms/owner/CMakeLists.txt": "kcmutils_add_qml_kcm(kcm_owner)",
            "desk/kcms/phone/kcm_phone.json": module("kcm_phone", "a", FormFactors=["handset"]),
            "desk/kcms/phone/CMakeLists.txt": "kcmutils_add_qml_kcm(kcm_phone)",
            "desk/kcms/lost/kcm_lost.json": module("kcm_lost", "nowhere"),
            "desk/kcms/lost/CMakeLists.txt": "kcmutils_add_qml_kcm(kcm_lost)",
            "desk/autotests/kcm_test.json": module("kcm_test", "a"),
            "desk/.tag": "v6.0.4\n",
        }, overlay_modules=[{"id": "kcm_late", "namespace": "plasma/kcms/systemsettings", "name": "Late",
                             "icon": None, "parent": "a", "weight": 1, "from": "6.1"}])
        # Categories by weight; b shows nothing (its only child is empty).
        self.assertEqual(document["sections"], [["kcm_landingpage"], ["a"]])
        self.assertNotIn("b", panes)
        self.assertNotIn("empty", panes)
        self.assertEqual(panes["a"]["children"], [["sub"]])
        # Equal weights sort by name: Device..., then Owner.
        self.assertEqual(panes["sub"]["children"], [["kcm_device_automounter", "kcm_owner"]])
        # The category its module answers for is still only a heading.
        self.assertNotIn("url", panes["sub"])
        self.assertEqual(panes["sub"]["nameRef"],
                         {"table": "/usr/share/systemsettings/categories/settings-sub.desktop", "key": "Name"})
        automount = panes["kcm_device_automounter"]
        self.assertEqual(automount["url"], "settings://kde/kcm_device_automounter")
        self.assertEqual(automount["nameRef"], {"table": "%p/plasma/kcms/x/kcm_device_automounter.so", "key": "Name"})
        self.assertEqual((automount["symbol"], automount["symbolFallback"]),
                         ("icon-kcm_device_automounter", "icon-sub"))
        for left_out in ("kcm_phone", "kcm_lost", "kcm_test", "kcm_late", "rootcategory"):
            self.assertNotIn(left_out, panes)
        self.assertTrue(any("kcm_phone" in r and "handset" in r for r in reports))
        self.assertTrue(any("kcm_lost" in r and "nowhere" in r for r in reports))
        self.assertEqual(document["source"],
                         ["Plasma 6.0.5: KDE/desk v6.0.4, KDE/systemsettings v6.0.5, KDE/big abc123"])

    def test_overlay_modules_by_release(self):
        late = {"id": "kcm_late", "namespace": "plasma/kcms/systemsettings", "name": "Late",
                "icon": "late", "parent": "a", "weight": 1, "from": "6.1", "until": "6.2"}
        for release, present in (("6.0", False), ("6.1", True), ("6.2", True), ("6.3", False)):
            _, panes, _ = self.build({}, overlay_modules=[late], release=release)
            self.assertEqual("kcm_late" in panes, present, release)


class BreezeIcons(unittest.TestCase):
    def test_every_record_gets_an_icon_from_breeze(self):
        failures, notes = [], []
        audit = types.SimpleNamespace(fail=lambda where, message: failures.append(message),
                                      note=lambda where, message: notes.append(message))
        panes = [
            {"id": "ok", "symbol": "preferences-desktop-display-randr", "symbolFallback": "video-display"},
            {"id": "new", "symbol": "flatpak-discover", "symbolFallback": "preferences-security"},
            {"id": "bad", "symbol": "preferences-desktop", "symbolFallback": "preferences-system-disks"},
        ]
        names = {"preferences-desktop-display", "video-display", "preferences-security", "preferences-desktop"}
        check_breeze_icons(audit, "kde/6.0.json", {"panes": panes}, names)
        self.assertEqual(failures, ['symbolFallback "preferences-system-disks" is not in the installed Breeze theme'])
        self.assertEqual(notes, ["not in the installed Breeze, drawn from the fallback: flatpak-discover"])


class DocumentFormat(unittest.TestCase):
    def test_shipped_catalogs_are_kept_as_the_generator_writes_them(self):
        # A hand edit in another layout would turn the next regeneration's
        # diff into noise.
        paths = glob.glob(os.path.join(ROOT, "resources", "Catalogs", "*", "*.json"))
        self.assertTrue(paths)
        for path in paths:
            with open(path, encoding="utf-8") as f:
                text = f.read()
            self.assertEqual(dumps(json.loads(text)), text, os.path.relpath(path, ROOT))


if __name__ == "__main__":
    unittest.main()
