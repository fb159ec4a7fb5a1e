# The case under the mouse, and the cases that views leave out; GUI tests.
list(
    APPEND
    ANALYZER_VIEWS_TEST_SOURCES
    CaseTableViewTest.cpp
    CaseToolTipTest.cpp
    CellHoverTest.cpp
    ChartBandTest.cpp
    ChartHoverTest.cpp
    SelectionPreviewTest.cpp
    filteredOutCasesTest.cpp
)
