#include "common/column_file.h"

#include "config/profile_store.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

#include <charconv>
#include <fstream>
#include <limits>

namespace quillary::common {

using runtime::RunTimeError;

namespace {

constexpr int kErrPastEnd = 62;
constexpr int kErrFileAccess = 75;

std::string PathOf(std::string_view fileName) {
    return system::Join(config::GetDataRoot(), fileName);
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c;
        if (c == '"')
            quoted += c;
    }
    return quoted + '"';
}

std::string BooleanText(bool value) {
    return value ? "#TRUE#" : "#FALSE#";
}

// The values of a file, one after the other.
class Reader {
public:
    Reader(std::string path, std::string text) : path_(std::move(path)), text_(std::move(text)) {}

    std::string Text() {
        if (Rest().empty() || Rest().front() != '"')
            return std::string(Bare());
        ++at_;
        std::string value;
        while (at_ < text_.size()) {
            if (text_[at_] != '"') {
                value += text_[at_++];
            } else if (Rest().starts_with("\"\"")) {
                value += '"';
                at_ += 2;
            } else {
                ++at_;
                EndValue();
                return value;
            }
        }
        PastEnd();
    }

    template <class Whole>
    Whole Number() {
        const std::string_view bare = Bare();
        Whole value{};
        const auto [stop, fault] = std::from_chars(bare.data(), bare.data() + bare.size(), value);
        if (fault != std::errc() || stop != bare.data() + bare.size())
            WrongKind(bare);
        return value;
    }

    bool Boolean() {
        const std::string_view bare = Bare();
        if (!runtime::EqualName(bare, "#TRUE#") && !runtime::EqualName(bare, "#FALSE#"))
            WrongKind(bare);
        return runtime::EqualName(bare, "#TRUE#");
    }

    bool AtLineEnd() const { return Rest().empty() || Rest().front() == '\r' || Rest().front() == '\n'; }
    void EndLine() {
        while (!AtLineEnd())
            Text();
        at_ += Rest().starts_with("\r\n") ? 2 : Rest().empty() ? 0 : 1;
    }

private:
    std::string_view Rest() const { return std::string_view(text_).substr(at_); }

    // A value without quotes.
    std::string_view Bare() {
        if (AtLineEnd())
            PastEnd();
        const std::string_view value =
            runtime::Trim(Rest().substr(0, std::min(Rest().find_first_of(",\r\n"), Rest().size())));
        at_ += std::min(Rest().find_first_of(",\r\n"), Rest().size());
        EndValue();
        return value;
    }
    void EndValue() {
        if (Rest().starts_with(','))
            ++at_;
        else if (!AtLineEnd())
            WrongKind(Rest().substr(0, 1));
    }
    [[noreturn]] void PastEnd() const {
        throw RunTimeError(kErrPastEnd, "ColumnFile",
                           "The column definition file '" + path_ + "' is cut off");
    }
    [[noreturn]] void WrongKind(std::string_view value) const {
        throw RunTimeError(runtime::kErrTypeMismatch, "ColumnFile",
                           "The column definition file '" + path_ + "' is damaged at '" + std::string(value) +
                               "'");
    }

    std::string path_, text_;
    std::size_t at_ = 0;
};

} // namespace

void WriteColumnFile(std::string_view fileName, const std::vector<ColumnDefinition>& columns) {
    std::string text;
    for (const ColumnDefinition& column : columns) {
        text += Quoted(column.caption) + "," + Quoted(column.field) + "," + std::to_string(column.length) +
                "," + std::to_string(column.type) + "," + std::to_string(column.width) + "," +
                std::to_string(column.number);
        if (column.marks)
            text += "," + BooleanText(column.marks->picture) + "," + BooleanText(column.marks->leading);
        text += "\r\n";
    }
    const std::string path = PathOf(fileName);
    std::ofstream file(system::ToNative(path), std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file)
        throw RunTimeError(kErrFileAccess, "ColumnFile",
                           "The column definition file '" + path +
                               "' cannot be written. Check that the data folder is there, that you may write "
                               "to it, and that the disk is not full");
}

std::vector<ColumnDefinition> ReadColumnFile(std::string_view fileName, std::size_t count) {
    const std::string path = PathOf(fileName);
    std::optional<std::string> text = system::ReadTextFile(path);
    if (!text)
        throw RunTimeError(runtime::kErrFileNotFound, "ColumnFile",
                           "The column definition file '" + path + "' cannot be read");
    Reader reader(path, std::move(*text));
    std::vector<ColumnDefinition> columns;
    while (columns.size() < count) {
        ColumnDefinition column;
        column.caption = reader.Text();
        column.field = reader.Text();
        column.length = reader.Number<std::int16_t>();
        column.type = reader.Number<std::int32_t>();
        column.width = reader.Number<std::int32_t>();
        column.number = reader.Number<std::int16_t>();
        if (!reader.AtLineEnd()) {
            ColumnMarks marks;
            marks.picture = reader.Boolean();
            marks.leading = reader.Boolean();
            column.marks = marks;
        }
        reader.EndLine();
        columns.push_back(std::move(column));
    }
    return columns;
}

} // namespace quillary::common
