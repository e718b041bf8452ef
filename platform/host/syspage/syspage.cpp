// SPDX-License-Identifier: Apache-2.0
// The process's system page, made when the library is loaded.

#include "SystemPage.h"

#include "platform/host/memory/PhysicalMemory.h"

#include <exception>

namespace {

// Has no ranges until makePage() has run, and for good where that fails.
constinit kelp::platform::SystemPage page(0);

// Before the constructors of whatever is linked to this library.
[[gnu::constructor]] void makePage() noexcept
{
    try {
        page = kelp::platform::SystemPage(kelp::platform::PhysicalMemory().total().value_or(0));
    } catch (const std::exception &) {
        // Without memory for the files' texts: the total is not known.
    }
}

} // namespace

// Constant from the first: an executable may keep its own copy of the pointer, made before makePage() has
// run. Weak, because another library's may stand in its place, which the address sanitizer else takes for a mistake.
[[gnu::weak]] constinit const syspage *_syspage_ptr = &page.header;
