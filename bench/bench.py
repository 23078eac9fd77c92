"""Compares the helper with similar programs: `python3 -m bench.bench BUILD [--package BUILD] [--quick]`.

Prints one table. A comparison of times is the ratio of two medians that were measured in turn in the same run.
--package names a build directory with the self-contained package, which adds rows. --quick runs few rounds with small
inputs to check the programs. Its only usable figure is the number of instructions until the window. Every run exits
with status 1 if that number exceeds MOST_INSTRUCTIONS.
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
from collections.abc import Callable, Sequence
from typing import Any

from kit.desktop import Environment, desktop, end, wait_for
from kit.stage import Stage, Store, Window

MOST_INSTRUCTIONS = 116  # in millions until the window is on the screen, with Debian's libcurl


class Bench:
    def __init__(self, build: pathlib.Path, package: pathlib.Path | None, folder: pathlib.Path,
                 in_memory: pathlib.Path, quick: bool) -> None:
        self.build, self.folder, self.in_memory, self.quick = build.resolve(), folder, in_memory, quick
        self.package = package.resolve() if package else None
        self.rows: list[tuple[int | str, str, str, float | None, float, str]] = []

    def program(self, name: str) -> str:
        return str(self.build / name)

    def add(self, number: int | str, what: str, against: str, bar: float | None, ratio: float,
            detail: str = "") -> None:
        """Records a row: `bar` is the largest figure that reaches it, None where any does."""
        self.rows.append((number, what, against, bar, ratio, detail))
        print(f"row {number}: {what} / {against}: {ratio:.2f} ({detail})", file=sys.stderr)

    def output_of(self, program: str, *words: object, environment: Environment | None = None) -> list[float]:
        """Returns the numbers that a program prints."""
        return [float(word) for word in subprocess.run([self.program(program), *map(str, words)], text=True,
                                                       env=environment, capture_output=True, check=True).stdout.split()]

    def times(self, runs: int, commands: list[dict[str, Any]], until: str = "exit",
              environment: Environment | None = None) -> list[float]:
        """Returns the median time of each command in milliseconds, measured in turn."""
        task = {"runs": 2 if self.quick else runs, "until": until, "commands": [
            {"argv": [str(word) for word in command["argv"]]} |
            {key: value for key, value in command.items() if key != "argv"}
            for command in commands]}
        result = subprocess.run([self.program("bench/measure")], input=json.dumps(task), text=True,
                                env=environment, capture_output=True, check=False)
        if result.returncode != 0:
            raise RuntimeError(result.stderr.strip())
        return [statistics.median(times) / 1000 for times in json.loads(result.stdout)]

    def compare(self, number: int, what: str, against: str, bar: float | None, medians: Sequence[float],
                index: int = 1, unit: str = "ms") -> None:
        ours, peer = medians[0], medians[index]
        self.add(number, what, against, bar, ours / peer,
                 f"{ours:.2f} {unit} / {peer:.2f} {unit}")

    # ---- the rows ----

    def throttled_start(self) -> None:
        """Rows 1 and 2."""
        stage = Stage(self.build, self.folder / "throttled")
        stage.run({"PATH": "/usr/bin"})  # stores the time of a run
        environment = stage.environment({"PATH": "/usr/bin"})
        linked = stage.program().with_name("linked")
        shutil.copy(self.program("bench/linked-helper"), linked)
        medians = self.times(300, [{"argv": [stage.program()]},
                                   {"argv": [self.program("bench/empty")]},
                                   {"argv": [linked]}], environment=environment)
        self.compare(1, "throttled start", "empty C++ program", 0.6, medians)
        self.compare(2, "throttled start", "same start with all libraries linked", 0.15, medians, 2)

    def window(self, environment: Environment) -> None:
        """Rows 3, 4, 13 and 15."""
        minimal, title = self.program("bench/minimal-window"), "minimal-window"
        stages = {"": Stage(self.build, self.folder / "window")}
        if self.package:
            stages[", package"] = Stage(self.package, self.folder / "package")
        environment = next(iter(stages.values())).environment(environment)

        def helper(stage: Stage, first: str = "") -> dict[str, Any]:
            forget = f"rm -f '{stage.config}/{stage.brand['identifier']}.conf'"
            return {"argv": [stage.program()], "prepare": ["sh", "-c", forget + first],
                    "environment": {"HOME": str(stage.home), "TMPDIR": str(stage.home / "tmp")}}

        def memory_of(program: str | pathlib.Path, title: str, stage: Stage | None = None) -> float:
            process = subprocess.Popen([program], env=stage.environment(environment) if stage else environment,
                                       stderr=subprocess.DEVNULL)
            wait_for(Window(environment, title).is_shown)
            time.sleep(1)
            memory = status_of(process.pid, "VmRSS") / 2**20
            end(process)
            return memory

        with Store(self.build):
            medians = self.times(40, [*map(helper, stages.values()), {"argv": [minimal]},
                                      {"argv": ["zenity", "--info", "--text", "Some text"]}], "mapped", environment)
            peer = memory_of(minimal, title)
            for (kind, stage), time_, bar, memory_bar in zip(stages.items(), medians, (1.15, 0.8), (1.37, 0.85)):
                what = f"start until the window appears{kind}"
                self.compare(3, what, "minimal Qt window", bar, (time_, medians[-2]))
                stage.forget_last_run()
                self.compare(13, f"resident memory with the window{kind}", "minimal Qt window", memory_bar,
                             (memory_of(stage.program(), stage.brand["productName"], stage), peer), unit="MiB")
            self.compare(4, "start until the window appears", "zenity --info", 1.0, (medians[0], medians[-1]))
            if os.geteuid() == 0 and not self.quick:  # no one else may
                drop = "; sync; echo 3 >/proc/sys/vm/drop_caches"
                first = self.times(7, [*(helper(stage, drop) for stage in stages.values()),
                                       {"argv": [minimal], "prepare": ["sh", "-c", "true" + drop]}],
                                   "mapped", environment)
                for kind, time_, bar in zip(stages, first, (None, 0.8)):
                    what = f"start until the window appears, files not in memory{kind}"
                    self.compare(15, what, "minimal Qt window", bar, (time_, first[-1]))

    def instructions(self, environment: Environment) -> None:
        """Row 3b."""
        stage = Stage(self.build, self.folder / "instructions")
        file = self.folder / "callgrind"
        dump = file.with_name("callgrind.1")
        with Store(self.build):
            process = stage.start(environment, log=subprocess.DEVNULL)
            Window(environment).wait()  # fills this home's font caches, which users' homes have
            end(process)
            stage.forget_last_run()
            process = subprocess.Popen(
                ["valgrind", "--tool=callgrind", f"--callgrind-out-file={file}", "--dump-before=xcb_map_window",
                 stage.program()], env=stage.environment(environment), stderr=subprocess.DEVNULL)
            wait_for(lambda: dump.exists() and "\ntotals: " in dump.read_text(), 60)
            end(process)
        count = int(dump.read_text().split("\ntotals: ")[1].split()[0]) / 1e6
        self.add("3b", "million instructions until the window appears", "", 100, count)
        if count > MOST_INSTRUCTIONS:
            sys.exit(f"bench: {count:.1f} million instructions until the window, more than {MOST_INSTRUCTIONS}")

    def at_rest(self, environment: Environment) -> None:
        """Row 16."""
        seconds = 1 if self.quick else 10
        stage = Stage(self.build, self.folder / "rest")
        with Store(self.build, "--delay", "20000"):
            # The demo store delays only the cancellation, so the spinner turns for 20 seconds.
            process = stage.start(environment)
            window = Window(environment)
            window.wait(60)
            time.sleep(1)
            before = of_threads(process.pid, wakeups)
            time.sleep(seconds)
            self.add(16, "wakeups per second of the idle window", "", 0,
                     (of_threads(process.pid, wakeups) - before) / seconds)
            window.press_remove()
            time.sleep(1)
            before = of_threads(process.pid, processor_time)
            time.sleep(seconds)
            self.add(16, "% of a core while the spinner turns", "", 0.5,
                     (of_threads(process.pid, processor_time) - before) / seconds / 1e7)
            end(process)

    def worst_answer(self) -> None:
        """Row 17."""
        file = self.folder / "hostile.json"
        subprocess.run([self.program("tests/store-test"), "--gtest_filter=HostileAnswers.*",
                        f"--gtest_output=json:{file}"], stdout=subprocess.DEVNULL, check=False)
        worst = json.loads(file.read_text())["testsuites"][0]["testsuite"][0]["worst"]
        self.add(17, "ms to parse the slowest known answer of 1 MiB", "", 100, int(worst) / 1000)

    def sizes(self) -> None:
        """Row 18."""
        package = next(self.package.glob("dist/*.tar.gz"))
        bundle = self.package / "Subscription Helper.app"
        files = [file for file in bundle.rglob("*") if file.is_file()]
        for what, bar, size in (("packed", 10, package.stat().st_size),
                                ("unpacked", 30, sum(file.stat().st_size for file in files)),
                                ("process entry", None,
                                 (bundle / "Contents/Linux/Subscription Helper").stat().st_size)):
            self.add(18, f"package in MB, {what}", "", bar, size / 1e6)

    def reading(self) -> None:
        """Rows 5, 6, 7 and 8."""
        result = subprocess.run(
            [self.program("bench/reading"), "--benchmark_format=json", "--benchmark_filter=-calls",
             "--benchmark_enable_random_interleaving=true",
             f"--benchmark_repetitions={1 if self.quick else 15}",
             f"--benchmark_min_time={0.01 if self.quick else 0.15}"],
            text=True, capture_output=True, check=True)
        rounds: dict[str, list[float]] = {}
        per_byte: dict[str, list[float]] = {}
        for run in json.loads(result.stdout)["benchmarks"]:
            if run["run_type"] == "iteration":
                name = run["name"].removesuffix("/real_time")
                rounds.setdefault(name, []).append(run["real_time"] / 1000)
                if name.startswith("size/"):
                    per_byte.setdefault(name, []).append(1e9 / run["bytes_per_second"])
        medians = {name: statistics.median(times) for name, times in rounds.items()}
        for size, what in (("usual", "reading an answer of 0.7 KB"), ("large", "reading an answer of 1 MiB")):
            for number, bars, peer, against in (
                    (5, (1.0, 1.35), "expat", "expat alone (empty handlers)"),
                    (6, (0.45, 0.3), "qt", "QXmlStreamReader"),
                    (6, (0.75, None), "libxml2", "libxml2 (tree)"), (6, (1.05, None), "tinyxml2", "tinyxml2 (tree)")):
                self.compare(number, what, against, bars[size == "large"],
                             (medians[f"{size}/ours"], medians[f"{size}/{peer}"]), unit="us")
        costs = [statistics.median(values) for values in per_byte.values()]
        self.compare(7, "time per byte, slowest size from 1 KB to 1 MiB", "fastest size", 1.5,
                     (max(costs), min(costs)), unit="ns")
        self.compare(8, "one lookup over loopback", "libcurl and expat alone", 1.05,
                     (medians["lookup/ours"], medians["lookup/bare"]), unit="us")
        self.compare(8, "system calls of one lookup", "libcurl and expat alone", 1.0,
                     (self.calls_of("ours"), self.calls_of("bare")), unit="calls")

    def calls_of(self, name: str) -> float:
        """Returns the system calls of one lookup: the difference between 200 and 100 lookups, divided by 100."""
        counts = []
        for times in (100, 200):
            file = self.folder / "calls"
            subprocess.run(["strace", "-f", "-o", file, self.program("bench/reading"),
                            f"--benchmark_filter=calls/{name}/iterations:{times}"], capture_output=True, check=True)
            counts.append(file.read_text().count("\n"))
        return (counts[1] - counts[0]) / 100

    def storectl(self) -> None:
        """Row 9."""
        with Store(self.build) as store:
            url = f"{store.address}?f=getsubscription&subscriptionRef=DEMO-1001"
            pipe = f"curl -s '{url}' | xmllint --xpath 'string(//status)' -"
            medians = self.times(100, [
                {"argv": [self.program("tools/storectl"), "subscription", "DEMO-1001"]},
                {"argv": ["sh", "-c", pipe]}])
        self.compare(9, "one lookup by the command storectl", "curl -s piped into xmllint --xpath", 1.0, medians)

    def long_lists(self) -> None:
        """Row 19."""
        links, references = self.folder / "links", self.folder / "references"
        for delay, jobs, count in ((0, 1, 5000), (0, 8, 5000), (50, 1, 100), (50, 8, 800)):
            count = 16 if self.quick else count
            with Store(self.build, "--latency", str(delay)) as store:
                names = [f"DEMO-{1001 + number}" for number in range(count)]
                references.write_text("\n".join(names))
                links.write_text("".join(f'url = "{store.address}?f=getsubscription&subscriptionRef={name}"\n'
                                         for name in names))
                ours = f"'{self.program('tools/storectl')}' subscription --jobs {jobs} --raw - <'{references}'"
                theirs = f"curl --silent --parallel --parallel-max {jobs} --config '{links}'"
                medians = self.times(5, [{"argv": ["sh", "-c", f"{command} >/dev/null; true"]}
                                         for command in (ours, theirs)])
            per_second = [f"{count / median * 1000:.0f}/s" for median in medians]
            what = f"list looked up by storectl, {jobs} at a time, answers after {delay} ms"
            self.add(19, what, "curl --parallel", None, medians[0] / medians[1], " / ".join(per_second))

    def steps(self) -> None:
        """Rows 10 and 11. A copy's time excludes the program's start, which is measured separately."""
        step = self.program("tests/removal-step")
        stage = Stage(self.build, self.in_memory / "steps")
        environment = stage.environment()
        temporary = stage.home / "tmp" / f"{stage.brand['identifier']}-{os.geteuid()}"
        bundle = stage.home / "large" / "Own.app"
        contents = bundle / "Contents"
        source = contents / "Linux" / "large"
        (contents / "Resources").mkdir(parents=True)
        (contents / "Linux").mkdir()
        (contents / "Info.plist").write_text("<plist/>")
        (contents / "Resources" / "Configuration.strings").write_text('"Application Uninstaller" = "large";')
        with source.open("wb") as file:
            file.write(b"#!/bin/true\n")
            for _ in range(1 if self.quick else 256):
                file.write(os.urandom(2**20))
        source.chmod(0o755)
        copy = stage.home / "copy"
        launch, start, peer, peer_start = self.times(15, [
            {"argv": [step, "launch", bundle], "prepare": ["rm", "-rf", str(temporary / "large")]},
            {"argv": [step, "launch", stage.home / "nothing"]},
            {"argv": ["cp", "-a", source, copy], "prepare": ["rm", "-rf", str(copy)]},
            {"argv": ["cp", "--version"]}], environment=environment)
        self.compare(10, "copying an uninstaller of 256 MiB", "cp -a", 1.1, (launch - start, peer - peer_start))
        self.compare(11, "moving a bundle to the Trash", "GIO's g_file_trash", 1.1,
                     self.output_of("bench/trash", 2 if self.quick else 300), unit="us")

    def event_loop(self, environment: Environment) -> None:
        """Rows 12 and 14."""
        gaps, clicks = zip(*(self.output_of("bench/event-loop", environment=environment)
                             for _ in range(1 if self.quick else 9)))
        for number, what, times in ((12, "longest pause of the window in a removal", gaps),
                                    (14, "button press until the sheet is painted", clicks)):
            self.compare(number, what, "one frame (16 ms)", 1.0, (statistics.median(times) / 1000, 16.0))

    def table(self) -> None:
        print("| # | measurement | compared with | target | result | verdict | medians |")
        print("|---|---|---|---|---|---|---|")
        for number, what, against, bar, ratio, detail in sorted(
                self.rows, key=lambda row: (int(str(row[0]).strip("b")), str(row[0]))):
            verdict = "" if bar is None else "reached" if ratio <= bar else "**not reached**"
            target = "" if bar is None else f"{bar:.2f}"
            print(f"| {number} | {what} | {against} | {target} | {ratio:.2f} | {verdict} | {detail} |")


def status_of(process: int, field: str) -> int:
    """Returns a memory figure of a process in bytes."""
    lines = pathlib.Path(f"/proc/{process}/status").read_text().splitlines()
    return next(int(line.split()[1]) * 1024 for line in lines if line.startswith(f"{field}:"))


def of_threads(process: int, figure: Callable[[pathlib.Path], int]) -> int:
    """Returns the sum of a figure over the threads of a process."""
    return sum(figure(thread) for thread in pathlib.Path(f"/proc/{process}/task").iterdir())


def wakeups(thread: pathlib.Path) -> int:
    lines = (thread / "status").read_text().splitlines()
    return sum(int(line.split()[1]) for line in lines if "voluntary_ctxt_switches" in line)


def processor_time(thread: pathlib.Path) -> int:
    """Returns the processor time of a thread in nanoseconds."""
    return int((thread / "schedstat").read_text().split()[0])


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--package", type=pathlib.Path, help="the build folder of a self-contained package")
    parser.add_argument("--quick", action="store_true", help="few rounds, to see that it works")
    arguments = parser.parse_args()
    with contextlib.ExitStack() as stack:
        folder, in_memory = (pathlib.Path(tempfile.mkdtemp(prefix="helper-bench-", dir=place))
                             for place in (None, "/dev/shm"))
        for each in (folder, in_memory):
            stack.callback(shutil.rmtree, each, ignore_errors=True)
        bench = Bench(arguments.build, arguments.package, folder, in_memory, arguments.quick)
        bench.throttled_start()
        bench.reading()
        bench.storectl()
        bench.long_lists()
        bench.steps()
        environment = stack.enter_context(desktop())
        bench.instructions(environment)  # before zenity, which starts accessibility for all later windows
        bench.window(environment)
        bench.event_loop(environment)
        bench.at_rest(environment)
        bench.worst_answer()
        if bench.package:
            bench.sizes()
        bench.table()
    optional = {15, 18}  # for root, and with a package
    missing = {*range(1, 20), "3b"} - optional - {row[0] for row in bench.rows}
    if missing:
        sys.exit(f"bench: rows without a figure: {sorted(missing)}")


if __name__ == "__main__":
    main()
