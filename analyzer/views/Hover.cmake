# The case under the mouse, and the cases that views leave out.
list(
    APPEND
    ANALYZER_VIEWS_SOURCES
    CaseToolTip.cpp
    CellHover.cpp
    ChartHover.cpp
    HoveredCellDelegate.cpp
    filteredOutCases.cpp
    hoverOutline.cpp
)
