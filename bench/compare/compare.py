#!/usr/bin/env python3
"""Measures what the data source costs and prints it beside its goals.

    scripts/bench --compare [--scale X] [--runs N] [--only PATTERN] [--cpu N]
    scripts/bench --instructions [--only PATTERN]

--compare prints one line a goal: its name, the goal, what was measured, and "met" or "missed".
Costs are user and system CPU time of whole processes on one core. Where the goal is a multiple of
another program's cost, both run in turn, and the figure is the median of the pairs' ratios: the
speed of a machine that others use too drifts, but not between two runs of a pair.

--instructions counts the instructions of the row benchmarks under callgrind, which do not drift.

    --scale X       of the tables: 1 is a million rows; small ones show start-up more than rows
    --runs N        pairs a line, 5
    --only PATTERN  the lines whose names the regular expression finds
    --cpu N         the core, by default the last one

The tables are made in build/compare and kept. Needs an x86-64 with AVX2 for the floor.
"""
import argparse
import itertools
import json
import os
import re
import shutil
import statistics
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
RELEASE = ROOT / "build/release/bin"
WINDOWS = ROOT / "build/windows-mingw/bin"
WORK = ROOT / "build/compare"
FLOOR_SOURCES = ROOT / "bench/floor"
PROGRAM = RELEASE / "texttables"
COSTS = RELEASE / "module_costs"
FLAGS = ["-std=c++20", "-O3", "-march=haswell", "-Wall", "-Wextra"]

sys.path.insert(0, str(FLOOR_SOURCES))
sys.dont_write_bytecode = True
import generate  # noqa: E402


# ------------------------------------------------------------------------------------------------
# Running


class Failed(Exception):
    pass


def run(command):
    """Standard output of a command."""
    done = subprocess.run([str(part) for part in command], capture_output=True, check=False)
    if done.returncode != 0:
        raise Failed("%s: %s" % (command[0], done.stderr.decode(errors="replace").strip()[-500:]))
    return done.stdout.decode(errors="replace")


def cpu_seconds(command):
    """User and system time of a command and of what it started."""
    command = [str(part) for part in command]
    with open(os.devnull, "r+b") as nothing:
        process = subprocess.Popen(command, stdin=nothing, stdout=nothing, stderr=nothing)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise Failed("%s ended with %d" % (command, process.returncode))
    return usage.ru_utime + usage.ru_stime


def figure(command, name):
    """The number behind a name in what a command prints."""
    found = re.search(r"\b%s (-?[0-9.]+)" % name, run(command))
    if not found:
        raise Failed("%s says nothing of %s" % (command[0], name))
    return float(found.group(1))


def median_ratio(ours, other, runs):
    """Of two functions that give a cost each, called in turn."""
    return statistics.median(a / b for b, a in ((other(), ours()) for _ in range(runs)))


# ------------------------------------------------------------------------------------------------
# What is measured: programs and tables


def build_floor():
    WORK.mkdir(parents=True, exist_ok=True)
    floor = WORK / "floor"
    sources = [*FLOOR_SOURCES.glob("*.h"), FLOOR_SOURCES / "floor.cpp"]
    if not floor.exists() or any(f.stat().st_mtime > floor.stat().st_mtime for f in sources):
        run([os.environ.get("CXX", "c++"), *FLAGS, "-o", floor, FLOOR_SOURCES / "floor.cpp"])
    return floor


def build_windows_floor():
    """The floor as a Windows program; None without compiler, Wine, or our own program for it."""
    compiler = shutil.which("x86_64-w64-mingw32-g++-posix")
    if not (compiler and shutil.which("wine") and (WINDOWS / "texttables.exe").exists()):
        return None
    # fast_float is all headers; the rest of the system's own must stay out of sight.
    include = WORK / "include"
    include.mkdir(exist_ok=True)
    if not (include / "fast_float").exists():
        headers = run(["dpkg", "-L", "libfast-float-dev"]).split()
        (include / "fast_float").symlink_to(
            next(Path(f).parent for f in headers if f.endswith("/fast_float.h"))
        )
    floor = WORK / "floor.exe"
    source = FLOOR_SOURCES / "floor.cpp"
    run([compiler, *FLAGS, "-static", "-I", include, "-o", floor, source, "-loleaut32"])
    return floor


