#include "player.h"

#include "common/error_report.h"
#include "common/table_editor.h"
#include "platform/controls/event.h"
#include "platform/controls/lists.h"
#include "platform/controls/tab_strip.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "shell/dialogs.h"
#include "shell/program_start.h"

#include <algorithm>
#include <charconv>
#include <iostream>

namespace quillary::tools {

namespace {

constexpr const char* kDefaultLocale = "en_NZ";
constexpr const char* kDefaultDate = "2008-08-15";

std::optional<long> Number(std::string_view text) {
    long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

runtime::Date DateOf(const std::string& text) {
    const auto date = runtime::ParseIso(text);
    if (!date)
        throw ScenarioFault("\"" + text + "\" is no date of the form YYYY-MM-DD");
    return *date;
}

} // namespace

bool SameText(std::string_view left, std::string_view right) {
    const auto unified = [](std::string_view text) {
        std::string result;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] != '\r')
                result += text[i];
            else if (i + 1 == text.size() || text[i + 1] != '\n')
                result += '\n';
        }
        return result;
    };
    return left == right || unified(left) == unified(right);
}

Player::Player(std::string file, std::vector<Command> commands, const PlayOptions& options)
    : file_(std::move(file)), commands_(std::move(commands)), options_(options) {
    const ModalPlay play = [this](controls::Form& form) { Run(&form); };
    hand_ = options.widgets ? MakeWidgetHand(play) : MakeDirectHand(play);
    controls::SetFormHost(&hand_->Host());
    recorder_.fault = [this](const std::string& what) {
        if (fault_.empty()) {
            fault_ = what;
            faultLine_ = next_ > 0 ? commands_[next_ - 1].line : 0;
        }
    };
    system::SetServices(RecordingServices(recorder_, playground_.Folder()));
    runtime::SetLocale(kDefaultLocale);
    SetScenarioDate(DateOf(kDefaultDate));
    if (options.trace)
        controls::SetEventTrace([](const std::string& routine) { std::cout << "  " << routine << "\n"; });
}

Player::~Player() {
    controls::SetEventTrace({});
    controls::SetFormHost(nullptr);
    system::SetServices({});
    runtime::SetClock(nullptr);
}

PlayResult Player::Play() {
    for (const Command& command : commands_) {
        if (command.words[0] == "start")
            break;
        if (command.words[0] == "use" && command.words.size() == 2) {
            playground_.Foresee(command.words[1]);
            break;
        }
        if (command.words[0] == "use" && command.words.size() == 3 && command.words[1] == "folder") {
            playground_.ForeseeFolder(FolderOf(command.words[2]));
            break;
        }
    }
    Run(nullptr);
    if (fault_.empty() && !allowReports_ && !recorder_.reports.empty()) {
        fault_ = "expected no error report, there was \"" + recorder_.reports.front().routine +
                 "\": " + recorder_.reports.front().description;
        faultLine_ = commands_.empty() ? 0 : commands_.back().line;
    }
    if (fault_.empty() && fatal_) {
        fault_ = "the program ended with error " + std::to_string(fatal_->Number()) + ": " +
                 fatal_->Description() + ", which no expect-fatal expects";
        faultLine_ = commands_.empty() ? 0 : commands_.back().line;
    }
    recorder_.over = true;
    EndProgram();
    PlayResult result;
    result.passed = fault_.empty();
    result.skipped = skipped_;
    if (!result.passed)
        result.fault = file_ + ":" + std::to_string(faultLine_) + ": " + fault_;
    if (options_.keep) {
        playground_.Keep();
        result.keptFolder = playground_.Folder().string();
    }
    return result;
}

std::string Player::FolderOf(const std::string& path) const {
    if (path.starts_with("$") || path.starts_with("/"))
        return path;
    return (std::filesystem::absolute(file_).parent_path() / path).lexically_normal().string();
}

