# The images of the selected cases.
list(
    APPEND
    ANALYZER_VIEWS_SOURCES
    CaseValuesTable.cpp
    ImageCanvas.cpp
    ImageCanvasCaption.cpp
    ImageCanvasGroup.cpp
    ImageCanvasLevels.cpp
    ImageCanvasZoomBar.cpp
    ImageLeafingWidget.cpp
    SelectedImageGrid.cpp
    SelectedImageList.cpp
    SelectedImageLoader.cpp
    SelectedImageSerializer.cpp
    SelectedImageView.cpp
    SelectedImageWidget.cpp
)
