#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/undo/DeleteSignaler.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QString>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <memory>
#include <string>
#include <utility>

namespace corvane {

/// Puts the changes of another property on the undo stack.
///
/// Holds no value: reads and writes the wrapped property, has its validator, and repeats each of its changes on its
/// own signal, whoever made them. A step of undo or redo raises the signal twice; listeners must bear that.
template <class T>
class UndoablePropertyProxy : public PropertyAbstract<T>
{
public:
    /// Each change is an undo step of its own, called "Change " and \p name (UTF-8).
    UndoablePropertyProxy(const std::string& name, boost::shared_ptr<PropertyAbstract<T>> wrapped)
        : UndoablePropertyProxy(name, std::move(wrapped), noMerging)
    {}

    /// Changes that follow one another become one undo step if \p undoId is from UndoStack::nextUndoID().
    UndoablePropertyProxy(
        const std::string& name, boost::shared_ptr<PropertyAbstract<T>> wrapped, int undoId)
        : PropertyAbstract<T>(wrapped->validator())
        , m_undoText(QStringLiteral("Change ") + QString::fromStdString(name))
        , m_wrapped(std::move(wrapped))
        , m_undoId(undoId)
        , m_wrappedConnection(
              m_wrapped->valueChanged.connect([this](const T& value) { relay(value); }))
    {}

    /// Called by undo and redo: stores \p value without recording anything and tells the listeners; does nothing
    /// while the proxy itself is storing, and if \p value is there already.
    virtual void setValueWithoutUndo(const T& value)
    {
        if (m_storing != 0 || value == m_wrapped->value()) {
            return;
        }
        const UndoStack::SuspendUndoRecording noRecording;
        m_wrapped->setValue(value);
        relay(value);
    }

protected:
    void storeValue(const T& value) override
    {
        const StoringGuard guard(m_storing);
        const T old = m_wrapped->value();
        auto command = std::make_unique<GenericUndoCommand>(
            [this, value] { setValueWithoutUndo(value); },
            [this, old] { setValueWithoutUndo(old); },
            m_deleteSignaler,
            m_undoText,
            m_undoId);
        if (m_undoId == noMerging) {
            const UndoStack::Macro macro(m_undoText);
            m_wrapped->setValue(value);
            UndoStack::push(std::move(command));
        } else {
            m_wrapped->setValue(value);
            UndoStack::push(std::move(command));
        }
    }

    [[nodiscard]] T storedValue() const override { return m_wrapped->value(); }

    /// Nothing: the relay of the wrapped property's signal tells the listeners.
    void emitValueChangedSignal(const T& /*value*/) const override {}

private:
    class StoringGuard
    {
    public:
        explicit StoringGuard(int& counter)
            : m_counter(counter)
        {
            ++m_counter;
        }

        StoringGuard(const StoringGuard&) = delete;
        StoringGuard& operator=(const StoringGuard&) = delete;

        ~StoringGuard() { --m_counter; }

    private:
        int& m_counter;
    };

    void relay(const T& value) const { PropertyAbstract<T>::emitValueChangedSignal(value); }

    static constexpr int noMerging = -1;

    DeleteSignaler m_deleteSignaler;
    int m_storing = 0;
    QString m_undoText;
    boost::shared_ptr<PropertyAbstract<T>> m_wrapped;
    int m_undoId = noMerging;
    boost::signals2::scoped_connection m_wrappedConnection;
};

} // namespace corvane
