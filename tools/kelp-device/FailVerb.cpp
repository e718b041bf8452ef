// SPDX-License-Identifier: Apache-2.0
// kelp-device fail: makes an application's requests fail, to see what it does then.

#include "CommandOptions.h"
#include "DeviceClient.h"
#include "DeviceLocation.h"
#include "ErrorNumbers.h"
#include "Failure.h"
#include "Verb.h"
#include "device/catalogue/Catalogue.h"

#include <memory>

namespace kelp::tool {

namespace {

std::string checkRequest(const std::string &name)
{
    return device::findRequest(name) ? ""
                                     : "there is no request \"" + name + "\": see --help for their names";
}

std::string checkErrno(const std::string &text)
{
    return errorNumber(text) ? "" : "\"" + text + "\" is no errno: give a name such as EPERM, a number, or 0";
}

std::string requestList()
{
    std::string list = "Requests:";
    for (const device::RequestSpec &request : device::requests()) {
        list += "\n  " + std::string(request.name) + std::string(28 - request.name.size(), ' ') +
                std::string(request.help);
    }
    return list;
}

} // namespace

Action addFail(const Command &verb, const Invocation &)
{
    struct Options {
        std::string device;
        std::string request;
        std::string error;
        unsigned times = 0;
    };
    const auto options = std::make_shared<Options>();
    addDeviceOption(verb, options->device, "The device's directory");
    verb.add("request", options->request, "The request's name")
        .required()
        .typeName("REQUEST")
        .check(checkRequest);
    verb.add("errno", options->error, "The errno it fails with, as in EPERM; 0 ends the failing")
        .required()
        .typeName("ERRNO")
        .check(checkErrno);
    verb.add("--times", options->times, "How many times; without it, from now on always")
        .typeName("N")
        .range(1, 1000000);
    verb.setFooter(requestList());
    return [options] {
        DeviceClient client(deviceDirectory(options->device));
        (void)client.ask("fail", {{"request", options->request},
                                  {"errno", std::to_string(*errorNumber(options->error))},
                                  {"times", std::to_string(options->times)}}); // its answer has no text
        return EXIT_HELD;
    };
}

} // namespace kelp::tool
