// SPDX-License-Identifier: Apache-2.0
// Any bytes as a manifest: the application's reader has either attributes or warnings, and where the bytes
// are UTF-8, the device's reader has the same attributes.

#include "CaskParser.h"
#include "device/manifest/Manifest.h"

#include <QtCore/QBuffer>

#include <cstdlib>

using kelp::CaskParser;
using kelp::device::Manifest;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

int s_warnings = 0; // of the run that is under way

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

CaskParser parse(QByteArray &bytes)
{
    s_warnings = 0;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) { ++s_warnings; });
    QBuffer buffer(&bytes);
    require(buffer.open(QIODevice::ReadOnly | QIODevice::Text));
    return CaskParser(&buffer);
}

bool isUtf8(const QByteArray &bytes)
{
    const QByteArray mark("\xef\xbb\xbf");
    return QString::fromUtf8(bytes).toUtf8() == (bytes.startsWith(mark) ? bytes.mid(mark.size()) : bytes);
}

void requireSame(CaskParser &parser, const Manifest::Attributes &attributes)
{
    require(parser.numberOfAttributes() == static_cast<int>(attributes.size()));
    for (const auto &[name, value] : attributes) {
        require(parser.attributeValue(QString::fromStdString(name)).toStdString() == value);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    CaskParser parser = parse(bytes);
    require(s_warnings <= 2 && (s_warnings == 0) == (parser.numberOfAttributes() > 0));
    if (isUtf8(bytes)) {
        const auto manifest = Manifest::parse({bytes.constData(), size});
        requireSame(parser, manifest ? manifest->attributes() : Manifest::Attributes());
    }
    return 0;
}
