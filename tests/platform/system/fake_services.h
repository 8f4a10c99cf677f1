#pragma once

#include "platform/system/services.h"

namespace quillary::test {

struct FakeFolders : system::Folders {
    std::string documents, config, program;
    std::string CommonDocuments() override { return documents; }
    std::string ConfigHome() override { return config; }
    std::string ProgramFolder() override { return program; }
    std::string Temp() override { return "/tmp"; }
};

struct FixedClock : system::Clock {
    explicit FixedClock(runtime::Date moment) : now(moment) {}
    runtime::Date now;
    runtime::Date Now() override { return now; }
};

struct RecordedMessages : system::MessageBoxes {
    std::vector<system::MessageRequest> shown;
    int answer = system::kAnswerOk;
    int Show(const system::MessageRequest& request) override {
        shown.push_back(request);
        return answer;
    }
};

struct RecordedReports : system::ErrorReports {
    std::vector<system::ErrorReportText> reports;
    void Report(const system::ErrorReportText& report) override { reports.push_back(report); }
};

struct RecordedKeys : system::Keyboard {
    std::vector<std::pair<int, bool>> sent;
    void SendKey(int code, bool down) override { sent.emplace_back(code, down); }
};

struct FixedVersions : system::FileVersions {
    std::optional<system::FileVersion> version;
    std::optional<system::FileVersion> Read(std::string_view) override { return version; }
};

} // namespace quillary::test
