// SPDX-License-Identifier: Apache-2.0
// The catalogue's look-ups: each name leads to its own row, and nothing else does.
#include "device/catalogue/Catalogue.h"

#include <gtest/gtest.h>

namespace kelp::device {

TEST(Catalogue, namesLeadToTheirOwnRows)
{
    for (const EventSpec &spec : events()) {
        EXPECT_EQ(findEvent(spec.name), &spec) << spec.name;
    }
    for (const RequestSpec &spec : requests()) {
        EXPECT_EQ(findRequest(spec.name), &spec) << spec.name;
    }
    EXPECT_EQ(findEvent("close-window"), nullptr);
    EXPECT_EQ(findRequest("fullscreen"), nullptr);
    EXPECT_EQ(findEvent(""), nullptr);
}

TEST(Catalogue, everyCodeOfTheProtocolHasAName)
{
    for (std::uint32_t code = 1; code <= link::LAST_REQUEST_CODE; ++code) {
        const RequestSpec *spec = findRequest(requestName(static_cast<link::RequestCode>(code)));
        ASSERT_NE(spec, nullptr) << code;
        EXPECT_EQ(static_cast<std::uint32_t>(spec->code), code);
    }
    EXPECT_EQ(requestName(static_cast<link::RequestCode>(99)), "unknown-request");
}

} // namespace kelp::device
