# The table of cases.
list(
    APPEND
    ANALYZER_VIEWS_SOURCES
    CaseTableDelegate.cpp
    CaseTableIndex.cpp
    CaseTableModel.cpp
    CaseTableOrder.cpp
    CaseTableSelection.cpp
    CaseTableState.cpp
    CaseTableWidget.cpp
)
