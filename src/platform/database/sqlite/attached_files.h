#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Other files than the open one, which a statement names by IN 'path'. They are attached to the statement's
// connection while it runs.
namespace quillary::database::sqlite {

class Connection;

class AttachedFiles {
public:
    explicit AttachedFiles(Connection& connection) : connection_(connection) {}

    struct File {
        std::shared_ptr<Connection> connection;
        std::string name; // by which texts for SQLite call it
    };

    // The file of a path, or of a connect text ";DATABASE=path". 3024 and the other errors of opening, 3170
    // for a file of another kind.
    File Attach(std::string_view path, std::string_view connect);

    // Lets go of them; nothing may be running.
    void Release();

private:
    Connection& connection_;
    std::vector<File> files_;
};

} // namespace quillary::database::sqlite
