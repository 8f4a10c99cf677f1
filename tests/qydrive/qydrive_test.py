#!/usr/bin/env python3
"""Runs the program qydrive on scenarios that hold and on scenarios that must not: what it prints, and its exit
status, with both hands.

usage: qydrive_test.py PROGRAM"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

PROGRAM = sys.argv[1]
START = "use minimal\nstart\n"
# A scenario; what it prints before the count, a pattern, "" for nothing: then it holds.
SCENARIOS = [
    ("", ""),
    ("# a note\n\n" + START + 'expect txt_area.Text 10\nclose\nexpect-ended\nstart\nexpect-form frm_setup', ""),
    (START + 'ini A B "C:\\Data\\\\x \\"y\\""\nexpect-ini A B "C:\\\\Data\\\\x \\"y\\""', ""),
    (START + "expect txt_area.Text 11\nfly", r':3: txt_area\.Text: expected "11", there was "10"'),
    (START + "expect txt_area.Wool 10", ":3: txt_area has no property Wool"),
    (START + "expect txt_nothing.Text 10", ':3: no open form has a control "txt_nothing"'),
    (START + "expect frm_none!txt_area.Text 10", ':3: no open form has a control "frm_none!txt_area"'),
    (START + 'fly away', ':3: there is no command "fly"'),
    (START + "answer maybe", ':3: there is no command "answer"'),
    (START + 'type txt_area "5', ":3: a double quote without its end"),
    (START + "key txt_area Hyper", ":3: error 5: There is no key named 'Hyper'"),
    (START + "tab tab_Setup 99", ":3: this could not be done: tab_Setup has no tab 99"),
    (START + "pick DatePicker_FinYear 2008-13-01", ':3: "2008-13-01" is no date'),
    (START + 'expect-message "x"', ':3: expected a message box "x", there was none'),
    (START + 'type txt_FarmName(0) ""\ntab tab_Setup Planner\nexpect-no-message', ":5: expected no message box, there was"),
    (START + 'expect-sql farm "SELECT [Current Season] FROM [Farm Details]" 109', ':3: rows: expected "109", there was "108"'),
    (START + "expect-no-ini TAX ValueAddedTax", ":3: expected no key ValueAddedTax"),
    (START + "expect-file nothing x", ":3: expected a file nothing"),
    (START + "start", ":3: the program is running already"),
    (START + "use minimal", ":3: `use` stands once"),
    ("use minimal\nsql farm DROP TABLE [Farm Details]\nstart", ":3: the program ended with error 3078"),
    ("use minimal\nsql farm DROP TABLE [Tax Periods]\nstart\ntab tab_Setup GST", ":4: expected no error report, there was"),
    ("use minimal\ndrop-query farm nothing", ":2: error 3265"),
    ("use nothing", ":1: `use` takes"),
]
faults = []


def run(*words):
    done = subprocess.run([PROGRAM, *map(str, words)], stdin=subprocess.DEVNULL, capture_output=True, text=True)
    return done.returncode, done.stdout, done.stderr


def check(what, got, status, out, err=""):
    if got[0] != status or not re.fullmatch(out, got[1], re.DOTALL) or not re.search(err, got[2]):
        faults.append(f"{what}: {got}, wanted {status}, {out!r}, {err!r}")


def scenarios(folder, hand):
    for number, (text, wanted) in enumerate(SCENARIOS):
        file = folder / f"{number}.qys"
        file.write_text(text)
        counts = "0 passed, 1 failed" if wanted else "1 passed, 0 failed"
        check(f"{hand} {text!r}", run(*hand, file), 1 if wanted else 0,
              (re.escape(str(file)) + wanted + "[^\n]*\n" if wanted else "") + counts + "\n")


def command_line(folder):
    good, bad = folder / "0.qys", folder / "3.qys"
    check("one of two", run(bad, good), 1, r"[^\n]*:3: [^\n]*\n1 passed, 1 failed\n")
    check("a file that is not there", run(folder / "none.qys", good), 2, r"[^\n]*none\.qys: cannot be read\n1 passed, 1 failed\n")
    check("a folder", run(folder), 2, r"[^\n]*: cannot be read\n0 passed, 1 failed\n")
    check("no file", run(), 2, "", "no file given")
    check("an unknown option", run("-x", good), 2, "", "unknown option '-x'")
    check("help", run("--help"), 0, "usage: .*")
    check("trace", run("--trace", folder / "1.qys"), 0, r".*\n  frm_setup\.Form_Load\n.*1 passed, 0 failed\n")
    got = run("--keep", folder / "1.qys")
    check("keep", got, 0, r"[^\n]*: kept in [^\n]*\n1 passed, 0 failed\n")
    kept = pathlib.Path(re.search("kept in (.*)", got[1])[1])
    if not (kept / "data/Farm32.mdb").exists():
        faults.append(f"{kept} holds no installation")
    shutil.rmtree(kept)
    check("skipped", run(folder / "skipped.qys"), 0, r"[^\n]*: skipped: [^\n]*\n0 passed, 0 failed\n")
    if left := list(pathlib.Path(tempfile.gettempdir()).glob("q*")):
        faults.append(f"temporary folders are left: {left}")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "temporary").mkdir()
        tempfile.tempdir = os.environ["TMPDIR"] = str(folder / "temporary")
        for hand in ((), ("--widgets",)):
            scenarios(folder, hand)
        (folder / "skipped.qys").write_text(f"use folder {folder}/nowhere\nstart\n")
        command_line(folder)
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
