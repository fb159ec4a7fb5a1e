#include <dataviews/platform/undo/DeleteSignaler.h>

#include <boost/make_shared.hpp>

DeleteSignaler::DeleteSignaler()
    : m_alive(boost::make_shared<char>())
{}

DeleteSignaler::~DeleteSignaler() = default;

boost::weak_ptr<const void> DeleteSignaler::handle() const
{
    return m_alive;
}
