// Recordsets: what they hold, how they count, how they are edited, and what each refusal is called.
#include "platform/database/errors.h"
#include "platform/database/scratch_database.h"
#include "platform/runtime/dates.h"

namespace quillary::database {
namespace {

class Recordsets : public ScratchDatabase {
protected:
    Recordsets() {
        Run({"CREATE TABLE Codes ([Code ID] COUNTER PRIMARY KEY, [Name] TEXT(10) NOT NULL, Kind LONG, Amount "
             "CURRENCY, Started DATETIME, Rate SINGLE, Paid BIT, Num SHORT DEFAULT 7)",
             "CREATE UNIQUE INDEX ByName ON Codes ([Name])",
             "INSERT INTO Codes ([Name], Kind, Amount) VALUES ('delta', 1, 4.5)",
             "INSERT INTO Codes ([Name], Kind, Amount) VALUES ('alpha', 2, 1)",
             "INSERT INTO Codes ([Name], Kind) VALUES ('Charlie', 1)",
             "INSERT INTO Codes ([Name], Kind) VALUES ('bravo', 1)",
             "CREATE TABLE Uses (Code LONG, CONSTRAINT CodesUses FOREIGN KEY (Code) REFERENCES Codes ([Code "
             "ID]))"});
    }
    std::unique_ptr<Recordset> Open(std::string_view sql, RecordsetType type = RecordsetType::Dynaset) {
        return db_->OpenRecordset(sql, type);
    }
    // The names from the first row to the last.
    std::string Names(Recordset& rows) {
        std::string result;
        for (rows.MoveFirst(); !rows.EOF_(); rows.MoveNext()) {
            result += (result.empty() ? "" : " ") + Shown(rows["Name"].Value());
        }
        return result;
    }
};

constexpr const char* kSorted = "SELECT * FROM Codes ORDER BY [Name]";

TEST_F(Recordsets, TypesBySource) {
    db_->CreateQueryDef("Sorted", kSorted);
    const struct {
        const char* source;
        RecordsetType asked;
        RecordsetType type;
        bool updatable;
        long count;
    } kCases[] = {
        {"Codes", RecordsetType::Default, RecordsetType::Table, true, 4},
        {"[codes]", RecordsetType::Default, RecordsetType::Table, true, 4},
        {"Codes", RecordsetType::Dynaset, RecordsetType::Dynaset, true, 1},
        {"Codes", RecordsetType::Snapshot, RecordsetType::Snapshot, false, 1},
        {"sorted", RecordsetType::Default, RecordsetType::Dynaset, true, 1},
        {kSorted, RecordsetType::Default, RecordsetType::Dynaset, true, 1},
        {"SELECT Kind, Sum(Amount) AS s FROM Codes GROUP BY Kind", RecordsetType::Dynaset,
         RecordsetType::Dynaset, false, 1},
        {"SELECT * FROM Codes WHERE Kind = 99", RecordsetType::Dynaset, RecordsetType::Dynaset, true, 0},
    };
    for (const auto& each : kCases) {
        SCOPED_TRACE(each.source);
        const auto rows = Open(each.source, each.asked);
        EXPECT_EQ(rows->Type(), each.type);
        EXPECT_EQ(rows->Updatable(), each.updatable);
        EXPECT_EQ(rows->RecordCount(), each.count);
    }
    EXPECT_EQ(ErrorOf([&] { Open(kSorted, RecordsetType::Table); }), 3219);
    EXPECT_EQ(ErrorOf([&] { Open("Nothing"); }), kErrUnknownTable);
    EXPECT_EQ(ErrorOf([&] { Open("SELECT * FROM Nothing"); }), kErrUnknownTable);
    EXPECT_EQ(ErrorOf([&] { Open("SELECT Nothing FROM Codes"); }), kErrTooFewParameters);
    EXPECT_EQ(ErrorOf([&] { Open("SELECT * FROM Codes WHERE [Name] = 'O'Brien'"); }), kErrQueryText);
    EXPECT_EQ(ErrorOf([&] { Open("DELETE FROM Codes"); }), 3065);
}

TEST_F(Recordsets, Fields) {
    const auto rows = Open("SELECT [Name], Kind * 2 AS Twice, [Code ID], Amount FROM Codes");
    const struct {
        const char* name;
        FieldType type;
        int size;
        bool required, counter, updatable;
        const char* source;
    } kFields[] = {{"Name", FieldType::Text, 10, true, false, true, "Name"},
                   {"Twice", FieldType::Long, 4, false, false, false, ""},
                   {"Code ID", FieldType::Long, 4, false, true, false, "Code ID"},
                   {"Amount", FieldType::Currency, 8, false, false, true, "Amount"}};
    ASSERT_EQ(rows->FieldCount(), 4);
    for (int i = 0; i < 4; ++i) {
        const Field& field = (*rows)[i];
        EXPECT_EQ(field.Name(), kFields[i].name);
        EXPECT_EQ(field.Type(), kFields[i].type) << i;
        if (kFields[i].updatable) {
            EXPECT_EQ(field.Size(), kFields[i].size) << i;
        }
        EXPECT_EQ(field.Required(), kFields[i].required) << i;
        EXPECT_EQ(field.Counter(), kFields[i].counter) << i;
        EXPECT_EQ(field.Updatable(), kFields[i].updatable) << i;
        EXPECT_EQ(field.SourceField(), kFields[i].source) << i;
        EXPECT_EQ(field.SourceTable(), *kFields[i].source == 0 ? "" : "Codes") << i;
    }
    EXPECT_EQ(rows->FindField("NAME"), 0);
    EXPECT_EQ(rows->FindField("code id"), 2);
    EXPECT_EQ(rows->FindField("Name "), -1);
    EXPECT_EQ(ErrorOf([&] { (*rows)["Nil"]; }), kErrItemNotFound);
    EXPECT_EQ(ErrorOf([&] { (*rows)[4]; }), kErrItemNotFound);
    EXPECT_EQ(ErrorOf([&] { (*rows)[-1]; }), kErrItemNotFound);
}

TEST_F(Recordsets, ValuesCarryTheirType) {
    Run({"UPDATE Codes SET Started = #8/15/2007#, Rate = 0.105, Paid = True, Num = -3 WHERE [Name] = "
         "'DELTA'"});
    const auto rows =
        Open("SELECT * FROM Codes WHERE [Name] = 'delta' OR [Name] = 'bravo' ORDER BY [Name] DESC");
    EXPECT_EQ((*rows)["code id"].Value(), Variant(1));
    EXPECT_EQ((*rows)["Name"].Value(), Variant("delta"));
    EXPECT_EQ((*rows)["Amount"].Value(), Variant(runtime::Currency{45000}));
    EXPECT_EQ((*rows)["Started"].Value(), Variant(runtime::MakeDate(2007, 8, 15)));
    EXPECT_EQ((*rows)["Rate"].Value(), Variant(0.105F));
    EXPECT_EQ((*rows)["Paid"].Value(), Variant(true));
    EXPECT_EQ((*rows)["Num"].Value(), Variant(std::int16_t{-3}));
    rows->MoveNext();
    for (const char* name : {"Amount", "Started", "Rate"}) {
        EXPECT_TRUE((*rows)[name].Value().IsNull()) << name;
    }
    EXPECT_EQ((*rows)["Paid"].Value(), Variant(false));
    EXPECT_EQ((*rows)["Num"].Value(), Variant(std::int16_t{7}));
    // A single lies in the file as people write it.
    EXPECT_EQ(Rows("SELECT Rate FROM Codes WHERE Rate = 0.105"), "0.105");
}

TEST_F(Recordsets, MovingAndCounting) {
    for (const RecordsetType type : {RecordsetType::Snapshot, RecordsetType::Dynaset}) {
        const auto rows = Open(kSorted, type);
        EXPECT_EQ(rows->RecordCount(), 1);
        rows->MoveNext();
        rows->MoveNext();
        rows->MovePrevious();
        EXPECT_EQ(rows->RecordCount(), 3);
        rows->CountVisited(1);
        EXPECT_EQ(rows->RecordCount(), 3);
        rows->MoveLast();
        EXPECT_EQ(rows->RecordCount(), 4);
        EXPECT_EQ(Shown((*rows)["Name"]), "delta");
        rows->MoveNext();
        EXPECT_TRUE(rows->EOF_());
        EXPECT_FALSE(rows->BOF());
        EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), kErrNoCurrentRecord);
        EXPECT_EQ(ErrorOf([&] { (*rows)["Name"].Value(); }), kErrNoCurrentRecord);
        rows->MovePrevious();
        EXPECT_EQ(Shown((*rows)["Name"]), "delta");
        rows->MoveFirst();
        rows->MovePrevious();
        EXPECT_TRUE(rows->BOF());
        EXPECT_EQ(ErrorOf([&] { rows->MovePrevious(); }), kErrNoCurrentRecord);
        rows->MoveNext();
        EXPECT_EQ(Shown((*rows)["Name"]), "alpha");

