# The images of two cases compared; GUI tests.
list(APPEND ANALYZER_VIEWS_TEST_SOURCES ImageDiffPictureTest.cpp ImageDiffViewTest.cpp)
