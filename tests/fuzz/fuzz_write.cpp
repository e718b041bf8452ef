// SPDX-License-Identifier: Apache-2.0
// Any bytes as a path and as what is then written, read, opened and closed in a store with tiny limits: what
// is refused changes nothing, and whatever is read is whole lines of good text, within the bound.
//
// An input is the length of a path, the path, and steps: what to do, the length of a text, the text.

#include "device/store/Store.h"
#include "platform/pps/Line.h"

#include <algorithm>
#include <cstdlib>

using namespace kelp;
using device::DescriptorId;
using device::Store;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

constexpr device::StoreLimits LIMITS = {
    .objectBytes = 64, .objects = 6, .queuedMessages = 2, .rememberedNames = 2};
constexpr device::Credentials WHO = {1000, 1000};
constexpr std::size_t LONGEST_NAME_LINE = 1030;

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

std::string_view take(std::string_view &bytes, std::size_t size)
{
    const std::string_view taken = bytes.substr(0, size);
    bytes.remove_prefix(taken.size());
    return taken;
}

unsigned takeByte(std::string_view &bytes)
{
    const std::string_view byte = take(bytes, 1);
    return byte.empty() ? 0 : static_cast<unsigned char>(byte.front());
}

void checkText(std::string_view text)
{
    const bool isOneLine = text.find('\n') + 1 == text.size();
    require(text.size() <= (isOneLine ? LONGEST_NAME_LINE : LIMITS.objectBytes));
    require(pps::isUtf8(text));
    for (bool isFirst = true; !text.empty(); isFirst = false) {
        pps::Line line;
        require(pps::takeLine(text, line));
        require(!isFirst || line.kind == pps::Line::Kind::Object || line.isObject);
    }
}

class Session
{
public:
    void open(std::string_view path, unsigned how)
    {
        const Store::OpenFlags flags = {(how & 1) == 0,   (how & 2) == 0,   (how & 4) == 0,
                                        (how & 24) == 24, (how & 96) == 96, 0666};
        DescriptorId id = 0;
        if (_store.open(path, flags, WHO, id) == 0) {
            _ids.push_back(id);
            Store::Status status;
            require(_store.status(path, status) == 0 && !status.isDirectory);
        }
    }

    void step(unsigned what, std::string_view text, std::string_view path)
    {
        const DescriptorId id = _ids.empty() ? 1 : _ids[(what >> 3) % _ids.size()];
        switch (what & 7) {
        case 0:
            return open(path, what >> 3);
        case 1:
            return open(text, what >> 3);
        case 2:
            _store.close(id);
            std::erase(_ids, id);
            return;
        case 3:
            (void)_store.unlink((what & 8) == 0 ? path : text, WHO); // may be refused
            return;
        case 4:
            return read(id, (what & 128) != 0);
        default:
            return write(id, text);
        }
    }

    void readAll()
    {
        for (const DescriptorId id : _store.takeDue()) {
            read(id, true);
        }
    }

private:
    void write(DescriptorId id, std::string_view text)
    {
        (void)_store.takeDue(); // only news of this write count
        if (_store.write(id, text) != 0) {
            require(_store.takeDue().empty());
        }
    }

    void read(DescriptorId id, bool commits)
    {
        const std::string text(_store.render(id).text);
        checkText(text);
        require(_store.render(id).text == text);
        if (commits) {
            _store.commit(id);
        }
    }

    Store _store{LIMITS};
    std::vector<DescriptorId> _ids;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view bytes(reinterpret_cast<const char *>(data), size);
    const unsigned length = takeByte(bytes);
    const std::string_view path = take(bytes, length);
    Session session;
    session.open(path, 0);
    while (!bytes.empty()) {
        const unsigned what = takeByte(bytes);
        const unsigned textLength = takeByte(bytes);
        session.step(what, take(bytes, textLength), path);
    }
    session.readAll();
    return 0;
}
