"""The parts of the catalog generator that read the settings program's
source: template parsers, the .po reader, the page rules, and the document
format the shipped catalogs are kept in."""

import glob
import json
import os
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.join(HERE, "..", "..")
sys.path.insert(0, os.path.join(ROOT, "tools"))

from cataloggen import gnome, po  # noqa: E402
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
        files = {
            "shell/cc-panel.c": shell_code,
            "panels/privacy/cc-privacy-panel.blp": BLP,
            "panels/privacy/cc-privacy-panel.c": panel_code,
            "panels/privacy/cc-screen-page.ui": UI,
        }
        for path, text in files.items():
            os.makedirs(os.path.join(folder.name, os.path.dirname(path)), exist_ok=True)
            with open(os.path.join(folder.name, path), "w", encoding="utf-8") as f:
                f.write(text)
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