        const auto empty = Open("SELECT * FROM Codes WHERE Kind = 99", type);
        EXPECT_TRUE(empty->BOF());
        EXPECT_TRUE(empty->EOF_());
        EXPECT_EQ(empty->RecordCount(), 0);
        for (const auto move :
             {&Recordset::MoveFirst, &Recordset::MoveLast, &Recordset::MoveNext, &Recordset::MovePrevious}) {
            EXPECT_EQ(ErrorOf([&] { (*empty.*move)(); }), kErrNoCurrentRecord);
        }
        empty->FindFirst("Kind = 1");
        EXPECT_TRUE(empty->NoMatch());
    }
}

// A new number is made of the count: the rows visited so far, and those added.
TEST_F(Recordsets, CountOfAddedAndDeletedRows) {
    const auto rows = Open(kSorted);
    rows->MoveNext();
    for (long expected = 3; expected <= 4; ++expected) {
        rows->AddNew();
        EXPECT_EQ(rows->RecordCount(), expected - 1);
        (*rows)["Name"] = "new " + std::to_string(expected);
        rows->Update();
        EXPECT_EQ(rows->RecordCount(), expected);
    }
    EXPECT_EQ(Shown((*rows)["Name"]), "bravo"); // the current row stays
    rows->Delete();
    EXPECT_EQ(rows->RecordCount(), 3);
    rows->MoveLast();
    EXPECT_EQ(rows->RecordCount(), 5);
    EXPECT_EQ(Shown((*rows)["Name"]), "new 4");
    rows->Delete();
    EXPECT_EQ(rows->RecordCount(), 4);
    EXPECT_EQ(Names(*rows), "alpha Charlie delta new 3");
    rows->Requery();
    EXPECT_EQ(rows->RecordCount(), 1);
}