void Player::Run(const controls::Form* modal) {
    const auto modalOpen = [&] {
        const auto& open = controls::OpenForms();
        return std::find(open.begin(), open.end(), modal) != open.end();
    };
    while (next_ < commands_.size() && fault_.empty() && !unwinding_) {
        if (modal != nullptr && !modalOpen())
            return;
        const Command& command = commands_[next_++];
        try {
            Execute(command);
        } catch (const ScenarioSkip& skip) {
            skipped_ = skip.reason;
            return;
        } catch (const ScenarioFault& fault) {
            if (fault_.empty()) {
                fault_ = fault.what();
                faultLine_ = command.line;
            }
        } catch (const runtime::RunTimeError& error) {
            if (fault_.empty()) {
                fault_ = "error " + std::to_string(error.Number()) + ": " + error.Description();
                faultLine_ = command.line;
            }
        }
    }
    // The scenario ended with the dialog open: the routine that showed it is let go on.
    if (modal != nullptr && modalOpen()) {
        recorder_.over = true;
        for (controls::Form* form : controls::OpenForms())
            if (form == modal) {
                form->Hide();
                break;
            }
    }
}

void Player::Execute(const Command& command) {
    const bool known = ExecuteSetup(command) || ExecuteGesture(command) || ExecuteGridGesture(command) ||
                       ExecuteBoxCheck(command) || ExecuteCheck(command);
    if (!known)
        throw ScenarioFault("there is no command \"" + command.words[0] + "\", or not with these words");
}

bool Player::ExecuteSetup(const Command& command) {
    const Words& w = command.words;
    const std::size_t n = w.size();
    if (w[0] == "use" && n == 2)
        playground_.Use(w[1]);
    else if (w[0] == "use" && n == 3 && w[1] == "folder")
        playground_.UseFolder(FolderOf(w[2]));
    else if (w[0] == "edition" && (n == 2 || n == 3)) {
        const auto number = Number(w[1]);
        if (!number)
            throw ScenarioFault("`edition` takes a number");
        playground_.SetEdition(static_cast<int>(*number), n == 3 ? w[2] : "ALL");
    } else if (w[0] == "ini" && n == 4)
        playground_.SetIni(w[1], w[2], w[3]);
    else if (w[0] == "ini-raw")
        playground_.AppendIniLine(command.rest);
    else if (w[0] == "no-ini" && n == 1)
        playground_.RemoveIni();
    else if (w[0] == "winini" && n == 4)
        playground_.SetWinIni(w[1], w[2], w[3]);
    else if (w[0] == "locale" && n == 2)
        runtime::SetLocale(w[1]);
    else if (w[0] == "today" && n == 2)
        SetScenarioDate(DateOf(w[1]));
    else if (w[0] == "sql" && n == 2)
        playground_.RunSql(w[1], command.rest);
    else if (w[0] == "file" && n == 2)
        playground_.MakeFile(w[1]);
    else if (w[0] == "picture" && n == 2)
        playground_.MakePicture(w[1]);
    else if (w[0] == "drop-query" && n == 3)
        playground_.DropQuery(w[1], w[2]);
    else if (w[0] == "allow-reports" && n == 1)
        allowReports_ = true;
    else
        return false;
    return true;
}

void Player::Start(const std::string& tail) {
    playground_.Prepare();
    if (ProgramRuns())
        throw ScenarioFault("the program is running already");
    EndProgram();
    started_ = true;
    Do([&] {
        shell::SubMain(tail);
        return Outcome::Done();
    });
}

void Player::EndProgram() {
    if (!started_)
        return;
    started_ = false;
    common::IgnoreErrors([] { shell::EndProgram(); });
}

bool Player::ProgramRuns() const {
    return started_ && !controls::OpenForms().empty();
}

void Player::EndFatally(const runtime::RunTimeError& error) {
    fatal_ = error;
    // A program that dies writes nothing more: its forms go without their events, each leaving the list.
    std::vector<controls::Form*> open = controls::OpenForms();
    for (auto form = open.rbegin(); form != open.rend(); ++form)
        (*form)->Hide();
}

void Player::Do(const std::function<Outcome()>& gesture) {
    Outcome outcome = Outcome::Done();
    try {
        outcome = gesture();
        hand_->Settle();
    } catch (const runtime::RunTimeError& error) {
        EndFatally(error);
    }
    if (outcome.IsImpossible())
        Fail("this could not be done: " + outcome.Reason());
}

