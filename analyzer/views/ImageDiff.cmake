# The images of two cases compared.
list(
    APPEND
    ANALYZER_VIEWS_SOURCES
    ImageDiffComputer.cpp
    ImageDiffOptionSerializer.cpp
    ImageDiffPairs.cpp
    ImageDiffPicture.cpp
    ImageDiffView.cpp
    ImageDiffWidget.cpp
)