TEST_F(Recordsets, ASnapshotStaysAsItWas) {
    const auto snapshot = Open("SELECT [Name], Kind FROM Codes WHERE Kind = 1", RecordsetType::Snapshot);
    Run({"DELETE FROM Codes WHERE [Name] = 'bravo'",
         "UPDATE Codes SET [Name] = 'changed' WHERE [Code ID] = 1"});
    EXPECT_EQ(Rows(*snapshot), "delta|1; Charlie|1; bravo|1");
    snapshot->FindFirst("[Name] = 'BRAVO'");
    EXPECT_FALSE(snapshot->NoMatch());
    EXPECT_EQ(ErrorOf([&] { snapshot->Edit(); }), kErrReadOnly);
    EXPECT_EQ(ErrorOf([&] { snapshot->Update(); }), kErrUpdateWithoutEdit);
    snapshot->Requery();
    EXPECT_EQ(Rows(*snapshot), "changed|1; Charlie|1");
}

TEST_F(Recordsets, ADynasetKeepsItsRowsAndReadsThemLive) {
    const auto rows = Open("SELECT * FROM Codes WHERE Kind = 1 ORDER BY [Name]");
    Run({"UPDATE Codes SET Kind = 5, [Name] = 'zulu' WHERE [Name] = 'bravo'",
         "INSERT INTO Codes ([Name], Kind) VALUES ('echo', 1)",
         "DELETE FROM Codes WHERE [Name] = 'Charlie'"});
    EXPECT_EQ(Shown((*rows)["Name"]), "zulu");
    rows->MoveNext();
    EXPECT_EQ(ErrorOf([&] { (*rows)["Name"].Value(); }), kErrRecordDeleted);
    EXPECT_EQ(ErrorOf([&] { rows->Edit(); }), kErrRecordDeleted);
    EXPECT_EQ(ErrorOf([&] { rows->Delete(); }), kErrRecordDeleted);
    EXPECT_TRUE(rows->ReadRow(1).empty());
    rows->MoveNext();
    EXPECT_EQ(Shown((*rows)["Name"]), "delta");
    rows->Requery();
    EXPECT_EQ(Names(*rows), "delta echo");
}