bool Player::ExecuteGesture(const Command& command) {
    const Words& w = command.words;
    const std::size_t n = w.size();
    if (w[0] == "start" && n <= 2) {
        Start(n == 2 ? w[1] : "");
    } else if (w[0] == "tab" && n == 3) {
        auto& strip = FindControl(w[1]);
        const auto number = Number(w[2]);
        auto* tabs = dynamic_cast<controls::TabStrip*>(&strip);
        if (tabs == nullptr)
            Fail(w[1] + " is no tab strip");
        int tab = number ? static_cast<int>(*number) : -1;
        for (int i = 0; tab < 0 && i < tabs->TabCount(); ++i)
            if (tabs->TabCaption(i) == w[2] ||
                runtime::EqualText(controls::PlainCaption(tabs->TabCaption(i)), w[2]))
                tab = i;
        if (tab < 0)
            Fail("expected a tab \"" + w[2] + "\", there are " + strip.PropertyText("Tabs").value_or(""));
        Do([&] { return hand_->PickTab(strip, tab); });
    } else if (w[0] == "focus" && n == 2) {
        Do([&] { return hand_->Focus(FindControl(w[1])); });
    } else if (w[0] == "type" && n == 3) {
        Do([&] { return hand_->TypeText(FindControl(w[1]), w[2]); });
    } else if (w[0] == "key" && n == 3) {
        controls::ParseKey(w[2]); // a key that there is not is the scenario's fault, not the program's end
        Do([&] { return hand_->PressKey(FindControl(w[1]), w[2]); });
    } else if (w[0] == "leave" && n == 1) {
        Do([&] { return hand_->Leave(TopForm()); });
    } else if (w[0] == "click" && n == 2) {
        Do([&] { return hand_->Click(FindControl(w[1])); });
    } else if ((w[0] == "check" || w[0] == "uncheck") && n == 2) {
        Do([&] { return hand_->Check(FindControl(w[1]), w[0] == "check"); });
    } else if (w[0] == "choose" && n == 3) {
        auto& control = FindControl(w[1]);
        auto* list = dynamic_cast<controls::ListControl*>(&control);
        if (list == nullptr)
            Fail(w[1] + " is no list");
        const auto number = w[2].starts_with('#') ? Number(std::string_view(w[2]).substr(1)) : std::nullopt;
        const int entry = number ? static_cast<int>(*number) : list->FindText(w[2]);
        if (entry < 0 || entry >= list->ListCount())
            Fail("expected an entry \"" + w[2] + "\", there are " +
                 control.PropertyText("List").value_or(""));
        Do([&] { return hand_->Choose(control, entry); });
    } else if (w[0] == "pick" && n == 3) {
        const auto date = DateOf(w[2]);
        Do([&] { return hand_->Pick(FindControl(w[1]), date); });
    } else if (w[0] == "spin" && n == 3 && (w[2] == "up" || w[2] == "down")) {
        Do([&] { return hand_->Spin(FindControl(w[1]), w[2] == "up"); });
    } else if (w[0] == "close" && n == 1) {
        Do([&] { return hand_->Close(TopForm()); });
    } else if (w[0] == "open" && n == 2) {
        if (!ProgramRuns())
            Fail("the program is not running");
        bool known = true;
        Do([&] {
            known = shell::OpenDialog(w[1]);
            return Outcome::Done();
        });
        if (!known)
            Fail("there is no dialog \"" + w[1] + "\" that can be opened by name");
    } else if (w[0] == "editor-menu" && n == 2 && Number(w[1])) {
        bool raised = true;
        Do([&] {
            raised = common::RaiseEditorMenu(static_cast<int>(*Number(w[1])));
            return Outcome::Done();
        });
        if (!raised)
            Fail("no table editor is open");
    } else if (w[0] == "end-launched" && n == 1) {
        const auto running = std::find_if(recorder_.started.rbegin(), recorder_.started.rend(),
                                          [](const Launch& launch) { return launch.running; });
        if (running == recorder_.started.rend())
            Fail("expected a started tool that is running, there is none");
        running->running = false;
    } else if (w[0] == "answer" && n == 2) {
        const std::pair<std::string_view, int> answers[] = {{"ok", system::kAnswerOk},
                                                            {"cancel", system::kAnswerCancel},
                                                            {"yes", system::kAnswerYes},
                                                            {"no", system::kAnswerNo}};
        const auto* found = std::find_if(std::begin(answers), std::end(answers),
                                         [&](const auto& answer) { return answer.first == w[1]; });
        if (found == std::end(answers))
            return false;
        recorder_.answers.push_back(found->second);
    } else if (w[0] == "input" && n == 2) {
        recorder_.inputs.push_back(w[1] == "cancel" ? std::nullopt : std::optional(w[1]));
    } else {
        return false;
    }
    return true;
}

