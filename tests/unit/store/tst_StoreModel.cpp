// SPDX-License-Identifier: Apache-2.0
// The store against a model that keeps everything by value: whatever happens, subscribers that apply what
// they read to their own copies have the model's state, read nothing when there is no news, and are named
// when there is.
#include "StoreTest.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace kelp::device {
namespace {

using Lines = std::map<std::string, std::string>; // an object's lines by name

struct ModelObject {
    Lines lines;
    int changed = 0; // number of its last change; none is used twice
    int lives = 0;   // which object it is, of those that were ever made

    bool operator==(const ModelObject &) const = default;
};
using Objects = std::map<std::string, ModelObject>; // by path, with a slash in front

// What a subscriber makes of the texts that it reads.
class Copy
{
public:
    void apply(std::string_view text, const std::string &prefix, bool delta)
    {
        touched.clear();
        Lines *lines = nullptr;
        while (!text.empty()) {
            const std::size_t end = text.find('\n');
            const std::size_t nameAt = std::min(text.find_first_not_of("-+#*!"), end);
            const std::string flags(text.substr(0, nameAt));
            const std::string line(text.substr(nameAt, end - nameAt));
            text.remove_prefix(end + 1);
            if (line[0] == '@') {
                lines = begin(prefix + line.substr(1), flags, delta);
            } else if (flags.find('-') != std::string::npos) {
                lines->erase(line);
            } else {
                (*lines)[line.substr(0, line.find(':'))] = line;
            }
        }
    }

    std::map<std::string, Lines> objects;
    std::set<std::string> touched;
    bool mayTellOfUnknown = false; // that they are gone: a text with them was replaced

private:
    Lines *begin(const std::string &path, const std::string &flags, bool delta)
    {
        EXPECT_EQ(flags.find('*'), std::string::npos);
        touched.insert(path);
        if (flags.find('-') != std::string::npos) {
            EXPECT_TRUE(objects.erase(path) == 1 || mayTellOfUnknown) << path;
            return nullptr;
        }
        Lines &lines = objects[path];
        if (!delta || flags.find_first_of("+#") != std::string::npos) {
            lines.clear();
        }
        return &lines;
    }
};

struct Subscriber {
    DescriptorId id = 0;
    bool delta = false;
    std::string below; // what it sees begins with that: a path, or a directory with its slash
    int lives = 0;     // of one object: which
    Objects read;      // as it has read of them
    Copy copy;
    std::string text; // given, and not committed
    Objects given;    // as they were then
    bool more = false;
    bool isGiven = false;
    bool isCommitted = false;

    bool isAll() const { return below.back() == '/'; }
};

using Publishers = std::map<DescriptorId, std::pair<std::string, int>>; // of which life of which path

class StoreModel : public testing::TestWithParam<unsigned>
{
protected:
    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

    template <class Container>
    auto anyOf(Container &container)
    {
        return std::next(container.begin(), below(static_cast<int>(container.size())));
    }

    std::string path()
    {
        static const std::string PATHS[] = {"/a", "/d/a", "/d/b", "/d/e/a", "/d-/a"};
        return PATHS[below(5)];
    }

    static bool sees(const Subscriber &subscriber, const std::string &path, int lives)
    {
        return subscriber.isAll() ? path.starts_with(subscriber.below)
                                  : path == subscriber.below && lives == subscriber.lives;
    }

    Objects visible(const Subscriber &subscriber) const
    {
        Objects seen;
        for (const auto &[path, object] : objects) {
            if (sees(subscriber, path, object.lives)) {
                seen[path] = object;
            }
        }
        return seen;
    }

    void openPublisher()
    {
        const std::string at = path();
        const bool truncates = below(4) == 0;
        const DescriptorId id = client.open(at, truncates ? "wct" : "wc");
        const bool isNew = objects.count(at) == 0;
        ModelObject &object = objects[at];
        if (isNew) {
            object = {{}, ++changes, ++lives};
        } else if (truncates && !object.lines.empty()) {
            object.lines.clear();
            object.changed = ++changes;
        }
        publishers[id] = {at, object.lives};
    }

    void write()
    {
        const auto &[id, target] = *anyOf(publishers);
        std::string text;
        const auto object = objects.find(target.first);
        const bool isStale = object == objects.end() || object->second.lives != target.second;
        Lines lines = isStale ? Lines() : object->second.lines;
        bool isChange = false;
        std::set<std::string> named;
        for (int i = below(6); i >= 0; --i) {
            const std::string name(1, static_cast<char>('a' + below(12)));
            if (!named.insert(name).second) {
                continue; // the tables have those
            }
            const bool deletes = below(2) == 0;
            const std::string line = name + ":n:" + std::to_string(below(1000));
            text += deletes ? "-" + name + "\n" : line + "\n";
            isChange |= deletes ? lines.erase(name) > 0 : (lines[name] = line, true);
        }
        EXPECT_EQ(client.store.write(id, text), isStale ? ESTALE : 0);
        if (isChange && !isStale) {
            object->second.lines = lines;
            object->second.changed = ++changes;
        }
    }

