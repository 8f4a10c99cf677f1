#!/usr/bin/env python3
"""Writes the bulk tables of the sample farm under data/sample: transactions, returns, stock numbers, feed,
budget and diary rows. The same text at every run; run it again after a change of the chart of accounts, of
the sample's secondary headings or of its stock classes."""

import datetime
import pathlib
import random

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"
SAMPLE = DATA / "sample"
SEASONS = range(2022, 2027)
FIRST_MONTH = datetime.date(2023, 11, 1)  # three years of transactions
MONTHS = 36
LINES = 5000
# Animals in a mob in the first season, by class; a class that is not named is a single animal.
HEADS = {"Mixed Age Ewes": 1450, "Two Tooth Ewes": 420, "Ewe Hoggets": 460, "Ewe Lambs": 520, "Wether Lambs": 610,
         "Ram Lambs": 18, "Rams": 14, "Terminal Rams": 10, "Killer Wethers": 12, "Mere's Pets": 5, "Breeding Cows": 62,
         "R2 Heifers": 14, "R1 Heifers": 16, "Weaner Heifers": 28, "R1 Steers": 26, "R2 Steers": 24, "R1 Bulls": 30,
         "R2 Bulls": 28, "Sire Bulls": 3, "Mixed Age Hinds": 140, "R2 Hinds": 32, "Weaner Hinds": 60,
         "Weaner Stags": 58, "Spikers": 36, "Velvet Stags": 85, "Master Stags": 6, "Milking Cows": 165,
         "In-calf Heifers": 38, "R1 Dairy Heifers": 40, "Heifer Calves": 42, "Carry-over Cows": 6, "Service Bulls": 5,
         "Angora Does & Kids": 24, "Kunekune Pigs": 3, "Working Dogs": 6, "Horses": 3, "Hens": 14}


def read(path):
    lines = path.read_text(encoding="utf-8").splitlines()
    names = lines[0].split("\t")
    return [dict(zip(names, line.split("\t"))) for line in lines[1:]]


def write(path, names, rows):
    text = ["\t".join(names)] + ["\t".join(str(v) for v in row) for row in rows]
    (SAMPLE / path).write_text("\n".join(text) + "\n", encoding="utf-8", newline="\n")


def month(number):
    years, months = divmod(FIRST_MONTH.month - 1 + number, 12)
    return datetime.date(FIRST_MONTH.year + years, months + 1, 1)


def pick(rng, choices):
    """One of (value, weight) pairs. Only random() is used: its numbers never change between versions."""
    place = rng.random() * sum(w for _, w in choices)
    for value, weight in choices:
        place -= weight
        if place < 0:
            return value
    return choices[-1][0]


def whole(rng, low, high):
    return low + int(rng.random() * (high - low + 1))


def tax_returns():
    """Returns in the order of filing: two-monthly GST, monthly PAYE, yearly income tax. The last of the GST and
    PAYE periods are not filed yet."""
    filed = []
    for n in range(0, MONTHS - 2, 2):
        filed.append((month(n + 2), 0, month(n)))
    for n in range(MONTHS - 1):
        filed.append((month(n + 1), 1, month(n)))
    for year in (2024, 2025, 2026):
        filed.append((datetime.date(year, 7, 7), 2, datetime.date(year - 1, 4, 1)))
    filed.sort()
    return [(number, start, kind) for number, (_, kind, start) in enumerate(filed, 1)]


def transactions(rng, headings, secondaries, returns):
    by_kind = {kind: [(start, number) for number, start, k in returns if k == kind] for kind in (0, 1, 2)}
    spans = {0: 2, 1: 1, 2: 12}

    def return_of(kind, when):
        for start, number in by_kind[kind]:
            after = start.year * 12 + start.month + spans[kind]
            if start <= when and when.year * 12 + when.month < after:
                return number
        return 0

    # Headings that a farm uses often, by number; those not named are used now and then, year-end ones never.
    often = {4010: 45, 4430: 30, 4110: 22, 4530: 18, 4440: 16, 4790: 8, 1010: 26, 1020: 16, 1030: 7, 1040: 8, 1120: 14,
             4470: 14, 4640: 12, 4660: 8, 4350: 8, 4310: 9, 4140: 8, 4520: 10, 7110: 20, 7210: 14, 4220: 9, 4240: 6,
             6100: 10, 6110: 12, 4670: 5, 4850: 9, 4860: 9, 4650: 9}
    weights = []
    for row in headings:
        code = int(row["Account Code"])
        if code < 8000:
            weights.append((code, often.get(code, 2)))
    main = {int(r["Account Code"]): r for r in headings}
    wage = [(401001, 10), (401002, 8), (401005, 3), (401008, 1)]

    dated = sorted(int(rng.random() * MONTHS) for _ in range(LINES))
    rows = []
    for number in dated:
        when = month(number)
        code = pick(rng, weights)
        if code == 4010:
            account = pick(rng, wage)
        else:
            subs = secondaries.get(code, [])
            account = pick(rng, [(s, 6) for s in subs] + [(code * 100, 1 if subs else 1)])
        heading = main[code]
        gst = return_of(0, when) if heading["TaxNumber"] in ("1", "2", "4", "5", "7") else 0
        paye = return_of(1, when) if account in (401001, 401002) else 0
        income = return_of(2, when) if heading["IncomeTax"] == "-1" else 0
        rows.append((account, gst, paye, income))
    return rows


