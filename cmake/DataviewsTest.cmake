# dataviews_test(NAME [GUI] SOURCES source... LIBRARIES target...)
#
# Makes one test program of a folder, registered as one test. GUI programs get a QApplication and need a display.
function(dataviews_test NAME)
    cmake_parse_arguments(TEST "GUI" "" "SOURCES;LIBRARIES" ${ARGN})

    add_executable(${NAME} ${TEST_SOURCES})
    set_target_properties(${NAME} PROPERTIES AUTOMOC ${TEST_GUI})
    target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${NAME} PRIVATE ${TEST_LIBRARIES} dataviews_options)
    # What is tested is optimised; of the tests themselves that would be most of the time to build everything.
    target_compile_options(${NAME} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O0>)
    if(TEST_GUI)
        target_link_libraries(${NAME} PRIVATE dataviews_test_gui_main Qt5::Test)
    else()
        target_link_libraries(${NAME} PRIVATE dataviews_test_main)
    endif()
    add_test(NAME ${NAME} COMMAND ${NAME})
    if(TEST_GUI)
        # One window at a time has the focus.
        set_tests_properties(${NAME} PROPERTIES RESOURCE_LOCK display)
    endif()
endfunction()
