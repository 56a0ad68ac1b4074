#!/usr/bin/env python3
"""Measures Quillon's applications beside rofi and GLib and prints one table.

    run-bench.py BUILD_DIR

BUILD_DIR is a Release build holding bin/quillon and bench/bench_*. Every
measurement runs on generated desktop entries (500, 2,000 and 10,000, the
same files on every run) in temporary XDG folders, on a private session bus,
with Qt drawing off screen. Peers run in turns with Quillon, one after the
other in alternating order, and the ratio is Quillon's time over the peer's
(below 1: Quillon is faster). A missing peer is skipped with a line saying
so; nothing is installed.

BENCH_ROUNDS sets the rounds per comparison (default 8; an even number
keeps the alternation fair).
"""

import json
import os
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
SIZES = (500, 2000, 10000)
PROBE = "zephyrquill"  # in exactly one entry's name: rofi's -auto-select then ends at once
ROUNDS = max(2, int(os.environ.get("BENCH_ROUNDS", "8")))
PEER_NAMES = {"GLib": "GLib: g_app_info_get_all + should_show", "rofi": "rofi's drun parse, no cache"}
ROFI = ["rofi", "-show", "drun", "-filter", PROBE, "-auto-select", "-disable-history",
        "-no-drun-use-desktop-cache"]


NOTES = """
Times are medians of {rounds} rounds; a peer ran in the same rounds as Quillon, the order
turning each round, and Quillon/peer is the median of the rounds' own ratios (below 1:
Quillon is faster). x is "{probe}", which only one entry's name holds, so rofi's
-auto-select ends it at once; rofi draws its window on Xvfb, Quillon prints its results.
A scan is the first read in a fresh process (rofi: its own drun timings from the first
entry read to the sorted list); the files are in the page cache. Quillon "from its
cache" checks every folder and file against the cache an earlier start wrote and reads
it; "no cache yet" starts with an empty cache folder. The Applications submenu and the
first search are the first in a fresh process beside a repeat. Idle RSS
is /proc/PID/status VmRSS three seconds after the search; the peak of a whole command is
its own ru_maxrss. Start to tray is exec of `quillon --autostart` until it calls
RegisterStatusNotifierItem. Entries are read in German (LANGUAGE=de) where they have it.
"""


def log(text):
    print(text, flush=True)


class Run:
    """One finished process: wall time, peak memory and output."""

    def __init__(self, wall_ms, max_rss_kb, code, out, err):
        self.wall_ms, self.max_rss_kb = wall_ms, max_rss_kb
        self.code, self.out, self.err = code, out, err


def run(argv, env, timeout=60):
    """Runs argv to its end; wait4 gives this child's own peak RSS."""
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        start = time.perf_counter()
        process = subprocess.Popen(argv, env=env, stdin=subprocess.DEVNULL, stdout=out, stderr=err)
        timer = threading.Timer(timeout, lambda: os.kill(process.pid, signal.SIGKILL))
        timer.start()
        _, status, usage = os.wait4(process.pid, 0)
        wall = (time.perf_counter() - start) * 1000
        timer.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        out.seek(0)
        err.seek(0)
        return Run(wall, usage.ru_maxrss,
                   process.returncode, out.read().decode(errors="replace"), err.read().decode(errors="replace"))


def check(result, what):
    if result.code != 0:
        raise RuntimeError("{} failed ({}): {}".format(what, result.code, result.err.strip()[-600:]))
    return result


# ---------------------------------------------------------------- the session


