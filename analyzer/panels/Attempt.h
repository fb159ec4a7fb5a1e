#pragma once

#include <boost/function.hpp>

namespace analyzer {

/// Runs a change of a setting that may be refused by an exception, and tells the user then.
using Attempt = boost::function<void(const boost::function<void()>&)>;

} // namespace analyzer
