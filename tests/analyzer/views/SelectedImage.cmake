# The images of the selected cases; GUI tests.
list(APPEND ANALYZER_VIEWS_TEST_SOURCES ImageCanvasTest.cpp SelectedImageViewTest.cpp)
