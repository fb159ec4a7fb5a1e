include(GenerateExportHeader)

# dataviews_module(NAME [MOC] SOURCES source... [HEADERS header...] [PUBLIC target...] [PRIVATE target...])
#
# Makes the library of one folder: target dataviews_<folders>, alias DataViews::NAME, the export header
# <folder>/NAMEExport.h with the macro DATAVIEWS_<FOLDERS>_EXPORT. For each source the header beside it belongs to
# the module; HEADERS names headers without a source. MOC is for folders with Q_OBJECT classes.
function(dataviews_module NAME)
    cmake_parse_arguments(MODULE "MOC" "" "SOURCES;HEADERS;PUBLIC;PRIVATE" ${ARGN})

    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    string(REPLACE "/" "_" target ${folder})
    string(REPLACE "_common_" "_" target ${target})
    string(TOUPPER ${target} prefix)

    set(headers ${MODULE_HEADERS})
    foreach(source IN LISTS MODULE_SOURCES)
        string(REGEX REPLACE "\\.cpp$" ".h" header ${source})
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${header})
            list(APPEND headers ${header})
        endif()
    endforeach()

    add_library(${target} ${MODULE_SOURCES} ${headers})
    add_library(DataViews::${NAME} ALIAS ${target})
    set_target_properties(
        ${target} PROPERTIES EXPORT_NAME ${NAME} OUTPUT_NAME DataViews${NAME} AUTOMOC ${MODULE_MOC} VERSION ${PROJECT_VERSION}
                             SOVERSION ${PROJECT_VERSION_MAJOR}
    )
    target_include_directories(
        ${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated>
                         $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    )
    target_link_libraries(${target} PUBLIC ${MODULE_PUBLIC} PRIVATE ${MODULE_PRIVATE} $<BUILD_INTERFACE:dataviews_options>)

    set(exportHeader ${PROJECT_BINARY_DIR}/generated/${folder}/${NAME}Export.h)
    generate_export_header(
        ${target} EXPORT_FILE_NAME ${exportHeader} EXPORT_MACRO_NAME ${prefix}_EXPORT NO_EXPORT_MACRO_NAME
                  ${prefix}_NO_EXPORT STATIC_DEFINE ${prefix}_STATIC_DEFINE
    )

    set_property(GLOBAL APPEND PROPERTY DATAVIEWS_MODULES ${target})
    list(TRANSFORM headers PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    install(FILES ${headers} ${exportHeader} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
    install(TARGETS ${target} EXPORT DataViewsTargets)
endfunction()