def main():
    rng = random.Random(1907)
    headings = read(DATA / "base/farm32/20-Account Codes.tsv")
    secondaries = {}
    for row in read(SAMPLE / "farm32/20-Secondary Codes.tsv"):
        secondaries.setdefault(int(row["Main Code ID"]), []).append(int(row["Secondary Codes ID"]))
    classes = read(SAMPLE / "farm32/30-Stock Class Names.tsv")

    returns = tax_returns()
    write("farm32/40-TaxReturns.tsv", ["TaxReturnID", "StartDate", "RtnType"], returns)
    write("farm32/41-TransactionDetails.tsv", ["Account Code", "TaxReturnID", "PAYERtnID", "IncomeTaxRtnID"],
          transactions(rng, headings, secondaries, returns))

    # Mob sizes drift from season to season; numbers of deleted mobs leave gaps.
    details, mob = [], 0
    for row in classes:
        head = HEADS.get(row["Class Name"], 1)
        for season in SEASONS:
            mob += 1
            if rng.random() < 0.06:
                mob += 1
            if row["Individual"] == "-1":
                number = 1
            else:
                head = max(2, head + whole(rng, -(head // 10), head // 9))
                number = head
            if season == 2022 and rng.random() < 0.1:
                continue  # the class came later
            details.append((mob, row["Class ID"], season, number))
    write("farm32/31-Stock Details.tsv", ["Mob Details ID", "Class ID", "Season", "Number in mob"], details)

    grazing = [r for r in classes if r["Individual"] == "0" and r["Class Name"] not in ("Hens", "Working Dogs")]
    write("farm32/32-Feed Demand.tsv", ["Stock Name"], [(r["Class Name"],) for r in grazing for _ in range(12)])
    profiled = [r for r in grazing if r["Stock Type ID"] in ("1", "2", "4")]
    write("farm32/33-Feed Demand Profile.tsv", ["Class Name"], [(r["Class Name"],) for r in profiled for _ in range(6)])
    write("farm32/34-Feed Profile.tsv", ["Class Name"], [(r["Class Name"],) for r in profiled[::2] for _ in range(12)])
    write("farm32/35-Stock Reconciliations.tsv", ["Class Name", "Season", "Purchases", "Sales"],
          [(r["Class Name"], s, whole(rng, 0, HEADS[r["Class Name"]] // 6) if rng.random() < 0.3 else 0,
            whole(rng, 0, HEADS[r["Class Name"]] // 3))
           for r in grazing for s in SEASONS])

    # Budget lines: each stock class under its type's heading, and a line a quarter for the working headings.
    type_heading = {"1": 1010, "2": 1020, "3": 1030, "4": 1040, "5": 1050}
    budget = [(type_heading[r["Stock Type ID"]], r["Class Name"]) for r in grazing for _ in range(4)]
    for row in headings:
        code = int(row["Account Code"])
        if 1100 <= code < 5000 and rng.random() < 0.8:
            budget += [(code, f"{row['EnglishAccountName']} {part}") for part in ("Jul-Sep", "Oct-Dec", "Jan-Mar", "Apr-Jun")]
    write("farm32/36-Budget Details.tsv", ["Account Code", "Description"], budget)

    # Diary entries of the last three seasons, a few of them for mobs that are gone.
    recent = [d for d in details if d[2] >= 2024]
    entries = [(recent[int(rng.random() * len(recent))][0],) for _ in range(720)]
    entries += [(mob + 5 + n % 7,) for n in range(24)]
    write("diary/10-AnimalMultipleList.tsv", ["MobID"], entries)

    write("farm32/37-TransactionRebates.tsv", ["RebateID"],
          [(pick(rng, [(4, 6), (5, 3), (6, 1)]),) for _ in range(60)])
    write("wage32/30-EmployeeTaxTypes.tsv", ["TaxTypeID"], [(n,) for n in (1, 1, 1, 2, 3, 6, 8, 12, 12, 14, 40)])
    write("wage32/31-EmployeeDeductions.tsv", ["DeductNameID"],
          [(pick(rng, [(1, 8), (2, 6), (3, 2), (5, 3), (6, 1), (20, 3), (30, 2)]),) for _ in range(90)])
    write("wage32/32-EmployeeContributions.tsv", ["ContributionNameID"],
          [(pick(rng, [(5, 8), (6, 2), (8, 5), (30, 1)]),) for _ in range(70)])


if __name__ == "__main__":
    main()
