// SPDX-License-Identifier: Apache-2.0
// See DeviceProcess.h.

#include "DeviceProcess.h"

#include <cerrno>
#include <system_error>

#include <sys/resource.h>
#include <unistd.h>

namespace kelp::bench {

namespace {

void runDevice(device::DeviceOptions options, int output)
{
    options.ownsProcess = true; // the end of the benchmark ends it as it should be ended
    device::Device device(device::DeviceDirectory::temporaryIn("/tmp"), std::move(options));
    const std::string line = device.directory() + '\n';
    if (::write(output, line.data(), line.size()) < 0) {
        throw std::system_error(errno, std::generic_category(), "write");
    }
    (void)device.run(); // it has no application whose exit code it could return
}

} // namespace

DeviceProcess::DeviceProcess(const device::DeviceOptions &options)
    : _process("device", [&](int output) { runDevice(options, output); }),
      _directory(_process.readLine())
{}

void raiseDescriptorLimit()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        (void)::setrlimit(RLIMIT_NOFILE, &limit); // where it is not enough, opening tells
    }
}

} // namespace kelp::bench
