#!/usr/bin/env python3
"""Checks the entry generator and the benchmark driver.

    python3 -m unittest discover -s bench -p 'test_*.py'
"""

import configparser
import hashlib
import os
import runpy
import subprocess
import sys
import tempfile
import types
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))


def load(name, file_name):
    # The scripts' names have dashes, so they are loaded by path.
    return types.SimpleNamespace(**runpy.run_path(os.path.join(HERE, file_name), run_name=name))


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


class DriverTest(unittest.TestCase):
    def setUp(self):
        self.driver = load("run_bench", "run-bench.py")

    def test_paired_turns_the_order_and_compares_within_a_round(self):
        order = []
        # Each round is slower than the one before, as on a machine that gets
        # busier: only ratios taken within a round stay fair.
        def runner(name, factor):
            def measure():
                order.append(name)
                return factor * (1 + (len(order) - 1) // 3)
            return measure

        times, ratios = self.driver.paired(runner("quillon", 1.0), {"a": runner("a", 2.0), "b": runner("b", 4.0)},
                                           rounds=6)
        firsts = [order[i] for i in range(0, len(order), 3)]
        self.assertEqual(sorted(firsts), ["a", "a", "b", "b", "quillon", "quillon"])
        self.assertEqual(len(times["quillon"]), 6)
        self.assertAlmostEqual(ratios["a"], 0.5)
        self.assertAlmostEqual(ratios["b"], 0.25)

    def test_environment_leaks_nothing_of_the_callers_desktop(self):
        polluted = {"XDG_DATA_DIRS": "/usr/share", "XDG_DATA_HOME": "/root/.local/share", "DISPLAY": ":9",
                    "WAYLAND_DISPLAY": "wayland-0", "QT_QPA_PLATFORM": "xcb", "LC_ALL": "de_DE.UTF-8",
                    "DBUS_SESSION_BUS_ADDRESS": "unix:path=/run/user/0/bus", "QUILLON_TRAY": "qt"}
        saved = {key: os.environ.get(key) for key in polluted}
        os.environ.update(polluted)
        try:
            session = self.driver.Session("/nonexistent")
            session.roots[500] = os.path.join(session.work, "entries-500")
            session.display = ":42"
            env = session.environment(500)
            rofi_env = session.rofi_environment(500)
        finally:
            for key, value in saved.items():
                if value is None:
                    os.environ.pop(key, None)
                else:
                    os.environ[key] = value
            session.__exit__(None, None, None)
        for key in ("XDG_DATA_DIRS", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "HOME"):
            self.assertTrue(env[key].startswith(session.work), key)
        self.assertTrue(env["PATH"].startswith(os.path.join(session.roots[500], "bin") + os.pathsep))
        self.assertEqual(env["QT_QPA_PLATFORM"], "offscreen")
        for key in ("DISPLAY", "WAYLAND_DISPLAY", "LC_ALL", "DBUS_SESSION_BUS_ADDRESS", "QUILLON_TRAY"):
            self.assertNotIn(key, env)
        self.assertEqual(rofi_env["DISPLAY"], ":42")

    def test_run_reports_output_and_ends_a_hung_process(self):
        done = self.driver.run(["sh", "-c", "echo out; echo err >&2; exit 3"], dict(os.environ))
        self.assertEqual((done.code, done.out, done.err), (3, "out\n", "err\n"))
        self.assertGreater(done.max_rss_kb, 0)
        hung = self.driver.run(["sleep", "30"], dict(os.environ), timeout=0.3)
        self.assertNotEqual(hung.code, 0)
        self.assertLess(hung.wall_ms, 10000)

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
