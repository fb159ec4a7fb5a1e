#pragma once

#include <analyzer/views/LeftOutCases.h>

#include <dataviews/platform/data/RowBitmap.h>

#include <cstddef>
#include <set>
#include <vector>

class DataPipelineManagerInterface;

namespace analyzer {

/// How many cases of the open study do not pass the filters of \p pipeline, which is one of that study.
[[nodiscard]] std::size_t filteredOutCount(const DataPipelineManagerInterface& pipeline);

/// The same for a view that leaves out nothing else.
[[nodiscard]] std::vector<LeftOutCases> filteredOut(const DataPipelineManagerInterface& pipeline);

/// The rows of the open study whose cases do not pass the filters of \p pipeline, which is one of that study; in one
/// pass over both columns of IDs.
[[nodiscard]] RowBitmap filteredOutRows(const DataPipelineManagerInterface& pipeline);

/// The IDs of the cases in \p rows of the open study.
[[nodiscard]] std::set<unsigned long long> caseIDs(const RowBitmap& rows);

} // namespace analyzer
