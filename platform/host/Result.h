// SPDX-License-Identifier: Apache-2.0
// How the platform's C functions end: TARN_SUCCESS with errno as it was, or TARN_FAILURE with its cause.
#pragma once

#include <tarn/tarn.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace kelp::platform {

// Runs the body of a C function: it returns 0 or an errno, and may throw what the standard library throws.
template <typename Body>
int resultOf(Body body) noexcept
{
    const int before = errno;
    int error = 0;
    try {
        error = body();
    } catch (const std::bad_alloc &) {
        error = ENOMEM;
    } catch (const std::system_error &failure) {
        error = failure.code().value();
    }
    errno = error ? error : before;
    return error ? TARN_FAILURE : TARN_SUCCESS;
}

} // namespace kelp::platform
