#include "platform/database/sqlite/database.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/jet_sql/printer.h"
#include "platform/database/sqlite/action.h"
#include "platform/database/sqlite/ddl.h"
#include "platform/database/sqlite/dynaset.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/query_defs.h"
#include "platform/database/sqlite/snapshot.h"
#include "platform/database/sqlite/statement_log.h"
#include "platform/database/sqlite/translator.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

constexpr int kErrInvalidOperation = 3219;
constexpr std::size_t kLongestName = 64;

// A text that may be the name of a table or query, without its brackets; "" when it is too long for one.
std::string_view NameOf(std::string_view text) {
    if (text.size() > 2 && text.front() == '[' && text.back() == ']') {
        text = text.substr(1, text.size() - 2);
    }
    return text.size() <= kLongestName ? text : std::string_view();
}

const SavedQuery* FindSaved(Connection& connection, std::string_view name) {
    if (name.empty()) {
        return nullptr;
    }
    const SavedQueries& queries = connection.Queries();
    const auto found = queries.find(FoldName(name));
    return found == queries.end() ? nullptr : &found->second;
}

} // namespace

DatabaseFile::DatabaseFile(std::shared_ptr<Connection> connection, std::string name, bool readOnly)
    : connection_(std::move(connection)), name_(std::move(name)),
      readOnly_(readOnly || connection_->ReadOnly()) {}

DatabaseFile::~DatabaseFile() {
    try {
        Close();
    } catch (const runtime::RunTimeError&) {
        // The disk failed at the last moment; there is nobody left to tell.
    }
}

Connection& DatabaseFile::Use() const {
    if (connection_ == nullptr) {
        Raise(kErrObjectClosed, "Object invalid or no longer set.");
    }
    return *connection_;
}

void DatabaseFile::RequireWritable() const {
    if (readOnly_) {
        Raise(kErrReadOnly, "Cannot update. The database '" + name_ + "' is read-only.");
    }
}

// --------------------------------------------------------------------------------------------- reading

std::unique_ptr<Recordset> DatabaseFile::OpenRecordset(std::string_view source, RecordsetType type) {
    Connection& connection = Use();
    const ReadScope scope(connection);
    const std::string_view name = NameOf(source);
    if (const TableInfo* table = name.empty() ? nullptr : connection.Tables()->Find(name)) {
        return Open(connection.Statements().OpenTable(*table),
                    type == RecordsetType::Default ? RecordsetType::Table : type);
    }
    if (!jet_sql::IsStatement(source)) {
        const SavedQuery* saved = FindSaved(connection, name);
        if (saved == nullptr) {
            RaiseUnknownTable(source);
        }
        const std::string sql = saved->sql;
        return OpenStatement(sql, type, {});
    }
    return OpenStatement(source, type, {});
}

std::unique_ptr<Recordset> DatabaseFile::OpenStatement(std::string_view sql, RecordsetType type,
                                                       const ParameterValues& given) {
    Connection& connection = Use();
    if (type == RecordsetType::Table) {
        Raise(kErrInvalidOperation, "Invalid operation: a query cannot be opened as a table.");
    }
    const ReadScope scope(connection);
    return Open(connection.Statements().OpenQuery(sql, given), type);
}

std::unique_ptr<Recordset> DatabaseFile::Open(std::shared_ptr<const OpenedQuery> query,
                                              RecordsetType type) const {
    if (type == RecordsetType::Default) {
        type = RecordsetType::Dynaset;
    }
    if (type == RecordsetType::Snapshot || query->selection.tables.empty()) {
        return Snapshot::Open(connection_, std::move(query), type);
    }
    return Dynaset::Open(connection_, std::move(query), type, readOnly_);
}

const std::vector<TableDef>& DatabaseFile::TableDefs() {
    const ReadScope scope(Use());
    shown_ = connection_->Tables();
    return shown_->Tables();
}

const std::vector<RelationDef>& DatabaseFile::Relations() {
    const ReadScope scope(Use());
    shown_ = connection_->Tables();
    return shown_->Relations();
}

// --------------------------------------------------------------------------------------------- writing

void DatabaseFile::Execute(std::string_view sql, int options) {
    Connection& connection = Use();
    if (!jet_sql::IsStatement(sql)) {
        std::string text;
        {
            const ReadScope scope(connection);
            const std::string_view name = NameOf(sql);
            const SavedQuery* saved = FindSaved(connection, name);
            if (saved == nullptr) {
                RaiseUnknownTable(sql);
            }
            text = saved->sql;
        }
        ExecuteStatement(text, options, {});
        return;
    }
    ExecuteStatement(sql, options, {});
}

