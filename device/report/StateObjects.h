// SPDX-License-Identifier: Apache-2.0
// The device's state as publish/subscribe objects: its properties under "/pps/services/deviceproperties", and one object
// for each application under "/pps/services/navigator/". Every program can follow them like any other object, but they
// and that directory are the device's alone: whoever else would publish, make, empty, serve or delete one gets EACCES.
#pragma once

#include "device/navigator/Navigator.h"
#include "device/store/Store.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kelp::device {

class StateObjects
{
public:
    using Note = std::function<void(const std::string &)>; // takes a line for the trace

    // Makes the directory of the applications' objects: to be made before anybody else can use the store.
    StateObjects(Store &store, Note note);

    // What applications choose their assets by, how the device is held and, where it follows that, how short memory is.
    void publish(const Screen &screen, std::optional<int> memorySeverity);

    // How often each request has been made and refused, in "/pps/services/navigator-requests".
    void publish(const RequestCounts &counts);

    // Publishes the applications that have changed since the last call, and deletes the objects of those that are gone.
    // One whose text is larger than an object may be has an object without attributes, one with an id that is no name
    // has none; a note says so.
    void publish(const std::vector<ApplicationState> &applications);

private:
    struct Object {
        DescriptorId descriptor = 0;
        std::string text; // as last written
        int error = 0;    // why that is not the newest, as last noted
    };

    void write(const std::string &path, Object &object, std::string text);
    int put(const std::string &path, Object &object, const std::string &text);
    int openEmpty(const std::string &path, Object &object);

    Store &_store;
    const Note _note;
    std::map<std::string, Object> _applications; // by id
    Object _properties;
    Object _requests;
    RequestCounts _counts; // as last published
};

} // namespace kelp::device
