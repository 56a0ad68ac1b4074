#!/usr/bin/env python3
"""Checks the entry generator and the driver's reading of rofi's timings.

    python3 -m unittest discover -s bench -p 'test_*.py'
"""

import configparser
import hashlib
import importlib.util
import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))


def load(name, file_name):
    spec = importlib.util.spec_from_file_location(name, os.path.join(HERE, file_name))
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def generate(root, count=300, seed=1):
    subprocess.run([sys.executable, os.path.join(HERE, "gen-desktop-entries.py"), str(count), root,
                    "--seed", str(seed), "--probe", "zephyrquill"], check=True)


def tree_digest(root):
    """The files' names and contents, with the root's own path (TryExec names it) taken out."""
    digest = hashlib.sha256()
    for folder, folders, files in sorted(os.walk(root)):
        folders.sort()
        for name in sorted(files):
            path = os.path.join(folder, name)
            digest.update(os.path.relpath(path, root).encode())
            with open(path, "rb") as contents:
                digest.update(os.readlink(path).encode() if os.path.islink(path)
                              else contents.read().replace(root.encode(), b"ROOT"))
    return digest.hexdigest()


def entries(root):
    """Every generated desktop entry's main group, by path."""
    found = {}
    for folder, _, files in os.walk(root):
        for name in files:
            if name.endswith(".desktop"):
                parser = configparser.RawConfigParser(strict=False, interpolation=None)
                parser.optionxform = str
                parser.read(os.path.join(folder, name), encoding="utf-8")
                found[os.path.join(folder, name)] = parser["Desktop Entry"]
    return found


class GeneratorTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.TemporaryDirectory()
        cls.root = os.path.join(cls.dir.name, "a")
        generate(cls.root)
        cls.entries = entries(cls.root)

    @classmethod
    def tearDownClass(cls):
        cls.dir.cleanup()

    def test_same_seed_same_files_other_seed_other_files(self):
        again = os.path.join(self.dir.name, "b")
        other = os.path.join(self.dir.name, "c")
        generate(again)
        generate(other, seed=2)
        self.assertEqual(tree_digest(self.root), tree_digest(again))
        self.assertNotEqual(tree_digest(self.root), tree_digest(other))

    def test_entries_look_like_a_real_desktop(self):
        system_dir = os.path.join(self.root, "share", "applications")
        system = [e for path, e in self.entries.items() if path.startswith(system_dir)]
        self.assertEqual(len(system), 300)
        for entry in system:
            locales = [key[5:-1] for key in entry if key.startswith("Name[")]
            self.assertTrue(10 <= len(locales) <= 88, entry["Name"])
            for key in ("GenericName", "Comment", "Keywords"):
                self.assertEqual(len([k for k in entry if k.startswith(key + "[")]), len(locales))
        keys = [key for entry in system for key in entry]
        for kind in ("NoDisplay", "Hidden", "OnlyShowIn", "NotShowIn", "TryExec", "Actions"):
            self.assertIn(kind, keys)
        paths = list(self.entries)
        self.assertTrue(any("/applications/kde4/" in path for path in paths))
        self.assertTrue(any("/.local/share/applications/" in path for path in paths))

    def test_every_program_is_installed(self):
        # GLib drops entries whose program is not on PATH; the others must all be there.
        bin_dir = os.path.join(self.root, "bin")
        for entry in self.entries.values():
            program = entry["Exec"].split()[0]
            if program != "true":
                self.assertTrue(os.access(os.path.join(bin_dir, program), os.X_OK), program)

    def test_only_the_probe_holds_the_probe_word(self):
        holders = [entry["Name"] for entry in self.entries.values()
                   if any("zephyrquill" in value.lower() for value in entry.values())]
        self.assertEqual(holders, ["Zephyrquill Probe"])


class RofiTimingsTest(unittest.TestCase):
    def setUp(self):
        self.driver = load("run_bench", "run-bench.py")

    def test_parse_spans_first_entry_to_sorted_list(self):
        output = "\n".join([
            "(process:1): Timings-DEBUG: 13:34:06.079: 0.180017 (0.000649): source/dialogs/run.c:get_apps:239 start",
            "(process:1): Timings-DEBUG: 13:34:06.088: 0.188403 (0.000167): source/dialogs/drun.c:get_apps:1006 "
            "Get Desktop apps (start)",
            "(process:1): Timings-DEBUG: 13:34:06.248: 0.348165 (0.158527): source/dialogs/drun.c:get_apps:1041 "
            "Get Desktop apps (system dirs)",
            "(process:1): Timings-DEBUG: 13:34:06.263: 0.363947 (0.012440): source/dialogs/drun.c:get_apps:1048 "
            "Sorting done.",
        ])
        self.assertAlmostEqual(self.driver.rofi_parse_ms(output), 175.544, places=3)

    def test_missing_timings_are_an_error(self):
        with self.assertRaises(RuntimeError):
            self.driver.rofi_parse_ms("(process:1): GLib-CRITICAL **: something else\n")


if __name__ == "__main__":
    unittest.main()
