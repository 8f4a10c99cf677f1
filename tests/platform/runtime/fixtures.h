#pragma once

#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace quillary::runtime {

// The number of the error that an action ends in; 0 when it ends well.
inline int ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

// Every test starts under en_NZ on 15 August 2008, half past two.
class RuntimeTest : public testing::Test {
protected:
    void SetUp() override {
        SetLocale("en_NZ");
        SetClock([] { return MakeDate(2008, 8, 15, 14, 30); });
    }
    void TearDown() override {
        SetLocale("en_NZ");
        SetClock(nullptr);
    }
};

// Digits and letters of a date, so that a failure can be read: "2007-07-01 10:30:00", "-" for none.
inline std::string Shown(const std::optional<Date>& date) {
    return date ? IsoText(*date) : "-";
}

} // namespace quillary::runtime
