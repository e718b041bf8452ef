// SPDX-License-Identifier: Apache-2.0
// See kelp/UIToolkitSupport.h. All the work is the private object's, but for absolutePathFromUrl() in AssetPaths.cpp.

#include <kelp/UIToolkitSupport.h>

#include "UIToolkitSupportPrivate.h"

namespace kelp {

UIToolkitSupport::UIToolkitSupport(QObject *parent) : QObject(parent), d(nullptr)
{
    // For connections to other threads by the signals' texts.
    qRegisterMetaType<ProcessExecutionState::Type>("kelp::ProcessExecutionState::Type");
    qRegisterMetaType<ProcessUIState::Type>("kelp::ProcessUIState::Type");
    qRegisterMetaType<ProcessState::Type>("kelp::ProcessState::Type");
    qRegisterMetaType<SwipeDownMode::Type>("kelp::SwipeDownMode::Type");
    qRegisterMetaType<Orientation::Type>("kelp::Orientation::Type");
    d = new UIToolkitSupportPrivate(this);
}

UIToolkitSupport::~UIToolkitSupport()
{
    delete d;
}

QString UIToolkitSupport::windowGroupID() const
{
    return d->windowGroupID();
}

void UIToolkitSupport::setMainWindowGroup(const QString &id)
{
    d->setMainWindowGroup(id);
}

void UIToolkitSupport::deregisterWindowGroup(const QString &id)
{
    d->deregisterWindowGroup(id);
}

ProcessExecutionState::Type UIToolkitSupport::executionState() const
{
    return d->executionState();
}

ProcessExecutionState::Type UIToolkitSupport::executionStateForWindowGroup(const QString &id) const
{
    return d->executionStateForWindowGroup(id);
}

ProcessUIState::Type UIToolkitSupport::uiState() const
{
    return d->uiState();
}

ProcessUIState::Type UIToolkitSupport::uiStateForWindowGroup(const QString &id) const
{
    return d->uiStateForWindowGroup(id);
}

ProcessState::Type UIToolkitSupport::processState() const
{
    return d->processState();
}

bool UIToolkitSupport::poolingComplete(const QString &id) const
{
    return d->poolingComplete(id);
}

bool UIToolkitSupport::orientationCheckResponse(const QString &orientationRequestID, bool response)
{
    return d->orientationCheckResponse(orientationRequestID, response);
}

bool UIToolkitSupport::doneOrientation(const QString &orientationRequestID)
{
    return d->doneOrientation(orientationRequestID);
}

bool UIToolkitSupport::requestOrientation(Orientation::Type angle)
{
    return d->requestOrientation(angle);
}

bool UIToolkitSupport::lockOrientation()
{
    return d->lockOrientation();
}

bool UIToolkitSupport::unlockOrientation()
{
    return d->unlockOrientation();
}

bool UIToolkitSupport::setSwipeDownMode(SwipeDownMode::Type mode)
{
    return d->setSwipeDownMode(mode);
}

bool UIToolkitSupport::setWindowCreationTimeout(int timeout)
{
    return d->setWindowCreationTimeout(timeout);
}

} // namespace kelp
