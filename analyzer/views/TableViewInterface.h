#pragma once

#include <dataviews/common/views/DataViewInterface.h>

/// The kind of view that is a table of cases.
class TableViewInterface : public virtual DataViewInterface
{
public:
    /// Scrolls the case \p caseID into view, if the table has it.
    virtual void scrollToCase(unsigned long long caseID) = 0;
};
