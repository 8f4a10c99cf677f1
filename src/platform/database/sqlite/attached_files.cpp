#include "platform/database/sqlite/attached_files.h"

#include "platform/database/sqlite/connection_pool.h"
#include "platform/database/sqlite/file_check.h"
#include "platform/database/sqlite/piece.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

// "kind;NAME=value;NAME=value", the kind empty for a file of this engine.
std::string PathOf(std::string_view path, std::string_view connect) {
    std::string result(path);
    bool first = true;
    while (!connect.empty() || first) {
        const std::size_t end = std::min(connect.find(';'), connect.size());
        const std::string_view part = runtime::Trim(connect.substr(0, end));
        connect.remove_prefix(std::min(end + 1, connect.size()));
        constexpr std::string_view kPath = "DATABASE=";
        if (runtime::EqualName(part.substr(0, kPath.size()), kPath)) {
            result = part.substr(kPath.size());
        } else if (first && !part.empty() && !runtime::EqualName(part, "MS Access")) {
            Raise(3170, "Could not find installable ISAM.");
        }
        first = false;
    }
    return result;
}

} // namespace

AttachedFiles::File AttachedFiles::Attach(std::string_view path, std::string_view connect) {
    const std::string native = NativePath(PathOf(path, connect));
    const std::shared_ptr<Connection> other = OpenConnection(native);
    if (other.get() == &connection_) {
        return {other, "main"};
    }
    const auto known = std::find_if(files_.begin(), files_.end(),
                                    [&](const File& file) { return file.connection == other; });
    if (known != files_.end()) {
        return *known;
    }
    File file{other, "x" + std::to_string(files_.size() + 1)};
    const std::string mode = !other->ReadOnly() ? "mode=rw" : HasLog(native) ? "mode=ro" : "immutable=1";
    const std::string uri = FileUri(native, mode);
    const Statement attach = connection_.Prepare("ATTACH ?1 AS " + file.name, Operation::Open);
    Run run(attach.Get());
    sqlite3_bind_text64(run, 1, uri.data(), uri.size(), SQLITE_STATIC, SQLITE_UTF8);
    run.Step(Operation::Open);
    files_.push_back(file);
    return file;
}

void AttachedFiles::Release() {
    while (!files_.empty()) {
        const std::string detach = "DETACH " + files_.back().name;
        if (sqlite3_exec(connection_.Handle(), detach.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            return; // something still runs: the next time
        }
        files_.pop_back();
    }
}

} // namespace quillary::database::sqlite