// Whatever the sort and the filter: at the end, until Requery.
TEST_F(Recordsets, AddedRowsComeLast) {
    const auto rows = Open("SELECT * FROM Codes WHERE Kind = 2 ORDER BY [Name]");
    rows->AddNew();
    EXPECT_EQ(rows->Editing(), EditMode::AddNew);
    EXPECT_EQ((*rows)["Code ID"].Value(), Variant(5)); // there at once
    EXPECT_EQ((*rows)["Num"].Value(), Variant(std::int16_t{7}));
    EXPECT_EQ((*rows)["Paid"].Value(), Variant(false));
    EXPECT_TRUE((*rows)["Kind"].Value().IsNull());
    (*rows)["Name"] = "aaa";
    rows->Update();
    EXPECT_EQ(Shown((*rows)["Name"]), "alpha");
    rows->MoveLast();
    EXPECT_EQ((*rows)["Code ID"].Value(), Variant(5));
    rows->MoveFirst();
    rows->FindFirst("[Code ID] = 5");
    EXPECT_FALSE(rows->NoMatch());
    EXPECT_EQ(rows->LastModified(), rows->Bookmark());
    rows->Requery();
    EXPECT_EQ(Names(*rows), "alpha");
    EXPECT_EQ(Rows("SELECT [Code ID], Kind, Num, Paid FROM Codes WHERE [Name] = 'aaa'"), "5|<null>|7|False");
}

TEST_F(Recordsets, AMoveDropsWhatIsPending) {
    const auto rows = Open(kSorted);
    rows->AddNew();
    (*rows)["Name"] = "dropped";
    rows->MoveLast();
    EXPECT_EQ(rows->Editing(), EditMode::None);
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), kErrUpdateWithoutEdit);
    rows->Edit();
    (*rows)["Name"] = "dropped";
    EXPECT_EQ(Shown((*rows)["Name"]), "dropped");
    rows->CancelUpdate();
    EXPECT_EQ(Shown((*rows)["Name"]), "delta");
    EXPECT_EQ(ErrorOf([&] { (*rows)["Name"] = "x"; }), kErrUpdateWithoutEdit);
    EXPECT_EQ(Rows("SELECT Count(*) FROM Codes WHERE [Name] = 'dropped'"), "0");
}

// A counter is never given twice, whether its row was dropped, deleted or made by SQL.
TEST_F(Recordsets, CountersGoOn) {
    const auto rows = Open("Codes");
    rows->AddNew();
    EXPECT_EQ((*rows)["Code ID"].Value(), Variant(5));
    EXPECT_EQ((*rows)["Code ID"].Value(), Variant(5));
    rows->CancelUpdate();
    Run({"INSERT INTO Codes ([Name]) VALUES ('six')", "DELETE FROM Codes WHERE [Name] = 'six'",
         "INSERT INTO Codes ([Code ID], [Name]) VALUES (20, 'twenty')"});
    rows->AddNew();
    (*rows)["Name"] = "next";
    rows->Update();
    EXPECT_EQ(Rows("SELECT Max([Code ID]) FROM Codes"), "21");
    rows->SetBookmark(*rows->LastModified());
    rows->Edit();
    EXPECT_EQ(ErrorOf([&] { (*rows)["Code ID"] = 3; }), 3164);
}

TEST_F(Recordsets, WhatAFieldRefusesAtOnce) {
    const struct {
        const char* field;
        Variant value;
        int number;
        Variant stored;
    } kCases[] = {
        {"Name", "just long!", 0, "just long!"},
        {"Name", "āēīōūāēīōū", 0, "āēīōūāēīōū"}, // ten characters in twenty bytes
        {"Name", "far too long", kErrFieldTooSmall, {}},
        {"Name", 12, 0, "12"},
        {"Kind", "12", 0, 12},
        {"Kind", "2.5", 0, 2},
        {"Kind", "many", kErrWrongType, {}},
        {"Kind", "", kErrWrongType, {}},
        {"Kind", 3e10, 6, {}},
        {"Num", 40000, 6, {}},
        {"Num", true, 0, std::int16_t{-1}},
        {"Amount", "1,234.56789", 0, runtime::Currency{12345679}},
        {"Started", "1/7/2008", 0, runtime::MakeDate(2008, 7, 1)},
        {"Started", "soon", kErrWrongType, {}},
        {"Rate", 0.1, 0, 0.1F},
        {"Paid", "True", 0, true},
        {"Paid", 5, 0, true},
        {"Paid", "perhaps", kErrWrongType, {}},
        {"Kind", Variant::Null(), 0, Variant::Null()},
        {"Kind", Variant(), 0, Variant::Null()},
    };
    const auto rows = Open("SELECT * FROM Codes WHERE [Code ID] = 2");
    for (const auto& each : kCases) {
        SCOPED_TRACE(std::string(each.field) + " " + Shown(each.value));
        rows->Edit();
        EXPECT_EQ(ErrorOf([&] { (*rows)[each.field] = each.value; }), each.number);
        rows->Update();
        if (each.number == 0) {
            EXPECT_EQ((*rows)[each.field].Value(), each.stored);
        }
    }
}

