#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/undo/DeleteSignaler.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QString>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <utility>

namespace analyzer {

/// One setting of a filter: hands its value to the filter and puts each change on the undo stack.
///
/// A change, an undo and a redo reach the filter once and raise the signal once. Changes that become one step and end
/// where they began leave none. The undo history shares values with the property, so that a long set of values is held
/// once for each change.
template <class T>
class FilterProperty : public corvane::PropertyAbstract<T>
{
public:
    using Write = boost::function<void(const T&)>;

    /// \p initial is the value that the filter has; \p write gives it another. \p undoId holds the id of the undo steps
    /// that begin now: those with the same id from 0 up become one, -1 stands for steps of their own. \p check, where
    /// given, throws InvalidPropertyValueException for a value that the filter would refuse.
    FilterProperty(
        const T& initial,
        Write write,
        QString undoText,
        boost::shared_ptr<const int> undoId,
        Write check = {})
        : m_value(boost::make_shared<const T>(initial))
        , m_write(std::move(write))
        , m_check(std::move(check))
        , m_undoText(std::move(undoText))
        , m_undoId(std::move(undoId))
    {}

protected:
    void storeValue(const T& value) override
    {
        UndoStack::push(std::make_unique<Change>(*this, boost::make_shared<const T>(value)));
    }

    void validate(const T& value) const override
    {
        if (m_check) {
            m_check(value);
        }
    }

    [[nodiscard]] T storedValue() const override { return *m_value; }

    [[nodiscard]] bool isEqual(const T& value) const override { return *m_value == value; }

    /// Nothing: the command has told the listeners.
    void emitValueChangedSignal(const T& /*value*/) const override {}

private:
    using Value = boost::shared_ptr<const T>;

    /// From the present value to another.
    class Change : public GenericUndoCommand
    {
    public:
        Change(FilterProperty& property, const Value& value)
            : GenericUndoCommand(
                [&property, value] { property.take(value); },
                [&property, old = property.m_value] { property.take(old); },
                property.m_deleteSignaler,
                property.m_undoText,
                *property.m_undoId)
            , m_old(property.m_value)
            , m_new(value)
        {}

        /// Obsolete, which the history drops, where \p other goes back to the value before this change.
        bool mergeWith(const QUndoCommand* other) override
        {
            const auto* change = dynamic_cast<const Change*>(other);
            if (change == nullptr || !GenericUndoCommand::mergeWith(other)) {
                return false;
            }
            m_new = change->m_new;
            setObsolete(*m_new == *m_old);
            return true;
        }

    private:
        Value m_old;
        Value m_new;
    };

    void take(const Value& value)
    {
        m_value = value;
        try {
            m_write(*value);
        } catch (...) {
            // The filter has the value; it was somebody further on who failed.
            corvane::PropertyAbstract<T>::emitValueChangedSignal(*value);
            throw;
        }
        corvane::PropertyAbstract<T>::emitValueChangedSignal(*value);
    }

    Value m_value;
    Write m_write;
    Write m_check;
    QString m_undoText;
    boost::shared_ptr<const int> m_undoId;
    DeleteSignaler m_deleteSignaler;
};

} // namespace analyzer
