#pragma once

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/pipeline/PlatformPipelineExport.h>

#include <boost/shared_ptr.hpp>

class Project;
class Variable;

/// The variable behind \p handle if it is one of \p project, the case ID included; else an empty pointer.
///
/// A handle that still locks is not enough: whoever holds a variable of a study that was closed
/// keeps it alive.
[[nodiscard]] DATAVIEWS_PLATFORM_PIPELINE_EXPORT boost::shared_ptr<Variable> boundVariable(
    const Project& project, const WeakPtr<Variable>& handle);
