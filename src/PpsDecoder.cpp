// SPDX-License-Identifier: Apache-2.0
// See PpsDecoder.h.

#include "PpsDecoder.h"

#include "PpsAttributePrivate.h"
#include "PpsText.h"
#include "Utf8String.h"

namespace kelp {

void PpsDecoder::throwOnPpsDecoderError(pps_decoder_error_t error)
{
    PpsText::check(error);
}

PpsAttributeMap PpsDecoder::decodeObject()
{
    PpsAttributeMap members;
    PpsText::forEachChild(_decoder, [this, &members] {
        PpsAttribute &member = members[utf8String(pps_decoder_name(_decoder))];
        member = decodeChild();
    });
    return members;
}

QList<PpsAttribute> PpsDecoder::decodeArray()
{
    QList<PpsAttribute> elements;
    PpsText::forEachChild(_decoder, [this, &elements] { elements.append(decodeChild()); });
    return elements;
}

// The platform's flags have the values of the attribute's. Bits of no meaning here are dropped.
PpsAttributeFlag::Types PpsDecoder::flags()
{
    constexpr int KNOWN = PPS_INCOMPLETE | PPS_DELETED | PPS_CREATED | PPS_TRUNCATED | PPS_PURGED;
    return PpsAttributeFlag::Types(QFlag(pps_decoder_flags(_decoder, nullptr) & KNOWN));
}

PpsAttribute PpsDecoder::decodeChild()
{
    switch (pps_decoder_type(_decoder, nullptr)) {
    case PPS_TYPE_BOOL: {
        const bool value = PpsText::boolean(_decoder);
        return PpsAttributePrivate::make(value, flags());
    }
    case PPS_TYPE_NUMBER:
        return PpsText::number(_decoder,
                               [this](auto value) { return PpsAttributePrivate::make(value, flags()); });
    case PPS_TYPE_STRING: {
        const QString value = utf8String(PpsText::string(_decoder));
        return PpsAttributePrivate::make(value, flags());
    }
    case PPS_TYPE_ARRAY: {
        const PpsAttributeFlag::Types ownFlags = flags(); // before the walk leaves the node
        const auto elements = PpsText::inside(_decoder, [this] { return decodeArray(); });
        return PpsAttributePrivate::make(elements, ownFlags);
    }
    case PPS_TYPE_OBJECT: {
        const PpsAttributeFlag::Types ownFlags = flags();
        const auto members = PpsText::inside(_decoder, [this] { return decodeObject(); });
        return PpsAttributePrivate::make(members, ownFlags);
    }
    case PPS_TYPE_DELETED: // still something with flags, which an empty attribute is not
        return PpsAttributePrivate::make(PpsAttributeMap(), flags());
    default:
        return PpsAttribute();
    }
}

QVariant PpsDecoder::variantFromPpsAttribute(const PpsAttribute &attribute)
{
    switch (attribute.type()) {
    case PpsAttribute::Number:
    case PpsAttribute::Bool:
    case PpsAttribute::String:
        return attribute.toVariant(); // an int, a long long, a double, a bool or a string as it is
    case PpsAttribute::Array: {
        QVariantList elements;
        for (const PpsAttribute &element : attribute.toList()) {
            elements.append(variantFromPpsAttribute(element));
        }
        return elements;
    }
    case PpsAttribute::Object:
        return variantMapFromPpsAttributeMap(attribute.toMap());
    default:
        return QVariant();
    }
}

QVariantMap PpsDecoder::variantMapFromPpsAttributeMap(const PpsAttributeMap &attributes)
{
    QVariantMap variants;
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute) {
        variants.insert(variants.cend(), attribute.key(), variantFromPpsAttribute(attribute.value()));
    }
    return variants;
}

} // namespace kelp