TEST_F(Recordsets, WhatUpdateRefuses) {
    Run({"INSERT INTO Uses VALUES (2)"});
    const struct {
        const char* field;
        Variant value;
        int number;
    } kCases[] = {{"Name", Variant::Null(), kErrRequiredField},
                  {"Name", "", kErrZeroLength},
                  {"Name", "DELTA", kErrDuplicateValue},
                  {"Paid", Variant::Null(), kErrRequiredField}};
    for (const auto& each : kCases) {
        SCOPED_TRACE(each.field);
        const auto rows = Open("SELECT * FROM Codes WHERE [Code ID] = 2");
        rows->Edit();
        (*rows)[each.field] = each.value; // not refused here: meant
        EXPECT_EQ(ErrorOf([&] { rows->Update(); }), each.number);
        EXPECT_EQ(rows->Editing(), EditMode::Edit); // still pending
        (*rows)[each.field] = std::string(each.field) == "Name" ? Variant("better") : Variant(false);
        rows->Update();
        Run({"UPDATE Codes SET [Name] = 'alpha' WHERE [Code ID] = 2"});
    }
    const auto uses = Open("Uses");
    uses->Edit();
    (*uses)["Code"] = 99;
    EXPECT_EQ(ErrorOf([&] { uses->Update(); }), kErrMissingRelatedRow);
    uses->AddNew();
    (*uses)["Code"] = 99;
    EXPECT_EQ(ErrorOf([&] { uses->Update(); }), kErrMissingRelatedRow);
    const auto codes = Open("SELECT * FROM Codes WHERE [Code ID] = 2");
    EXPECT_EQ(ErrorOf([&] { codes->Delete(); }), kErrRelatedRows);
    EXPECT_EQ(Shown((*codes)["Name"]), "alpha"); // nothing has happened to the row
    const auto added = Open("Codes");
    added->AddNew();
    EXPECT_EQ(ErrorOf([&] { added->Update(); }), kErrRequiredField);
    added->MoveLast(); // the failed row is dropped
    EXPECT_EQ((*added)["Code ID"].Value(), Variant(4));
}

TEST_F(Recordsets, OnlyTheFieldsSetAreWritten) {
    const auto mine = Open("SELECT * FROM Codes WHERE [Code ID] = 1");
    mine->Edit();
    (*mine)["Kind"] = 8;
    const auto other = engine_->OpenDatabase(PathOf("farm.mdb"));
    other->Execute("UPDATE Codes SET [Name] = 'other' WHERE [Code ID] = 1", kFailOnError);
    EXPECT_EQ(Shown((*mine)["Name"]), "delta"); // as it was at Edit
    mine->Update();
    EXPECT_EQ(Rows("SELECT [Name], Kind FROM Codes WHERE [Code ID] = 1"), "other|8");

    mine->Edit();
    (*mine)["Kind"] = 9;
    other->Execute("UPDATE Codes SET Kind = 10 WHERE [Code ID] = 1", kFailOnError);
    EXPECT_EQ(ErrorOf([&] { mine->Update(); }), kErrRecordChanged);
    EXPECT_EQ(Rows("SELECT Kind FROM Codes WHERE [Code ID] = 1"), "10");
    mine->Update(); // now that it is known
    EXPECT_EQ(Rows("SELECT Kind FROM Codes WHERE [Code ID] = 1"), "9");

    mine->Edit();
    (*mine)["Kind"] = 11;
    other->Execute("DELETE FROM Codes WHERE [Code ID] = 1", kFailOnError);
    EXPECT_EQ(ErrorOf([&] { mine->Update(); }), kErrRecordDeleted);
}

