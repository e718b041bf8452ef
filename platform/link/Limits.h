// SPDX-License-Identifier: Apache-2.0
// The bounds that both ends of the device's socket keep.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kelp::link {

// Raised whenever a message changes its layout: both ends must speak the same one.
inline constexpr std::uint32_t PROTOCOL_VERSION = 1;

// The largest message in bytes, header included. One datagram of the socket carries one message.
inline constexpr std::size_t MAX_MESSAGE_BYTES = 163840;

// The largest message in bytes on an event channel: what a thread's queue reads without allocating.
inline constexpr std::size_t MAX_EVENT_BYTES = 2048;

// The longest identifier in bytes (window group, pool request, rotation).
inline constexpr std::size_t MAX_ID_BYTES = 255;

// The longest text in bytes within a request.
inline constexpr std::size_t MAX_TEXT_BYTES = 4096;

// The most arguments of one command.
inline constexpr std::size_t MAX_ARGUMENTS = 32;

// Texts longer than this many bytes are answered in several replies.
inline constexpr std::size_t MAX_REPLY_TEXT_BYTES = 65536;

// The largest reply in bytes, header included.
inline constexpr std::size_t MAX_REPLY_BYTES = MAX_REPLY_TEXT_BYTES + 64;

} // namespace kelp::link
