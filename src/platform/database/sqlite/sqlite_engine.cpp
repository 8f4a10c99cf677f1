#include "platform/database/engine.h"
#include "platform/database/sqlite/connection_pool.h"
#include "platform/database/sqlite/database.h"

namespace quillary::database {
namespace {

class SqliteEngine final : public Engine {
public:
    std::shared_ptr<Database> OpenDatabase(std::string_view path, bool readOnly) override {
        return std::make_shared<sqlite::DatabaseFile>(sqlite::OpenConnection(Native(path)), std::string(path),
                                                      readOnly);
    }

    std::shared_ptr<Database> CreateDatabase(std::string_view path) override {
        return std::make_shared<sqlite::DatabaseFile>(sqlite::CreateFile(Native(path)), std::string(path),
                                                      false);
    }

    void SetPathResolver(std::function<std::string(std::string_view)> resolver) override {
        resolver_ = std::move(resolver);
        sqlite::SetNativePath(resolver_); // for the paths within statements
    }

    void BackupDatabase(std::string_view path, std::string_view target) override {
        sqlite::CopyFile(Native(path), Native(target));
    }

    void ReleaseIdle() override { sqlite::CloseIdleConnections(); }

private:
    std::string Native(std::string_view path) const {
        return resolver_ ? resolver_(path) : std::string(path);
    }

    std::function<std::string(std::string_view)> resolver_;
};

} // namespace

std::unique_ptr<Engine> CreateSqliteEngine() {
    return std::make_unique<SqliteEngine>();
}

} // namespace quillary::database
