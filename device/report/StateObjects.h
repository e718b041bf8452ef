// SPDX-License-Identifier: Apache-2.0
// The device's state as publish/subscribe objects: its properties under "/pps/services/deviceproperties", and one object
// for each application under "/pps/services/navigator/". Every program can follow them like any other object.
#pragma once

#include "device/navigator/Navigator.h"
#include "device/store/Store.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kelp::device {

class StateObjects
{
public:
    explicit StateObjects(Store &store) : _store(store) {}

    // What applications choose their assets by, how the device is held and, where it follows that, how short memory is.
    void publish(const Screen &screen, std::optional<int> memorySeverity);

    // How often each request has been made and refused, in "/pps/services/navigator-requests".
    void publish(const RequestCounts &counts);

    // Publishes the applications that have changed since the last call, and deletes the objects of those that are gone.
    // What the store refuses, because it is full, is left out.
    void publish(const std::vector<ApplicationState> &applications);

private:
    struct Object {
        DescriptorId descriptor = 0;
        std::string text; // as last written
    };

    bool write(const std::string &path, Object &object, std::string text);

    Store &_store;
    std::map<std::string, Object> _applications; // by id
    Object _properties;
    Object _requests;
    RequestCounts _counts; // as last published
};

} // namespace kelp::device
