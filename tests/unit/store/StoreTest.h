// SPDX-License-Identifier: Apache-2.0
// A store, and short words for what tests do to it: open("/a", "rwc") for subscribe, publish and create.
#pragma once

#include "device/store/Store.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace kelp::device {

// r: subscribe, w: publish, c: create, x: exclusive, t: truncate
inline Store::OpenFlags flagsOf(std::string_view letters, mode_t mode = 0666)
{
    const auto has = [&](char letter) {
        return letters.find(letter) != std::string_view::npos;
    };
    return {has('r'), has('w'), has('c'), has('x'), has('t'), mode};
}

// Opens, reads and writes as somebody who is not the superuser.
class StoreClient
{
public:
    static constexpr Credentials OWNER = {1000, 1000};

    explicit StoreClient(const StoreLimits &limits = {}) : store(limits) {}

    DescriptorId open(std::string_view path, std::string_view letters)
    {
        DescriptorId descriptor = 0;
        EXPECT_EQ(store.open(path, flagsOf(letters), OWNER, descriptor), 0) << path;
        return descriptor;
    }

    int tryOpen(std::string_view path, std::string_view letters, const Credentials &who = OWNER)
    {
        DescriptorId descriptor = 0;
        return store.open(path, flagsOf(letters), who, descriptor);
    }

    // An object, made by a publisher that stays.
    DescriptorId make(std::string_view path, std::string_view text)
    {
        const DescriptorId publisher = open(path, "wc");
        EXPECT_EQ(store.write(publisher, text), 0) << text;
        return publisher;
    }

    std::string peek(DescriptorId descriptor) { return std::string(store.render(descriptor).text); }

    std::string read(DescriptorId descriptor)
    {
        std::string text = peek(descriptor);
        store.commit(descriptor);
        return text;
    }

    Store store;
};

} // namespace kelp::device
