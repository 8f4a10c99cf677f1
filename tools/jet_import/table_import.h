#pragma once

#include "jet_import/importer.h"

#include <optional>
#include <set>

// One table of an import: its definition, its rows, and what the rows ask of the definition.
namespace quillary::jet_import {

class TableImport {
public:
    TableImport(JetReader& source, database::BulkLoad& target, const Progress& progress,
                ImportReport& report);

    // taken: the names, folded, that tables of the target have.
    void Run(const JetTable& table, std::set<std::string>& taken);

private:
    // What the rows of a field are like.
    struct Seen {
        std::int64_t nulls = 0, empties = 0, tooLong = 0, strange = 0;
        std::size_t longest = 0; // characters
    };
    // What the table's rows let stand of its definition.
    enum class Keys { AsTheyAre, NoKey, NoKeyNoCounter };

    void Describe(const JetTable& table, std::set<std::string>& taken);
    bool Load(const JetTable& table, Keys keys);
    void Watch(std::span<const LoadValue> row);
    void WatchText(const LoadValue& value, std::size_t field);
    void GiveWay();
    void SetDefaults(const JetTable& table);
    void SetRules(const JetTable& table);
    void MakeIndexes();
    void TellRepeats(const std::string& what, const std::vector<std::string>& fields);
    void Note(const std::string& text) { report_.notes.push_back("table " + def_.name + ": " + text); }
    void Lose(const std::string& text) { report_.losses.push_back("table " + def_.name + ": " + text); }

    JetReader& source_;
    database::BulkLoad& target_;
    const Progress& progress_;
    ImportReport& report_;
    database::TableDef def_;
    std::vector<database::LoadIndex> indexes_; // the key first, where there is one
    std::vector<Seen> seen_;
    std::int64_t read_ = 0;
    std::int64_t written_ = 0;
};

} // namespace quillary::jet_import
