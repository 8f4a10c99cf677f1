#include "platform/database/sqlite/schema.h"

namespace quillary::database::sqlite {

const TableDef* Schema::FindTable(std::string_view name) const {
    const TableInfo* table = catalogue_->Find(name);
    return table == nullptr ? nullptr : &table->def;
}

const std::string* Schema::FindQuery(std::string_view name) const {
    const SavedQueries& queries = connection_.Queries();
    const auto found = queries.find(FoldName(name));
    // A name that is missing now may be a query later, so looking in vain counts too.
    usedQueries_ = true;
    return found == queries.end() ? nullptr : &found->second.sql;
}

std::string Schema::TableOrder(const TableDef& table, std::string_view alias) const {
    const TableInfo* info = catalogue_->Find(table.name);
    return info == nullptr ? std::string() : info->Order(std::string(alias) + ".");
}

const SchemaView* Schema::External(std::string_view path, std::string_view connect,
                                   std::string& schemaName) const {
    const AttachedFiles::File file = connection_.Others().Attach(path, connect);
    schemaName = file.name;
    if (file.connection.get() == &connection_) {
        return this;
    }
    const ReadScope scope(*file.connection);
    others_.push_back(std::make_unique<Schema>(*file.connection));
    return others_.back().get();
}

} // namespace quillary::database::sqlite
