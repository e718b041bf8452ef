// SPDX-License-Identifier: Apache-2.0
// The failures by request code. The navigator sets them on command and takes one with each request.
#include "RequestFailures.h"

namespace kelp::device {

void RequestFailures::set(link::RequestCode code, int error, unsigned times)
{
    if (error == 0) {
        _failures.erase(code);
    } else {
        _failures[code] = {error, times};
    }
}

std::optional<int> RequestFailures::take(link::RequestCode code)
{
    const auto failure = _failures.find(code);
    if (failure == _failures.end()) {
        return std::nullopt;
    }
    const int error = failure->second.error;
    const bool isLast = failure->second.times == 1;
    if (isLast) {
        _failures.erase(failure);
    } else if (failure->second.times > 1) {
        --failure->second.times;
    }
    return error;
}

} // namespace kelp::device
