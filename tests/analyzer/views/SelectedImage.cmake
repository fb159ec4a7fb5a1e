# The images of the selected cases; GUI tests.
list(APPEND ANALYZER_VIEWS_TEST_SOURCES ImageCanvasGroupTest.cpp ImageCanvasTest.cpp SelectedImageGridTest.cpp SelectedImageViewTest.cpp)
