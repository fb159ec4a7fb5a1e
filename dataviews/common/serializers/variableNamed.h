#pragma once

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <QString>

#include <vector>

/// The first of \p candidates that is called exactly \p name; a handle of nothing if none is.
[[nodiscard]] WeakPtr<Variable> variableNamed(
    const QString& name, const std::vector<WeakPtr<Variable>>& candidates);