bool Player::ExecuteGridGesture(const Command& command) {
    const Words& w = command.words;
    const std::size_t n = w.size();
    if (w[0] == "row" && n == 3 && Number(w[2])) {
        Do([&] { return hand_->GoToRow(FindGrid(w[1]), *Number(w[2])); });
    } else if (w[0] == "newrow" && n == 2) {
        Do([&] { return hand_->GoToNewRow(FindGrid(w[1])); });
    } else if (w[0] == "cell" && n == 4) {
        auto& grid = FindGrid(w[1]);
        const int column = ColumnOf(grid, w[2]);
        Do([&] { return hand_->EditCell(grid, column, w[3]); });
    } else if (w[0] == "column" && n == 3) {
        auto& grid = FindGrid(w[1]);
        const int column = ColumnOf(grid, w[2]);
        Do([&] { return hand_->MoveToColumn(grid, column); });
    } else if (w[0] == "toggle" && n == 3) {
        auto& grid = FindGrid(w[1]);
        const int column = ColumnOf(grid, w[2]);
        Do([&] { return hand_->ToggleCell(grid, column); });
    } else if (w[0] == "commit" && n == 2) {
        Do([&] { return hand_->CommitRow(FindGrid(w[1])); });
    } else if (w[0] == "deleterow" && n == 2) {
        Do([&] { return hand_->DeleteRow(FindGrid(w[1])); });
    } else {
        return false;
    }
    return true;
}

controls::Form& Player::TopForm() const {
    auto* form = controls::TopForm();
    if (form == nullptr)
        Fail("no form is open");
    return *form;
}

controls::Control& Player::FindControl(const std::string& name) const {
    const auto& open = controls::OpenForms();
    const auto bang = name.find('!');
    const std::string form = bang == std::string::npos ? std::string() : name.substr(0, bang);
    const std::string control = bang == std::string::npos ? name : name.substr(bang + 1);
    for (auto candidate = open.rbegin(); candidate != open.rend(); ++candidate) {
        if (!form.empty() && !runtime::EqualName((*candidate)->Name(), form))
            continue;
        if (auto* found = (*candidate)->Find(control))
            return *found;
    }
    Fail("no open form has a control \"" + name + "\"");
}

controls::Grid& Player::FindGrid(const std::string& name) const {
    auto* grid = dynamic_cast<controls::Grid*>(&FindControl(name));
    if (grid == nullptr)
        Fail(name + " is no grid");
    return *grid;
}

int Player::ColumnOf(const controls::Grid& grid, const std::string& column) const {
    if (const auto number = Number(column); number && *number >= 0 && *number < grid.ColumnCount())
        return static_cast<int>(*number);
    for (int i = 0; i < grid.ColumnCount(); ++i)
        if (runtime::EqualText(grid.Columns(i).Caption.Get(), column))
            return i;
    Fail("expected a column \"" + column + "\", there are " + grid.PropertyText("Captions").value_or(""));
}

std::string Player::PropertyOf(const std::string& controlAndProperty) const {
    const auto dot = controlAndProperty.find('.');
    if (dot == std::string::npos)
        Fail("\"" + controlAndProperty + "\" names no property");
    const std::string property = controlAndProperty.substr(dot + 1);
    auto& control = FindControl(controlAndProperty.substr(0, dot));
    const auto text = control.PropertyText(property);
    if (!text)
        Fail(control.FullName() + " has no property " + property);
    return runtime::EqualName(property, "Picture") ? playground_.Relative(*text) : *text;
}

void Player::Fail(const std::string& what) const {
    throw ScenarioFault(what);
}

} // namespace quillary::tools
