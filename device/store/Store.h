// SPDX-License-Identifier: Apache-2.0
// The objects of the persistent publish/subscribe service: a tree of named values with attributes, who has them open, and
// what each subscriber has not read yet. It is pure: no descriptor, no process, no clock, no thread. Doors call it with
// paths below its root ("/services/power/battery?delta") and carry out what is due to subscribers.
//
// What a subscriber gets, it gets in two steps, because a door may have to take back what nobody has read yet:
// render() gives the text of everything since the last commit(), and commit() says that what was rendered last has been
// read. Changes in between add up: a slow subscriber costs no more than the object.
//
// What the device itself makes is reserved: everybody may subscribe to it, but only the device may publish, empty, serve or
// delete it, and make anything in a reserved directory. Mode bits could not say so, as clients run as the device's own
// user or as the superuser.
//
//     for (const DescriptorId due : store.takeDue()) {
//         const Store::Rendered news = store.render(due);
//         ...                       // hand news.text to the reader; once it is read:
//         store.commit(due);
//     }
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kelp::device {

using DescriptorId = std::uint32_t; // an open descriptor; from 1, never used twice

// What objects may take up. Past a bound the caller gets an errno.
struct StoreLimits {
    std::size_t objectBytes = 65536;   // of one object's text, and of one write (EMSGSIZE)
    std::size_t objects = 131072;      // objects and directories (ENOSPC); what is reserved has room beyond
    std::size_t queuedMessages = 64;   // that wait for one server, or for one client of it (EAGAIN)
    std::size_t queuedBytes = 1048576; // of those; a single message always has room (EAGAIN)
    std::size_t rememberedNames =
        1024; // deleted attributes of one object that slow subscribers have still to hear of;
              // beyond, those get the whole object again, flagged truncated
};

struct Credentials {
    uid_t uid = 0;
    gid_t gid = 0;
    bool isDevice =
        false; // the device itself: what it makes is reserved. No client ever is, whatever its uid
};

class Store
{
public:
    struct OpenFlags {
        bool subscribe = false;
        bool publish = false;
        bool create = false;
        bool exclusive = false; // with create: the object must not be there
        bool truncate = false;
        mode_t mode = 0; // of a new object, less the umask
    };
    struct Rendered {
        std::string_view text; // empty: a read gives nothing; valid until the store's next call
        bool more =
            false; // once this has been read and committed, there is more at once (messages, and ".all")
    };
    struct Status {
        bool isDirectory = false;
        mode_t mode = 0;
        uid_t uid = 0;
        gid_t gid = 0;
        std::size_t size = 0; // bytes of the object's text
    };
    struct Entry {
        std::string name; // within its directory
        Status status;
    };

    explicit Store(const StoreLimits &limits = {});
    ~Store();
    Store(const Store &) = delete;
    Store &operator=(const Store &) = delete;

    const StoreLimits &limits() const;

    // Opens an object; the path may end in '?' and options (delta, wait, nopersist, server). Returns 0 and sets
    // descriptor, or an errno as devicefs_open() documents it. Neither subscribe nor publish: EINVAL.
    int open(std::string_view path, const OpenFlags &flags, const Credentials &who, DescriptorId &descriptor);
    void close(DescriptorId descriptor);

    // One atomic change, or one message to a server or client. Returns 0, or an errno as devicefs_write() documents it.
    int write(DescriptorId descriptor, std::string_view text);

    int unlink(std::string_view path, const Credentials &who);

    // Makes a reserved directory, which stays when it is empty, and those above it, which are ordinary ones. Returns 0, or
    // EEXIST, ENOTDIR, or as open() what is wrong with the path.
    int reserveDirectory(std::string_view path);

    // What is at a path. Returns 0, or ENOENT, ENOTDIR.
    int status(std::string_view path, Status &status) const;
    // Whether the mode bits, and the device's reservation, let someone read (R_OK) and write (W_OK) what is at a path; a
    // directory is written by making something in it. Returns 0, or an errno.
    int access(std::string_view path, int mode, const Credentials &who) const;
    // The entries of a directory in the order of their names. Returns 0, or ENOENT, ENOTDIR.
    int list(std::string_view path, std::vector<Entry> &entries) const;

    // The subscribers whose render() has something new since they were last named here, each once.
    std::vector<DescriptorId> takeDue();
    // What a read gives now: everything since the last commit, at most limits().objectBytes.
    Rendered render(DescriptorId descriptor);
    // What was rendered last has been read; of no effect when nothing has been rendered since the last commit.
    void commit(DescriptorId descriptor);
    // Whether the descriptor was opened with the option "wait".
    bool waits(DescriptorId descriptor) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace kelp::device
