#!/usr/bin/env python3
"""How long the import of a large file of the old engine takes, against the same tables through mdb-export into
the sqlite3 shell, and what memory it holds at most.

    bench/import.py [BUILD-FOLDER] [FILE] [RUNS] [--ratios]

Both in turn, the file in the cache; medians. The shell's way makes plain tables, with no rule, key or index. It
is measured twice: by INSERT statements, and by lines of comma-separated values.
"""
import os
import pathlib
import shlex
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent


def timed(command):
    """Seconds, and the highest resident set of the command and what it waited for, in MiB."""
    begin = time.monotonic()
    running = subprocess.Popen(command, shell=True, stdout=subprocess.DEVNULL, executable="/bin/bash")
    _, status, used = os.wait4(running.pid, 0)
    seconds = time.monotonic() - begin
    running.returncode = status
    if status != 0:
        sys.exit(f"bench/import.py: {command} ended with {status}")
    return seconds, used.ru_maxrss / 1024


def main():
    words = [word for word in sys.argv[1:] if word != "--ratios"]
    build = pathlib.Path(words[0] if words else ROOT / "build")
    files = pathlib.Path(os.environ.get("QUILLARY_JET_FILES", ROOT.parent / "shared" / "mdb"))
    file = pathlib.Path(words[1]) if len(words) > 1 else files / "big_200000_rows_jet4.mdb"
    runs = int(words[2]) if len(words) > 2 else 7
    if not file.exists():
        sys.exit(f"bench/import.py: there is no {file}")
    file.read_bytes()
    tables = subprocess.run(["mdb-tables", "-1", file], capture_output=True, text=True, check=True).stdout.split("\n")
    tables = [table for table in tables if table]
    with tempfile.TemporaryDirectory() as folder:
        quoted, target = shlex.quote(str(file)), folder + "/target.mdb"
        exports = {"-I sqlite": "", "": ""}
        for option in exports:
            pieces = [f"mdb-schema {quoted} sqlite", "echo 'BEGIN;'"]
            for table in tables:
                name = shlex.quote(table)
                if option:
                    pieces.append(f"mdb-export -I sqlite {quoted} {name}")
            pieces.append("echo 'COMMIT;'")
            exports[option] = "{ " + "; ".join(pieces) + f"; }} | sqlite3 {target}"
        rows = " && ".join(f"mdb-export -H {quoted} {shlex.quote(table)} | sqlite3 -csv {target} "
                           f"{shlex.quote(f'.import /dev/stdin {chr(34)}{table}{chr(34)}')}" for table in tables)
        exports[""] += " && " + rows
        ours = f"exec {build}/bin/qydata import {quoted} --into {folder}/new"
        results = {"import": [], "statements": [], "values": []}
        memory = []
        for _ in range(runs):
            for name, command in (("import", ours), ("statements", exports["-I sqlite"]), ("values", exports[""])):
                seconds, peak = timed(command)
                results[name].append(seconds)
                if name == "import":
                    memory.append(peak)
                subprocess.run(["rm", "-rf", target, folder + "/new"], check=True)
    median = {name: statistics.median(times) for name, times in results.items()}
    if "--ratios" not in sys.argv:
        print(f"{file.name}, {runs} runs each")
        print(f"  qydata import                          {median['import']:6.3f} s, {max(memory):.0f} MiB at most")
        print(f"  mdb-export | sqlite3, statements       {median['statements']:6.3f} s")
        print(f"  mdb-export | sqlite3, values           {median['values']:6.3f} s")
    print(f"import / statements  {median['import'] / median['statements']:.2f}")
    print(f"import / values      {median['import'] / median['values']:.2f}")


main()
