#pragma once

#include <dataviews/platform/selection/PlatformSelectionExport.h>

/// Something that listens to others and can be told to stop for a while.
///
/// suspend() and resume() come in pairs and are not counted. What happens meanwhile is not replayed on
/// resume() unless the class says so.
class DATAVIEWS_PLATFORM_SELECTION_EXPORT SuspendableInterface
{
public:
    SuspendableInterface() = default;
    SuspendableInterface(const SuspendableInterface&) = default;
    SuspendableInterface& operator=(const SuspendableInterface&) = default;
    virtual ~SuspendableInterface();

    virtual void suspend() = 0;
    virtual void resume() = 0;
};
