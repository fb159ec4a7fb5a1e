# Compiler settings of our own code, as one interface target that every target links privately.

add_library(dataviews_options INTERFACE)
target_compile_options(
    dataviews_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${DATAVIEWS_STRICT}>:-Werror>
)
target_compile_definitions(
    dataviews_options INTERFACE QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS QT_NO_CAST_TO_ASCII BOOST_BIND_NO_PLACEHOLDERS
              # Preconditions are checked in every build but the optimised one.
              $<$<NOT:$<CONFIG:Release>>:QT_FORCE_ASSERTS>
)

if(DATAVIEWS_SANITIZER STREQUAL "address+undefined")
    set(dataviews_sanitizer_flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(DATAVIEWS_SANITIZER STREQUAL "thread")
    set(dataviews_sanitizer_flags -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT DATAVIEWS_SANITIZER STREQUAL "")
    message(FATAL_ERROR "DATAVIEWS_SANITIZER is \"${DATAVIEWS_SANITIZER}\"; known are address+undefined and thread.")
endif()
if(dataviews_sanitizer_flags)
    # Everything that is linked together is instrumented alike, hence not only our own targets.
    add_compile_options(${dataviews_sanitizer_flags})
    add_link_options(${dataviews_sanitizer_flags})
endif()
if(DATAVIEWS_BUILD_FUZZERS)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "DATAVIEWS_BUILD_FUZZERS needs Clang, for fuzzers are linked with its libFuzzer.")
    endif()
    # The fuzzers watch which way their input takes through our code.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(DATAVIEWS_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()

# A library that uses a symbol of a library it does not link must not link: the arrows between folders
# point one way. Sanitizer runtimes are resolved by the executable, so the check is off with them.
if(BUILD_SHARED_LIBS AND NOT dataviews_sanitizer_flags)
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,--no-undefined>)
endif()