class Session:
    """The private bus, the virtual display (when there is Xvfb) and the entries."""

    def __init__(self, build):
        self.build = build
        self.quillon = os.path.join(build, "bin", "quillon")
        self.work = tempfile.mkdtemp(prefix="quillon-bench-")
        self.processes = []
        self.bus = None
        self.display = None
        self.roots = {}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(5)
                except subprocess.TimeoutExpired:
                    process.kill()
        shutil.rmtree(self.work, ignore_errors=True)

    def generate(self):
        for size in SIZES:
            root = os.path.join(self.work, "entries-{}".format(size))
            started = time.perf_counter()
            subprocess.run([sys.executable, os.path.join(HERE, "gen-desktop-entries.py"), str(size), root,
                            "--seed", "1", "--probe", PROBE], check=True)
            files = sum(len([f for f in fs if f.endswith(".desktop")]) for _, _, fs in os.walk(root))
            log("generated {:,} entries ({:,} desktop files with the user's own) in {:.0f} s".format(
                size, files, time.perf_counter() - started))
            self.roots[size] = root

    def start_bus(self):
        missing = [tool for tool in ("dbus-daemon", "dbus-send") if not shutil.which(tool)]
        if missing:
            log("skipped: a private session bus ({} not installed), and with it the rows of a running "
                "instance".format(" and ".join(missing)))
            return
        # No service directories: nothing on this bus is started on demand.
        config = os.path.join(self.work, "bus.conf")
        with open(config, "w") as out:
            out.write('<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"\n'
                      ' "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">\n'
                      "<busconfig><type>session</type><listen>unix:dir={}</listen>"
                      '<policy context="default"><allow send_destination="*" eavesdrop="true"/>'
                      '<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>\n'.format(self.work))
        process = subprocess.Popen(["dbus-daemon", "--config-file=" + config, "--nofork", "--print-address"],
                                   stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.processes.append(process)
        self.bus = process.stdout.readline().decode().strip()
        log("private session bus: {}".format(self.bus))

    def start_display(self):
        if not shutil.which("rofi"):
            return
        if not shutil.which("Xvfb"):
            log("skipped: a display for rofi (Xvfb is not installed)")
            return
        read, write = os.pipe()
        process = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x800x24", "-nolisten",
                                    "tcp"], pass_fds=(write,), stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        self.processes.append(process)
        with os.fdopen(read) as pipe:
            number = pipe.readline().strip()
        if not number:
            log("skipped: a display for rofi (Xvfb did not start)")
            return
        self.display = ":" + number
        log("rofi draws on Xvfb {}".format(self.display))

    def environment(self, size):
        root = self.roots[size]
        env = {key: value for key, value in os.environ.items()
               if not key.startswith(("XDG_", "LC_", "DBUS_", "QT_", "QUILLON_"))
               and key not in ("DISPLAY", "WAYLAND_DISPLAY", "LANGUAGE", "DESKTOP_AUTOSTART_ID", "G_MESSAGES_DEBUG")}
        runtime = os.path.join(self.work, "runtime")
        os.makedirs(runtime, mode=0o700, exist_ok=True)
        env.update({
            "HOME": os.path.join(root, "home"),
            "PATH": os.path.join(root, "bin") + os.pathsep + os.environ.get("PATH", "/usr/bin:/bin"),
            "XDG_DATA_HOME": os.path.join(root, "home", ".local", "share"),
            "XDG_DATA_DIRS": os.path.join(root, "share"),
            "XDG_CONFIG_HOME": os.path.join(root, "config"),
            "XDG_CONFIG_DIRS": os.path.join(root, "config-dirs"),
            "XDG_CACHE_HOME": os.path.join(root, "cache"),
            "XDG_RUNTIME_DIR": runtime,
            "XDG_CURRENT_DESKTOP": "GNOME",
            "QT_QPA_PLATFORM": "offscreen",
            # German names are read where an entry has them, as a German desktop would.
            "LANG": "C.UTF-8",
            "LANGUAGE": "de",
        })
        if self.bus:
            env["DBUS_SESSION_BUS_ADDRESS"] = self.bus
        return env

    def rofi_environment(self, size):
        env = self.environment(size)
        env["DISPLAY"] = self.display
        return env

    def bus_owner(self, env):
        result = run(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                      "/org/freedesktop/DBus", "org.freedesktop.DBus.GetNameOwner", "string:app.quillon.Quillon"], env)
        return result.code == 0

    def start_instance(self, size):
        """A running Quillon over `size` entries, once it owns its bus name."""
        env = self.environment(size)
        process = subprocess.Popen([self.quillon, "--autostart"], env=env, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.processes.append(process)
        deadline = time.monotonic() + 30
        while time.monotonic() < deadline:
            if process.poll() is not None:
                raise RuntimeError("quillon --autostart ended with {}".format(process.returncode))
            if self.bus_owner(env):
                return process
            time.sleep(0.05)
        raise RuntimeError("quillon did not take its bus name within 30 s")

    def stop_instance(self, process):
        process.terminate()
        process.wait(10)
        self.processes.remove(process)


# ---------------------------------------------------------------- the table


class Table:
    def __init__(self):
        self.rows = []

    def add(self, measure, quillon, peer="—", peer_result="—", ratio=None):
        row = (measure, quillon, peer, peer_result, "—" if ratio is None else "{:.2f}".format(ratio))
        self.rows.append(row)
        log("  " + " | ".join(row))

    def print(self):
        header = ("measure", "Quillon", "peer", "peer's result", "Quillon/peer")
        widths = [max(len(row[i]) for row in self.rows + [header]) for i in range(len(header))]
        line = lambda row: "| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |"
        print()
        print(line(header))
        print("|" + "|".join("-" * (width + 2) for width in widths) + "|")
        for row in self.rows:
            print(line(row))
        print(NOTES.format(rounds=ROUNDS, probe=PROBE))


def ms(values):
    return "{:.1f} ms".format(statistics.median(values))


def paired(measure_quillon, peers, rounds=ROUNDS):
    """Runs Quillon and each peer once per round, the order turning every round.

    Returns the times of Quillon and of each peer and, per peer, the median of
    the rounds' own ratios.
    """
    runners = [("quillon", measure_quillon)] + list(peers.items())
    times = {name: [] for name, _ in runners}
    ratios = {name: [] for name in peers}
    for index in range(rounds):
        turn = runners[index % len(runners):] + runners[:index % len(runners)]
        this_round = {}
        for name, measure in turn:
            this_round[name] = measure()
            times[name].append(this_round[name])
        for name in peers:
            ratios[name].append(this_round["quillon"] / this_round[name])
    return times, {name: statistics.median(values) for name, values in ratios.items()}


def rofi_parse_ms(output):
    """rofi's own timings: from reading the first desktop entry to the sorted list."""
    marks = {}
    for line in output.splitlines():
        match = re.search(r"Timings-DEBUG: [\d:.]+: ([\d.]+) \([\d.]+\): \S+ (.*)$", line)
        if match:
            marks[match.group(2).strip()] = float(match.group(1))
    start, end = marks.get("Get Desktop apps (start)"), marks.get("Sorting done.")
    if start is None or end is None:
        raise RuntimeError("rofi printed no drun timings:\n" + output[-600:])
    return (end - start) * 1000


def google_benchmark(session, name, size, benchmark):
    env = session.environment(size)
    result = check(run([os.path.join(session.build, "bench", name), "--benchmark_filter=^{}$".format(benchmark),
                        "--benchmark_format=json", "--benchmark_min_time=3"], env, timeout=600), name)
    entry = json.loads(result.out)["benchmarks"][0]
    if entry.get("error_occurred"):
        raise RuntimeError("{} {}: {}".format(name, benchmark, entry.get("error_message")))
    return entry


def measure_in_process(session, table):
    entry = google_benchmark(session, "bench_firstuse", 10000, "applicationsSubmenuOpened")
    table.add("Applications submenu opened, 10,000 entries ({:.0f} folders)".format(entry["folders"]),
              "{:.1f} ms (again: {:.1f} ms)".format(entry["first_ms"], entry["real_time"]))
    entry = google_benchmark(session, "bench_firstuse", 2000, "firstSearch")
    table.add("first search after start, all sources, 2,000 entries ({:.0f} results)".format(entry["results"]),
              "{:.1f} ms (again: {:.1f} ms)".format(entry["first_ms"], entry["real_time"]))


def measure_scan(session, table):
    scanner = os.path.join(session.build, "bench", "bench_applibrary")
    have_rofi = session.display is not None
    if not shutil.which("rofi"):
        log("skipped: rofi's drun parse (rofi is not installed)")
    for size in SIZES:
        env = session.environment(size)
        counts = {}

        def first(reader, cache_home=None):
            run_env = env if cache_home is None else dict(env, XDG_CACHE_HOME=cache_home)
            result = check(run([scanner, "--first", reader], run_env), "bench_applibrary --first " + reader)
            took, apps = result.out.split()
            counts[reader] = int(apps)
            return float(took)

        def cold():
            # A cache folder of its own each time: a start before any cache.
            return first("quillon", tempfile.mkdtemp(prefix="cache-", dir=session.work))

        peers = {"GLib": lambda: first("glib")}
        if have_rofi:
            rofi_env = session.rofi_environment(size)
            rofi_env["G_MESSAGES_DEBUG"] = "Timings"
            # GLib writes debug messages to standard output.
            peers["rofi"] = lambda: rofi_parse_ms(check(run(ROFI, rofi_env), "rofi").out)
        # The first start writes the cache later starts check and read.
        first("quillon")
        for how, measure in (("from its cache", lambda: first("quillon")), ("no cache yet", cold)):
            times, ratios = paired(measure, peers)
            for peer in peers:
                shown = " ({:,} shown; GLib {:,})".format(counts["quillon"], counts["glib"]) if peer == "GLib" else ""
                table.add("scan of {:,} entries, {}{}".format(size, how, shown), ms(times["quillon"]),
                          PEER_NAMES[peer], ms(times[peer]), ratios[peer])


def measure_whole_search(session, table):
    if session.display is None:
        log("skipped: whole `quillon --search` beside rofi (no rofi or no Xvfb)")
    for size in (500, 2000):
        instance = session.start_instance(size) if session.bus else None
        env = session.environment(size)
        rss = {"quillon": [], "rofi": []}

        def quillon():
            result = check(run([session.quillon, "--search", PROBE], env), "quillon --search")
            if PROBE not in result.out.lower():
                raise RuntimeError("quillon --search did not find the probe:\n" + result.out[-600:])
            rss["quillon"].append(result.max_rss_kb)
            return result.wall_ms

        def rofi():
            result = check(run(ROFI, session.rofi_environment(size)), "rofi")
            rss["rofi"].append(result.max_rss_kb)
            return result.wall_ms

        try:
            if session.display is None:
                times, _ = paired(quillon, {})
                table.add("whole `quillon --search x`, {:,} entries".format(size), ms(times["quillon"]))
                continue
            times, ratios = paired(quillon, {"rofi": rofi})
            table.add("whole `quillon --search x`, {:,} entries".format(size), ms(times["quillon"]),
                      "`rofi -show drun -filter x -auto-select`", ms(times["rofi"]), ratios["rofi"])
            quillon_rss, rofi_rss = (statistics.median(rss[name]) for name in ("quillon", "rofi"))
            table.add("peak RSS of that command, {:,} entries".format(size), "{:,.0f} KiB".format(quillon_rss),
                      "the same rofi", "{:,.0f} KiB".format(rofi_rss), quillon_rss / rofi_rss)
        finally:
            if instance:
                session.stop_instance(instance)


def measure_client(session, table):
    if not session.bus:
        log("skipped: `quillon --toggle-search` beside dbus-send (no session bus)")
        return
    size = 2000
    instance = session.start_instance(size)
    env = session.environment(size)
    try:
        times, ratios = paired(
            lambda: check(run([session.quillon, "--toggle-search"], env), "quillon --toggle-search").wall_ms,
            {"dbus-send": lambda: check(run(["dbus-send", "--session", "--print-reply", "--dest=app.quillon.Quillon",
                                             "/app/quillon/Quillon", "app.quillon.Quillon.ToggleSearch"], env),
                                        "dbus-send").wall_ms},
            rounds=max(ROUNDS, 16))
        table.add("`quillon --toggle-search` to a running instance", ms(times["quillon"]),
                  "dbus-send of the same call", ms(times["dbus-send"]), ratios["dbus-send"])
    finally:
        session.stop_instance(instance)


def measure_idle_memory(session, table):
    if not session.bus:
        log("skipped: idle RSS of a running instance (no session bus)")
        return
    size = 10000
    instance = session.start_instance(size)
    try:
        check(run([session.quillon, "--search", PROBE], session.environment(size)), "quillon --search")
        time.sleep(3)
        status = open("/proc/{}/status".format(instance.pid)).read()
        field = lambda name: int(re.search(name + r":\s+(\d+) kB", status).group(1))
        table.add("idle RSS of a running instance after one search, 10,000 entries",
                  "{:,} KiB (peak {:,} KiB)".format(field("VmRSS"), field("VmHWM")))
    finally:
        session.stop_instance(instance)


def measure_start(session, table):
    if not session.bus:
        log("skipped: start to bus name and to tray icon (no session bus)")
        return
    size = 10000
    result = check(run([os.path.join(session.build, "bench", "bench_startup"), str(ROUNDS)],
                       session.environment(size), timeout=600), "bench_startup")
    runs = re.findall(r"bus_name_ms=([\d.]+) tray_ms=([\d.]+)", result.out)
    if not runs:
        log(result.out.strip())
        return
    table.add("start to bus name owned, 10,000 entries", ms([float(name) for name, _ in runs]))
    table.add("start to tray icon (registered with a stand-in watcher), 10,000 entries",
              ms([float(tray) for _, tray in runs]))


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    build = os.path.abspath(sys.argv[1])
    table = Table()
    failures = 0
    with Session(build) as session:
        log("{} rounds per comparison; load average at start {:.2f} on {} CPUs".format(
            ROUNDS, os.getloadavg()[0], os.cpu_count()))
        session.generate()
        session.start_bus()
        session.start_display()
        # One failing measurement leaves its rows out, not the others.
        for measure in (measure_in_process, measure_scan, measure_whole_search, measure_client,
                        measure_idle_memory, measure_start):
            try:
                measure(session, table)
            except (RuntimeError, OSError, ValueError, KeyError, subprocess.SubprocessError) as error:
                failures += 1
                log("failed: {}: {}".format(measure.__name__, error))
    table.print()
    if failures:
        sys.exit("{} measurement(s) failed; see above".format(failures))


if __name__ == "__main__":
    main()
