#!/usr/bin/env python3
"""Imports real files of the old engine as a user does, and compares every row with what two other readers
find in them: mdb-json, and jet_file.py where that one is known to read wrong.

usage: import_test.py PROGRAM     Skipped (status 77) where there are no such files."""

import base64
import collections
import decimal
import json
import os
import pathlib
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

from jet_file import (BINARY, BOOL, DATE, DOUBLE, GUID, LONG, MEMO, MONEY, NUMERIC, OLE, SINGLE, TEXT, JetFile,
                      folder_of_files)

PROGRAM = sys.argv[1]
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
faults = []


def fault(text):
    faults.append(text)


def run(*words):
    done = subprocess.run([PROGRAM, *map(str, words)], stdin=subprocess.DEVNULL, capture_output=True, text=True)
    for left in os.listdir(tempfile.gettempdir()):
        fault(f"qydata {words[0]} has left {left} among the temporary files")
        shutil.rmtree(os.path.join(tempfile.gettempdir(), left))
    return done.returncode, done.stdout, done.stderr


def expect(what, got, status, out="", err=""):
    if got[0] != status or not re.search(out, got[1]) or not re.search(err, got[2]):
        fault(f"{what}: status {got[0]}, wanted {status} with {out!r} and {err!r}; it said {got[1][-400:]!r} {got[2]!r}")


def wrong_words(folder):
    for words, words_err in [(("--into", folder), "no file given"), (("a.mdb",), "no folder given"),
                             (("a.mdb", "--into"), "--into needs a value"),
                             (("a.mdb", "--into", folder, "--edition", "pond"), "unknown edition 'pond'"),
                             (("a.mdb", "--into", folder, "--country", "33"), "unknown country '33'"),
                             (("a.mdb", "--into", folder, "--all"), "unknown option '--all'"),
                             (("", "--into", folder), "'' is no name of a file"),
                             (("a.mdb", "a.ini", "b.ini", "--into", folder), "more than one settings file")]:
        expect(f"import {words}", run("import", *words), 2, err="^qydata: " + re.escape(words_err))
    expect("code page", run("import", folder / "a.mdb", "--into", folder, "--code-page", "936x"), 2, err="not a code page")
    expect("missing file", run("import", folder / "a.mdb", "--into", folder / "new"), 1, err="^error 3024: ")
    plain = folder / "plain.mdb"
    plain.write_text("Standard Jet DB " * 400)
    expect("no database", run("import", plain, "--into", folder / "new"), 1, err="^error 3343: .*plain.mdb")
    (folder / "Quillary").write_text("no folder")
    expect("no folder", run("import", "Wage32.mdb", "Modules.mdb", "--into", folder, "--edition", "farm"), 1, err="^error 75: ")
    (folder / "Quillary").unlink()
    if (folder / "new").exists() or (folder / "data").exists():
        fault("an import that failed has left its folder behind")


def in_json(table, name, column, value, seen):
    """Whether mdb-json's value is ours, as far as it can tell."""
    if value is None or value == "" or value == b"":
        return seen in (None, "") or isinstance(seen, dict)
    if column.kind == BOOL:
        return seen == -value
    if column.kind == DATE:
        if not "1900-01-01" <= value < "9999-12-31":
            return True  # it knows no days before its own first one, and not the last one
        text = value if len(value) > 10 else value + " 00:00:00"
        return seen == text
    if column.kind == MONEY:
        return seen == decimal.Decimal(value).scaleb(-4)
    if column.kind in (SINGLE, DOUBLE, NUMERIC):
        return abs(float(seen) - value) <= abs(value) * (1e-6 if column.kind == SINGLE else 1e-14)
    if column.kind == GUID:
        return base64.b64decode(seen["$binary"]).decode().replace("-", "") == value.replace("-", "")
    if column.kind in (BINARY, OLE):
        data = base64.b64decode(seen["$binary"])
        return data.startswith(value.split(b"\0")[0]) or value.startswith(data)
    if column.kind == MEMO and len(value.encode()) > 8000:
        return value.startswith(seen[:4000])  # cut
    return seen == value


def compare_with_json(path, name, table, rows):
    listed = subprocess.run(["mdb-json", "-D", "%Y-%m-%d %H:%M:%S", "-T", "%Y-%m-%d %H:%M:%S", path, name],
                            capture_output=True)
    lines = listed.stdout.decode(errors="replace").splitlines()
    if len(lines) != len(rows):
        return fault(f"{path.name}: {name}: {len(rows)} rows, mdb-json has {len(lines)}")
    for number, (line, row) in enumerate(zip(lines, rows)):
        seen = json.loads(line, parse_float=decimal.Decimal, parse_int=decimal.Decimal, strict=False)
        for column, value in zip(table["columns"], row):
            if not in_json(table, name, column, value, seen.get(column.name)):
                return fault(f"{path.name}: {name}: row {number}, {column.name}: {value!r}, mdb-json has "
                             f"{seen.get(column.name)!r}")


