// SPDX-License-Identifier: Apache-2.0
// See StateObjects.h.

#include "StateObjects.h"

#include "device/catalogue/Catalogue.h"
#include "device/navigator/StateNames.h"

#include <navigator/navigator.h>
#include <pps/pps.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace kelp::device {

namespace {

constexpr char APPLICATIONS[] = "/services/navigator/";
constexpr char PROPERTIES[] = "/services/deviceproperties";
constexpr char REQUESTS[] = "/services/navigator-requests";
constexpr Credentials DEVICE{0, 0, true}; // shown as root's
constexpr mode_t READ_ONLY = 0444;

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

// Stands also where there is none: an attribute that a text leaves out keeps its value.
void addLabel(Text &text, const char *name, const std::string &label)
{
    if (label.empty()) {
        text.addNull(name);
    } else {
        text.add(name, label);
    }
}

void addRotation(Text &text, const std::optional<RotationState> &rotation)
{
    text.add("rotation", std::string(rotation ? rotationPhaseName(rotation->isTurning) : "none"));
    addLabel(text, "rotationId", rotation ? rotation->id : std::string());
    if (rotation) {
        text.add("rotationAngle", rotation->angle);
    } else {
        text.addNull("rotationAngle");
    }
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

std::string failure(const std::string &path, int error)
{
    return path + " is not published: " + std::generic_category().message(error);
}

} // namespace

StateObjects::StateObjects(Store &store, Note note) : _store(store), _note(std::move(note))
{
    if (const int error = _store.reserveDirectory(APPLICATIONS)) {
        _note(failure(APPLICATIONS, error));
    }
}

void StateObjects::publish(const Screen &screen, std::optional<int> memorySeverity)
{
    Text text;
    text.add("screen_res", screenSizeText(screen.properties.size));
    text.add("defaultTheme", screen.properties.theme);
    text.add("angle", screen.angle);
    if (memorySeverity) {
        text.add("memoryPressure", *memorySeverity);
    }
    write(PROPERTIES, _properties, text.take());
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
    write(REQUESTS, _requests, text.take());
}

void StateObjects::publish(const std::vector<ApplicationState> &applications)
{
    for (const ApplicationState &application : applications) {
        write(APPLICATIONS + application.id, _applications[application.id], textOf(application));
    }
    std::erase_if(_applications, [&](auto &entry) {
        const bool isThere = std::any_of(applications.begin(), applications.end(),
                                         [&](const auto &one) { return one.id == entry.first; });
        if (!isThere && entry.second.descriptor) {
            (void)_store.unlink(APPLICATIONS + entry.first, DEVICE); // nobody else could have done so
            _store.close(entry.second.descriptor);
        }
        return !isThere;
    });
}

// What fails is noted once, until it succeeds or fails in another way.
void StateObjects::write(const std::string &path, Object &object, std::string text)
{
    if (object.text == text && !object.error) {
        return;
    }
    const int error = put(path, object, text);
    if (error && error != object.error) {
        _note(failure(path, error));
    }
    object.error = error;
    object.text = std::move(text);
}

int StateObjects::put(const std::string &path, Object &object, const std::string &text)
{
    if (path.find('?') != std::string::npos) {
        return EINVAL; // options would stand behind it, and another application's object before it
    }
    if (const int error = object.descriptor ? 0 : openEmpty(path, object)) {
        return error;
    }
    const int error = _store.write(object.descriptor, text);
    if (error) {
        (void)openEmpty(path, object); // it opened before; what it said is no longer so
    }
    return error;
}

int StateObjects::openEmpty(const std::string &path, Object &object)
{
    _store.close(object.descriptor);
    object.descriptor = 0;
    Store::OpenFlags flags;
    flags.publish = flags.create = flags.truncate = true;
    flags.mode = READ_ONLY;
    return _store.open(path, flags, DEVICE, object.descriptor);
}

} // namespace kelp::device
