// SPDX-License-Identifier: Apache-2.0
// See Codec.h.

#include "Codec.h"

#include <string>
#include <vector>

namespace kelp::bench {

namespace {

// A value as decoding finds it in the bytes.
struct Piece {
    enum class Kind { Map, List, Text, Other } kind = Kind::Other;
    std::vector<std::string> names; // of a map's members
    std::vector<Piece> items;       // of a map or list
    std::string text;
    QVariant other; // number or truth
};

Piece pieceOf(const QVariant &value)
{
    Piece piece;
    if (value.userType() == QMetaType::QVariantMap) {
        piece.kind = Piece::Kind::Map;
        const auto &map = held<QVariantMap>(value);
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
            piece.names.push_back(entry.key().toStdString());
            piece.items.push_back(pieceOf(entry.value()));
        }
    } else if (value.userType() == QMetaType::QVariantList) {
        piece.kind = Piece::Kind::List;
        for (const QVariant &item : held<QVariantList>(value)) {
            piece.items.push_back(pieceOf(item));
        }
    } else if (value.userType() == QMetaType::QString) {
        piece.kind = Piece::Kind::Text;
        piece.text = held<QString>(value).toStdString();
    } else {
        piece.other = value;
    }
    return piece;
}

QVariant build(const Piece &piece);

QVariantMap buildMap(const Piece &piece)
{
    QVariantMap map;
    for (std::size_t i = 0; i < piece.items.size(); ++i) {
        const std::string &name = piece.names[i];
        map.insert(map.cend(), textOf(name.data(), name.size()), build(piece.items[i]));
    }
    return map;
}

QVariantList buildList(const Piece &piece)
{
    QVariantList list;
    list.reserve(static_cast<int>(piece.items.size()));
    for (const Piece &item : piece.items) {
        list.append(build(item));
    }
    return list;
}

QVariant build(const Piece &piece)
{
    switch (piece.kind) {
    case Piece::Kind::Map:
        return buildMap(piece);
    case Piece::Kind::List:
        return buildList(piece);
    case Piece::Kind::Text:
        return textOf(piece.text.data(), piece.text.size());
    case Piece::Kind::Other:
        break;
    }
    return piece.other;
}

class BuildingFloor : public Codec
{
public:
    QByteArray encode(const QVariantMap &map) override
    {
        _prepared = pieceOf(map);
        return {};
    }
    QVariantMap decode(const QByteArray &) override { return buildMap(_prepared); }

private:
    Piece _prepared;
};

} // namespace

std::unique_ptr<Codec> makeBuildingFloor()
{
    return std::make_unique<BuildingFloor>();
}

} // namespace kelp::bench
