#pragma once

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <cstddef>
#include <functional>
#include <type_traits>

/// A handle of an object that may go away before the handle does, such as a variable of a study that is closed.
///
/// Compares, orders and hashes by the object it was made from, also after that has died, so that handles can be
/// kept in sets and looked for. Whoever locks a handle copes with an empty pointer.
/// \p Id is the type of the number that hash() gives.
template <class T, class Id = std::size_t>
class WeakPtr
{
public:
    /// A handle of nothing.
    WeakPtr() = default;

    /// A handle of \p object; of nothing for an empty pointer. Implicit, for every owner may hand out handles.
    template <class U, std::enable_if_t<std::is_convertible_v<U*, T*>, int> = 0>
    WeakPtr(const boost::shared_ptr<U>& object) // NOLINT(google-explicit-constructor)
        : m_object(object)
        , m_address(static_cast<const T*>(object.get()))
    {}

    /// The object, or an empty pointer if there is none any more.
    [[nodiscard]] boost::shared_ptr<T> lock() const { return m_object.lock(); }

    /// Whether lock() would give an empty pointer now.
    [[nodiscard]] bool expired() const { return m_object.expired(); }

    /// Whether the handle was made from nothing; a handle of a dead object was not.
    [[nodiscard]] bool isNull() const { return m_address == nullptr; }

    [[nodiscard]] Id hash() const { return static_cast<Id>(std::hash<const void*>()(m_address)); }

    friend bool operator==(const WeakPtr& left, const WeakPtr& right)
    {
        // By the control block: a later object may live at the address of a dead one.
        return !left.m_object.owner_before(right.m_object)
            && !right.m_object.owner_before(left.m_object);
    }

    friend bool operator!=(const WeakPtr& left, const WeakPtr& right) { return !(left == right); }

    friend bool operator<(const WeakPtr& left, const WeakPtr& right)
    {
        return left.m_object.owner_before(right.m_object);
    }

    /// For Boost's unordered containers.
    // NOLINTNEXTLINE(readability-identifier-naming): the name that Boost looks for
    friend std::size_t hash_value(const WeakPtr& handle)
    {
        return std::hash<const void*>()(handle.m_address);
    }

private:
    boost::weak_ptr<T> m_object;
    const void* m_address = nullptr; ///< never looked into, only hashed
};

template <class T, class Id>
struct std::hash<WeakPtr<T, Id>>
{
    std::size_t operator()(const WeakPtr<T, Id>& handle) const { return hash_value(handle); }
};
