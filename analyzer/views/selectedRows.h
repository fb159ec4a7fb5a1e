#pragma once

#include <dataviews/platform/data/RowBitmap.h>

class CaseSet;
class Project;

namespace analyzer {

/// The rows of \p project that hold \p cases; those that it does not have are left out.
[[nodiscard]] RowBitmap selectedRows(const Project& project, const CaseSet& cases);

} // namespace analyzer
