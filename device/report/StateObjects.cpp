// SPDX-License-Identifier: Apache-2.0
// See StateObjects.h.

#include "StateObjects.h"

#include "device/catalogue/Catalogue.h"
#include "device/navigator/StateNames.h"

#include <navigator/navigator.h>
#include <pps/pps.h>

#include <algorithm>

namespace kelp::device {

namespace {

constexpr char APPLICATIONS[] = "/services/navigator/";
constexpr char PROPERTIES[] = "/services/deviceproperties";
constexpr char REQUESTS[] = "/services/navigator-requests";
constexpr Credentials DEVICE{}; // root's

// A text under way. What cannot be encoded, such as a title that is no UTF-8, is left out.
class Text
{
public:
    Text() { (void)pps_encoder_initialize(&_encoder, false); } // without memory, nothing below has an effect
    ~Text() { pps_encoder_cleanup(&_encoder); }
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;

    void add(const char *name, const std::string &value)
    {
        (void)pps_encoder_add_string(&_encoder, name, value.c_str());
    }
    void add(const char *name, bool value) { (void)pps_encoder_add_bool(&_encoder, name, value); }
    void add(const char *name, int value) { (void)pps_encoder_add_int(&_encoder, name, value); }
    void addNull(const char *name) { (void)pps_encoder_add_null(&_encoder, name); }
    template <typename Members>
    void addObject(const char *name, Members members)
    {
        (void)pps_encoder_start_object(&_encoder, name);
        members();
        (void)pps_encoder_end_object(&_encoder);
    }
    template <typename Elements>
    void addArray(const char *name, Elements elements)
    {
        (void)pps_encoder_start_array(&_encoder, name);
        elements();
        (void)pps_encoder_end_array(&_encoder);
    }

    std::string take()
    {
        const char *text = pps_encoder_buffer(&_encoder);
        return text ? std::string(text, pps_encoder_length(&_encoder)) : std::string();
    }

private:
    pps_encoder_t _encoder;
};

// Stands also where there is none, as the rotation does.
void addLabel(Text &text, const char *name, const std::string &label)
{
    if (label.empty()) {
        text.addNull(name);
    } else {
        text.add(name, label);
    }
}

// Stands also where there is none: an attribute that a text leaves out keeps its value.
void addRotation(Text &text, const std::optional<RotationState> &rotation)
{
    if (!rotation) {
        return text.addNull("rotation");
    }
    text.addObject("rotation", [&] {
        text.add("id", rotation->id);
        text.add("angle", rotation->angle);
        text.add("phase", std::string(rotationPhaseName(rotation->isTurning)));
    });
}

std::string textOf(const ApplicationState &application)
{
    Text text;
    text.add("pid", static_cast<int>(application.pid));
    addLabel(text, "title", application.label.title);
    addLabel(text, "version", application.label.version);
    text.add("processState", std::string(appStateName(application.appState)));
    text.addArray("windowGroups", [&] {
        for (const WindowGroupState &group : application.groups) {
            text.addObject(nullptr, [&] {
                text.add("id", group.id);
                text.add("windowState", std::string(windowStateName(group.windowState)));
                text.add("active", group.active);
            });
        }
    });
    text.add("closePrompt", application.hasClosePrompt);
    text.add("closePromptShown", application.promptShown);
    text.addArray("deadlines", [&] {
        for (const DeadlineState &deadline : application.deadlines) {
            text.add(nullptr, deadline.name);
        }
    });
    text.add("badge", std::string(badgeName(application.hasBadge)));
    text.add("orientationLocked", application.isOrientationLocked);
    text.add("swipeStart", application.wantsSwipeStart);
    addRotation(text, application.rotation);
    return text.take();
}

} // namespace

void StateObjects::publish(const Screen &screen, std::optional<int> memorySeverity)
{
    Text text;
    text.add("screen_res", screenSizeText(screen.properties.size));
    text.add("defaultTheme", screen.properties.theme);
    text.add("angle", screen.angle);
    if (memorySeverity) {
        text.add("memoryPressure", *memorySeverity);
    }
    (void)write(PROPERTIES, _properties, text.take()); // the first object of all: there is room
}

void StateObjects::publish(const RequestCounts &counts)
{
    if (_requests.descriptor && counts == _counts) {
        return; // most changes of the state are no requests
    }
    _counts = counts;
    Text text;
    for (const RequestSpec &request : requests()) {
        const auto found = counts.find(request.code);
        const RequestCount count = found == counts.end() ? RequestCount() : found->second;
        text.addObject(std::string(request.name).c_str(), [&] {
            text.add("made", static_cast<int>(count.made));
            text.add("refused", static_cast<int>(count.refused));
        });
    }
    (void)write(REQUESTS, _requests, text.take()); // the second object of all: there is room
}

void StateObjects::publish(const std::vector<ApplicationState> &applications)
{
    for (const ApplicationState &application : applications) {
        if (!write(APPLICATIONS + application.id, _applications[application.id], textOf(application))) {
            _applications.erase(application.id);
        }
    }
    std::erase_if(_applications, [&](auto &entry) {
        const bool isThere = std::any_of(applications.begin(), applications.end(),
                                         [&](const auto &one) { return one.id == entry.first; });
        if (!isThere) {
            (void)_store.unlink(APPLICATIONS + entry.first, DEVICE); // somebody else may have done so
            _store.close(entry.second.descriptor);
        }
        return !isThere;
    });
}

// False where the store does not take it. An object that somebody has deleted is made anew.
bool StateObjects::write(const std::string &path, Object &object, std::string text)
{
    if (object.text == text) {
        return true;
    }
    for (int attempt = 0; attempt < 2; ++attempt) {
        Store::OpenFlags flags;
        flags.publish = flags.create = flags.truncate = true;
        flags.mode = 0644;
        if (!object.descriptor && _store.open(path, flags, DEVICE, object.descriptor) != 0) {
            return false;
        }
        if (_store.write(object.descriptor, text) == 0) {
            object.text = std::move(text);
            return true;
        }
        _store.close(object.descriptor);
        object.descriptor = 0;
    }
    return false;
}

} // namespace kelp::device
