# Third-party libraries, all Debian's, as interface targets:
#   orbelantine_deps          Boost's headers, and those of spdlog and fmt
#   orbelantine_deps_system   what of Boost is compiled
#   orbelantine_deps_bluetooth   D-Bus, by which BlueZ is reached
#   orbelantine_deps_crypto   certificates and signatures: libcrypto, on Windows the system's own
#   orbelantine_deps_audio    PulseAudio's headers; its library is loaded where the machine has it
#   orbelantine_deps_window   XCB's headers and xkbcommon's; their libraries are loaded where there are any
#   GTest::gtest_main         GoogleTest from Debian's sources, with this build's own flags
find_package(Threads REQUIRED)

add_library(orbelantine_deps INTERFACE)
target_link_libraries(orbelantine_deps INTERFACE Threads::Threads)
target_compile_definitions(orbelantine_deps INTERFACE
    BOOST_BIND_GLOBAL_PLACEHOLDERS BOOST_ALL_NO_LIB BOOST_THREAD_VERSION=4
    BOOST_ASIO_SEPARATE_COMPILATION)

add_library(orbelantine_deps_system INTERFACE)
add_library(orbelantine_deps_bluetooth INTERFACE)
add_library(orbelantine_deps_crypto INTERFACE)
add_library(orbelantine_deps_audio INTERFACE)
add_library(orbelantine_deps_window INTERFACE)

if(WIN32)
    include(BoostFromSource)
    # Headers that need no building are used where Debian put them, through links in the build
    # folder: /usr/include itself must never reach the cross compiler.
    set(header_links "${CMAKE_BINARY_DIR}/third_party/include")
    file(MAKE_DIRECTORY "${header_links}")
    foreach(name boost spdlog fmt)
        file(CREATE_LINK "/usr/include/${name}" "${header_links}/${name}" SYMBOLIC)
    endforeach()
    target_include_directories(orbelantine_deps SYSTEM INTERFACE "${header_links}")
    # What the sockets of asio call, which is compiled whole.
    target_link_libraries(orbelantine_deps INTERFACE ws2_32 mswsock bcrypt)
    target_link_libraries(orbelantine_deps_system INTERFACE
        orbelantine_boost_thread orbelantine_boost_filesystem
        shell32 ole32 uuid advapi32 setupapi cfgmgr32 bthprops dbghelp version wlanapi)
    target_link_libraries(orbelantine_deps_crypto INTERFACE crypt32)
    target_link_libraries(orbelantine_deps_audio INTERFACE ole32)
    target_link_libraries(orbelantine_deps_window INTERFACE user32)
else()
    find_package(Boost 1.81 REQUIRED COMPONENTS thread filesystem)
    target_link_libraries(orbelantine_deps INTERFACE Boost::headers)
    target_link_libraries(orbelantine_deps_system INTERFACE Boost::thread Boost::filesystem ${CMAKE_DL_LIBS})
    find_package(sdbus-c++ REQUIRED GLOBAL)
    target_link_libraries(orbelantine_deps_bluetooth INTERFACE SDBusCpp::sdbus-c++)
    find_package(OpenSSL REQUIRED COMPONENTS Crypto)
    target_link_libraries(orbelantine_deps_crypto INTERFACE OpenSSL::Crypto)
    find_path(pulse_headers pulse/pulseaudio.h REQUIRED)
    target_link_libraries(orbelantine_deps_audio INTERFACE ${CMAKE_DL_LIBS})
    foreach(header xcb/xinput.h xcb/xkb.h xcb/xtest.h xkbcommon/xkbcommon-x11.h)
        string(MAKE_C_IDENTIFIER "${header}" variable)
        find_path(${variable} ${header} REQUIRED)
    endforeach()
    target_link_libraries(orbelantine_deps_window INTERFACE ${CMAKE_DL_LIBS})
endif()

if(BUILD_TESTING)
    set(INSTALL_GTEST OFF)
    set(BUILD_GMOCK OFF)
    set(gtest_force_shared_crt ON)
    add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/third_party/googletest" EXCLUDE_FROM_ALL)
    include(GoogleTest)
endif()
