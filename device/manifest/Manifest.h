// SPDX-License-Identifier: Apache-2.0
// The manifest of an application's package: text in, attributes out, all of them or none. Pure: whoever has the text
// calls it; see ManifestFile.h.
//
//     Archive-Manifest-Version: 1.1
//
//     Package-Type: application
//     Package-Name: com.example.notes
//     Package-Version: 1.2.3.4
//
//     Application-Name: Notes, with a name that goes
//       on in the next line
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace kelp::device {

class Manifest
{
public:
    // Names with the prefix of their section, values as they stand in the text: any bytes but line ends.
    using Attributes = std::map<std::string, std::string, std::less<>>;

    // Up to three sections, each closed by one empty line: archive, package and, of a package whose type is
    // "application", application; whatever stands behind them is not read. Lines end with LF or CR LF. Nothing where a
    // section has a malformed line or no attribute at all.
    static std::optional<Manifest> parse(std::string_view text);

    // The same. Where there is nothing, problem says why and in which line; else it stays as it was.
    static std::optional<Manifest> parse(std::string_view text, std::string &problem);

    const Attributes &attributes() const { return _attributes; }

    // What a person is shown: the application's own or, where it has none, the package's. Empty: neither.
    std::string title() const;
    std::string version() const;

private:
    explicit Manifest(Attributes attributes) : _attributes(std::move(attributes)) {}
    std::string firstOf(std::string_view name, std::string_view otherName) const;

    Attributes _attributes;
};

} // namespace kelp::device
