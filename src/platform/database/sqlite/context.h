#pragma once

#include "platform/database/jet_sql/ast.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/translation.h"

#include <string>
#include <string_view>
#include <vector>

// What all writers of one statement share.
namespace quillary::database::sqlite {

class Context {
public:
    Context(const SchemaView& schema, const HeadingQuery& headings) : schema_(schema), headings_(headings) {}

    const SchemaView& Schema() const { return schema_; }
    const HeadingQuery& Headings() const { return headings_; }

    // A name for a source, different from all others of the statement.
    std::string NewAlias() { return "t" + std::to_string(++aliases_); }

    void Declare(const std::vector<jet_sql::Parameter>& parameters);
    // The parameter of this name, made when it is the first time.
    Piece Parameter(std::string_view name);
    // A parameter takes the type of what it meets first.
    void GiveType(Piece& piece, FieldType type);

    // For each expression and query written: 3360 when the text or their number is beyond all sense
    // (aliases and saved queries can double them at every step).
    void CheckSize(const std::string& sql) {
        if (++pieces_ > kMostPieces || sql.size() > kLargestText) {
            RaiseTooComplex();
        }
    }

    // Marks a saved query as being written; 3102 when it is already.
    class OpenQuery {
    public:
        OpenQuery(Context& context, std::string_view name);
        ~OpenQuery() { context_.openQueries_.pop_back(); }
        OpenQuery(const OpenQuery&) = delete;
        OpenQuery& operator=(const OpenQuery&) = delete;

    private:
        Context& context_;
    };

    std::vector<ParameterUse> parameters;
    bool reusable = true;

private:
    static constexpr std::size_t kLargestText = 4'000'000;
    static constexpr std::size_t kMostPieces = 200'000;

    const SchemaView& schema_;
    const HeadingQuery& headings_;
    std::vector<std::string> openQueries_;
    std::size_t pieces_ = 0;
    int aliases_ = 0;
};

// The engine's type for a declared one (DECIMAL is held as a double).
FieldType FieldTypeOf(jet_sql::FieldType type);

} // namespace quillary::database::sqlite