def compare_table(path, name, table, rows, store):
    fields = store.execute(f'SELECT name, type FROM pragma_table_info(?)', (name,)).fetchall()
    if [field[0] for field in fields] != [column.name for column in table["columns"]]:
        return fault(f"{path.name}: {name}: the fields are {fields}")
    for (field, declared), column in zip(fields, table["columns"]):
        size = column.length if JetFileOf[path].jet3 else column.length // 2
        if column.kind == TEXT and declared != f"TEXT({size})":
            fault(f"{path.name}: {name}: {field} of {size} characters is {declared}")
    stored = store.execute(f'SELECT * FROM "{name}"').fetchall()
    missing = collections.Counter(rows) - collections.Counter(stored)
    added = collections.Counter(stored) - collections.Counter(rows)
    if missing or added:
        fault(f"{path.name}: {name}: {sum(missing.values())} rows differ: {list(missing)[:1]} became {list(added)[:1]}")
    seed = store.execute("SELECT seq FROM sqlite_sequence WHERE name = ?", (name,)).fetchone()
    if seed is not None and seed[0] < table["counter"]:
        fault(f"{path.name}: {name}: the counter goes on at {seed[0]}, the old one stood at {table['counter']}")


def compare_rules(path, name, table, store):
    """Required fields, defaults and zero-length text, where mdb-prop finds the table's properties (a form of the same
    name hides them from it)."""
    listed = subprocess.run(["mdb-prop", path, name], capture_output=True).stdout.decode(errors="replace")
    properties, current = {}, {}
    for line in listed.splitlines():
        if line.startswith("name: "):
            current = properties.setdefault(line[6:], {})
        elif ": " in line:
            key, value = line.strip().split(": ", 1)
            current[key] = value
    (sql,) = store.execute("SELECT sql FROM sqlite_master WHERE type = 'table' AND name = ?", (name,)).fetchone()
    info = {row[1]: row for row in store.execute("SELECT * FROM pragma_table_info(?)", (name,))}
    for column in table["columns"]:
        told, (_, _, _, required, default, key) = properties.get(column.name), info[column.name]
        if told is None or column.kind == BOOL or key:
            continue
        found = (bool(required), default is not None, f'"zero {column.name}"' in sql)
        refused = column.kind in (TEXT, MEMO) and told.get("AllowZeroLength") == "no"
        if found != (told.get("Required") == "yes", "DefaultValue" in told, refused):
            fault(f"{path.name}: {name}: {column.name} is required, has a default, refuses empty text: {found}, not {told}")


JetFileOf = {}


def compare_file(path, target):
    jet = JetFileOf[path] = JetFile(path)
    store = sqlite3.connect(f"file:{target}?mode=ro", uri=True)
    store.create_collation("JET", lambda a, b: (a.lower() > b.lower()) - (a.lower() < b.lower()))
    tables = jet.tables()
    for name, table in tables.items():
        rows = list(jet.rows(table))
        compare_with_json(path, name, table, rows)
        compare_table(path, name, table, rows, store)
        compare_rules(path, name, table, store)
    found = {row[0] for row in store.execute("SELECT name FROM sqlite_master WHERE type = 'table'")}
    if found - {"jet_queries", "sqlite_sequence"} != set(tables):
        fault(f"{path.name}: tables {sorted(found)}")
    store.close()


def counts_of(readme):
    """Tables, rows, indexes, relations, queries by file, as the files' own list tells them."""
    counts = {}
    for line in readme.read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.split("|")]
        if len(cells) > 9 and cells[1].startswith("`"):
            number = lambda cell: int(re.match(r"[\d,]+", cell)[0].replace(",", ""))
            # A relation that was not enforced is told apart and not carried.
            relations = sum(int(n) for n in re.findall(r"(\d+) enforced", cells[8])) if "enforced" in cells[8] \
                else number(cells[8])
            counts[cells[1].strip("`")] = [*map(number, cells[5:8]), relations, number(cells[9])]
    return counts


def compare_files(source, files, folder):
    counts = counts_of(source / "README.md")
    for path in files:
        target = folder / path.stem / path.name
        got = run("import", path, "--into", target.parent)
        expect(f"import {path.name}", got, 0)
        if path.parent != source and path.name == "Farm32.mdb":
            target = target.parent / "data" / path.name
        if not target.exists():
            continue
        told = re.search(r"(\d+) tables, (\d+) rows, (\d+) indexes, (\d+) relations, (\d+) saved queries", got[1])
        wanted = counts.get(str(path.relative_to(source)))
        if wanted and [int(n) for n in told.groups()] != wanted:
            fault(f"{path.name}: {told[0]}, wanted {wanted}")
        compare_file(path, target)


