// SPDX-License-Identifier: Apache-2.0
// The layout of a message: a header of three 32-bit numbers (magic, serial, kind), then the body's fields in the
// order of their declaration. Numbers are in the host's byte order, for both ends are on one machine; a text is its
// length and its bytes. Every message has exactly one encoding.

#include "Message.h"

#include "Limits.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace kelp::link {

namespace {

constexpr std::uint32_t MAGIC = 0x706c656b; // "kelp"

// The kind of a message on the wire is the position of its body among the alternatives, from 1.
template <typename T, std::size_t Index = 0>
constexpr std::uint32_t kindOf()
{
    if constexpr (std::is_same_v<T, std::variant_alternative_t<Index, Body>>) {
        return Index + 1;
    } else {
        return kindOf<T, Index + 1>();
    }
}

// The visitor that appends fields to bytes.
class Writer
{
public:
    explicit Writer(std::string &bytes) : _bytes(bytes) {}

    void number(std::uint32_t value) { _bytes.append(reinterpret_cast<const char *>(&value), sizeof value); }
    void number(std::int32_t value) { number(static_cast<std::uint32_t>(value)); }
    void text(std::string_view value, std::size_t bound)
    {
        const std::string_view kept = value.substr(0, bound);
        number(static_cast<std::uint32_t>(kept.size()));
        _bytes.append(kept);
    }

private:
    std::string &_bytes;
};

// The visitor that takes the same fields off bytes. After the first field that is not there, or out of bounds, it
// has failed and leaves everything as it is.
class Reader
{
public:
    explicit Reader(std::string_view bytes) : _bytes(bytes) {}

    bool succeeded() const { return _succeeded; }
    bool atEnd() const { return _bytes.empty(); }
    void fail() { _succeeded = false; }

    void number(std::uint32_t &value)
    {
        if (!_succeeded || _bytes.size() < sizeof value) {
            return fail();
        }
        std::memcpy(&value, _bytes.data(), sizeof value);
        _bytes.remove_prefix(sizeof value);
    }
    void number(std::int32_t &value)
    {
        auto bits = static_cast<std::uint32_t>(value);
        number(bits);
        value = static_cast<std::int32_t>(bits);
    }
    void text(std::string &value, std::size_t bound)
    {
        std::uint32_t size = 0;
        number(size);
        if (!_succeeded || size > bound || size > _bytes.size()) {
            return fail();
        }
        value.assign(_bytes.substr(0, size));
        _bytes.remove_prefix(size);
    }

private:
    std::string_view _bytes;
    bool _succeeded = true;
};

// Enumerations and booleans, whose values the reader must check.
template <typename T>
void limited(Writer &writer, T value, std::uint32_t, std::uint32_t)
{
    writer.number(static_cast<std::uint32_t>(value));
}
template <typename T>
void limited(Reader &reader, T &value, std::uint32_t least, std::uint32_t most)
{
    std::uint32_t bits = least;
    reader.number(bits);
    if (bits < least || bits > most) {
        return reader.fail();
    }
    value = static_cast<T>(bits);
}

// The fields of each body, once for both directions.
template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &hello) requires std::is_same_v<std::remove_const_t<Field>, Hello>
{
    visitor.number(hello.version);
    limited(visitor, hello.role, 1, 2);
}

template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &request) requires std::is_same_v<std::remove_const_t<Field>, Request>
{
    limited(visitor, request.code, 1, LAST_REQUEST_CODE);
    visitor.number(request.number);
    visitor.text(request.first, MAX_TEXT_BYTES);
    visitor.text(request.second, MAX_TEXT_BYTES);
}

template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &open) requires std::is_same_v<std::remove_const_t<Field>, OpenEvents>
{
    visitor.number(open.flags);
}

void fields(Writer &writer, const Command &command)
{
    const std::size_t count = std::min(command.arguments.size(), MAX_ARGUMENTS);
    writer.text(command.name, MAX_ID_BYTES);
    writer.number(static_cast<std::uint32_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        writer.text(command.arguments[i].first, MAX_ID_BYTES);
        writer.text(command.arguments[i].second, MAX_TEXT_BYTES);
    }
}

void fields(Reader &reader, Command &command)
{
    std::uint32_t count = 0;
    reader.text(command.name, MAX_ID_BYTES);
    limited(reader, count, 0, MAX_ARGUMENTS);
    command.arguments.resize(reader.succeeded() ? count : 0);
    for (auto &[name, value] : command.arguments) {
        reader.text(name, MAX_ID_BYTES);
        reader.text(value, MAX_TEXT_BYTES);
    }
}

template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &reply) requires std::is_same_v<std::remove_const_t<Field>, Reply>
{
    visitor.number(reply.status);
    limited(visitor, reply.more, 0, 1);
    visitor.text(reply.text, MAX_REPLY_TEXT_BYTES);
}

template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &event) requires std::is_same_v<std::remove_const_t<Field>, Event>
{
    visitor.number(event.code);
    visitor.number(event.windowState);
    visitor.number(event.appState);
    visitor.number(event.severity);
    visitor.number(event.angle);
    visitor.number(event.width);
    visitor.number(event.height);
    visitor.text(event.groupId, MAX_ID_BYTES);
    visitor.text(event.id, MAX_ID_BYTES);
}

template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &open) requires std::is_same_v<std::remove_const_t<Field>, OpenObject>
{
    visitor.text(open.path, MAX_TEXT_BYTES);
    visitor.number(open.flags);
    visitor.number(open.mode);
}

template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &call) requires std::is_same_v<std::remove_const_t<Field>, DescriptorCall>
{
    limited(visitor, call.kind, 1, 2);
    visitor.number(call.descriptor);
}

template <typename Visitor, typename Field>
void fields(Visitor &visitor, Field &call) requires std::is_same_v<std::remove_const_t<Field>, PathCall>
{
    limited(visitor, call.kind, 1, 3);
    visitor.number(call.mode);
    visitor.text(call.path, MAX_TEXT_BYTES);
}

template <typename Visitor, typename Field>
void fields(Visitor &, Field &) requires std::is_same_v<std::remove_const_t<Field>, OpenCalls>
{}

// Reads the body whose kind is given.
template <std::size_t Index = 0>
void readBody(Reader &reader, std::uint32_t kind, Body &body)
{
    if constexpr (Index == std::variant_size_v<Body>) {
        reader.fail();
    } else if (kind == Index + 1) {
        fields(reader, body.emplace<Index>());
    } else {
        readBody<Index + 1>(reader, kind, body);
    }
}

} // namespace

std::string encode(const Message &message)
{
    std::string bytes;
    bytes.reserve(128);
    Writer writer(bytes);
    writer.number(MAGIC);
    writer.number(message.serial);
    std::visit(
        [&writer](const auto &body) {
            writer.number(kindOf<std::decay_t<decltype(body)>>());
            fields(writer, body);
        },
        message.body);
    return bytes;
}

std::optional<Message> decode(std::string_view bytes)
{
    Message message;
    std::uint32_t magic = 0;
    std::uint32_t kind = 0;
    Reader reader(bytes);
    reader.number(magic);
    reader.number(message.serial);
    reader.number(kind);
    if (!reader.succeeded() || magic != MAGIC) {
        return {};
    }
    readBody(reader, kind, message.body);
    if (!reader.succeeded() || !reader.atEnd()) {
        return {};
    }
    return message;
}

} // namespace kelp::link
