#!/usr/bin/env python3
"""Runs the program qydata as a user does and compares what it prints and its exit status.

usage: qydata_test.py PROGRAM"""

import contextlib
import os
import pathlib
import pty
import shutil
import sqlite3
import subprocess
import sys
import tempfile

PROGRAM = sys.argv[1]
faults = []


def run(*words, text=None, env=None):
    done = subprocess.run([PROGRAM, *map(str, words)], input=text, capture_output=True, text=True,
                          stdin=subprocess.DEVNULL if text is None else None,
                          env={**os.environ, "LC_ALL": "de_DE.UTF-8", **(env or {})})
    return done.returncode, done.stdout, done.stderr


def check(what, got, wanted):
    """wanted: (status, stdout, stderr); a function is asked, a text has to be equal."""
    for part, value, want in zip(("status", "stdout", "stderr"), got, wanted):
        if not (want(value) if callable(want) else value == want):
            faults.append(f"{what}: {part} is {value!r}" + ("" if callable(want) else f", not {want!r}"))


def begins(start):
    return lambda value: value.startswith(start)


def wrong_use():
    usage = "usage of options"
    for words, fault in [((), "no command given"), (("mend",), "unknown command 'mend'"),
                         (("new",), "no folder given"), (("new", "a", "b"), "more than one folder given"),
                         (("new", "--edition", "pond", "a"), "unknown edition 'pond'"),
                         (("new", "--country", "33", "a"), "unknown country '33'"),
                         (("new", "--country", "61x", "a"), "unknown country '61x'"),
                         (("new", "--season", "26", "a"), "not a season: '26'"),
                         (("new", "a", "--season"), "--season needs a value"),
                         (("new", "--sample", "--country", "61", "a"), "the sample farm has its own country and season"),
                         (("new", "--full", "a"), "unknown option '--full'"), (("sql",), "no database given"),
                         (("sql", "--xml", "a"), "unknown option '--xml'"),
                         (("sql", "a", "SELECT", "1"), "more than one statement given; put quotes around it"),
                         (("sql", "-x"), "unknown option '-x'"),
                         (("check",), "no folder given"), (("check", ""), "no folder given"), (("check", "-v", "a"), "unknown option '-v'"),
                         (("restore",), "no folder given"), (("restore", "--all", "a"), "unknown option '--all'"),
                         (("restore", "a", "2026-01-01", "09.30.00"), "more than one restore point given; put quotes around its name")]:
        check(f"{usage} {words}", run(*words), (2, "", begins(f"qydata: {fault}\nUsage:\n")))
    for words in (("--help",), ("new", "--help"), ("sql", "x", "-h")):
        check(usage, run(*words), (0, begins("Usage:\n"), ""))


def shell(folder):
    db = folder / "Test.mdb"
    check("missing file", run("sql", db, "SELECT 1"), (1, "", begins("error 3024: ")))
    check("create", run("sql", "--create", db, "CREATE TABLE T (Id COUNTER PRIMARY KEY, [A b] TEXT(20), Yes BIT, "
                        "Price CURRENCY, Weight SINGLE, Born DATETIME, Note MEMO)"), (0, "", ""))
    script = """-- two rows
INSERT INTO T ([A b], Yes, Price, Weight, Born) VALUES ('O''Brien; "B"', True, 1234.5, 0.105, #3/31/2026#);
INSERT INTO T ([A b], Price, Born, Note) VALUES (Null, -0.0001, #12/1/2025 14:05:09#, 'x;
y');
"""
    check("script", run("sql", db, text=script), (0, "", ""))
    check("created once", run("sql", db, "--create", "--json", "SELECT Count(*) FROM T"), (0, "[2]\n", ""))
    check("json", run("sql", "--json", db, "SELECT * FROM T ORDER BY Id;"),
          (0, '[1,"O\'Brien; \\"B\\"",-1,1234.5,0.105,"2026-03-31",null]\n'
              '[2,null,0,-0.0001,null,"2025-12-01 14:05:09","x;\\ny"]\n', ""))
    check("no half row", run("sql", "--json", db, "SELECT Id, 2147483647 + Id FROM T"),
          (1, "", begins("error 6: ")))
    check("table", run("sql", db, "SELECT Id, [A b], Price, Note FROM T"),
          (0, "Id  A b             Price  Note\n"
              "--  ------------  -------  -----\n"
              ' 1  O\'Brien; "B"   1234.5  \n'
              " 2                -0.0001  x;\\ny\n", ""))
    check("no rows", run("sql", "--json", db, "SELECT * FROM T WHERE Id > 9"), (0, "", ""))
    run("sql", db, "CREATE TABLE Pictures (Logo LONGBINARY)")
    with contextlib.closing(sqlite3.connect(db)) as other, other:
        other.execute("INSERT INTO Pictures VALUES (?)", (b"\xff\x00\\",))
    check("bytes", run("sql", "--json", db, " Pictures "), (0, '["FF005C"]\n', ""))
    check("a table by its name", run("sql", "--json", db, text="T;"), (0, lambda t: t.count("\n") == 2, ""))
    check("broken text", run("sql", db, "SELECT 'x FROM T"), (1, "", begins("error 3075: ")))
    check("unknown table", run("sql", db, "SELECT * FROM Nowhere"), (1, "", begins("error 3078: ")))
    check("unknown field", run("sql", db, "SELECT Wool FROM T"), (1, "", begins("error 3061: ")))
    check("unknown name", run("sql", db, "Nowhere"), (1, "", begins("error 3078: ")))
    check("a script stops at its error", run("sql", "--json", db, text="SELECT 1 AS A;\nDELETE * FROM X;\nDELETE * FROM T;"),
          (1, "[1]\n", begins("error 3078: ")))
    check("and does nothing behind it", run("sql", "--json", db, "SELECT Count(*) FROM T"), (0, "[2]\n", ""))
    check("saved queries", run("sql", "--json", db, text="CREATE VIEW V AS SELECT Max(Id) AS M FROM T; "
                               "CREATE PROCEDURE P AS DELETE * FROM T WHERE Id = 2; P; V;"), (0, "[1]\n", ""))
    check("not a database", run("sql", __file__, "SELECT 1"), (1, "", begins("error 3343: ")))
    check("a folder", run("sql", folder, "SELECT 1"), (1, "", begins("error 3051: ")))
    with open("/dev/full", "w") as full:
        done = subprocess.run([PROGRAM, "sql", db, "SELECT * FROM T"], stdout=full, stderr=subprocess.PIPE, text=True)
    check("no room for the output", (done.returncode, "", done.stderr), (1, "", begins("error 61: ")))
    check("nothing to do", run("sql", db, text="-- only a note\n\n"), (0, "", ""))