def whole_installation(suite, folder):
    files = sorted(suite.glob("*.mdb"))
    ini = folder / "old" / "Quillary.ini"
    ini.parent.mkdir()
    ini.write_bytes("[QUILLARY]\r\nProgramDirectory=C:\\Quillary\\Program\r\nDataRoot=C:\\Farm Data\\\r\n"
                    "ExportFileName=c:\\farm data\\Export.mdb\r\n[WINDOWS]\r\nCountry=61\r\n[START]\r\n"
                    "Firm=Tūī & Söhne\r\n".encode("utf-8"))
    farm = folder / "farm"
    expect("installation", run("import", *files, ini, "--into", farm, "--edition", "farm"), 0,
           out="saved query qry_UpdateAccountantsCode")
    if list(farm.rglob("*.mdb-*")):
        fault("an import has left its databases open")
    got = run("check", farm)
    expect("check", got, 0)
    settings = (farm / "Quillary/Common/Quillary.ini").read_text(encoding="utf-8")
    for line in (f"DataRoot={farm}/data", f"ExportFileName={farm}/data/Export.mdb", "Country=61", "Firm=Tūī & Söhne",
                 f"ModuleFileName={farm}/Quillary/Common/Modules.mdb"):
        if line not in settings:
            fault(f"settings: {line!r} is not in {settings!r}")
    before = (farm / "data/Farm32.mdb").read_bytes()
    expect("not overwritten", run("import", *files, "--into", farm), 1, err="^error 3204: .*--replace")
    if (farm / "data/Farm32.mdb").read_bytes() != before:
        fault("an import without --replace has changed a database")
    expect("replaced", run("import", *files, "--into", farm, "--replace"), 0, out="kept what was there")
    expect("restore point", run("restore", farm), 0, out="Before an import")
    before = (farm / "data/Farm32.mdb").read_bytes()
    held = sqlite3.connect(farm / "data/Farm32.mdb")
    held.execute("BEGIN")
    held.execute("SELECT count(*) FROM sqlite_master").fetchone()
    expect("in use", run("import", *files, "--into", farm, "--replace"), 1, err="^error 3045: .* Close all programs")
    held.close()
    left = [path.name for path in (farm / "data").glob("*.part*")]
    if left or (farm / "data/Farm32.mdb").read_bytes() != before:
        fault(f"a database in use was touched; left {left}")
    # In its own place, a real file is known for what it is.
    got = run("sql", files[0], "SELECT 1")
    expect("a real file opened", got, 1, err="^error 3343: .*qydata import")


def code_pages(old, folder):
    """A file of the third generation that names a wrong code page."""
    for words, status, text, out in [((), 0, "GBK±àÂë", "read by code page 1252"), (("--code-page", "936"), 0, "GBK编码", ""),
                                     (("--code-page", "99999"), 1, None, "")]:
        target = folder / "pages" / f"{words[1:]}"
        expect(f"{old.name} {words}", run("import", old, "--into", target, *words), status, out=out)
        if text and sqlite3.connect(target / old.name).execute("SELECT field1 FROM table1").fetchall() != [(text,)]:
            fault(f"{old.name} {words}: its text is not {text}")


