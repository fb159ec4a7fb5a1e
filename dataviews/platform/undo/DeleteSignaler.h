#pragma once

#include <dataviews/platform/undo/PlatformUndoExport.h>

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

/// Tells undo commands that their owner has died.
///
/// A member of the owner, best its first, so that it goes last. Commands keep a handle() and do nothing once
/// that has expired.
class DATAVIEWS_PLATFORM_UNDO_EXPORT DeleteSignaler
{
public:
    DeleteSignaler();
    DeleteSignaler(const DeleteSignaler&) = delete;
    DeleteSignaler& operator=(const DeleteSignaler&) = delete;
    ~DeleteSignaler();

    /// Expires when this object is destroyed.
    [[nodiscard]] boost::weak_ptr<const void> handle() const;

private:
    boost::shared_ptr<const void> m_alive;
};