def prompt(folder):
    master, slave = pty.openpty()
    process = subprocess.Popen([PROGRAM, "sql", folder / "Test.mdb", "--json"], stdin=slave,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    os.close(slave)
    os.write(master, b"SELECT Count(*)\nFROM T;\nSELECT * FROM X;\nDELETE * FROM T;\nexit\n")
    out, _ = process.communicate(timeout=30)
    os.close(master)
    check("prompt", (process.returncode, out, ""),
          (0, lambda t: "[1]\n" in t and "error 3078: " in t and "1 rows changed" in t and "     ...> " in t, ""))


def installations(folder):
    farm = folder / "farm"
    made = ["Quillary/Common/Modules.mdb", "data/Farm32.mdb", "data/Wage32.mdb", "data/Diary.mdb",
            "Quillary/Common/Quillary.ini"]
    lines = lambda word, names: "".join(f"{word} {farm / name}\n" for name in names)
    check("new", run("new", "--edition", "business", "--country", "61", "--season", "2025", farm), (0, lines("made", made), ""))
    check("new again", run("new", "--sample", farm), (0, lines("kept", made), ""))
    check("edition", run("sql", "--json", farm / made[0], "SELECT ModuleNumber, ModuleKey FROM Catalogue"), (0, '[11,"BUSINESS"]\n', ""))
    check("check", run("check", farm), (0, lambda t: t.count(": ok\n") == 5 and t.count("\n") == 5, ""))
    (farm / made[3]).unlink()
    check("check of a broken one", run("check", farm), (1, lambda t: f"{farm / made[3]}: error 3024: " in t and t.count(": ok\n") == 4, ""))
    check("mend", run("new", "--sample", farm), (0, lambda t: t.startswith(f"made {farm / made[3]}\n") and t.count("kept ") == 4, ""))
    check("no place", run("new", "/proc/nowhere"), (1, "", begins("error 75: ")))
    check("no data folder", run("new", folder / "other", env={"QUILLARY_SHARE": "/nowhere"}), (0, begins("made "), ""))


def restoring(folder):
    farm = folder / "farm"
    databases = [farm / "data" / name for name in ("Diary.mdb", "Farm32.mdb")]
    backup = farm / "Quillary" / "Common" / "Backup"
    mobs = lambda: [run("sql", "--json", path, f"SELECT Count(*) FROM [{table}]")[1].strip()
                    for path, table in zip(databases, ("AnimalMultipleList", "Stock Class Names"))]
    held = lambda: sorted(point.name for point in backup.iterdir())
    check("no folder", run("restore", folder / "nowhere"), (1, "", begins("qydata: there is no folder ")))
    check("no points", run("restore", farm), (0, f"no restore points in {backup}\n", ""))

    first, second = "2026-03-01 09.30.00 Deleting Ewes", "2026-03-01 09.30.00-02 Deleting Rams"
    for count, name in enumerate((first, second)):
        for path in databases[count:]:
            (backup / name).mkdir(parents=True, exist_ok=True)
            shutil.copy(path, backup / name)
        run("sql", databases[0], f"INSERT INTO AnimalMultipleList (MobID) VALUES ({count + 1})")
        run("sql", databases[1], f"INSERT INTO [Stock Class Names] ([Class Name]) VALUES ('Mob {count}')")
    for other in ("letters", "2026-03-01 10.00.00 Not finished.part"):
        (backup / other).mkdir()
    state = mobs()
    check("points", run("restore", farm),
          (0, f"1  {second}  (Farm32.mdb)\n2  {first}  (Diary.mdb, Farm32.mdb)\n", ""))
    check("no such point", run("restore", farm, "3"), (1, "", begins("qydata: no restore point '3' in ")))

    # However idle: another program that has but one of the files open keeps both as they are.
    before = held()
    for path in databases:
        with contextlib.closing(sqlite3.connect(path)) as other:
            other.execute("SELECT Count(*) FROM sqlite_master").fetchone()
            check("in use", run("restore", farm, first), (1, "", lambda t: t.startswith("error 3045: ") and "Close all programs" in t))
    check("nothing has changed", (mobs(), held(), 0), (state, before, 0))

    (backup / first / "Farm32.mdb").rename(folder / "aside.mdb")
    (backup / first / "Farm32.mdb").write_bytes((folder / "aside.mdb").read_bytes()[:-4096])
    check("a damaged copy", run("restore", farm, first), (1, "", begins("error 3343: ")))
    check("still nothing", (mobs(), held(), 0), (state, before, 0))
    (folder / "aside.mdb").replace(backup / first / "Farm32.mdb")

    check("one file", run("restore", farm, "1"), (0, begins(f"brought back {databases[1]}\nwhat it held before: "), ""))
    check("as it was then", (mobs(), 0, 0), ([state[0], f"[{int(state[1][1:-1]) - 1}]"], 0, 0))
    databases[0].unlink()
    check("both, one of which is lost", run("restore", farm, first), (0, begins(f"brought back {databases[0]}\n"), ""))
    check("as they were then", (mobs(), 0, 0), ([f"[{int(n[1:-1]) - 2}]" for n in state], 0, 0))
    check("the way back", run("restore", farm, "2"), (0, begins(f"brought back {databases[1]}\n"), ""))
    check("as it was", (mobs()[1], 0, 0), (state[1], 0, 0))
    check("whole", run("check", farm), (0, lambda t: t.count(": ok\n") == 5, ""))

    # A damaged file is left to the user; once it is gone, what is left of its log does no harm.
    with contextlib.closing(sqlite3.connect(databases[0])) as other:
        other.execute("INSERT INTO AnimalMultipleList (MobID) VALUES (99)")
        other.commit()
        log = pathlib.Path(f"{databases[0]}-wal")
        left = log.read_bytes()
    databases[0].write_bytes(b"no database")
    check("a damaged file", run("restore", farm, first), (1, "", lambda t: t.startswith("error 3343: ") and "move it elsewhere" in t))
    check("is kept", (databases[0].read_bytes(), [name for name in held() if name.endswith(".part")], 0),
          (b"no database", ["2026-03-01 10.00.00 Not finished.part"], 0))
    databases[0].unlink()
    log.write_bytes(left)
    check("in its place", run("restore", farm, first), (0, begins(f"brought back {databases[0]}\n"), ""))
    check("as it was then", (mobs()[0], 0, 0), (f"[{int(state[0][1:-1]) - 2}]", 0, 0))

    # Half way: the first file is replaced, the second cannot be. What the first held is not lost.
    run("sql", databases[0], "INSERT INTO AnimalMultipleList (MobID) VALUES (77)")
    ini = farm / "Quillary" / "Common" / "Quillary.ini"
    settings = ini.read_text()
    ini.write_text(settings.replace(str(databases[1]), str(folder / "nowhere" / "Farm32.mdb")))
    check("half way", run("restore", farm, first), (1, "", lambda t: "Not all has been replaced" in t and "Before bringing back" in t))
    ini.write_text(settings)
    check("what it held", run("restore", farm, "1"), (0, begins(f"brought back {databases[0]}\n"), ""))
    check("is back", run("sql", "--json", databases[0], "SELECT Count(*) FROM AnimalMultipleList WHERE MobID = 77"), (0, "[1]\n", ""))

    (backup / first / "Other.mdb").write_bytes((backup / first / "Diary.mdb").read_bytes())
    check("a stranger", run("restore", farm, first), (1, "", begins("error 53: ")))


def main():
    wrong_use()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        shell(folder)
        prompt(folder)
        installations(folder)
        restoring(folder)
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
