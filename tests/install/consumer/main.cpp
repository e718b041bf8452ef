// SPDX-License-Identifier: Apache-2.0
// Somebody else's program: uses each public class once, its type information included.

#include <kelp/AbstractTarnEventHandler>
#include <kelp/Application>
#include <kelp/ApplicationSupport>
#include <kelp/UIToolkitSupport>

#include <navigator/navigator.h>

#include <typeinfo>

namespace {

class Handler : public kelp::AbstractTarnEventHandler
{
public:
    Handler() { subscribe(navigator_get_domain()); }
    bool event(tarn_event_t *) override { return false; }
};

} // namespace

int main(int argc, char **argv)
{
    kelp::Application application(argc, argv);
    const kelp::ApplicationSupport support;
    const Handler handler;
    const kelp::AbstractTarnEventHandler &base = handler;
    const bool known = typeid(base) == typeid(Handler) && kelp::Application::instance() == &application;
    return known && !application.isAwake() ? 0 : 1;
}
