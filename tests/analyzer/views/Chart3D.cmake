list(
    APPEND
    ANALYZER_VIEWS_TEST_SOURCES
    Chart3DAxisTest.cpp
    Chart3DBoxTest.cpp
    Scatter3DPictureTest.cpp
    ScatterPlot3DViewTest.cpp
)
