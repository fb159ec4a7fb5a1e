list(
    APPEND
    ANALYZER_VIEWS_TEST_SOURCES
    NumberSettingTest.cpp
    PageValueSettingTest.cpp
    PropertyListSettingTest.cpp
    RealSettingTest.cpp
)
