// SPDX-License-Identifier: Apache-2.0
// What does it cost to turn a QVariantMap into an object's text, and the text into the map?
//
// Measures PpsObject's encode() and decode(), beside QJsonDocument, QCborValue, RapidJSON and nlohmann::json
// (of which the fastest is the peer), and beside what no decoder can do without: building the map of prepared
// data. Three sets of data; all codecs take turns. Before that, each has to give back the map that it was
// given.
//
// Guards: less time than the fastest peer; decoding at most 1.1 times the building. Run it without arguments.

#include "codecs/Codec.h"
#include "Calls.h"
#include "codecs/DataSets.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cstdio>
#include <deque>
#include <stdexcept>

using namespace kelp::bench;

namespace {

constexpr const char *OURS = "PpsObject";
constexpr const char *FLOOR = "building the map";
constexpr double FLOOR_RATIO = 1.1;

struct Candidate {
    const char *name;
    std::unique_ptr<Codec> (*make)();
};

constexpr Candidate PEERS[] = {{"QJsonDocument", makeQtJson},
                               {"QCborValue", makeQtCbor},
                               {"RapidJSON", makeRapidJson},
                               {"nlohmann::json", makeNlohmannJson}};

// The same for all maps with the same values, whatever type of integer has them.
QByteArray canonical(const QVariantMap &map)
{
    return QJsonDocument(QJsonObject::fromVariantMap(map)).toJson(QJsonDocument::Compact);
}

// One set of data, the codecs, and what each makes of it.
class Contest
{
public:
    Contest(const std::string &name, const QVariantMap &map)
        : _name(name),
          _map(map),
          _encoding("encode, " + name, "ns"),
          _decoding("decode, " + name, "ns")
    {
        addEncoding(enter(OURS, makeObjectCodec), _encoding.add(OURS, {1, 0}));
        addDecoding(_entries.back(), _decoding.add(OURS, {1, 0}));
        for (const Candidate &peer : PEERS) {
            addEncoding(enter(peer.name, peer.make), _encoding.addPeer(peer.name));
            addDecoding(_entries.back(), _decoding.addPeer(peer.name));
        }
        addDecoding(enter(FLOOR, makeBuildingFloor), _decoding.add(FLOOR));
        _decoding.atMost(OURS, FLOOR_RATIO, FLOOR);
    }
    Contest(const Contest &) = delete; // what is measured stays where it is
    Contest &operator=(const Contest &) = delete;

    const Comparison &encoding() const { return _encoding; }
    const Comparison &decoding() const { return _decoding; }

private:
    struct Entry {
        std::string name;
        std::unique_ptr<Codec> codec;
        QByteArray bytes;
    };

    Entry &enter(const char *name, std::unique_ptr<Codec> (*make)())
    {
        Entry &entry = _entries.emplace_back(Entry{name, make(), {}});
        entry.bytes = entry.codec->encode(_map);
        if (canonical(entry.codec->decode(entry.bytes)) != canonical(_map)) {
            throw std::runtime_error(entry.name + " does not give back the map: " + _name);
        }
        return entry;
    }

    void addEncoding(const Entry &entry, Samples &samples)
    {
        measure("encode " + _name + ' ' + entry.name, samples, [&](benchmark::State &state) {
            for (auto _ : state) {
                benchmark::DoNotOptimize(entry.codec->encode(_map));
            }
        });
    }

    void addDecoding(const Entry &entry, Samples &samples)
    {
        measure("decode " + _name + ' ' + entry.name, samples, [&](benchmark::State &state) {
            for (auto _ : state) {
                benchmark::DoNotOptimize(entry.codec->decode(entry.bytes));
            }
        });
    }

    std::string _name;
    QVariantMap _map;
    Comparison _encoding;
    Comparison _decoding;
    std::deque<Entry> _entries; // which stay where they are while it grows
};

void compareCodecs()
{
    const Contest contests[] = {
        {"flat, 300 B", flatMap()}, {"nested, 4 KB", nestedMap()}, {"lists, 30 KB", listMap()}};
    runCalls();
    for (const Contest &contest : contests) {
        contest.encoding().print();
        contest.decoding().print();
    }
}

} // namespace

int main()
{
    try {
        compareCodecs();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "codec: %s\n", error.what());
        return 1;
    }
}
