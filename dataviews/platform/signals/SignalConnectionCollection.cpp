#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <algorithm>

SignalConnectionCollection::~SignalConnectionCollection()
{
    clear();
}

void SignalConnectionCollection::add(const boost::signals2::connection& connection)
{
    if (m_entries.size() >= m_nextCleanUp) {
        forgetDeadConnections();
    }
    m_entries.push_back(
        {connection, boost::signals2::shared_connection_block(connection, m_blocked)});
}

void SignalConnectionCollection::block()
{
    m_blocked = true;
    for (Entry& entry : m_entries) {
        entry.block.block();
    }
}

void SignalConnectionCollection::unblock()
{
    m_blocked = false;
    for (Entry& entry : m_entries) {
        entry.block.unblock();
    }
}

void SignalConnectionCollection::clear()
{
    // Moved out first: disconnecting can release the last holder of something that adds to or clears this.
    std::vector<Entry> entries;
    entries.swap(m_entries);
    for (Entry& entry : entries) {
        entry.connection.disconnect();
    }
}

void SignalConnectionCollection::forgetDeadConnections()
{
    m_entries.erase(
        std::remove_if(
            m_entries.begin(),
            m_entries.end(),
            [](const Entry& entry) { return !entry.connection.connected(); }),
        m_entries.end());
    constexpr std::size_t smallest = 16;
    m_nextCleanUp = std::max(smallest, 2 * m_entries.size());
}
