#pragma once

#include <dataviews/platform/signals/PlatformSignalsExport.h>

#include <boost/signals2/connection.hpp>
#include <boost/signals2/shared_connection_block.hpp>

#include <cstddef>
#include <vector>

/// The connections that one listener made, blocked together and disconnected when it dies.
///
/// Blocking is a state, not a count: one unblock() ends any number of block() calls. Blocks of the same
/// connections that others hold are left alone. Used on the thread of the listener.
class DATAVIEWS_PLATFORM_SIGNALS_EXPORT SignalConnectionCollection
{
public:
    SignalConnectionCollection() = default;
    SignalConnectionCollection(const SignalConnectionCollection&) = delete;
    SignalConnectionCollection& operator=(const SignalConnectionCollection&) = delete;

    /// Disconnects everything.
    ~SignalConnectionCollection();

    /// Takes \p connection under management; while the collection is blocked, the connection is blocked too.
    void add(const boost::signals2::connection& connection);

    /// Keeps signals from reaching the listener until unblock(), also through connections added meanwhile.
    /// What is emitted meanwhile is not delivered later.
    void block();

    void unblock();

    /// Disconnects and forgets every connection; a blocked collection stays blocked.
    void clear();

    [[nodiscard]] bool isBlocked() const { return m_blocked; }

private:
    struct Entry
    {
        boost::signals2::connection connection;
        boost::signals2::shared_connection_block block;
    };

    void forgetDeadConnections();

    std::vector<Entry> m_entries;
    std::size_t m_nextCleanUp = 16;
    bool m_blocked = false;
};
