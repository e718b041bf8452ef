// SPDX-License-Identifier: Apache-2.0
// The messages between the device and its clients, as typed values and as bytes. Both ends use this one definition;
// it knows nothing of sockets and has no policy.
//
// A client opens a connection with Hello and gets a Reply. From then on each of its messages is answered by a Reply
// with the same serial (several for a long text, all but the last with `more`), in the order of the messages.
// Events travel the other way on a channel of their own, one per thread of the client: OpenEvents hands the device
// one end of a socket pair.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kelp::link {

// What a connection is for.
enum class Role : std::uint32_t {
    Application = 1, // a process that uses the platform's C interfaces
    Control = 2,     // a person's or a test's command
};

// The first message of a connection.
struct Hello {
    std::uint32_t version = 0; // PROTOCOL_VERSION of the sender
    Role role = Role::Application;
    bool operator==(const Hello &) const = default;
};

// What an application asks of the navigator; the numbers are the wire's.
enum class RequestCode : std::uint32_t {
    CloseWindow = 1,
    ExtendTerminate = 2,
    ExtendTimeout = 3,  // number: milliseconds
    PooledResponse = 4, // first: id
    SetClosePrompt = 5, // first: title, second: message
    ClearClosePrompt = 6,
    RawWrite = 7, // first: PPS text
    SetBadge = 8, // number: badge
    ClearBadge = 9,
    OrientationCheckResponse = 10, // first: id, number: 1 accepts, 0 refuses
    DoneOrientation = 11,          // first: id
    SetOrientation = 12,           // number: degrees; the reply's text is the rotation's id
    RotationLock = 13,             // number: 1 locks, 0 unlocks
    RequestSwipeStart = 14,
    StopSwipeStart = 15,
};
inline constexpr std::uint32_t LAST_REQUEST_CODE = 15;

// One request of an application.
struct Request {
    RequestCode code = RequestCode::CloseWindow;
    std::int32_t number = 0;
    std::string first;  // at most MAX_TEXT_BYTES
    std::string second; // at most MAX_TEXT_BYTES
    bool operator==(const Request &) const = default;
};

// Opens an event channel: the message carries one descriptor, the device's end of a SOCK_SEQPACKET socket pair.
// The channel ends when either side closes its end.
struct OpenEvents {
    std::int32_t flags = 0;
    bool operator==(const OpenEvents &) const = default;
};

// A command of a person or a test: a name from the device's catalogue, and named arguments.
struct Command {
    std::string name;                                           // at most MAX_ID_BYTES
    std::vector<std::pair<std::string, std::string>> arguments; // at most MAX_ARGUMENTS
    bool operator==(const Command &) const = default;
};

// Opens an object of the publish/subscribe service. The reply's text is three numbers: the descriptor's on the device, the
// largest object in bytes, and 1 for the option "wait" or 0. With it come the client's end of what wakes it and, for a
// subscriber, the shared memory of its Slot.
struct OpenObject {
    static constexpr std::uint32_t SUBSCRIBE = 1;
    static constexpr std::uint32_t PUBLISH = 2;
    static constexpr std::uint32_t CREATE = 4;
    static constexpr std::uint32_t EXCLUSIVE = 8;
    static constexpr std::uint32_t TRUNCATE = 16;

    std::string path; // below "/pps", with its options; at most MAX_TEXT_BYTES
    std::uint32_t flags = 0;
    std::uint32_t mode = 0; // of a new object, less the umask
    bool operator==(const OpenObject &) const = default;
};

// What is done to one open descriptor.
struct DescriptorCall {
    enum class Kind : std::uint32_t {
        Close = 1,
        Refill = 2, // the reader wants what there is now: more behind a text, or a newer one for a stale one
    };
    Kind kind = Kind::Close;
    std::uint32_t descriptor = 0;
    bool operator==(const DescriptorCall &) const = default;
};

// What is done to one path, below "/pps".
struct PathCall {
    enum class Kind : std::uint32_t {
        Unlink = 1,
        Access = 2, // mode: as access(2)
        Size = 3,   // the reply's text is the size in bytes
    };
    Kind kind = Kind::Unlink;
    std::uint32_t mode = 0;
    std::string path; // at most MAX_TEXT_BYTES
    bool operator==(const PathCall &) const = default;
};

// Opens the road for writes: with the reply come the shared memory of a CallPage and its doorbell.
struct OpenCalls {
    bool operator==(const OpenCalls &) const = default;
};

// The answer to any message of a client.
struct Reply {
    std::int32_t status = 0; // 0, or an errno
    bool more = false;       // the text goes on in the next Reply with this serial
    std::string text;        // a result, or the reason of a failure; at most MAX_REPLY_TEXT_BYTES
    bool operator==(const Reply &) const = default;
};

// One navigator event, on an event channel. A number that the event does not have is -1, a text empty.
struct Event {
    std::int32_t code = 0; // enum navigator_event_code
    std::int32_t windowState = -1;
    std::int32_t appState = -1;
    std::int32_t severity = -1;
    std::int32_t angle = -1;  // degrees
    std::int32_t width = -1;  // pixels
    std::int32_t height = -1; // pixels
    std::string groupId;      // at most MAX_ID_BYTES
    std::string id;           // at most MAX_ID_BYTES
    bool operator==(const Event &) const = default;
};

using Body = std::variant<Hello, Request, OpenEvents, Command, Reply, Event, OpenObject, DescriptorCall,
                          PathCall, OpenCalls>;

struct Message {
    std::uint32_t serial = 0; // chosen by the client, repeated in the Reply; 0 in events
    Body body;
    bool operator==(const Message &) const = default;
};

// The bytes of a message. A text beyond its bound is a mistake of the caller: it is cut at the bound.
std::string encode(const Message &message);

// The message that the bytes hold, all of them; nothing for bytes that encode() does not produce.
std::optional<Message> decode(std::string_view bytes);

} // namespace kelp::link
