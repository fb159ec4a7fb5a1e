# The images of the selected cases.
list(
    APPEND
    ANALYZER_VIEWS_SOURCES
    CaseValuesTable.cpp
    ImageCanvas.cpp
    SelectedImageList.cpp
    SelectedImageLoader.cpp
    SelectedImageView.cpp
    SelectedImageWidget.cpp
)