    void unlink()
    {
        const std::string at = path();
        EXPECT_EQ(client.store.unlink(at, StoreClient::OWNER), objects.erase(at) > 0 ? 0 : ENOENT);
    }

    void subscribe()
    {
        Subscriber subscriber;
        subscriber.delta = below(2) == 0;
        const bool isAll = below(3) == 0;
        subscriber.below = isAll ? std::string(below(2) == 0 ? "/" : "/d/") : path();
        Store::Status status; // of a directory that may have gone
        if (client.store.status(subscriber.below, status) != 0) {
            return;
        }
        subscriber.lives = isAll ? 0 : objects[subscriber.below].lives;
        subscriber.id =
            client.open(subscriber.below + (isAll ? ".all" : "") + (subscriber.delta ? "?delta" : ""), "r");
        subscribers.push_back(subscriber);
    }

    void render(Subscriber &subscriber)
    {
        const bool replaces = subscriber.isGiven && !subscriber.text.empty();
        const Store::Rendered news = client.store.render(subscriber.id);
        subscriber.text = news.text;
        subscriber.more = news.more;
        subscriber.given = visible(subscriber);
        subscriber.isGiven = true;
        subscriber.copy.mayTellOfUnknown = replaces && subscriber.isAll();
        const bool hasRead = (subscriber.isCommitted || subscriber.isAll()) && !replaces;
        ASSERT_LE(news.text.size(), LIMITS.objectBytes);
        ASSERT_EQ(news.text.empty(), hasRead && subscriber.given == subscriber.read) << news.text;
    }

    void commit(Subscriber &subscriber)
    {
        client.store.commit(subscriber.id);
        if (!subscriber.isGiven) {
            return;
        }
        subscriber.isGiven = false;
        subscriber.isCommitted = true;
        if (subscriber.given.empty() && !subscriber.isAll()) {
            subscriber.read.clear(); // "-@name", also where nothing of it has been read
            return;
        }
        subscriber.copy.apply(subscriber.text,
                              subscriber.isAll() ? subscriber.below : directoryOf(subscriber.below),
                              subscriber.delta);
        for (const std::string &path : subscriber.copy.touched) {
            subscriber.read.erase(path);
            if (subscriber.given.count(path) > 0) {
                subscriber.read[path] = subscriber.given[path];
                EXPECT_EQ(subscriber.copy.objects[path], subscriber.given[path].lines) << path;
            }
        }
        ASSERT_TRUE(subscriber.more || subscriber.read == subscriber.given);
    }

    static std::string directoryOf(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

    // As a door does that reads when it is told to.
    void readAllThatIsDue()
    {
        for (Subscriber &subscriber : subscribers) {
            commit(subscriber);
        }
        for (std::vector<DescriptorId> due; due = client.store.takeDue(), !due.empty();) {
            for (const DescriptorId id : due) {
                const auto isNamed = [&](const Subscriber &subscriber) {
                    return subscriber.id == id;
                };
                Subscriber &subscriber = *std::find_if(subscribers.begin(), subscribers.end(), isNamed);
                render(subscriber);
                commit(subscriber);
            }
        }
        for (const Subscriber &subscriber : subscribers) {
            ASSERT_EQ(subscriber.read, visible(subscriber)) << subscriber.below;
        }
    }

    template <class Container, class Id>
    void closeAnyOf(Container &container, Id id)
    {
        const auto any = anyOf(container);
        client.store.close((*any).*id);
        container.erase(any);
    }

    void step()
    {
        const int choice = below(100);
        if (choice < 7 || publishers.empty()) {
            openPublisher();
        } else if (choice < 11 || subscribers.empty()) {
            subscribe();
        } else if (choice < 15) {
            unlink();
        } else if (choice < 20) {
            readAllThatIsDue();
        } else if (choice < 23) {
            closeAnyOf(publishers, &Publishers::value_type::first);
        } else if (choice < 26) {
            closeAnyOf(subscribers, &Subscriber::id);
        } else if (choice < 44) {
            render(*anyOf(subscribers));
        } else if (choice < 62) {
            commit(*anyOf(subscribers));
        } else {
            write();
        }
    }

    // Flags make the texts of full objects too long, and whole ".all"s take several reads.
    static constexpr StoreLimits LIMITS = {.objectBytes = 110, .rememberedNames = 2};
    StoreClient client{LIMITS};
    std::mt19937 random{GetParam()};
    Objects objects;
    Publishers publishers;
    std::vector<Subscriber> subscribers;
    int changes = 0;
    int lives = 0;
};

TEST_P(StoreModel, everySubscriberEndsWithTheStoresState)
{
    for (int i = 0; i < 20000 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        step();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, StoreModel, testing::Range(1U, 9U));

} // namespace
} // namespace kelp::device
