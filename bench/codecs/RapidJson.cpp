// SPDX-License-Identifier: Apache-2.0
// See Codec.h. RapidJSON's fastest ways: reading in situ, in a copy of the text (which the measurement
// includes), whose events build the map at once; and writing straight from the map. Numbers are read in full
// precision: without it some doubles would not read back as they were, which they do with the other codecs.

#define RAPIDJSON_SSE2 // of any 64-bit x86

#include "Codec.h"

#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <vector>

namespace kelp::bench {

namespace {

// Makes a map of the reader's events. The operations' names are the reader's.
class MapBuilder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, MapBuilder>
{
public:
    bool Null() { return add(QVariant()); }
    bool Bool(bool value) { return add(value); }
    bool Int(int value) { return add(qlonglong(value)); }
    bool Uint(unsigned value) { return add(qlonglong(value)); }
    bool Int64(std::int64_t value) { return add(qlonglong(value)); }
    bool Uint64(std::uint64_t value) { return add(qlonglong(value)); }
    bool Double(double value) { return add(value); }
    bool String(const char *text, rapidjson::SizeType size, bool) { return add(textOf(text, size)); }
    bool Key(const char *text, rapidjson::SizeType size, bool)
    {
        _open.back().key = textOf(text, size);
        return true;
    }
    bool StartObject() { return begin(false); }
    bool StartArray() { return begin(true); }
    bool EndObject(rapidjson::SizeType)
    {
        QVariantMap map = std::move(_open.back().map);
        _open.pop_back();
        if (!_open.empty()) {
            return add(std::move(map));
        }
        _result = std::move(map);
        return true;
    }
    bool EndArray(rapidjson::SizeType)
    {
        QVariantList list = std::move(_open.back().list);
        _open.pop_back();
        return add(std::move(list));
    }

    QVariantMap takeResult() { return std::move(_result); }

private:
    struct Level {
        bool isList = false;
        QVariantMap map;
        QVariantList list;
        QString key; // of the next member
    };

    bool begin(bool isList)
    {
        _open.emplace_back().isList = isList;
        return true;
    }

    bool add(QVariant value)
    {
        if (_open.empty()) {
            return false; // a text that is no object
        }
        Level &level = _open.back();
        if (level.isList) {
            level.list.append(std::move(value));
        } else {
            level.map.insert(level.map.cend(), level.key, std::move(value));
        }
        return true;
    }

    std::vector<Level> _open;
    QVariantMap _result;
};

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void write(Writer &writer, const QVariant &value);

void write(Writer &writer, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    writer.String(bytes.constData(), static_cast<rapidjson::SizeType>(bytes.size()));
}

void write(Writer &writer, const QVariantMap &map)
{
    writer.StartObject();
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        write(writer, entry.key());
        write(writer, entry.value());
    }
    writer.EndObject();
}

void write(Writer &writer, const QVariantList &list)
{
    writer.StartArray();
    for (const QVariant &value : list) {
        write(writer, value);
    }
    writer.EndArray();
}

void write(Writer &writer, const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QVariantMap:
        return write(writer, held<QVariantMap>(value));
    case QMetaType::QVariantList:
        return write(writer, held<QVariantList>(value));
    case QMetaType::QString:
        return write(writer, held<QString>(value));
    case QMetaType::Bool:
        writer.Bool(held<bool>(value));
        return;
    case QMetaType::LongLong:
        writer.Int64(held<qlonglong>(value));
        return;
    case QMetaType::Double:
        writer.Double(held<double>(value));
        return;
    default:
        writer.Null();
    }
}

class RapidJson : public Codec
{
public:
    QByteArray encode(const QVariantMap &map) override
    {
        _output.Clear();
        Writer writer(_output);
        write(writer, map);
        return {_output.GetString(), static_cast<int>(_output.GetSize())};
    }

    QVariantMap decode(const QByteArray &bytes) override
    {
        _input.assign(bytes.constData(), bytes.constData() + bytes.size() + 1); // and its null
        rapidjson::InsituStringStream stream(_input.data());
        MapBuilder builder;
        _reader.Parse<rapidjson::kParseInsituFlag | rapidjson::kParseFullPrecisionFlag>(stream, builder);
        return builder.takeResult();
    }

private:
    rapidjson::StringBuffer _output; // these are kept for their room
    std::vector<char> _input;
    rapidjson::Reader _reader;
};

} // namespace

std::unique_ptr<Codec> makeRapidJson()
{
    return std::make_unique<RapidJson>();
}

} // namespace kelp::bench