def places(suite, folder):
    """What is there already, or comes into being meanwhile, stays as it is."""
    files = sorted(suite.glob("*.mdb"))
    farm = folder / "together"
    running = [subprocess.Popen([PROGRAM, "import", *files, "--into", farm], stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, text=True) for _ in range(4)]
    told = sorted((each.communicate()[1], each.returncode) for each in running)
    if [status for _, status in told] != [0, 1, 1, 1] or not all("error 3204: " in err for err, _ in told[1:]):
        fault(f"of four imports at a time one has to come through: {told}")
    expect("check after four imports", run("check", farm), 0)
    if list(farm.rglob("*.part*")):
        fault("four imports at a time left something behind")
    # A single file for an installation goes where the installation keeps it.
    single = folder / "single"
    run("new", single)
    before = (single / "data/Wage32.mdb").read_bytes()
    expect("into an installation", run("import", suite / "Wage32.mdb", "--into", single), 1, err="^error 3204: ")
    expect("into its place", run("import", suite / "Wage32.mdb", "--into", single, "--replace"), 0)
    if (single / "data/Wage32.mdb").read_bytes() == before or (single / "Wage32.mdb").exists():
        fault("a database for an installation is not in its place")
    # And where its settings say that it does.
    (folder / "elsewhere").mkdir()
    ini = single / "Quillary/Common/Quillary.ini"
    ini.write_text(re.sub("(?m)^WageFileName=.*", f"WageFileName={folder}/elsewhere/Wages.mdb", ini.read_text()))
    (single / "data/Wage32.mdb").unlink()
    # The settings of the other machine tell what a file is that has a name of its own.
    named = folder / "named"
    named.mkdir()
    shutil.copy(suite / "Farm32.mdb", named / "Smith & Sons.mdb")
    (named / "quillary.ini").write_text("[QUILLARY]\nDataFileName=C:\\Farm\\Smith & Sons.mdb\n")
    expect("a name of its own", run("import", named / "Smith & Sons.mdb", "--into", folder / "smith"), 0,
           out="Farm32.mdb: saved query qry_UpdateAccountantsCode")
    expect("is the main database", run("sql", "--json", folder / "smith/data/Farm32.mdb", "SELECT Count(*) FROM TransactionDetails"), 0, out="20000")
    expect("where the settings say", run("import", suite / "Wage32.mdb", "--into", single), 0)
    if not (folder / "elsewhere/Wages.mdb").exists() or (single / "data/Wage32.mdb").exists():
        fault("a database is not where the settings look for it")
    # A plain folder has restore points of its own; what is no database is not replaced.
    plain = folder / "plain"
    run("import", suite / "Wage32.mdb", "--into", plain)
    expect("a plain folder again", run("import", suite / "Wage32.mdb", "--into", plain, "--replace"), 0, out="kept what was there")
    expect("its restore point", run("restore", plain, "1"), 0, out="brought back .*plain/Wage32.mdb")
    (folder / "other").mkdir()
    (folder / "other/Wage32.mdb").write_text("no database")
    expect("no database", run("import", suite / "Wage32.mdb", "--into", folder / "other", "--replace"), 1, err="^error 3343: .* move it elsewhere")
    if os.listdir(folder / "other") != ["Wage32.mdb"]:
        fault(f"an import that failed has left {os.listdir(folder / 'other')}")
    # The databases are safe when the rest of the installation cannot be made.
    partial = folder / "partial"
    (partial / "Quillary").mkdir(parents=True)
    (partial / "Quillary/Program").write_text("no folder")
    expect("no program folder", run("import", *files, "--into", partial), 3, out="the installation is not whole yet")


def long_numbers(farm, folder):
    """A decimal of more digits than a double has is told as lost."""
    jet = JetFile(farm)
    table = jet.tables()["Paddocks"]
    place, column = next((i, column) for i, column in enumerate(table["columns"]) if column.kind == NUMERIC)
    data = farm.read_bytes()
    numbers = [int(decimal.Decimal(repr(row[place])).scaleb(column.scale)) for row in jet.rows(table) if row[place]]
    stored = next(each for each in (bytes(13) + number.to_bytes(4, "little") for number in numbers) if data.count(each) == 1)
    long = folder / "long" / farm.name
    long.parent.mkdir()
    long.write_bytes(data.replace(stored, b"\0\1\2\3\4\5\6\7" + stored[8:]))
    expect("long numbers", run("import", long, "--into", folder / "long" / "new"), 3,
           out=f"field {column.name}: 1 numbers have more digits")


def killed(sources, folder):
    for end in (signal.SIGKILL, signal.SIGTERM):
        for moment in (0.02, 0.1, 0.25):
            target = folder / f"killed {end} {moment}"
            running = subprocess.Popen([PROGRAM, "import", *sources, "--into", target / "new"], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, start_new_session=True)
            time.sleep(moment)
            os.kill(running.pid, end)
            if running.wait() in (0, 3):
                continue  # it was done before
            for _ in range(100):  # the reading process ends by itself
                if not target.exists():
                    break
                time.sleep(0.05)
            else:
                fault(f"ended by {end} after {moment} s, it left {list(target.rglob('*'))}")


def main():
    with tempfile.TemporaryDirectory() as temp:
        folder = pathlib.Path(temp).resolve()
        (folder / "temporary").mkdir()
        tempfile.tempdir = os.environ["TMPDIR"] = str(folder / "temporary")
        wrong_words(folder)
        source, files = folder_of_files(os.environ, ROOT)
        if files:
            compare_files(source, files, folder)
        if (source / "suite" / "Farm32.mdb") in files:
            whole_installation(source / "suite", folder)
            places(source / "suite", folder)
            long_numbers(source / "suite" / "Farm32.mdb", folder)
        if (source / "charset_gbk_jet3.mdb") in files:
            code_pages(source / "charset_gbk_jet3.mdb", folder)
        big = source / "big_200000_rows_jet4.mdb"
        if big in files:
            killed([big, *source.glob("suite/*.mdb")], folder)
    print("\n".join(faults))
    if not files and not faults:
        print(f"skipped: no files of the old engine in {source}")
        sys.exit(77)
    sys.exit(1 if faults else 0)


main()
