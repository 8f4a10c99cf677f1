#include "fake_database.h"
#include "platform/controls/field_text.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"

#include <gtest/gtest.h>

namespace quillary::controls {
namespace {

using database::FieldType;
using runtime::Variant;
using runtime::VarType;

TEST(FieldValue, TakesWhatPeopleTypeByTheKindOfField) {
    runtime::SetLocale("en_NZ");
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
    testing::FakeEngine engine;
    engine.Table("T", {});
    for (const auto& test : cases) {
        engine.Find("T")->fields = {{"F", test.type}};
        auto records = engine.OpenDatabase("", false)->OpenRecordset("T");
        const std::string what =
            std::to_string(static_cast<int>(test.type)) + " '" + runtime::TextOf(test.typed) + "'";
        try {
            const Variant value = FieldValue((*records)[0], test.typed, true);
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
