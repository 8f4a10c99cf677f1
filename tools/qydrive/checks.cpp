#include "player.h"

#include "config/profile_store.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/system/paths.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>

// The checks of a scenario.
namespace quillary::tools {

namespace {

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

void Expect(const std::string& what, std::string_view expected, std::string_view actual) {
    if (!SameText(expected, actual))
        throw ScenarioFault(what + ": expected " + Quoted(expected) + ", there was " + Quoted(actual));
}

template <class Queue>
auto TakeOldest(Queue& queue, const std::string& what) {
    if (queue.empty())
        throw ScenarioFault("expected " + what + ", there was none");
    auto oldest = queue.front();
    queue.pop_front();
    return oldest;
}

// "caption C heading H ...": pairs behind the text of a check.
const std::string* Option(const std::vector<std::string>& words, std::size_t from, std::string_view name) {
    for (std::size_t i = from; i + 1 < words.size(); i += 2)
        if (words[i] == name)
            return &words[i + 1];
    return nullptr;
}

bool OptionsAmong(const std::vector<std::string>& words, std::size_t from,
                  std::initializer_list<std::string_view> names) {
    if ((words.size() - from) % 2 != 0)
        return false;
    for (std::size_t i = from; i < words.size(); i += 2)
        if (std::find(names.begin(), names.end(), words[i]) == names.end())
            return false;
    return true;
}

// What is shown of a text in which "&&" stands for "&".
std::string Shown(std::string text) {
    for (std::size_t at = 0; (at = text.find("&&", at)) != std::string::npos; ++at)
        text.erase(at, 1);
    return text;
}

std::string TrimBlanks(std::string_view text) {
    return std::string(runtime::Trim(text));
}

std::string Joined(const std::vector<std::string>& rows) {
    std::string text;
    for (const std::string& row : rows)
        text += (text.empty() ? "" : " ") + Quoted(row);
    return text.empty() ? "no row" : text;
}

std::string UnifiedLineEnds(std::string text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\r')
            result += text[i];
        else if (i + 1 == text.size() || text[i + 1] != '\n')
            result += '\n';
    return result;
}

} // namespace

bool Player::ExecuteBoxCheck(const Command& command) {
    const Words& w = command.words;
    const std::size_t n = w.size();
    if (w[0] == "expect-message" && n >= 2 &&
        OptionsAmong(w, 2, {"caption", "heading", "sub", "icon", "buttons"})) {
        const auto box = TakeOldest(recorder_.messages, "a message box " + Quoted(w[1]));
        Expect("message", w[1], box.prompt);
        if (const auto* caption = Option(w, 2, "caption"))
            Expect("caption of the message", *caption, box.caption);
        if (const auto* heading = Option(w, 2, "heading"))
            Expect("heading of the message", *heading, box.heading);
        // The sub-heading as the user sees it, or as it was handed over with its "&" doubled.
        if (const auto* sub = Option(w, 2, "sub"); sub && *sub != box.subHeading)
            Expect("sub-heading of the message", *sub, Shown(box.subHeading));
        if (const auto* icon = Option(w, 2, "icon"))
            Expect("icon of the message", *icon, std::to_string(box.icon));
        if (const auto* buttons = Option(w, 2, "buttons"))
            Expect("buttons of the message", *buttons, std::to_string(box.buttons));
    } else if (w[0] == "expect-input" && n >= 2 && OptionsAmong(w, 2, {"title", "max"})) {
        const auto box = TakeOldest(recorder_.inputBoxes, "an input box " + Quoted(w[1]));
        Expect("input box", w[1], box.prompt);
        if (const auto* title = Option(w, 2, "title"))
            Expect("title of the input box", *title, box.title);
        if (const auto* max = Option(w, 2, "max"))
            Expect("limit of the input box", *max, std::to_string(box.maxLength));
    } else if (w[0] == "expect-no-message" && n == 1) {
        if (!recorder_.messages.empty())
            Fail("expected no message box, there was " + Quoted(recorder_.messages.front().prompt));
    } else if (w[0] == "forget-messages" && n == 1) {
        recorder_.messages.clear();
    } else if (w[0] == "expect-report" && n >= 2 && OptionsAmong(w, 2, {"number", "text"})) {
        const auto report = TakeOldest(recorder_.reports, "an error report of " + Quoted(w[1]));
        Expect("routine of the error report", w[1], report.routine);
        if (const auto* number = Option(w, 2, "number"))
            Expect("number of the error report", *number, std::to_string(report.number));
        if (const auto* text = Option(w, 2, "text"))
            Expect("text of the error report", *text, report.description);
    } else if (w[0] == "expect-no-report" && n == 1) {
        if (!recorder_.reports.empty())
            Fail("expected no error report, there was " + Quoted(recorder_.reports.front().routine) + ": " +
                 recorder_.reports.front().description);
    } else {
        return false;
    }
    return true;
}

void Player::CheckLog(const Command& command) {
    const auto lines = playground_.LogLines();
    if (command.words[0] == "expect-log") {
        Expect("lines of the error log", command.words[1], std::to_string(lines.size()));
        return;
    }
    const bool found = std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
        const auto tab = line.find('\t');
        return tab != std::string::npos && line.find(command.words[1], tab + 1) != std::string::npos;
    });
    if (!found)
        Fail("expected a line of the error log with " + Quoted(command.words[1]) + ", there was " +
             Joined(lines));
}

