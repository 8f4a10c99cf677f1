#include "platform/system/services.h"

#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/fake_services.h"
#include "platform/system/program_version.h"
#include "platform/system/temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <thread>

namespace quillary::system {

namespace {

int ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const runtime::RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

bool EndsSoon(Processes& processes, ProcessId process) {
    for (int i = 0; i < 500 && processes.Running(process); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return !processes.Running(process);
}

} // namespace

TEST(Services, NobodySuppliedAreAnError) {
    const Services machine = MachineServices();
    const std::function<void()> uses[] = {
        [&] { machine.messageBoxes->Show({}); },         [&] { machine.inputBoxes->Ask({}); },
        [&] { machine.errorReports->Report({}); },       [&] { machine.keyboard->SendKey(13, true); },
        [&] { machine.helpViewer->Show("", 1, 0, ""); }, [&] { machine.fileDialogs->ChooseFile("", {}, ""); },
    };
    for (const auto& use : uses)
        EXPECT_EQ(ErrorOf(use), runtime::kErrObjectNotSet);
}

TEST(Services, ClockIsTheOneOfTheRunTime) {
    const runtime::Date moment = runtime::MakeDate(2008, 8, 15, 14, 5, 9);
    SetServices({.clock = std::make_shared<test::FixedClock>(moment)});
    EXPECT_EQ(runtime::Now(), moment);
    ASSERT_TRUE(TheServices().folders);
    SetServices({});
    EXPECT_GT(runtime::Now().days, runtime::MakeDate(2020, 1, 1).days);
}

TEST(Services, FoldersFollowTheEnvironment) {
    const auto folders = MachineServices().folders;
    const struct {
        const char *documents, *data, *config, *home, *expectedDocuments, *expectedConfig;
    } cases[] = {
        {"/srv/farm", "/data", "/conf", "/home/u", "/srv/farm", "/conf"},
        {"", "/data", "", "/home/u", "/data/quillary", "/home/u/.config"},
        {"", "relative", "relative", "/home/u", "/home/u/.local/share/quillary", "/home/u/.config"},
    };
    for (const char* name : {"QUILLARY_DOCUMENTS", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "HOME"})
        ::setenv((std::string("OLD_") + name).c_str(), std::getenv(name) ? std::getenv(name) : "", 1);
    for (const auto& c : cases) {
        ::setenv("QUILLARY_DOCUMENTS", c.documents, 1);
        ::setenv("XDG_DATA_HOME", c.data, 1);
        ::setenv("XDG_CONFIG_HOME", c.config, 1);
        ::setenv("HOME", c.home, 1);
        EXPECT_EQ(folders->CommonDocuments(), c.expectedDocuments);
        EXPECT_EQ(folders->ConfigHome(), c.expectedConfig);
    }
    for (const char* name : {"QUILLARY_DOCUMENTS", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "HOME"})
        ::setenv(name, std::getenv((std::string("OLD_") + name).c_str()), 1);
    EXPECT_TRUE(std::filesystem::exists(folders->ProgramFolder() + "/test_platform_system"));
}

TEST(Processes, AreHeldByTheirWindowUntilTheyEnd) {
    const test::TemporaryFolder folder;
    const std::string tool =
        folder.Write("Tool", "#!/bin/sh\nprintf '%s|' \"$@\" > \"$0.out\"\nexec sleep 60\n");
    ::chmod(tool.c_str(), 0755);
    ::unsetenv("DISPLAY");
    const auto processes = MachineServices().processes;
    // The name of the old platform, in another case, with the arguments as the callers write them.
    const ProcessId process = processes->Launch(folder.Path() + "\\TOOL.exe", " /true  \"two words\" ");
    const Window window = processes->FindWindow(process);
    EXPECT_TRUE(processes->Running(process));
    EXPECT_NE(window, 0);
    for (int i = 0; i < 500 && !folder.Read("Tool.out").ends_with("words|"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(folder.Read("Tool.out"), "/true|two words|");
    processes->Activate(window);
    processes->CloseWindow(0);
    EXPECT_TRUE(processes->Running(process));
    processes->CloseWindow(window);
    EXPECT_TRUE(EndsSoon(*processes, process));
    EXPECT_EQ(processes->FindWindow(process), 0);
    processes->CloseWindow(window); // of a tool that has gone: passed over
}

TEST(Processes, ThatCannotStartAreErrors) {
    const test::TemporaryFolder folder;
    const std::string noProgram = folder.Write("plain.exe", "x");
    const auto processes = MachineServices().processes;
    EXPECT_EQ(ErrorOf([&] { processes->Launch(folder / "missing.exe", ""); }), runtime::kErrFileNotFound);
    EXPECT_EQ(ErrorOf([&] { processes->Launch(folder.Path(), ""); }), runtime::kErrFileNotFound);
    EXPECT_EQ(ErrorOf([&] { processes->Launch(noProgram, ""); }), runtime::kErrInvalidProcedureCall);
    EXPECT_FALSE(processes->Running(1)); // not started here: none of ours
}

TEST(Memory, FiguresBelongTogether) {
    const MemoryFigures figures = MachineServices().memory->Read();
    EXPECT_GT(figures.availablePhysical, 0U);
    EXPECT_LE(figures.availablePhysical, figures.totalPhysical);
    EXPECT_LE(figures.totalPhysical, figures.totalPageFile);
    EXPECT_LE(figures.availablePageFile, figures.totalPageFile);
    EXPECT_LT(figures.availableVirtual, figures.totalVirtual);
    EXPECT_GE(figures.load, 0);
    EXPECT_LE(figures.load, 100);
}

TEST(FileVersions, ComeFromTheSideFileOrTheProgramItself) {
    const test::TemporaryFolder folder;
    const auto versions = MachineServices().fileVersions;
    folder.Write("Tool.exe", "x");
    folder.Write("Tool.exe.version",
                 "# comment\r\nFileVersion = 1.2.3.70000\r\nproductversion=4.5\r\nFlags=3\r\n"
                 "OS=0x40004\r\nType=3\r\nSubtype=1\r\n");
    folder.Write("Empty.exe", "x");
    folder.Write("Empty.exe.version", "nothing here\n");
    const auto tool = versions->Read(folder.Path() + "\\TOOL.EXE");
    ASSERT_TRUE(tool);
    EXPECT_EQ(tool->file, (std::array{1, 2, 3, 65535}));
    EXPECT_EQ(tool->product, (std::array{4, 5, 0, 0}));
    EXPECT_EQ(tool->flags, 3U);
    EXPECT_EQ(tool->os, 0x40004U);
    EXPECT_EQ(tool->type, 3U);
    EXPECT_EQ(tool->subtype, 1U);
    EXPECT_FALSE(versions->Read(folder / "Empty.exe"));
    EXPECT_FALSE(versions->Read(folder / "missing"));
    EXPECT_FALSE(versions->Read(""));
    const auto own = versions->Read(std::filesystem::read_symlink("/proc/self/exe").string());
    ASSERT_TRUE(own);
    EXPECT_EQ(own->file, kProgramVersion);
}

TEST(RegionalSettings, AnswerTheOldKinds) {
    const auto settings = MachineServices().regional;
    const struct {
        const char* locale;
        long kind;
        const char* value;
    } cases[] = {
        {"en_NZ", regional::kDateOrder, "1"},
        {"en_US", regional::kDateOrder, "0"},
        {"en_NZ", regional::kShortDate, "d/MM/yyyy"},
        {"de_DE", regional::kDecimal, ","},
        {"de_DE", regional::kListSeparator, ";"},
        {"en_NZ", regional::kCurrency, "$"},
        {"en_NZ", regional::kCountry, "New Zealand"},
        {"de_DE", regional::kCountry, "Deutschland"},
        {"de_DE", regional::kEnglishCountry, "Germany"},
        {"en_NZ", regional::kCountryAbbreviation, "NZL"},
        {"en_NZ", regional::kDayName, "Monday"},
        {"en_NZ", regional::kDayName + 6, "Sunday"},
        {"en_US", regional::kMonthName, "January"},
        {"en_US", regional::kMonthNameShort + 11, "Dec"},
        {"pt_BR", regional::kIsoLanguage, "pt"},
        {"pt_BR", regional::kIsoCountry, "BR"},
        {"en_NZ", 0x7FFF, ""},
        {"en_NZ", -1, ""},
        {"en_NZ", regional::kMonthNameShort + 12, ""},
    };
    for (const auto& c : cases) {
        runtime::SetLocale(c.locale);
        EXPECT_EQ(settings->Value(c.kind), c.value) << c.locale << " " << c.kind;
    }
    runtime::SetLocale("en_NZ");
}

} // namespace quillary::system
