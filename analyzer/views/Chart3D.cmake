# The scatter chart in three dimensions.
list(
    APPEND
    ANALYZER_VIEWS_SOURCES
    Chart3D.cpp
    Chart3DAxis.cpp
    Chart3DBox.cpp
    Chart3DCamera.cpp
    Chart3DColors.cpp
    Chart3DMouse.cpp
    Chart3DProjection.cpp
    Scatter3DPicture.cpp
    Scatter3DPlot.cpp
    Scatter3DPoints.cpp
    ScatterPlot3DView.cpp
)