bool Player::ExecuteCheck(const Command& command) {
    const Words& w = command.words;
    const std::size_t n = w.size();
    if (w[0] == "expect" && n == 3) {
        Expect(w[1], w[2], PropertyOf(w[1]));
    } else if (w[0] == "expect-sql" && n >= 3) {
        const std::vector<std::string> expected(w.begin() + 3, w.end());
        const auto rows = playground_.Query(w[1], w[2]);
        if (!std::equal(expected.begin(), expected.end(), rows.begin(), rows.end(), SameText))
            Fail("rows: expected " + Joined(expected) + ", there was " + Joined(rows));
    } else if (w[0] == "expect-ini" && n == 4) {
        if (!playground_.IniHolds(w[1], w[2]))
            Fail("expected the key " + w[2] + " in [" + w[1] + "] of the ini file, there was none");
        Expect("[" + w[1] + "] " + w[2], w[3], playground_.IniValue(w[1], w[2]));
    } else if (w[0] == "expect-no-ini" && n == 3) {
        if (playground_.IniHolds(w[1], w[2]))
            Fail("expected no key " + w[2] + " in [" + w[1] + "] of the ini file, there was " +
                 Quoted(playground_.IniValue(w[1], w[2])));
    } else if (w[0] == "expect-file" && n == 3) {
        std::ifstream file(playground_.Below(w[1]), std::ios::binary);
        if (!file)
            Fail("expected a file " + w[1] + ", there was none");
        const std::string text(std::istreambuf_iterator<char>(file), {});
        Expect(w[1], w[2], UnifiedLineEnds(text));
    } else if (w[0] == "expect-no-file" && n == 2) {
        if (std::filesystem::exists(playground_.Below(w[1])))
            Fail("expected no file " + w[1] + ", there was one");
    } else if ((w[0] == "expect-log" || w[0] == "expect-log-line") && n == 2) {
        CheckLog(command);
    } else if (w[0] == "expect-form" && n == 2) {
        const auto* form = controls::TopForm();
        if (form == nullptr || !runtime::EqualName(form->Name(), w[1]))
            Fail("expected the form " + w[1] + " on top, there was " + (form ? form->Name() : "none"));
    } else if (w[0] == "expect-title" && n == 2) {
        Expect("title", w[1], TopForm().Caption.Get());
    } else if (w[0] == "expect-launch" && n == 3) {
        const auto launch = recorder_.started[TakeOldest(recorder_.launches, "a start of " + w[1])];
        // A program is started by its name with or without ".exe".
        if (const std::string program = playground_.Relative(launch.program); program != w[1] + ".exe")
            Expect("started program", w[1], program);
        Expect("arguments of " + w[1], TrimBlanks(w[2]), TrimBlanks(launch.arguments));
    } else if (w[0] == "expect-no-launch" && n == 1) {
        if (!recorder_.launches.empty())
            Fail("expected no started program, there was " +
                 Quoted(recorder_.started[recorder_.launches.front()].program));
    } else if (w[0] == "expect-help" && n == 2) {
        const std::string call = TakeOldest(recorder_.helpCalls, "a call of the help viewer");
        if (call.find(w[1]) == std::string::npos)
            Fail("call of the help viewer: expected one that names " + Quoted(w[1]) + ", there was " +
                 Quoted(call));
    } else if (w[0] == "expect-key" && n == 2) {
        Expect("key sent to the system", w[1], std::to_string(TakeOldest(recorder_.keys, "a key")));
    } else if (w[0] == "expect-no-key" && n == 1) {
        if (!recorder_.keys.empty())
            Fail("expected no key sent to the system, there was " + std::to_string(recorder_.keys.front()));
    } else if (w[0] == "expect-ended" && n == 1) {
        if (ProgramRuns())
            Fail("expected the program to have ended, the form " + controls::TopForm()->Name() + " is open");
    } else if (w[0] == "expect-fatal" && n <= 2) {
        if (!fatal_)
            Fail("expected the program to have ended with an error, it has not");
        if (n == 2)
            Expect("number of the fatal error", w[1], std::to_string(fatal_->Number()));
        fatal_.reset();
    } else {
        return false;
    }
    return true;
}

} // namespace quillary::tools
