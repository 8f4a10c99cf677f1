#!/usr/bin/env python3
"""500 damaged files: real ones cut short and with bytes changed. Each import ends with a status that it is
known by and a message, leaves a whole file or none, and its own code touches no memory that is not its own
(which a build with the address sanitizer would tell).

usage: import_damage_test.py PROGRAM     Skipped (status 77) where there are no real files."""

import concurrent.futures
import os
import pathlib
import random
import re
import sqlite3
import subprocess
import sys
import tempfile

from jet_file import folder_of_files

PROGRAM = sys.argv[1]
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FILES = 500
LARGEST = 800_000


def damaged(data, number):
    chance = random.Random(number)
    page = 2048 if data[0x14] == 0 else 4096
    kind = number % 5
    if kind == 0:
        return data[:chance.randrange(len(data))]
    data = bytearray(data)
    if kind == 1:  # a few bytes anywhere
        for _ in range(chance.choice((1, 4, 16, 64, 256))):
            data[chance.randrange(len(data))] = chance.randrange(256)
    elif kind == 2:  # in the heads of pages, where they point at one another
        for _ in range(chance.choice((1, 4, 16))):
            at = chance.randrange(len(data) // page) * page + chance.randrange(64)
            data[at] = chance.choice((0, 1, 0x7F, 0x80, 0xFF, chance.randrange(256)))
    elif kind == 3:  # a page in another's place
        to, source = (chance.randrange(len(data) // page) * page for _ in range(2))
        data[to:to + page] = data[source:source + page]
    else:  # a stretch of one value
        at = chance.randrange(len(data))
        data[at:at + 200] = bytes([chance.choice((0, 0xFF))]) * len(data[at:at + 200])
    return bytes(data)


def examine(path, number, folder):
    source = folder / f"{number}.mdb"
    source.write_bytes(damaged(path.read_bytes(), number))
    target = folder / str(number)
    log = folder / f"sanitizer.{number}"
    options = os.environ.get("ASAN_OPTIONS", "")
    env = {**os.environ, "ASAN_OPTIONS": f"{options}:detect_leaks=0:log_path={log}", "UBSAN_OPTIONS": f"log_path={log}"}
    what = f"{path.name}, damage {number}"
    try:
        done = subprocess.run([PROGRAM, "import", source, "--into", target], stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=30, env=env)
    except subprocess.TimeoutExpired:
        return f"{what}: does not end"
    finally:
        source.unlink()
    for report in folder.glob(f"sanitizer.{number}.*"):
        return f"{what}: {report.read_text(errors='replace')[:2000]}"
    if done.returncode not in (0, 1, 3):
        return f"{what}: status {done.returncode}: {done.stderr[-300:]}"
    left = sorted(each.name for each in target.glob("*")) if target.exists() else []
    if done.returncode == 1:
        if not re.match(r"error \d+: .+", done.stderr) or left:
            return f"{what}: {done.stderr!r}, left {left}"
        return None
    if left != [source.name]:
        return f"{what}: status {done.returncode}, left {left}"
    store = sqlite3.connect(f"file:{target / source.name}?mode=ro", uri=True)
    store.create_collation("JET", lambda a, b: (a > b) - (a < b))
    tables = [row[0] for row in store.execute("SELECT name FROM sqlite_master WHERE type = 'table'")]
    for table in tables:
        name = table.replace('"', '""')
        store.execute(f'SELECT count(*) FROM "{name}"').fetchone()
    store.close()
    return None


def main():
    source, files = folder_of_files(os.environ, ROOT)
    files = [path for path in files if path.stat().st_size < LARGEST]
    if not files:
        print(f"skipped: no files of the old engine in {source}")
        sys.exit(77)
    with tempfile.TemporaryDirectory() as temp:
        folder = pathlib.Path(temp)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            jobs = [pool.submit(examine, files[number % len(files)], number, folder) for number in range(FILES)]
            faults = [job.result() for job in jobs if job.result()]
    print("\n".join(faults[:20]))
    print(f"{FILES} damaged files, {len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
