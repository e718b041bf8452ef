// SPDX-License-Identifier: Apache-2.0
// Hashes the names that clients choose, from a seed that they cannot know: nobody can choose names that
// collide, and so make a short write take long. For whatever finds names by their hash.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>

namespace kelp::device {

class NameHash
{
public:
    // With the seed of this process.
    NameHash() : NameHash(ofProcess()) {}
    NameHash(std::uint64_t start, std::uint64_t factor) : _start(start), _factor(factor | 1U) {}

    std::size_t operator()(std::string_view name) const
    {
        std::uint64_t state = _start ^ name.size();
        while (!name.empty()) {
            std::uint64_t word = 0;
            const std::size_t size = name.size() < sizeof word ? name.size() : sizeof word;
            std::memcpy(&word, name.data(), size);
            name.remove_prefix(size);
            state = mix(state ^ word);
        }
        return mix(state ^ _start);
    }

private:
    __extension__ using Product = unsigned __int128;

    std::uint64_t mix(std::uint64_t word) const
    {
        const Product product = static_cast<Product>(word) * _factor;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
    }

    static const NameHash &ofProcess()
    {
        static const NameHash hash = [] {
            std::random_device random;
            const auto word = [&] {
                return static_cast<std::uint64_t>(random()) << 32U | random();
            };
            const std::uint64_t start = word();
            return NameHash(start, word());
        }();
        return hash;
    }

    std::uint64_t _start;
    std::uint64_t _factor;
};

} // namespace kelp::device
