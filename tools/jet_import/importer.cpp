#include "jet_import/importer.h"

#include "jet_import/saved_query.h"
#include "jet_import/table_import.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <map>

namespace quillary::jet_import {
namespace {

void ImportRelations(JetReader& source, database::BulkLoad& target, ImportReport& report) {
    for (const JetRelation& relation : source.Relations()) {
        const std::string text = "relation " + relation.def.name + " between " + relation.def.table +
                                 " and " + relation.def.foreignTable;
        if (!relation.enforced) {
            report.notes.push_back(text + " was not enforced by the old engine: there is nothing to carry");
        } else if (target.AddRelation(relation.def)) {
            ++report.relations;
        } else {
            report.losses.push_back(text + " cannot be kept: a table, a field or the unique index that it "
                                           "needs is not there");
        }
    }
}

void ImportQueries(JetReader& source, database::BulkLoad& target, ImportReport& report) {
    for (const JetQuery& query : source.Queries()) {
        const std::string sql = SqlOf(query);
        if (sql.empty()) {
            report.losses.push_back("saved query " + query.name + ": its text cannot be read");
            continue;
        }
        try {
            target.AddQuery(query.name, sql);
            ++report.queries;
        } catch (const runtime::RunTimeError& error) {
            report.losses.push_back("saved query " + query.name + ": " + error.Description());
            continue;
        }
        try {
            database::jet_sql::Parse(sql);
        } catch (const runtime::RunTimeError& error) {
            report.losses.push_back("saved query " + query.name +
                                    " is kept as a text, but cannot be run: " + error.Description());
        }
    }
}

} // namespace

ImportReport Import(JetReader& source, database::BulkLoad& target, const Progress& progress) {
    ImportReport report;
    std::set<std::string> taken;
    for (const JetTable& table : source.Tables()) {
        TableImport(source, target, progress, report).Run(table, taken);
    }
    ImportRelations(source, target, report);
    ImportQueries(source, target, report);
    for (const auto& fault : target.Finish()) {
        report.notes.push_back("table " + fault.table + ": " + std::to_string(fault.rows) +
                               " rows have no related row by the relation " + fault.what);
    }
    const auto notes = source.Notes();
    report.notes.insert(report.notes.end(), notes.begin(), notes.end());
    const auto losses = source.Losses();
    report.losses.insert(report.losses.end(), losses.begin(), losses.end());
    return report;
}

} // namespace quillary::jet_import
