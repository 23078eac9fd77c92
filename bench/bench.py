"""Measures what the helper costs against peers, side by side: `bench.py BUILD [--quick]`.

Prints one table. Every figure is the ratio of two medians that were measured in turn in the same run.
--quick makes few rounds with small inputs, to see that everything works; its figures mean nothing.
"""

import argparse
import contextlib
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

PROJECT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(PROJECT / "demo"))

from desktop import desktop, end, wait_for
from stage import Stage, Store, Window

SUBSCRIPTION = (PROJECT / "bench" / "subscription.xml").read_text()


class Bench:
    def __init__(self, build, folder, quick):
        self.build, self.folder, self.quick = pathlib.Path(build).resolve(), folder, quick
        self.rows = []

    def program(self, name):
        return str(self.build / name)

    def add(self, number, what, against, bar, ratio, detail):
        """Records a row: `bar` is the largest ratio that reaches it."""
        self.rows.append((number, what, against, bar, ratio, detail))
        print(f"row {number}: {what} / {against}: {ratio:.2f} ({detail})", file=sys.stderr)

    def times(self, runs, commands, until="exit", environment=None):
        """Medians, in milliseconds, of commands timed in turn."""
        task = {"runs": 2 if self.quick else runs, "until": until, "commands": [
            {"argv": [str(word) for word in command["argv"]]} |
            {key: value for key, value in command.items() if key != "argv"}
            for command in commands]}
        result = subprocess.run([self.program("bench/measure")], input=json.dumps(task), text=True,
                                env=environment, capture_output=True, check=False)
        if result.returncode != 0:
            raise RuntimeError(result.stderr.strip())
        return [statistics.median(times) / 1000 for times in json.loads(result.stdout)]

    def compare(self, number, what, against, bar, medians, index=1, unit="ms"):
        ours, peer = medians[0], medians[index]
        self.add(number, what, against, bar, ours / peer,
                 f"{ours:.2f} {unit} / {peer:.2f} {unit}")

    # ---- the rows ----

    def throttled_start(self):
        """Rows 1 and 2."""
        stage = Stage(self.build, self.folder / "throttled")
        stage.run({"PATH": "/usr/bin"})  # stores the time of a run
        environment = stage.environment({"PATH": "/usr/bin"})
        linked = stage.program().with_name("linked")
        shutil.copy(self.program("bench/linked-helper"), linked)
        medians = self.times(300, [{"argv": [stage.program()]},
                                   {"argv": [self.program("bench/empty")]},
                                   {"argv": [linked]}], environment=environment)
        self.compare(1, "a throttled start", "an empty C++ program", 1.25, medians)
        self.compare(2, "a throttled start", "the same with everything linked", 0.15, medians, 2)

    def window(self, environment):
        """Rows 3, 4 and 13."""
        stage = Stage(self.build, self.folder / "window")
        environment = stage.environment(environment)
        forget = ["rm", "-f", str(stage.config / "com.example.subscription-helper.conf")]
        minimal = self.program("bench/minimal-window")
        helper = {"argv": [stage.program()], "prepare": forget}
        with Store(self.build):
            medians = self.times(40, [helper, {"argv": [minimal]},
                                      {"argv": ["zenity", "--info", "--text", "Some text"]}],
                                 "mapped", environment)
            self.compare(3, "start until the window is mapped", "a minimal Qt window", 1.25, medians)
            self.compare(4, "start until the window is mapped", "zenity --info", 1.0, medians, 2)
            memories = []
            for program, title in ((stage.program(), "Acme Studio"), (minimal, "minimal-window")):
                stage.forget_last_run()
                process = subprocess.Popen([program], env=environment, stderr=subprocess.DEVNULL)
                wait_for(Window(environment, title).is_shown)
                time.sleep(1)
                memories.append(status_of(process.pid, "VmRSS") / 2**20)
                end(process)
        self.compare(13, "resident memory with the window", "a minimal Qt window", 1.3, memories,
                     unit="MiB")

    def reading(self):
        """Rows 5, 6 and 8."""
        result = subprocess.run(
            [self.program("bench/reading"), "--benchmark_format=json",
             "--benchmark_enable_random_interleaving=true",
             f"--benchmark_repetitions={1 if self.quick else 15}",
             f"--benchmark_min_time={0.01 if self.quick else 0.15}"],
            text=True, capture_output=True, check=True)
        rounds = {}
        for run in json.loads(result.stdout)["benchmarks"]:
            if run["run_type"] == "iteration":
                name = run["name"].removesuffix("/real_time")
                rounds.setdefault(name, []).append(run["real_time"] / 1000)
        medians = {name: statistics.median(times) for name, times in rounds.items()}
        for size, what in (("usual", "an answer of 0.7 KB"), ("large", "an answer of 12 MB")):
            for number, bar, peer, against in (
                    (5, 1.25, "expat", "bare expat"), (6, 0.6, "qt", "QXmlStreamReader"),
                    (6, 0.6, "libxml2", "libxml2 tree"), (6, 0.6, "tinyxml2", "tinyxml2 tree")):
                self.compare(number, what, against, bar,
                             (medians[f"{size}/ours"], medians[f"{size}/{peer}"]), unit="us")
        self.compare(8, "a look-up on loopback", "bare libcurl and expat", 1.1,
                     (medians["lookup/ours"], medians["lookup/bare"]), unit="us")

    def memory(self):
        """Row 7."""
        results = []
        for megabytes in (1, 10) if self.quick else (1, 100):
            file = self.folder / "answer.xml"
            count = megabytes * 10**6 // len(SUBSCRIPTION)
            file.write_text("<list>\n" + SUBSCRIPTION * count + "</list>\n")
            output = subprocess.run([self.program("bench/peak-memory"), file], text=True,
                                    capture_output=True, check=True).stdout.split()
            results.append([float(value) for value in output])
            file.unlink()
        (small, _, small_time), (large, peak, large_time) = results
        self.add(7, f"peak memory while reading {large / 1e6:.0f} MB", "the answer's size", 1.1,
                 peak / large, f"{peak / 1e6:.0f} MB / {large / 1e6:.0f} MB")
        self.add(7, "seconds for each byte of it", "of an answer of 1 MB", 1.25,
                 (large_time / large) / (small_time / small),
                 f"{large_time * 1e9 / large:.1f} ns / {small_time * 1e9 / small:.1f} ns")

    def storectl(self):
        """Row 9."""
        with Store(self.build) as store:
            url = f"{store.address}?f=getsubscription&subscriptionRef=DEMO-1001"
            pipe = f"curl -s '{url}' | xmllint --xpath 'string(//status)' -"
            medians = self.times(100, [
                {"argv": [self.program("tools/storectl"), "subscription", "DEMO-1001"]},
                {"argv": ["sh", "-c", pipe]}])
        self.compare(9, "storectl subscription", "curl -s piped into xmllint --xpath", 1.0, medians)

    def steps(self):
        """Rows 10 and 11: each program's time less that of its start with nothing to do."""
        step = self.program("tests/removal-step")
        stage = Stage(self.build, self.folder / "steps")
        environment = stage.environment()
        temporary = stage.home / "tmp" / f"subscription-helper-{os.geteuid()}"
        files = 50 if self.quick else 5000
        for what, name in (("a file of 256 MiB", "large"), (f"{files} small files", "Small.app")):
            bundle = stage.home / name / "Own.app"
            contents = bundle / "Contents"
            source = contents / "Linux" / name
            (contents / "Resources").mkdir(parents=True)
            (contents / "Linux").mkdir()
            (contents / "Info.plist").write_text("<plist/>")
            (contents / "Resources" / "Configuration.strings").write_text(
                f'"Application Uninstaller" = "{name}";')
            if name == "large":
                with source.open("wb") as file:
                    file.write(b"#!/bin/true\n")
                    for _ in range(1 if self.quick else 256):
                        file.write(os.urandom(2**20))
                source.chmod(0o755)
            else:
                make_bundle(source, files)
            copy = stage.home / "copy"
            launch, start, peer, peer_start = self.times(15, [
                {"argv": [step, "launch", bundle],
                 "prepare": ["rm", "-rf", str(temporary / name)]},
                {"argv": [step, "launch", stage.home / "nothing"]},
                {"argv": ["cp", "-a", source, copy], "prepare": ["rm", "-rf", str(copy)]},
                {"argv": ["cp", "--version"]}], environment=environment)
            self.compare(10, f"launchUninstaller's copy: {what}", "cp -a", 1.1,
                         (launch - start, peer - peer_start))
        source, own, peer = (stage.home / name / "Trash me.app" for name in ("src", "own", "peer"))
        make_bundle(source, files)

        def prepare(target):
            return ["sh", "-c", f"mkdir -p '{target.parent}' && cp -a '{source}' '{target}'"]

        trash, start, peer_trash, peer_start = self.times(15, [
            {"argv": [step, "trash", own], "prepare": prepare(own)},
            {"argv": [step, "trash", stage.home / "nothing"]},
            {"argv": ["gio", "trash", peer], "prepare": prepare(peer)},
            {"argv": ["gio", "version"]}], environment=environment)
        self.compare(11, f"trash of {files} files", "gio trash", 1.0,
                     (trash - start, peer_trash - peer_start))

    def event_loop(self, environment):
        """Row 12."""
        gaps = []
        for _ in range(1 if self.quick else 9):
            output = subprocess.run([self.program("bench/event-loop")], env=environment, text=True,
                                    capture_output=True, check=True).stdout
            gaps.append(int(output) / 1000)
        self.compare(12, "longest gap of the event loop in a removal", "one frame", 1.0,
                     (statistics.median(gaps), 16.0))

    def table(self):
        print("| # | what | against | to reach | measured | | medians |")
        print("|---|---|---|---|---|---|---|")
        for number, what, against, bar, ratio, detail in sorted(self.rows, key=lambda row: row[0]):
            verdict = "reached" if ratio <= bar else "**not reached**"
            print(f"| {number} | {what} | {against} | {bar:.2f} | {ratio:.2f} | {verdict} | {detail} |")


