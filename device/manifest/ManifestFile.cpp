// SPDX-License-Identifier: Apache-2.0
// See ManifestFile.h.

#include "ManifestFile.h"

#include "device/files/RegularFile.h"

namespace kelp::device {

namespace {

constexpr char FILE_NAME[] = "app/META-INF/MANIFEST.MF";
constexpr std::size_t MOST_BYTES = 1 << 20;

} // namespace

ManifestReading readManifest(pid_t pid)
{
    if (pid <= 0) {
        return {};
    }
    const FileReading file = readFileOfProcess(pid, FILE_NAME, MOST_BYTES);
    if (file.isMissing) {
        return {};
    }
    ManifestReading reading;
    std::string problem = file.problem;
    if (problem.empty()) {
        reading.manifest = Manifest::parse(file.text, problem);
    }
    if (!problem.empty()) {
        reading.problem = std::string(FILE_NAME) + ": " + problem;
    }
    return reading;
}

} // namespace kelp::device
