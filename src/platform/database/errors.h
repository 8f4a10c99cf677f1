#pragma once

// The numbers that the database engine raises in a runtime::RunTimeError, as rules and reports go by.
namespace quillary::database {

inline constexpr int kErrUpdateWithoutEdit = 3020;
inline constexpr int kErrNoCurrentRecord = 3021;
inline constexpr int kErrDuplicateValue = 3022;
inline constexpr int kErrFileNotFound = 3024;
inline constexpr int kErrReadOnly = 3027;
inline constexpr int kErrFileInUse = 3045;
inline constexpr int kErrCannotOpenFile = 3051;   // unreadable, a directory
inline constexpr int kErrTooFewParameters = 3061; // unknown column
inline constexpr int kErrQueryText = 3075;        // broken query text
inline constexpr int kErrFindCriterion = 3077;
inline constexpr int kErrUnknownTable = 3078; // unknown table or query
inline constexpr int kErrAmbiguousColumn = 3079;
inline constexpr int kErrUndefinedFunction = 3085;
inline constexpr int kErrFieldTooSmall = 3163;
inline constexpr int kErrRecordDeleted = 3167;
inline constexpr int kErrRecordChanged = 3197;
inline constexpr int kErrRelatedRows = 3200;
inline constexpr int kErrMissingRelatedRow = 3201;
inline constexpr int kErrCannotLock = 3218;
inline constexpr int kErrPageLocked = 3260;
inline constexpr int kErrItemNotFound = 3265;
inline constexpr int kErrRequiredField = 3314;
inline constexpr int kErrZeroLength = 3315;
inline constexpr int kErrNotADatabase = 3343;
inline constexpr int kErrWrongType = 3421;
inline constexpr int kErrTypeMismatchInCriterion = 3464;
// Others of the dialect (3073, 3103, 3131, 3134, 3144, ...) stand where they are raised.

} // namespace quillary::database
