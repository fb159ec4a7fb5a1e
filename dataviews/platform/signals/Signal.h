#pragma once

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>

#include <cstddef>
#include <utility>

/// A notification that many may listen to and one class sends.
///
/// A public member of the class \p Owner, which alone emits it: `m_object.signalSomething.connect(slot)` from
/// outside, `signalSomething(arguments)` inside. Slots run in the order of connecting, in the thread that
/// emits, before the emission returns; an exception that leaves a slot ends the emission and passes on to
/// the emitter. Connecting and disconnecting is safe from any thread.
///
/// A slot may disconnect itself or others, connect new slots (these are not called in the running emission),
/// and destroy its own listener or the owner of the signal.
template <class Signature, class Owner>
class Signal
{
public:
    using Implementation = boost::signals2::signal<Signature>;
    using Slot = typename Implementation::slot_type;

    /// \p connectedHook is called after every connect; it may be empty. It is usually a call of the owner's
    /// virtual `signal<Event>Connected()`.
    explicit Signal(boost::function<void()> connectedHook = boost::function<void()>())
        : m_implementation(boost::make_shared<Implementation>())
        , m_connectedHook(std::move(connectedHook))
    {}

    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    /// The slots behind one that destroys the owner are not called any more.
    ~Signal() { m_implementation->disconnect_all_slots(); }

    /// Adds \p slot behind those already connected. Const, for listening changes nothing of the owner.
    boost::signals2::connection connect(const Slot& slot) const
    {
        boost::signals2::connection connection = m_implementation->connect(slot);
        if (m_connectedHook) {
            m_connectedHook();
        }
        return connection;
    }

    /// The number of connected slots, blocked ones included.
    [[nodiscard]] std::size_t slotCount() const { return m_implementation->num_slots(); }

private:
    friend Owner;

    template <class... Arguments>
    void operator()(Arguments&&... arguments) const
    {
        // Kept alive for the case that a slot destroys the owner.
        const boost::shared_ptr<Implementation> implementation = m_implementation;
        (*implementation)(std::forward<Arguments>(arguments)...);
    }

    boost::shared_ptr<Implementation> m_implementation;
    boost::function<void()> m_connectedHook;
};
