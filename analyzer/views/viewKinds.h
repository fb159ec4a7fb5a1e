#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace analyzer {

class AnalyzerViewInterface;
struct ViewServices;

/// The kinds of views that can be opened, by their short names, in the order for lists.
[[nodiscard]] std::vector<std::string> viewKinds();

/// The properties of the views of \p kind and their values, for a help text.
[[nodiscard]] std::string viewKindHelp(const std::string& kind);

/// A new view of \p kind, one of viewKinds(), without a parent widget.
[[nodiscard]] boost::shared_ptr<AnalyzerViewInterface> makeView(
    const std::string& kind, const ViewServices& services);

} // namespace analyzer
