#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace quillary::test {

// A folder that goes with all its contents when the test ends.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "quillary-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    const std::string& Path() const { return path_; }
    std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

    // Makes the folders above it too.
    std::string Write(std::string_view name, std::string_view bytes) const {
        const std::string path = *this / name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    std::string Read(std::string_view name) const {
        std::ifstream file(*this / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string path_;
};

} // namespace quillary::test