TEST_F(Recordsets, ADeletedRowStaysCurrentButInvalid) {
    const auto rows = Open(kSorted);
    rows->MoveNext();
    const auto mark = rows->Bookmark();
    rows->Delete();
    EXPECT_FALSE(rows->EOF_());
    EXPECT_EQ(ErrorOf([&] { (*rows)["Name"].Value(); }), kErrRecordDeleted);
    EXPECT_EQ(ErrorOf([&] { rows->Delete(); }), kErrRecordDeleted);
    EXPECT_EQ(ErrorOf([&] { rows->SetBookmark(*mark); }), kErrRecordDeleted);
    rows->MoveNext();
    EXPECT_EQ(Shown((*rows)["Name"]), "Charlie");
    rows->MovePrevious();
    EXPECT_EQ(Shown((*rows)["Name"]), "alpha");
    while (!rows->EOF_()) {
        rows->Delete();
        rows->MoveNext();
    }
    EXPECT_TRUE(rows->BOF());
    EXPECT_EQ(rows->RecordCount(), 0);
    EXPECT_EQ(ErrorOf([&] { rows->MoveFirst(); }), kErrNoCurrentRecord);
    EXPECT_EQ(ErrorOf([&] { rows->Delete(); }), kErrNoCurrentRecord);
}

TEST_F(Recordsets, Finding) {
    const auto rows = Open(kSorted);
    const struct {
        const char* criteria;
        const char* found; // nullptr: no match
    } kCases[] = {{"kind=1", "bravo"},
                  {"[Kind] = 2", "alpha"},
                  {"[Code ID] =3", "Charlie"},
                  {"Kind = -1", nullptr},
                  {"[Name] = 'CHARLIE'", "Charlie"},
                  {"Amount = 4.5", "delta"},
                  {"Amount Is Null And Kind = 1", "bravo"},
                  {"[Name] Like 'c*'", "Charlie"},
                  {"Paid", nullptr},
                  {"[Name] & Kind = 'delta1'", "delta"}};
    for (const auto& each : kCases) {
        SCOPED_TRACE(each.criteria);
        rows->MoveLast();
        rows->MovePrevious();
        rows->FindFirst(each.criteria);
        EXPECT_EQ(rows->NoMatch(), each.found == nullptr);
        EXPECT_EQ(Shown((*rows)["Name"]), each.found == nullptr ? "Charlie" : each.found); // else unchanged
    }
    rows->FindFirst("Kind = 1");
    rows->FindNext("Kind = 1");
    rows->FindNext("Kind = 1");
    EXPECT_EQ(Shown((*rows)["Name"]), "delta");
    rows->FindNext("Kind = 1");
    EXPECT_TRUE(rows->NoMatch());

    const struct {
        const char* criteria;
        int number;
    } kBroken[] = {{"[Kind]=1,000", kErrFindCriterion},
                   {"Kind = ", kErrFindCriterion},
                   {"", kErrFindCriterion},
                   {"[Name] = 'O'Brien'", kErrFindCriterion},
                   {"Nothing = 1", 3070},
                   {"[Name] = 5", kErrTypeMismatchInCriterion}};
    for (const auto& each : kBroken) {
        EXPECT_EQ(ErrorOf([&] { rows->FindFirst(each.criteria); }), each.number) << each.criteria;
    }
    const auto fresh = Open(kSorted);
    fresh->FindFirst("Kind = 77");
    EXPECT_EQ(fresh->RecordCount(), 4); // a search in vain has seen every row
}

