// SPDX-License-Identifier: Apache-2.0
// See ObjectJson.h.

#include "ObjectJson.h"

#include "Failure.h"

#include <nlohmann/json.hpp>
#include <pps/pps.h>

#include <utility>

namespace kelp::tool {

namespace {

using Json = nlohmann::ordered_json;

// Walks a text, which it changes.
class Decoder
{
public:
    explicit Decoder(std::string &text)
    {
        // An embedded NUL would end the text early and hide the rest.
        if (text.find('\0') != std::string::npos ||
            pps_decoder_initialize(&_decoder, text.data()) != PPS_DECODER_OK) {
            throw Failure(EXIT_REFUSED, "the device's text cannot be read, it is of another release");
        }
    }
    ~Decoder() { pps_decoder_cleanup(&_decoder); }
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;

    // Calls with each child of where the walk is as the current one.
    template <typename Use>
    void forEachChild(Use use)
    {
        const int count = pps_decoder_length(&_decoder);
        for (int index = 0; index < count; ++index) {
            (void)pps_decoder_goto_index(&_decoder, index); // it is there
            use();
        }
    }

    // Of the current child.
    std::string name()
    {
        const char *text = pps_decoder_name(&_decoder);
        return text ? text : "";
    }
    int flags() { return pps_decoder_flags(&_decoder, nullptr); }
    Json value();

    // Calls inside the current child, which is left again. One without children has no inside.
    template <typename Use>
    void within(Use use)
    {
        if (pps_decoder_push(&_decoder, nullptr) == PPS_DECODER_OK) {
            use();
            (void)pps_decoder_pop(&_decoder); // goes back to where it came from
        }
    }

private:
    Json number();

    pps_decoder_t _decoder{};
};

Json Decoder::number()
{
    std::int64_t integer = 0;
    if (pps_decoder_get_int64(&_decoder, nullptr, &integer) == PPS_DECODER_OK) {
        return integer;
    }
    double real = 0;
    (void)pps_decoder_get_double(&_decoder, nullptr, &real); // takes every number
    return real;
}

Json Decoder::value()
{
    Json result; // null
    switch (pps_decoder_type(&_decoder, nullptr)) {
    case PPS_TYPE_BOOL: {
        bool truth = false;
        (void)pps_decoder_get_bool(&_decoder, nullptr, &truth); // it is one
        return truth;
    }
    case PPS_TYPE_NUMBER:
        return number();
    case PPS_TYPE_STRING: {
        const char *text = "";
        (void)pps_decoder_get_string(&_decoder, nullptr, &text); // it is one
        return text;
    }
    case PPS_TYPE_ARRAY:
        result = Json::array();
        within([&] { forEachChild([&] { result.push_back(value()); }); });
        return result;
    case PPS_TYPE_OBJECT:
        result = Json::object();
        within([&] { forEachChild([&] { result[name()] = value(); }); });
        return result;
    default:
        return result;
    }
}

Json flagNames(int flags)
{
    constexpr std::pair<int, const char *> NAMES[] = {
        {PPS_CREATED, "created"},       {PPS_DELETED, "deleted"}, {PPS_TRUNCATED, "truncated"},
        {PPS_INCOMPLETE, "incomplete"}, {PPS_PURGED, "purged"},
    };
    Json names = Json::array();
    for (const auto &[flag, name] : NAMES) {
        if (flags & flag) {
            names.push_back(name);
        }
    }
    return names;
}

// The current child with its attributes.
Json changeOf(Decoder &decoder)
{
    Json change = {{"name", decoder.name()},
                   {"attributes", Json::object()},
                   {"flags", flagNames(decoder.flags())},
                   {"created", Json::array()},
                   {"deleted", Json::array()}};
    decoder.within([&] {
        decoder.forEachChild([&] {
            const int flags = decoder.flags();
            if (flags & PPS_DELETED) {
                change["deleted"].push_back(decoder.name());
                return;
            }
            change["attributes"][decoder.name()] = decoder.value();
            if (flags & PPS_CREATED) {
                change["created"].push_back(decoder.name());
            }
        });
    });
    return change;
}

std::vector<Json> changesIn(std::string &text)
{
    std::vector<Json> changes;
    Decoder decoder(text);
    decoder.forEachChild([&] { changes.push_back(changeOf(decoder)); });
    return changes;
}

} // namespace

std::vector<std::string> objectsAsJson(std::string text)
{
    std::vector<std::string> lines;
    for (const Json &object : changesIn(text)) {
        lines.push_back(Json{{"name", object.at("name")}, {"attributes", object.at("attributes")}}.dump());
    }
    return lines;
}

std::vector<std::string> changesAsJson(std::string text)
{
    std::vector<std::string> lines;
    for (const Json &change : changesIn(text)) {
        lines.push_back(change.dump());
    }
    return lines;
}

std::optional<std::string> attributeValue(std::string text, const std::string &name)
{
    for (const Json &object : changesIn(text)) {
        const Json &attributes = object.at("attributes");
        if (const auto found = attributes.find(name); found != attributes.end()) {
            return found->is_string() ? found->get<std::string>() : found->dump();
        }
    }
    return {};
}

} // namespace kelp::tool
