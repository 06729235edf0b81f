if(WIN32)
    set(orbelantine_platform windows)
else()
    set(orbelantine_platform linux)
endif()

# orbelantine_sources(VARIABLE FOLDER [ROOM...])
# The portable sources of a folder and of its rooms, and those of the platform.
function(orbelantine_sources variable folder)
    list(TRANSFORM ARGN PREPEND "${folder}/" OUTPUT_VARIABLE rooms)
    set(patterns "")
    foreach(room IN LISTS folder rooms)
        list(APPEND patterns "${room}/*.cpp" "${room}/${orbelantine_platform}/*.cpp")
    endforeach()
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
    set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# orbelantine_units(TARGET)
# Compiles the files of each folder as one unit, where CMAKE_UNITY_BUILD is on: most of a file's time
# goes to headers and templates that its neighbours need too. The platform's folders are small and
# make one unit together.
function(orbelantine_units target)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(ABSOLUTE_PATH source OUTPUT_VARIABLE folder)
        cmake_path(GET folder PARENT_PATH folder)
        cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
        string(REGEX REPLACE "/.*/(${orbelantine_platform})$" "/\\1" group "${folder}")
        string(MAKE_C_IDENTIFIER "${group}" group)
        set_source_files_properties("${source}" PROPERTIES UNITY_GROUP ${group})
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()

# orbelantine_subsystem(NAME [PATH folder] [ROOMS folder...] [USES subsystem...] [LIBRARIES target...])
# The object library orbelantine_NAME of a folder's portable sources and those of the platform.
function(orbelantine_subsystem name)
    cmake_parse_arguments(arg "" "PATH" "ROOMS;USES;LIBRARIES" ${ARGN})
    if(NOT arg_PATH)
        set(arg_PATH ${name})
    endif()
    orbelantine_sources(sources "${PROJECT_SOURCE_DIR}/${arg_PATH}" ${arg_ROOMS})
    add_library(orbelantine_${name} OBJECT ${sources})
    orbelantine_units(orbelantine_${name})
    list(TRANSFORM arg_USES PREPEND orbelantine_)
    target_link_libraries(orbelantine_${name}
        PUBLIC orbelantine_options orbelantine_deps ${arg_USES}
        PRIVATE ${arg_LIBRARIES})
    set_property(GLOBAL APPEND PROPERTY orbelantine_subsystems orbelantine_${name})
endfunction()

# orbelantine_link_all(TARGET)
# Puts every subsystem's objects into a program or library; an object library's own objects do
# not travel through the libraries that use it.
function(orbelantine_link_all target)
    get_property(subsystems GLOBAL PROPERTY orbelantine_subsystems)
    target_link_libraries(${target} PRIVATE ${subsystems})
endfunction()

# orbelantine_test_options(TARGET): tests compile often and run briefly.
function(orbelantine_test_options target)
    target_compile_options(${target} PRIVATE -O0)
    if(WIN32)
        # Unoptimised templates need more sections than an object file has by default.
        target_compile_options(${target} PRIVATE -Wa,-mbig-obj)
    endif()
endfunction()

# orbelantine_tests(NAME [ONE_PROCESS_EACH] [LIBRARIES target...])
# The suite NAME_tests of the sources in this folder's subfolder NAME (and NAME/<platform>). With
# ONE_PROCESS_EACH each case starts a process of its own, for state that lasts as long as one.
function(orbelantine_tests name)
    cmake_parse_arguments(arg "ONE_PROCESS_EACH" "" "LIBRARIES" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS
        "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp"
        "${CMAKE_CURRENT_SOURCE_DIR}/${name}/${orbelantine_platform}/*.cpp")
    if(NOT sources)
        return()
    endif()
    add_executable(${name}_tests ${sources})
    orbelantine_link_all(${name}_tests)
    target_link_libraries(${name}_tests PRIVATE ${arg_LIBRARIES} orbelantine_test_support gtest_main)
    orbelantine_test_options(${name}_tests)
    orbelantine_units(${name}_tests)
    if(arg_ONE_PROCESS_EACH)
        gtest_discover_tests(${name}_tests DISCOVERY_TIMEOUT 60)
    else()
        target_sources(${name}_tests PRIVATE "${PROJECT_SOURCE_DIR}/tests/NoLogFile.cpp")
        add_test(NAME ${name}_tests COMMAND ${name}_tests)
    endif()
endfunction()
