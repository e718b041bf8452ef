// SPDX-License-Identifier: Apache-2.0
// The variable of syspage.h on the recording platform: the test's page, and without one a page of empty tables.

#include "RecordingPlatform.h"

static const syspage EMPTY_PAGE = {};

const syspage *_syspage_ptr = &EMPTY_PAGE;

void kelp::test::RecordingPlatform::setSystemPage(const syspage *page)
{
    _syspage_ptr = page ? page : &EMPTY_PAGE;
}
