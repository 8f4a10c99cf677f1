#include "config/data_loader.h"

#include "platform/database/engine.h"
#include "platform/database/errors.h"
#include "platform/database/sql_script.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

#include <algorithm>
#include <vector>

namespace quillary::config {

using database::FieldDef;
using database::FieldType;
using runtime::RunTimeError;

namespace {

std::string DoubleQuotes(std::string_view text) {
    std::string doubled;
    for (char c : text) {
        doubled += c;
        if (c == '\'') {
            doubled += c;
        }
    }
    return doubled;
}

RunTimeError AtLine(const RunTimeError& error, int line) {
    return {error.Number(), error.Source(), error.Description() + " (line " + std::to_string(line) + ")"};
}

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(separator, from)) != std::string_view::npos; from = at + 1) {
        parts.push_back(text.substr(from, at - from));
    }
    parts.push_back(text.substr(from));
    return parts;
}

// The value of a cell as the dialect writes it.
std::string LiteralOf(std::string_view cell, const FieldDef& field) {
    if (cell.empty()) {
        return "Null";
    }
    switch (field.type) {
    case FieldType::Text:
    case FieldType::Memo:
        return "'" + DoubleQuotes(cell) + "'";
    case FieldType::Date: {
        const auto date = runtime::ParseIso(cell);
        if (!date) {
            throw RunTimeError(database::kErrWrongType, "", "Not a date: " + std::string(cell));
        }
        const runtime::DateParts parts = runtime::Split(*date);
        return "#" + std::to_string(parts.month) + "/" + std::to_string(parts.day) + "/" +
               std::to_string(parts.year) + "#";
    }
    default:
        if (cell.find_first_not_of("0123456789.-") != std::string_view::npos) {
            throw RunTimeError(database::kErrWrongType, "", "Not a number: " + std::string(cell));
        }
        return std::string(cell);
    }
}

const FieldDef& FieldOf(const database::TableDef& table, std::string_view name) {
    for (const FieldDef& field : table.fields) {
        if (runtime::EqualName(field.name, name)) {
            return field;
        }
    }
    throw RunTimeError(database::kErrItemNotFound, "",
                       "Table " + table.name + " has no field " + std::string(name));
}

} // namespace

std::string FillPlaceholders(std::string_view text, const Placeholders& values) {
    std::string filled;
    filled.reserve(text.size());
    std::size_t from = 0;
    for (std::size_t open; (open = text.find('{', from)) != std::string_view::npos;) {
        const std::size_t close = text.find('}', open);
        if (close == std::string_view::npos) {
            break;
        }
        const auto value = values.find(text.substr(open + 1, close - open - 1));
        filled += text.substr(from, open - from);
        if (value != values.end()) {
            filled += value->second;
        } else {
            filled += text.substr(open, close + 1 - open);
        }
        from = close + 1;
    }
    return filled += text.substr(from);
}

void RunScript(database::Database& database, std::string_view script, const Placeholders& values) {
    Placeholders quoted = values;
    for (auto& [word, value] : quoted) {
        value = DoubleQuotes(value);
    }
    for (const auto& piece : database::SplitScript(script)) {
        try {
            database.Execute(FillPlaceholders(piece.text, quoted), database::kFailOnError);
        } catch (const RunTimeError& error) {
            throw AtLine(error, piece.line);
        }
    }
}

void LoadRows(database::Database& database, std::string_view table, std::string_view text) {
    const auto& tables = database.TableDefs();
    const auto definition =
        std::find_if(tables.begin(), tables.end(), [&](const database::TableDef& candidate) {
            return runtime::EqualName(candidate.name, table);
        });
    if (definition == tables.end()) {
        throw RunTimeError(database::kErrUnknownTable, "", "There is no table " + std::string(table));
    }

    std::vector<const FieldDef*> fields;
    std::string insert;
    int line = 0;
    for (std::string_view row : SplitAt(text, '\n')) {
        ++line;
        if (row.ends_with('\r')) {
            row.remove_suffix(1);
        }
        if (row.empty()) {
            continue;
        }
        const auto cells = SplitAt(row, '\t');
        try {
            if (fields.empty()) {
                for (std::string_view name : cells) {
                    fields.push_back(&FieldOf(*definition, name));
                    insert += (fields.size() == 1 ? "INSERT INTO [" + definition->name + "] ([" : "], [") +
                              fields.back()->name;
                }
                insert += "]) VALUES (";
                continue;
            }
            if (cells.size() != fields.size()) {
                throw RunTimeError(database::kErrWrongType, "", "A row with another number of values");
            }
            std::string statement = insert;
            for (std::size_t i = 0; i < cells.size(); ++i) {
                statement += (i == 0 ? "" : ", ") + LiteralOf(cells[i], *fields[i]);
            }
            database.Execute(statement + ")", database::kFailOnError);
        } catch (const RunTimeError& error) {
            throw AtLine(error, line);
        }
    }
}

void LoadFile(database::Database& database, const std::filesystem::path& file, const Placeholders& values) {
    const auto text = system::ReadTextFile(file.string());
    if (!text) {
        throw RunTimeError(runtime::kErrFileNotFound, "", "Cannot read " + file.string());
    }
    try {
        if (file.extension() == ".tsv") {
            const std::string stem = file.stem().string();
            LoadRows(database, stem.substr(stem.find('-') + 1), *text);
        } else {
            RunScript(database, *text, values);
        }
    } catch (const RunTimeError& error) {
        throw RunTimeError(error.Number(), error.Source(), file.string() + ": " + error.Description());
    }
}

void LoadFolder(database::Database& database, const std::filesystem::path& folder,
                const Placeholders& values) {
    std::error_code none;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        const auto extension = entry.path().extension();
        if (extension == ".sql" || extension == ".tsv") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        LoadFile(database, file, values);
    }
}

} // namespace quillary::config
