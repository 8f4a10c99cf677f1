#pragma once

#include <exception>
#include <string>

namespace quillary::runtime {

// Numbers of the run time itself. Those of the database engine stand in platform/database/errors.h.
inline constexpr int kErrInvalidProcedureCall = 5;
inline constexpr int kErrOverflow = 6;
inline constexpr int kErrSubscriptOutOfRange = 9;
inline constexpr int kErrDivisionByZero = 11;
inline constexpr int kErrTypeMismatch = 13;
inline constexpr int kErrFileNotFound = 53;
inline constexpr int kErrObjectNotSet = 91;
inline constexpr int kErrInvalidUseOfNull = 94;

// The one exception type of the program: an error with the number that rules and reports go by, the
// source that raised it and a text for the user.
class RunTimeError : public std::exception {
public:
    RunTimeError(int number, std::string source, std::string description);
    // The same with the run time's own text for the number and the source "QYSettings".
    explicit RunTimeError(int number);

    int Number() const noexcept { return number_; }
    const std::string& Source() const noexcept { return source_; }
    const std::string& Description() const noexcept { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    int number_;
    std::string source_;
    std::string description_;
};

// The run time's text for one of its numbers ("Overflow", "Type mismatch", ...).
std::string ErrorText(int number);

} // namespace quillary::runtime