class Tables:
    """Generated when first asked for, and kept."""

    def __init__(self, scale, folder):
        self.scale = scale
        self.folder = folder

    def make(self, name, write):
        """The file of the name; `write` makes it under the path it is given."""
        path = self.folder / name
        if not path.exists():
            print("making %s" % name, file=sys.stderr, flush=True)
            path.parent.mkdir(parents=True, exist_ok=True)
            temporary = path.with_name(path.name + ".part")
            write(temporary)
            temporary.rename(path)
        with open(path, "rb", buffering=0) as file:  # into the page cache
            while path.stat().st_size < 4 << 30 and file.read(1 << 20):
                pass
        return path

    def set(self, name):
        rows = max(1, int(generate.ROWS[name] * self.scale))
        return self.generated(name, name, rows)

    def generated(self, name, kind, rows, columns=None):
        def write(path):
            folder = path.parent / "making"
            folder.mkdir(exist_ok=True)
            generate.write(folder, kind, rows, columns)
            for made in folder.iterdir():
                final = path if made.stem == kind else path.parent / made.name
                made.rename(final)
            folder.rmdir()

        return self.make(name + (".txt" if kind == "fixed" else ".csv"), write)

    def repeated(self, name, source, times):
        """The rows of `source` so many times over, behind its header."""

        def write(path):
            with open(path, "wb") as out, open(source, "rb") as rows:
                out.write(rows.readline())
                start = rows.tell()
                for _ in range(times):
                    rows.seek(start)
                    shutil.copyfileobj(rows, out, 1 << 20)

        return self.make(name, write)

    def head(self, name, source, rows):
        def write(path):
            with open(source, "rb") as lines, open(path, "wb") as out:
                for _ in range(rows + 1):
                    out.write(lines.readline())

        return self.make(name, write)

    def pieces(self, name, source, rows, count):
        """So many tables of so many rows each, one behind the other in `source`."""
        folder = self.folder / name
        if not folder.exists():
            print("making %s" % name, file=sys.stderr, flush=True)
            making = self.folder / (name + ".part")
            shutil.rmtree(making, ignore_errors=True)
            making.mkdir(parents=True)
            with open(source, "rb") as lines:
                header = lines.readline()
                for i in range(count):
                    piece = b"".join([header, *itertools.islice(lines, rows)])
                    (making / ("%d.csv" % i)).write_bytes(piece)
            making.rename(folder)
        return [folder / ("%d.csv" % i) for i in range(count)]

    def lines(self, name, lines):
        def write(path):
            with open(path, "w", encoding="utf-8") as out:
                out.writelines(lines)

        return self.make(name, write)

    def scratch(self):
        """An empty folder."""
        folder = self.folder / "scratch"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        return folder


# ------------------------------------------------------------------------------------------------
# The lines


