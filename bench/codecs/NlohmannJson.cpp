// SPDX-License-Identifier: Apache-2.0
// See Codec.h.

#include "Codec.h"

#include <nlohmann/json.hpp>

namespace kelp::bench {

namespace {

using nlohmann::json;

QVariant toVariant(const json &value);
json fromVariant(const QVariant &value);

QVariantMap toMap(const json &object)
{
    QVariantMap map;
    for (const auto &[name, value] : object.get_ref<const json::object_t &>()) {
        map.insert(map.cend(), textOf(name.data(), name.size()), toVariant(value));
    }
    return map;
}

QVariantList toList(const json &array)
{
    QVariantList list;
    list.reserve(static_cast<int>(array.size()));
    for (const json &value : array) {
        list.append(toVariant(value));
    }
    return list;
}

QVariant toVariant(const json &value)
{
    switch (value.type()) {
    case json::value_t::object:
        return toMap(value);
    case json::value_t::array:
        return toList(value);
    case json::value_t::string: {
        const auto &text = value.get_ref<const std::string &>();
        return textOf(text.data(), text.size());
    }
    case json::value_t::boolean:
        return value.get<bool>();
    case json::value_t::number_integer:
    case json::value_t::number_unsigned:
        return value.get<qlonglong>();
    case json::value_t::number_float:
        return value.get<double>();
    default:
        return {};
    }
}

json fromMap(const QVariantMap &map)
{
    json::object_t object;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        object.emplace_hint(object.end(), entry.key().toStdString(), fromVariant(entry.value()));
    }
    return object;
}

json fromList(const QVariantList &list)
{
    json::array_t array;
    array.reserve(static_cast<std::size_t>(list.size()));
    for (const QVariant &value : list) {
        array.push_back(fromVariant(value));
    }
    return array;
}

json fromVariant(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QVariantMap:
        return fromMap(held<QVariantMap>(value));
    case QMetaType::QVariantList:
        return fromList(held<QVariantList>(value));
    case QMetaType::QString:
        return held<QString>(value).toStdString();
    case QMetaType::Bool:
        return held<bool>(value);
    case QMetaType::LongLong:
        return held<qlonglong>(value);
    case QMetaType::Double:
        return held<double>(value);
    default:
        return nullptr;
    }
}

class NlohmannJson : public Codec
{
public:
    QByteArray encode(const QVariantMap &map) override
    {
        const std::string text = fromMap(map).dump();
        return {text.data(), static_cast<int>(text.size())};
    }
    QVariantMap decode(const QByteArray &bytes) override
    {
        return toMap(json::parse(bytes.begin(), bytes.end()));
    }
};

} // namespace

std::unique_ptr<Codec> makeNlohmannJson()
{
    return std::make_unique<NlohmannJson>();
}

} // namespace kelp::bench