TEST_F(Recordsets, ClonesAndPlaces) {
    const auto rows = Open(kSorted);
    rows->MoveNext();
    const auto clone = rows->Clone();
    clone->FindFirst("Kind = 2");
    EXPECT_EQ(Shown((*clone)["Name"]), "alpha");
    EXPECT_EQ(Shown((*rows)["Name"]), "bravo");
    clone->MoveLast();
    rows->SetBookmark(*clone->Bookmark());
    EXPECT_EQ(Shown((*rows)["Name"]), "delta");
    clone->AddNew();
    (*clone)["Name"] = "added";
    clone->Update();
    rows->MoveLast();
    EXPECT_EQ(Shown((*rows)["Name"]), "added");
    clone->MoveFirst();
    clone->Delete();
    rows->MoveFirst();
    EXPECT_EQ(Shown((*rows)["Name"]), "bravo");

    // Rows as a grid numbers them, with the deleted one left out.
    EXPECT_EQ(rows->RowTotal(), 4);
    for (long row = 0; row < rows->RowTotal(); ++row) {
        EXPECT_EQ(rows->RowOf(rows->BookmarkAt(row)), row);
    }
    EXPECT_EQ(rows->RowOf(0), -1);
    EXPECT_EQ(Shown(rows->ReadRow(rows->BookmarkAt(2)).at(1)), "delta");
    EXPECT_EQ(ErrorOf([&] { rows->BookmarkAt(4); }), kErrNoCurrentRecord);
    EXPECT_EQ(ErrorOf([&] { rows->SetBookmark(99); }), kErrRecordDeleted);
    EXPECT_EQ(Shown((*rows)["Name"]), "bravo"); // reading rows has moved nothing
}

// A key that is the row's address in the file may change; the row stays in its place.
TEST_F(Recordsets, AKeyThatChanges) {
    Run({"CREATE TABLE Rates ([Rate Number] LONG PRIMARY KEY, [Rate %] SINGLE)",
         "INSERT INTO Rates VALUES (1, 10)", "INSERT INTO Rates VALUES (2, 12.5)"});
    const auto rows = Open("SELECT * FROM Rates ORDER BY [Rate Number]");
    const auto clone = rows->Clone();
    rows->Edit();
    (*rows)["Rate Number"] = 9;
    rows->Update();
    EXPECT_EQ((*rows)["Rate Number"].Value(), Variant(9));
    EXPECT_EQ((*clone)["Rate %"].Value(), Variant(10.0F));
    rows->Edit();
    (*rows)["Rate Number"] = 2;
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), kErrDuplicateValue);
    (*rows)["Rate Number"] = Variant::Null();
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), kErrRequiredField);
    rows->CancelUpdate();
    EXPECT_EQ((*rows)["Rate Number"].Value(), Variant(9));
    // It does not number itself.
    rows->AddNew();
    (*rows)["Rate %"] = 5;
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), kErrRequiredField);
    EXPECT_EQ(Execute("INSERT INTO Rates ([Rate %]) VALUES (5)"), "error 3314");
    EXPECT_EQ(Execute("INSERT INTO Rates VALUES (Null, 5)"), "error 3314");
}

TEST_F(Recordsets, Joins) {
    Run({"CREATE TABLE Kinds ([Kind ID] LONG PRIMARY KEY, Title TEXT(20))",
         "INSERT INTO Kinds VALUES (1, 'one')", "INSERT INTO Kinds VALUES (2, 'two')",
         "UPDATE Codes SET Kind = 7 WHERE [Name] = 'alpha'"});
    const auto rows =
        Open("SELECT DISTINCTROW Codes.*, Kinds.Title FROM Codes LEFT JOIN Kinds ON Codes.Kind = "
             "Kinds.[Kind ID] ORDER BY Codes.[Name];");
    ASSERT_TRUE(rows->Updatable());
    EXPECT_TRUE((*rows)["Title"].Value().IsNull()); // alpha's kind is missing
    rows->Edit();
    EXPECT_EQ(ErrorOf([&] { (*rows)["Title"] = "x"; }), 3164);
    (*rows)["Num"] = 70;
    rows->Update();
    rows->MoveNext();
    rows->Edit();
    (*rows)["Title"] = "first"; // the field's own table
    (*rows)["Num"] = 71;
    rows->Update();
    rows->MoveNext();
    EXPECT_EQ(Shown((*rows)["Title"]), "first");
    // The new row need not satisfy the join.
    rows->AddNew();
    (*rows)["Name"] = "joined";
    rows->Update();
    rows->MoveLast();
    EXPECT_EQ(Shown((*rows)["Name"]), "joined");
    EXPECT_TRUE((*rows)["Title"].Value().IsNull());
    EXPECT_EQ(Rows("SELECT [Name], Num FROM Codes WHERE Num >= 70 OR [Name] = 'joined' ORDER BY [Name]"),
              "alpha|70; bravo|71; joined|7");
    // A delete takes the row of the many side.
    rows->MovePrevious();
    EXPECT_EQ(Shown((*rows)["Name"]), "delta");
    rows->Delete();
    EXPECT_EQ(Rows("SELECT Count(*) FROM Kinds"), "2");
    EXPECT_EQ(Rows("SELECT Count(*) FROM Codes"), "4");

    // Rows of an inner join without the other tables' fields.
    const auto inner =
        Open("SELECT DISTINCTROW Codes.* FROM Kinds INNER JOIN Codes ON Kinds.[Kind ID] = Codes.Kind "
             "WHERE (Kinds.Title='first') ORDER BY Codes.[Name];");
    inner->AddNew();
    (*inner)["Name"] = "aside";
    inner->Update();
    inner->MoveLast();
    EXPECT_EQ(Shown((*inner)["Name"]), "aside");
    EXPECT_EQ(Rows("SELECT Count(*) FROM Kinds"), "2");
}

