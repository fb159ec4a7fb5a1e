# The table of cases; GUI tests.
list(
    APPEND
    ANALYZER_VIEWS_TEST_SOURCES
    CaseTableIndexTest.cpp
    CaseTableModelTest.cpp
    CaseTableOrderTest.cpp
    CaseTableSelectionTest.cpp
    CaseTableWidgetTest.cpp
)
