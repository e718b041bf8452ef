// SPDX-License-Identifier: Apache-2.0
// See kelp/AbstractTarnEventHandler.h. All the work is TarnEventManager's.

#include <kelp/AbstractTarnEventHandler.h>

#include "TarnEventManager.h"

namespace kelp {

AbstractTarnEventHandler::AbstractTarnEventHandler() = default;

AbstractTarnEventHandler::~AbstractTarnEventHandler()
{
    TarnEventManager::cleanupHandler(this);
}

void AbstractTarnEventHandler::subscribe(int domain)
{
    TarnEventManager::addHandler(this, domain);
}

void AbstractTarnEventHandler::unsubscribe(int domain)
{
    TarnEventManager::removeHandler(this, domain);
}

} // namespace kelp
