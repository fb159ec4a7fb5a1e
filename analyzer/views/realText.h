#pragma once

#include <string>
#include <system_error>

namespace analyzer {

/// \p value with ten significant digits; "inf" and "-inf" for infinities, and zero without a sign.
[[nodiscard]] std::string realText(double value);

/// Reads all of \p text, which may have a plus, as std::from_chars does; \p value stays as it is on an error.
[[nodiscard]] std::errc readReal(const std::string& text, double& value);

} // namespace analyzer
