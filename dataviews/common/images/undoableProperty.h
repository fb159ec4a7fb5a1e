#pragma once

#include <dataviews/common/views/Property.h>
#include <dataviews/common/views/UndoablePropertyProxy.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <string>

/// A setting that starts as \p initial and whose changes are called "Change " and \p name.
/// With an \p undoId of UndoStack::nextUndoID() changes that follow one another are one undo step.
template <class T>
boost::shared_ptr<corvane::PropertyAbstract<T>> undoableProperty(
    const std::string& name, const T& initial, int undoId = -1)
{
    return boost::make_shared<corvane::UndoablePropertyProxy<T>>(
        name, boost::make_shared<corvane::Property<T>>(initial), undoId);
}
