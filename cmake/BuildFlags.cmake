# BuildFlags: the one place for language, warnings, sanitizers and visibility.
# Targets of this project link it PRIVATE.

option(TARVO_WERROR "Warnings are errors" OFF)
set(TARVO_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# GCC 12 sees overlaps in std::string's operator+ that are none (its bug 105651).
set(false_alarms $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

add_library(BuildFlags INTERFACE)
target_compile_options(BuildFlags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow ${false_alarms}
    $<$<BOOL:${TARVO_WERROR}>:-Werror>)
if(TARVO_SANITIZE)
    target_compile_options(BuildFlags INTERFACE
        -fsanitize=${TARVO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(BuildFlags INTERFACE -fsanitize=${TARVO_SANITIZE})
endif()