def make_bundle(path, files):
    """An application bundle of many small files, with a program."""
    (path / "Contents" / "Linux").mkdir(parents=True)
    program = path / "Contents" / "Linux" / path.stem
    program.write_text("#!/bin/true\n")
    program.chmod(0o755)
    for number in range(files):
        folder = path / "Contents" / "Resources" / str(number // 100)
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"{number}.txt").write_text(f"file {number}\n" * 20)


def status_of(process, field):
    """A memory figure of a process, in bytes."""
    lines = pathlib.Path(f"/proc/{process}/status").read_text().splitlines()
    return next(int(line.split()[1]) * 1024 for line in lines if line.startswith(f"{field}:"))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true", help="few rounds, to see that it works")
    arguments = parser.parse_args()
    with contextlib.ExitStack() as stack:
        folder = pathlib.Path(tempfile.mkdtemp(prefix="helper-bench-"))
        stack.callback(shutil.rmtree, folder, ignore_errors=True)
        bench = Bench(arguments.build, folder, arguments.quick)
        bench.throttled_start()
        bench.reading()
        bench.memory()
        bench.storectl()
        bench.steps()
        environment = stack.enter_context(desktop())
        bench.window(environment)
        bench.event_loop(environment)
        bench.table()
    missing = set(range(1, 14)) - {row[0] for row in bench.rows}
    if missing:
        sys.exit(f"bench: rows without a figure: {sorted(missing)}")


if __name__ == "__main__":
    main()
