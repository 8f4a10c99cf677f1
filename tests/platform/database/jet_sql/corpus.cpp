#include "platform/database/jet_sql/corpus.h"

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace quillary::database::jet_sql {
namespace {

std::string Filled(std::string sql) {
    static const std::map<std::string, std::string> values = {
        {"moduleKey", "QYFARM"},
        {"taxFrame", "9"},
        {"table", "Planner Use"},
        {"showField", "Planner Use"},
        {"language", "Spanish"},
        {"date", "1/07/2007"},
        {"season", "2008"},
        {"phone", "64"},
        {"code", "410"},
        {"mm", "8"},
        {"dd", "15"},
        {"yyyy", "2007"},
        {"type", "2"},
        {"id", "17"},
        {"old", "925"},
        {"tabName", "Sheep"},
        {"stockName", "MA Ewes"},
        {"classID", "3"},
        {"className", "MA Ewes"},
        {"deleteMobName", "Hoggets"},
        {"chosenName", "MA Ewes"},
        {"deletedName", "Rams"},
        {"deletedID", "5"},
        {"chosenID", "4"},
        {"main", "925"},
        {"rate", "12.5"},
        {"occupationID", "1"},
        {"chosenMobDetailsID", "6"},
        {"taxTypeID", "1"},
        {"deletedMobDetailsID", "7"},
    };
    for (std::size_t at = sql.find('{'); at != std::string::npos; at = sql.find('{', at)) {
        const std::size_t end = sql.find('}', at);
        const auto value = values.find(sql.substr(at + 1, end - at - 1));
        if (value == values.end())
            throw std::runtime_error("no value for a placeholder of: " + sql);
        sql.replace(at, end - at + 1, value->second);
    }
    return sql;
}

} // namespace

std::vector<CorpusStatement> ReadCorpus() {
    std::ifstream file(QY_SOURCE_FOLDER "/../shared/jet_sql_corpus.tsv");
    std::vector<CorpusStatement> corpus;
    std::string line;
    std::getline(file, line); // headings
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        CorpusStatement statement;
        std::string database;
        std::getline(fields, statement.id, '\t');
        std::getline(fields, database, '\t');
        std::getline(fields, statement.kind, '\t');
        std::getline(fields, statement.sql, '\t');
        statement.sql = Filled(std::move(statement.sql));
        corpus.push_back(std::move(statement));
    }
    return corpus;
}

} // namespace quillary::database::jet_sql