// More rows than a page, in each order, with gaps, forwards and backwards and at random.
TEST_F(Recordsets, ManyRows) {
    Run({"CREATE TABLE Many (ID COUNTER PRIMARY KEY, [Key] LONG, Note TEXT(20))"});
    db_->Execute("CREATE TABLE Digits (n LONG)");
    for (int i = 0; i < 10; ++i) {
        db_->Execute("INSERT INTO Digits VALUES (" + std::to_string(i) + ")");
    }
    Run({"INSERT INTO Many ([Key], Note) SELECT (a.n * 100 + b.n * 10 + c.n) * 7 Mod 1000, 'note ' & c.n "
         "FROM Digits "
         "AS a, Digits AS b, Digits AS c",
         "DELETE FROM Many WHERE ID Mod 3 = 0", "DELETE FROM Many WHERE ID > 300 AND ID < 700"});
    for (const char* sql :
         {"SELECT * FROM Many", "SELECT * FROM Many ORDER BY [Key]", "SELECT * FROM Many ORDER BY ID DESC",
          "SELECT Many.*, Digits.n FROM Many INNER JOIN Digits ON Many.[Key] Mod 10 = Digits.n ORDER "
          "BY Many.[Key]"}) {
        SCOPED_TRACE(sql);
        const std::string expected = Rows(sql, RecordsetType::Snapshot);
        const auto rows = Open(sql);
        ASSERT_TRUE(rows->Updatable());
        EXPECT_EQ(Rows(*rows), expected);
        std::string backwards;
        for (rows->MoveLast(); !rows->BOF(); rows->MovePrevious()) {
            std::string line;
            for (int i = 0; i < rows->FieldCount(); ++i) {
                line += (i == 0 ? "" : "|") + Shown((*rows)[i].Value());
            }
            backwards = line + (backwards.empty() ? "" : "; ") + backwards;
        }
        EXPECT_EQ(backwards, expected);
        const auto snapshot = Open(sql, RecordsetType::Snapshot);
        ASSERT_EQ(rows->RowTotal(), snapshot->RowTotal());
        for (long i = 0; i < rows->RowTotal(); ++i) {
            const long row = i * 37 % rows->RowTotal();
            EXPECT_EQ(rows->ReadRow(rows->BookmarkAt(row)), snapshot->ReadRow(snapshot->BookmarkAt(row)));
        }
        // Each row written as it is passed, and read back.
        for (rows->MoveFirst(); !rows->EOF_(); rows->MoveNext()) {
            rows->Edit();
            (*rows)["Note"] = "row " + Shown((*rows)["ID"].Value());
            rows->Update();
            EXPECT_EQ(Shown((*rows)["Note"]), "row " + Shown((*rows)["ID"].Value()));
        }
        EXPECT_EQ(Rows("SELECT Count(*) FROM Many WHERE Note <> 'row ' & ID"), "0");
    }
}

// A crosstab's columns come from its rows, so Requery may change them.
TEST_F(Recordsets, ACrosstabRequeried) {
    const auto rows = Open("TRANSFORM Sum([Code ID]) SELECT Paid FROM Codes GROUP BY Paid PIVOT Kind");
    EXPECT_EQ(rows->FieldCount(), 3);
    EXPECT_FALSE(rows->Updatable());
    Run({"UPDATE Codes SET Kind = 10 WHERE [Name] = 'bravo'"});
    rows->Requery();
    ASSERT_EQ(rows->FieldCount(), 4);
    EXPECT_EQ((*rows)[3].Name(), "10");
    EXPECT_EQ(Shown((*rows)["10"].Value()), "4");
}

} // namespace
} // namespace quillary::database
