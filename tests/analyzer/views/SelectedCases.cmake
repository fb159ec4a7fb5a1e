# The values of the selected cases side by side; GUI tests.
list(APPEND ANALYZER_VIEWS_TEST_SOURCES SelectedCasesViewTest.cpp)
