# The values of the selected cases side by side.
list(
    APPEND
    ANALYZER_VIEWS_SOURCES
    SelectedCasesDelegate.cpp
    SelectedCasesModel.cpp
    SelectedCasesNameHeader.cpp
    SelectedCasesReference.cpp
    SelectedCasesReferenceSetting.cpp
    SelectedCasesTable.cpp
    SelectedCasesView.cpp
    SelectedCasesWidget.cpp
)
