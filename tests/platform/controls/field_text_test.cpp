#include "platform/controls/field_text.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "stored_table.h"

#include <gtest/gtest.h>

namespace quillary::controls {
namespace {

using database::FieldType;
using runtime::Variant;
using runtime::VarType;

TEST(FieldValue, TakesWhatPeopleTypeByTheKindOfField) {
    struct {
        FieldType type;
        Variant typed;
        const char* text; // nullptr: refused
        VarType kind = VarType::Null;
    } cases[] = {
        {FieldType::Boolean, "yes", "True", VarType::Boolean},
        {FieldType::Boolean, " Off ", "False", VarType::Boolean},
        {FieldType::Boolean, "-1", "True", VarType::Boolean},
        {FieldType::Boolean, Variant(100), "True", VarType::Boolean},
        {FieldType::Boolean, "", "False", VarType::Boolean},
        {FieldType::Boolean, Variant::Null(), "False", VarType::Boolean},
        {FieldType::Boolean, "perhaps", nullptr},
        {FieldType::Byte, "255", "255", VarType::Integer},
        {FieldType::Byte, "256", nullptr},
        {FieldType::Integer, "2.5", "2", VarType::Integer}, // halves to even
        {FieldType::Integer, "3.5", "4", VarType::Integer},
        {FieldType::Integer, "32768", nullptr},
        {FieldType::Integer, true, "-1", VarType::Integer},
        {FieldType::Long, "1,234", "1234", VarType::Long},
        {FieldType::Long, "1e10", nullptr},
        {FieldType::Long, "12 sheep", nullptr},
        {FieldType::Single, "0.105", "0.105", VarType::Single},
        {FieldType::Single, "1e39", nullptr},
        {FieldType::Double, "(5)", "-5", VarType::Double},
        {FieldType::Currency, "$1,234.56", "1234.56", VarType::Currency},
        {FieldType::Currency, 2.5, "2.5", VarType::Currency},
        {FieldType::Date, "1 Jul 07", "1/07/2007", VarType::Date},
        {FieldType::Date, runtime::MakeDate(2008, 8, 15), "15/08/2008", VarType::Date},
        {FieldType::Date, "31/31/31", nullptr},
        {FieldType::Date, "   ", "", VarType::Null},
        {FieldType::Long, "", "", VarType::Null},
        {FieldType::Text, "", "", VarType::String},
        {FieldType::Text, Variant::Null(), "", VarType::Null},
        {FieldType::Text, "  as typed ", "  as typed ", VarType::String},
        {FieldType::Memo, Variant(5), "5", VarType::String},
    };
    testing::StoredTable table({"T",
                                {{"ID", FieldType::Long, 0, false, true, true, {}},
                                 {"Boolean", FieldType::Boolean, 0, false, true, false, {}},
                                 {"Byte", FieldType::Byte, 0, false, true, false, {}},
                                 {"Integer", FieldType::Integer, 0, false, true, false, {}},
                                 {"Long", FieldType::Long, 0, false, true, false, {}},
                                 {"Currency", FieldType::Currency, 0, false, true, false, {}},
                                 {"Single", FieldType::Single, 0, false, true, false, {}},
                                 {"Double", FieldType::Double, 0, false, true, false, {}},
                                 {"Date", FieldType::Date, 0, false, true, false, {}},
                                 {"Text", FieldType::Text, 20, false, true, false, {}},
                                 {"Memo", FieldType::Memo, 0, false, true, false, {}}},
                                {}});
    const auto records = table.Open("T");
    for (const auto& test : cases) {
        int field = 1;
        while ((*records)[field].Type() != test.type)
            ++field;
        const std::string what =
            std::to_string(static_cast<int>(test.type)) + " '" + runtime::TextOf(test.typed) + "'";
        try {
            const Variant value = FieldValue((*records)[field], test.typed, true);
            EXPECT_NE(test.text, nullptr) << what << " gave " << runtime::TextOf(value);
            EXPECT_EQ(runtime::TextOf(value), test.text ? test.text : "") << what;
            EXPECT_EQ(value.Type(), test.kind) << what;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(test.text, nullptr) << what;
            EXPECT_EQ(error.Number(), database::kErrWrongType) << what;
        }
    }
}

} // namespace
} // namespace quillary::controls
