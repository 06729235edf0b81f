# Boost.Thread and Boost.Filesystem for the cross build, compiled from Debian's source package
# (./dev setup unpacks it); all other Boost libraries in use are headers.
set(boost_libs "${ORBELANTINE_BOOST_SOURCE}/libs")
if(NOT EXISTS "${boost_libs}/thread/src/win32/thread.cpp")
    message(FATAL_ERROR "No Boost sources in '${ORBELANTINE_BOOST_SOURCE}': run ./dev setup first.")
endif()

add_library(orbelantine_boost_thread STATIC
    "${boost_libs}/thread/src/win32/thread.cpp"
    "${boost_libs}/thread/src/win32/tss_pe.cpp"
    "${boost_libs}/thread/src/win32/tss_dll.cpp"
    "${boost_libs}/thread/src/win32/thread_primitives.cpp"
    "${boost_libs}/thread/src/future.cpp")
target_compile_definitions(orbelantine_boost_thread
    PRIVATE BOOST_THREAD_BUILD_LIB PUBLIC BOOST_THREAD_USE_LIB)

file(GLOB filesystem_sources "${boost_libs}/filesystem/src/*.cpp")
add_library(orbelantine_boost_filesystem STATIC ${filesystem_sources})
target_compile_definitions(orbelantine_boost_filesystem
    PRIVATE BOOST_FILESYSTEM_SOURCE BOOST_FILESYSTEM_STATIC_LINK=1
    PUBLIC BOOST_FILESYSTEM_STATIC_LINK=1)
target_include_directories(orbelantine_boost_filesystem PRIVATE "${boost_libs}/filesystem/src")

foreach(target orbelantine_boost_thread orbelantine_boost_filesystem)
    target_link_libraries(${target} PUBLIC orbelantine_deps)
    target_compile_options(${target} PRIVATE -w)
    set_target_properties(${target} PROPERTIES UNITY_BUILD OFF)
    target_compile_definitions(${target} PRIVATE _WIN32_WINNT=0x0A00)
endforeach()