void DatabaseFile::ExecuteStatement(std::string_view sql, int options, const ParameterValues& given) {
    Connection& connection = Use();
    const auto tree = connection.Statements().Parse(sql);
    if (const auto* call = tree->As<jet_sql::Execute>()) {
        ExecuteSaved(*call, options);
        return;
    }
    affected_ = 0;
    Observe(sql);
    RequireWritable();
    if (IsDefinition(*tree)) {
        RunDefinition(connection, *tree, sql);
        return;
    }
    if (!IsAction(*tree)) {
        Raise(3065, "Cannot execute a select query.");
    }
    const bool failOnError = (options & kFailOnError) != 0;
    if (failOnError && ExecuteAlone(sql, given)) {
        return;
    }
    WriteScope scope(connection, kErrCannotLock);
    const auto action = connection.Statements().Translate(sql);
    const std::vector<Variant> values = ValuesFor(action->parameters, given);
    const long affected = RunAction(connection, *action, values, failOnError);
    scope.Commit();
    affected_ = affected;
}

// A statement of one step is a transaction of its own. Within a greater one SQLite would copy each page
// before it is changed, to be able to undo the one statement. False: it has to have a write scope.
bool DatabaseFile::ExecuteAlone(std::string_view sql, const ParameterValues& given) {
    Connection& connection = Use();
    std::shared_ptr<const Action> action;
    {
        const ReadScope scope(connection);
        action = connection.Statements().Translate(sql);
    }
    if (action->steps.size() != 1 || action->kind == Action::Kind::SelectInto) {
        return false;
    }
    // Where another program changes a definition just now, SQLite reads the names anew.
    affected_ = RunAction(connection, *action, ValuesFor(action->parameters, given), true);
    connection.CountWrite();
    return true;
}

// What stands behind EXECUTE: anything that needs no table.
Variant DatabaseFile::ValueOf(const jet_sql::Expr& argument) {
    if (const auto* literal = argument.As<jet_sql::Literal>()) {
        return literal->value;
    }
    const auto row = OpenStatement("SELECT " + jet_sql::Print(argument), RecordsetType::Snapshot, {});
    return (*row)[0].Value();
}

// EXECUTE name values: the values go to the parameters in their order.
void DatabaseFile::ExecuteSaved(const jet_sql::Execute& call, int options) {
    Connection& connection = Use();
    std::string text;
    {
        const ReadScope scope(connection);
        const SavedQuery* saved = FindSaved(connection, call.name);
        if (saved == nullptr) {
            RaiseUnknownTable(call.name);
        }
        text = saved->sql;
    }
    const auto tree = connection.Statements().Parse(text);
    ParameterValues given;
    for (std::size_t i = 0; i < call.args.size() && i < tree->parameters.size(); ++i) {
        given.emplace_back(tree->parameters[i].name, ValueOf(call.args[i]));
    }
    constexpr std::size_t kDeepest = 50;
    const auto runs = [&](const std::string& name) { return runtime::EqualName(name, call.name); };
    if (executing_.size() >= kDeepest || std::any_of(executing_.begin(), executing_.end(), runs)) {
        Raise(3102, "Circular reference caused by '" + call.name + "'.");
    }
    struct Running {
        std::vector<std::string>& names;
        ~Running() { names.pop_back(); }
    };
    executing_.push_back(call.name);
    const Running running{executing_};
    ExecuteStatement(text, options, given);
}

// --------------------------------------------------------------------------------------- saved queries

std::vector<std::shared_ptr<QueryDef>> DatabaseFile::QueryDefs() {
    Connection& connection = Use();
    const ReadScope scope(connection);
    std::vector<std::shared_ptr<QueryDef>> result;
    for (const auto& [key, query] : connection.Queries()) {
        result.push_back(std::make_shared<SavedQueryDef>(shared_from_this(), query.name, query.sql));
    }
    return result;
}

std::shared_ptr<QueryDef> DatabaseFile::FindQueryDef(std::string_view name) {
    Connection& connection = Use();
    const ReadScope scope(connection);
    const SavedQuery* saved = FindSaved(connection, name);
    return saved == nullptr ? nullptr
                            : std::make_shared<SavedQueryDef>(shared_from_this(), saved->name, saved->sql);
}

std::shared_ptr<QueryDef> DatabaseFile::CreateQueryDef(std::string_view name, std::string_view sql) {
    Connection& connection = Use();
    RequireWritable();
    connection.Statements().Parse(sql); // a broken text is not stored
    Observe(sql);
    WriteScope scope(connection, kErrCannotLock);
    AddQuery(connection, name, sql);
    scope.Commit();
    return std::make_shared<SavedQueryDef>(shared_from_this(), std::string(name), std::string(sql));
}

void DatabaseFile::DeleteQueryDef(std::string_view name) {
    Connection& connection = Use();
    RequireWritable();
    WriteScope scope(connection, kErrCannotLock);
    RemoveQuery(connection, name);
    scope.Commit();
}

// ---------------------------------------------------------------------------------------------- ends

void DatabaseFile::Flush() {
    Use().Sync();
}

void DatabaseFile::Close() {
    if (connection_ != nullptr) {
        const std::shared_ptr<Connection> connection = std::move(connection_);
        constexpr long kPoolAndThis = 2;
        if (connection.use_count() == kPoolAndThis) {
            connection->Settle();
        } else {
            connection->Sync();
        }
    }
}

} // namespace quillary::database::sqlite
