# Compiler settings shared by every target of the project, as the interface target
# orbelantine_options.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
    set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

# Level 1 is what stack traces and symbols of addresses take; more costs a third of the build's time.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
if(WIN32)
    # What the system's own symbol functions read, where they read the compiler's symbols at all.
    string(APPEND CMAKE_CXX_FLAGS_RELWITHDEBINFO " -gdwarf-4")
endif()
if(ORBELANTINE_SANITIZE)
    # What the sanitisers add is a burden to the optimiser that runs of the suites don't pay back.
    set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O0 -g1")
    add_compile_options(-fsanitize=${ORBELANTINE_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ORBELANTINE_SANITIZE})
    # The standalone fences of Boost's smart pointers are all paired with atomics that the thread
    # sanitiser sees.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-tsan>)
endif()

add_library(orbelantine_options INTERFACE)
target_include_directories(orbelantine_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(orbelantine_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual -Werror
    # It takes each file of a unit for a header.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
if(WIN32)
    target_compile_definitions(orbelantine_options INTERFACE
        UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
        _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000006 __USE_MINGW_ANSI_STDIO=1)
    # The run-time libraries go into each program: nothing of the compiler is shipped beside it.
    add_link_options(-static)
endif()
