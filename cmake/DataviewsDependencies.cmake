find_package(Threads REQUIRED)
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Xml)
find_package(Boost 1.74 REQUIRED)
find_package(
    VTK 9.1 REQUIRED
    COMPONENTS ChartsCore
               CommonCore
               CommonDataModel
               CommonExecutionModel
               IOCore
               RenderingCore
               RenderingContext2D
               RenderingContextOpenGL2
               RenderingOpenGL2
               RenderingFreeType
               InteractionStyle
               InteractionWidgets
               RenderingAnnotation
               ViewsContext2D
               GUISupportQt
)
