#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quillary::runtime {
namespace {

struct ErrorEntry {
    int number;
    const char* text;
};

// By number.
constexpr ErrorEntry kErrors[] = {
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {7, "Out of memory"},
    {9, "Subscript out of range"},
    {10, "This array is fixed or temporarily locked"},
    {11, "Division by zero"},
    {13, "Type mismatch"},
    {14, "Out of string space"},
    {20, "Resume without error"},
    {28, "Out of stack space"},
    {51, "Internal error"},
    {52, "Bad file name or number"},
    {53, "File not found"},
    {54, "Bad file mode"},
    {55, "File already open"},
    {57, "Device I/O error"},
    {58, "File already exists"},
    {61, "Disk full"},
    {62, "Input past end of file"},
    {67, "Too many files"},
    {70, "Permission denied"},
    {71, "Disk not ready"},
    {74, "Can't rename with different drive"},
    {75, "Path/File access error"},
    {76, "Path not found"},
    {91, "Object variable or With block variable not set"},
    {94, "Invalid use of Null"},
    {321, "Invalid file format"},
    {340, "Control array element doesn't exist"},
    {380, "Invalid property value"},
    {381, "Invalid property array index"},
    {383, "Property is read-only"},
    {400, "Form already displayed; can't show modally"},
    {424, "Object required"},
    {429, "Component can't create object"},
    {438, "Object doesn't support this property or method"},
    {450, "Wrong number of arguments or invalid property assignment"},
    {457, "This key is already associated with an element of this collection"},
    {481, "Invalid picture"},
    {482, "Printer error"},
};

} // namespace

std::string ErrorText(int number) {
    const auto* entry = std::lower_bound(std::begin(kErrors), std::end(kErrors), number,
                                         [](const ErrorEntry& e, int n) { return e.number < n; });
    if (entry != std::end(kErrors) && entry->number == number) {
        return entry->text;
    }
    return "Application-defined or object-defined error";
}

RunTimeError::RunTimeError(int number, std::string source, std::string description)
    : number_(number), source_(std::move(source)), description_(std::move(description)) {}

RunTimeError::RunTimeError(int number) : RunTimeError(number, "QYSettings", ErrorText(number)) {}

} // namespace quillary::runtime