class Comparison:
    """Each method gives the lines of a subject: (name, goal, measure, limit, unit), where `measure`
    is called when the line is wanted. It gives None for what cannot be measured here."""

    def __init__(self, tables, runs):
        self.tables = tables
        self.runs = runs
        self.floor = build_floor()
        self._windows_floor = ()

    def windows_floor(self):
        if self._windows_floor == ():
            self._windows_floor = build_windows_floor()
        return self._windows_floor

    def lines(self):
        for subject in (
            self.rows,
            self.few_columns,
            self.wine,
            self.counting,
            self.opening,
            self.memory,
            self.writing,
            self.growth,
            self.coordinates,
            self.odd_shapes,
        ):
            yield from subject()

    def versus(self, ours, other):
        return median_ratio(lambda: cpu_seconds(ours), lambda: cpu_seconds(other), self.runs)

    @staticmethod
    def rows_command(table, *more):
        return [PROGRAM, "--quiet", "--no-lat-long-fields", "rows", table, "--format", "none", *more]

    def floor_command(self, table, *more):
        return [self.floor, "fixed" if table.suffix == ".txt" else "rows", table, *more]

    def rows(self):
        def measure(name):
            table = self.tables.set(name)
            return self.versus(self.rows_command(table), self.floor_command(table))

        for name in ("mixed", "numeric", "text", "wide", "fixed"):
            yield "rows, " + name, "at most 1.0 x floor", lambda n=name: measure(n), 1.0, "x"

    def few_columns(self):
        def measure():
            table = self.tables.set("mixed")
            floor = self.floor_command(
                table, "--numbers", "digits16", "--texts", "pool", "--columns", "3"
            )
            return self.versus(self.rows_command(table, "--columns", "id,count,measure"), floor)

        yield "rows, three of ten columns", "at most 1.5 x floor for three", measure, 1.5, "x"

    def wine(self):
        def measure(name):
            floor = self.windows_floor()
            if floor is None:
                return None
            table = self.tables.set(name)
            wine = ROOT / "scripts/wine-run"
            ours = [wine, WINDOWS / "texttables.exe", *self.rows_command(table)[1:]]
            options = ["--numbers", "digits16", "--texts", "system"]
            mode = "fixed" if name == "fixed" else "rows"
            return self.versus(ours, [wine, floor, mode, table, *options])

        goal = "at most 1.25 x floor on Wine, BSTR"
        for name in ("mixed", "numeric", "text", "wide"):
            yield "rows on Wine, " + name, goal, lambda n=name: measure(n), 1.25, "x"

    def counting(self):
        def measure(name):
            table = self.tables.set(name)
            return self.versus([PROGRAM, "--quiet", "count", table], ["wc", "-l", table])

        for name in ("mixed", "numeric", "text", "wide", "fixed"):
            yield "count, " + name, "at most 1.6 x wc -l", lambda n=name: measure(n), 1.6, "x"

    def opening(self):
        def microseconds(table):
            return figure([COSTS, "open", table], "open_us")

        def milliseconds(table):
            return statistics.median(microseconds(table) for _ in range(self.runs)) / 1000

        def ten():
            return milliseconds(self.tables.set("mixed"))

        def many():
            return milliseconds(self.tables.set("wide"))

        def sizes():
            small = self.tables.repeated("open-1MB.csv", self.megabyte(), 1)
            large = self.tables.make("open-10GB.csv", lambda path: self.sparse(small, path))
            return small, large

        def size_time():
            small, large = sizes()
            return median_ratio(lambda: microseconds(large), lambda: microseconds(small), self.runs)

        def size_bytes():
            read = [figure([COSTS, "open", table], "read") for table in sizes()]
            return read[1] - read[0]

        yield "open, 10 columns", "at most 0.5 ms", ten, 0.5, "ms"
        yield "open, 500 columns", "at most 5 ms", many, 5, "ms"
        yield "open, 10 GB beside 1 MB", "the same time within 10 %", size_time, 1.1, "x"
        yield "open, 10 GB beside 1 MB, read", "the same bytes", size_bytes, 0, "bytes"

    def megabyte(self):
        return self.tables.generated("megabyte", "mixed", 6600)

    @staticmethod
    def sparse(small, path):
        shutil.copyfile(small, path)
        os.truncate(path, 10 << 30)

    def memory(self):
        def peak(*command):
            return figure([COSTS, "run", *command], "peak_kib") / 1024

        def idle():
            return peak(PROGRAM, "list", self.tables.scratch())

        def above_idle(*command):
            return statistics.median(peak(*command) - idle() for _ in range(self.runs))

        def rows():
            return above_idle(*self.rows_command(self.tables.set("mixed")))

        def count():
            return above_idle(PROGRAM, "count", self.tables.set("mixed"))

        def load():
            table = self.tables.set("mixed")
            lines = self.tables.folder / "mixed.jsonl"
            if not lines.exists():
                command = [PROGRAM, "--no-lat-long-fields", "rows", table, "--format", "jsonl"]
                with open(lines, "wb") as out:
                    subprocess.run([*command, "--limit", "100000"], stdout=out, check=True)

            def once():
                before = idle()
                target = self.tables.scratch() / "mixed.csv"
                with open(table, "rb") as source:
                    target.write_bytes(b"".join(source.readline() for _ in range(101)))
                command = [PROGRAM, "--quiet", "--no-lat-long-fields", "load", target, lines]
                return peak(*command) - before

            return statistics.median(once() for _ in range(self.runs))

        def copy():
            def once():
                before = idle()
                source = self.tables.scratch() / "mixed.csv"
                os.link(self.tables.set("mixed"), source)
                return peak(PROGRAM, "copy", source, source.with_name("copied.csv")) - before

            return statistics.median(once() for _ in range(self.runs))

        def cursor():
            def peak_of(count):
                return figure([COSTS, "cursors", self.tables.set("mixed"), count], "peak_kib")

            return statistics.median((peak_of(9) - peak_of(1)) / 8 for _ in range(self.runs)) / 1024

        def file_size():
            small = self.tables.head("mixed-tenth.csv", self.tables.set("mixed"), self.tenth())
            large = self.tables.set("mixed")
            differences = [
                peak(*self.rows_command(large)) - peak(*self.rows_command(small))
                for _ in range(self.runs)
            ]
            return statistics.median(differences)

        goal = "at most 2 MiB above the idle program"
        yield "memory, rows", goal, rows, 2, "MiB"
        yield "memory, count", goal, count, 2, "MiB"
        yield "memory, load", goal, load, 2, "MiB"
        yield "memory, copy", goal, copy, 2, "MiB"
        yield "memory, each further cursor", "at most 0.5 MiB", cursor, 0.5, "MiB"
        # Pages of the libraries come and go by a few.
        yield "memory, ten times the file", "no growth (0.2 MiB)", file_size, 0.2, "MiB"

    def tenth(self):
        return int(generate.ROWS["mixed"] * self.tables.scale / 10)

    def writing(self):
        def per_row(command):
            said = run(command)
            found = re.search(r"write_s ([0-9.]+) .*?\brows ([0-9]+)", said)
            return float(found.group(1)) / float(found.group(2))

        def measure(name):
            table = self.tables.set(name)
            rows = int(generate.ROWS[name] * self.tables.scale)

            def ours():
                folder = self.tables.scratch()
                return per_row([COSTS, "write", table, folder / "new.csv", rows])

            def floor():
                return per_row([self.floor, "write", table, "--out", self.tables.scratch() / "out"])

            return median_ratio(ours, floor, self.runs)

        for name in ("mixed", "numeric", "text"):
            goal = "at most 1.5 x tuned floor"
            yield "write, " + name, goal, lambda n=name: measure(n), 1.5, "x"

    def growth(self):
        def per_cell(tables, header):
            """Nanoseconds, without what tables of no rows cost."""
            said = run([COSTS, "scan", *tables])
            cost, rows, columns = (float(x) for x in re.findall(r" ([0-9]+)", said))
            idle = len(tables) * figure([COSTS, "scan", header], "scan_ns")
            return (cost - idle) / (rows * columns)

        def spread(tables_and_headers):
            """The dearest beside the cheapest, each the median of several rounds.

            Costs are told beside those of their round, since the machine's speed drifts.
            """
            rounds = []
            for _ in range(self.runs):
                costs = [per_cell(tables, header) for tables, header in tables_and_headers]
                rounds.append([cost / statistics.mean(costs) for cost in costs])
            medians = [statistics.median(costs) for costs in zip(*rounds)]
            return max(medians) / min(medians)

        def rows():
            source = self.tables.set("mixed")
            whole = int(generate.ROWS["mixed"] * self.tables.scale)
            header = self.tables.head("mixed-0.csv", source, 0)
            # Small tables in such numbers that the processor cannot learn their rows by heart.
            tenth = whole // 10
            tables = [
                self.tables.pieces("mixed-%d" % rows, source, rows, max(1, tenth // rows))
                for rows in (1000, 10_000, tenth)
            ]
            tables += [[source], [self.tables.repeated("mixed-tenfold.csv", source, 10)]]
            return spread([(some, header) for some in tables])

        def columns():
            cells = int(5_000_000 * self.tables.scale)
            pairs = []
            for n in (10, 100, 1000):
                table = self.tables.generated("wide-%d" % n, "wide", max(1, cells // n), n)
                pairs.append(([table], self.tables.head("wide-%d-0.csv" % n, table, 0)))
            return spread(pairs)

        most = 10_000_000 * self.tables.scale
        goal = "cost per cell flat within 10 %"
        yield "growth, 1,000 to {:,.0f} rows".format(most), goal, rows, 1.1, "x"
        yield "growth, 10 to 1,000 columns", goal, columns, 1.1, "x"

    def coordinates(self):
        def dearest(kind):
            command = [
                RELEASE / "benchmarks",
                "--benchmark_filter=^%sCoordinates/" % kind,
                "--benchmark_repetitions=%d" % self.runs,
                "--benchmark_report_aggregates_only",
                "--benchmark_format=json",
            ]
            medians = [
                1e9 / b["cells/s"]
                for b in json.loads(run(command))["benchmarks"]
                if b["aggregate_name"] == "median"
            ]
            if not medians:
                raise Failed("there is no such benchmark")
            return max(medians)

        def scan():
            # A column of whole numbers keeps the scan at its limit of 100 rows.
            def rows():
                with open(self.tables.set("text"), encoding="utf-8") as lines:
                    yield "id," + next(lines)
                    for i, line in zip(range(1000), lines):
                        yield "%d,%s" % (i, line)

            table = self.tables.lines("numbered-text.csv", rows())
            command = [COSTS, "open", table]
            return median_ratio(
                lambda: figure(command, "open_us"),
                lambda: figure([*command, "--no-lat-long-fields"], "open_us"),
                self.runs,
            )

        goal = "at most 150 ns a text"
        yield "coordinates, accepting", goal, lambda: dearest("Parse"), 150, "ns"
        yield "coordinates, refusing", goal, lambda: dearest("Refuse"), 150, "ns"
        yield "coordinates, scan of texts", "slowed by less than a tenth", scan, 1.1, "x"

    def odd_shapes(self):
        def doubling(make, size):
            """What twice the size costs beside the size, above the cost of a small table."""
            small, table, twice = (make(n) for n in (size // 16, size, 2 * size))

            def cost(path):
                return cpu_seconds(self.rows_command(path)) - cpu_seconds(self.rows_command(small))

            return median_ratio(lambda: cost(twice), lambda: cost(table), self.runs)

        def few_distinct(rows):
            texts = [(word + " ") * 400 for word in generate.WORDS[:4]]
            lines = ("%s,%s\n" % (texts[i % 4], texts[i // 4 % 4]) for i in range(rows))
            return self.tables.lines("long-texts-%d.csv" % rows, ["a,b\n", *lines])

        def large_values(megabytes):
            value = "quarry " * (megabytes * 150_000)
            lines = ("%d,%s\n" % (i, value) for i in range(8))
            return self.tables.lines("large-values-%d.csv" % megabytes, ["a,b\n", *lines])

        def many_columns(columns):
            return self.tables.generated("columns-%d" % columns, "wide", 20, columns)

        goal = "twice the size, twice the cost within 20 %"
        shapes = (
            ("few distinct long values", few_distinct, 4000),
            ("values of megabytes", large_values, 16),
            ("100,000 columns", many_columns, 50_000),
        )
        for name, make, size in shapes:
            yield "odd shapes, " + name, goal, lambda m=make, s=size: doubling(m, s), 2.4, "x"


def compare(options):
    os.sched_setaffinity(0, {options.cpu})
    comparison = Comparison(
        Tables(options.scale, WORK / ("data-%g" % options.scale)), options.runs
    )
    print("| %-36s | %-46s | %11s | %-12s |" % ("", "goal", "measured", ""))
    print("|%s|%s|%s:|%s|" % ("-" * 38, "-" * 48, "-" * 12, "-" * 14))
    missed = 0
    for name, goal, measure, limit, unit in comparison.lines():
        if not re.search(options.only, name):
            continue
        measured, result = "", "not measured"
        try:
            value = measure()
            if value is not None:
                measured = ("%d %s" if unit == "bytes" else "%.2f %s") % (value, unit)
                result = "met" if value <= limit else "missed"
        except (Failed, OSError, subprocess.SubprocessError) as failure:
            result = "failed"
            print("%s: %s" % (name, failure), file=sys.stderr)
        missed += result in ("missed", "failed")
        print("| %-36s | %-46s | %11s | %-12s |" % (name, goal, measured, result), flush=True)
    return 1 if missed else 0


# ------------------------------------------------------------------------------------------------
# Instructions


def instructions_of(command):
    tool = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"]
    done = subprocess.run(
        tool + [str(part) for part in command], capture_output=True, text=True, check=True
    )
    return int(re.search(r"Collected : ([0-9]+)", done.stderr).group(1))


def count_instructions(options):
    tables = Tables(1, WORK / "data-instructions")
    comparison = Comparison(tables, 1)
    print("| %-8s | %7s | %12s | %12s | %5s |" % ("table", "rows", "ours", "floor", "ratio"))
    print("|%s|%s:|%s:|%s:|%s:|" % ("-" * 10, "-" * 8, "-" * 13, "-" * 13, "-" * 6))
    for name in ("mixed", "numeric", "text", "wide", "fixed"):
        if not re.search(options.only, name):
            continue
        rows = 400 if name == "wide" else 20_000
        table = tables.generated(name, name, rows)
        ours = instructions_of(comparison.rows_command(table))
        floor = instructions_of(comparison.floor_command(table))
        line = (name, "{:,}".format(rows), "{:,}".format(ours), "{:,}".format(floor), ours / floor)
        print("| %-8s | %7s | %12s | %12s | %5.2f |" % line, flush=True)
    return 0


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("--compare", action="store_true")
    parser.add_argument("--instructions", action="store_true")
    parser.add_argument("--scale", type=float, default=1.0)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--only", default="")
    parser.add_argument("--cpu", type=int, default=max(os.sched_getaffinity(0)))
    options = parser.parse_args()
    return count_instructions(options) if options.instructions else compare(options)


if __name__ == "__main__":
    sys.exit(main())
