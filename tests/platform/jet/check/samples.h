#pragma once

#include "platform/jet/check/check.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace jet::check {

using File_Bytes = std::vector<std::byte>;

/// Bytes of a sample database; empty where the folder of samples is absent.
inline File_Bytes sample(const std::string& name) {
    std::ifstream in(std::filesystem::path(CV_SETS_SAMPLES) / (name + ".mdb"), std::ios::binary);
    const std::string all{std::istreambuf_iterator<char>(in), {}};
    const auto* first = reinterpret_cast<const std::byte*>(all.data());
    return {first, first + all.size()};
}

/// The findings, one sentence a line, for messages of failing tests.
inline std::string listing(const Report& report) {
    std::string out;
    for (const Finding& finding : report.findings)
        out += (finding.grade == Finding::Grade::warning ? "  warning: " : "  ") +
               finding.sentence + "\n";
    return out;
}

} // namespace jet::check
