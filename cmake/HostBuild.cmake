# The C# half: the proxies' assembly Orbelantine.Swig.dll and the programs that use it, for each
# of the two runtimes that is installed (dotnet, Mono), from the same sources.
find_program(DOTNET_PROGRAM dotnet)
find_program(MCS_PROGRAM NAMES mono-csc mcs)
find_program(MONO_PROGRAM mono)
get_property(orbelantine_proxies GLOBAL PROPERTY orbelantine_proxy_dir)
set(orbelantine_host_runtimes "")
add_custom_target(host ALL)

if(DOTNET_PROGRAM)
    execute_process(COMMAND "${DOTNET_PROGRAM}" --version
        OUTPUT_VARIABLE dotnet_version OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE dotnet_failed)
    if(NOT dotnet_failed)
        list(APPEND orbelantine_host_runtimes dotnet)
    endif()
endif()
if(MCS_PROGRAM AND MONO_PROGRAM)
    list(APPEND orbelantine_host_runtimes mono)
endif()
if(NOT orbelantine_host_runtimes)
    message(FATAL_ERROR "The C# host needs dotnet or Mono: run ./dev setup.")
endif()

set(orbelantine_proxy_sources ${PROJECT_SOURCE_DIR}/binding/csharp)
file(GLOB orbelantine_proxy_helpers CONFIGURE_DEPENDS "${orbelantine_proxy_sources}/*.cs")

# The assembly for all runtimes takes a package of reference assemblies, which the SDK fetches once.
set(orbelantine_dotnet ${CMAKE_COMMAND} -E env DOTNET_CLI_TELEMETRY_OPTOUT=1 DOTNET_NOLOGO=1
    DOTNET_SKIP_FIRST_TIME_EXPERIENCE=1 OrbelantineProxies=${orbelantine_proxies})
if("dotnet" IN_LIST orbelantine_host_runtimes AND NOT DEFINED ORBELANTINE_OWN_FRAMEWORK)
    execute_process(COMMAND ${orbelantine_dotnet} OrbelantineBuild=${CMAKE_BINARY_DIR}/host/dotnet
            "${DOTNET_PROGRAM}" restore "${orbelantine_proxy_sources}/Orbelantine.Swig.csproj" -v quiet
        TIMEOUT 120 OUTPUT_QUIET ERROR_QUIET RESULT_VARIABLE unfetched)
    set(own "")
    if(unfetched)
        message(WARNING "The reference assemblies of netstandard2.0 can't be fetched: Orbelantine.Swig.dll "
            "is built for this SDK's runtime alone.")
        set(own yes)
    endif()
    set(ORBELANTINE_OWN_FRAMEWORK "${own}" CACHE INTERNAL "Whether Orbelantine.Swig.dll is for the SDK's runtime alone")
endif()
list(APPEND orbelantine_dotnet OrbelantineOwnFramework=${ORBELANTINE_OWN_FRAMEWORK})

# orbelantine_host_program(NAME folder [source...]): the program NAME of a folder's sources, and of
# those named, which its project names too, as
# <build>/host/<runtime>/NAME.dll or NAME.exe. Adds the target NAME and, for each runtime, the
# list NAME_<runtime>_COMMAND that runs it.
function(orbelantine_host_program name folder)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${folder}/*.cs")
    list(APPEND sources ${ARGN})
    set(inputs orbelantine ${sources} ${orbelantine_proxy_helpers})
    set(outputs "")
    if("dotnet" IN_LIST orbelantine_host_runtimes)
        set(output_dir "${CMAKE_BINARY_DIR}/host/dotnet")
        add_custom_command(
            OUTPUT "${output_dir}/${name}.dll"
            COMMAND ${orbelantine_dotnet} OrbelantineBuild=${output_dir} "${DOTNET_PROGRAM}" build "${folder}/${name}.csproj" -v quiet --nologo -c Release -clp:NoSummary
            COMMAND ${CMAKE_COMMAND} -E touch "${output_dir}/${name}.dll"
            DEPENDS ${inputs} "${folder}/${name}.csproj" "${PROJECT_SOURCE_DIR}/Directory.Build.props"
                "${orbelantine_proxy_sources}/Orbelantine.Swig.csproj"
            JOB_POOL host
            COMMENT "Building ${name} with dotnet"
            VERBATIM)
        list(APPEND outputs "${output_dir}/${name}.dll")
        set(${name}_dotnet_COMMAND "${DOTNET_PROGRAM}" "${output_dir}/${name}.dll" PARENT_SCOPE)
    endif()
    if("mono" IN_LIST orbelantine_host_runtimes)
        set(output_dir "${CMAKE_BINARY_DIR}/host/mono")
        add_custom_command(
            OUTPUT "${output_dir}/${name}.exe"
            COMMAND "${MCS_PROGRAM}" -nologo -warnaserror -unsafe -optimize -langversion:7.2
                -out:${output_dir}/${name}.exe -r:${output_dir}/Orbelantine.Swig.dll -r:System.Core.dll ${sources}
            DEPENDS ${sources} "${output_dir}/Orbelantine.Swig.dll"
            COMMENT "Building ${name} with Mono"
            VERBATIM)
        list(APPEND outputs "${output_dir}/${name}.exe")
        set(${name}_mono_COMMAND "${MONO_PROGRAM}" "${output_dir}/${name}.exe" PARENT_SCOPE)
    endif()
    add_custom_target(${name} DEPENDS ${outputs})
    if(TARGET orbelantine_swig_mono)
        add_dependencies(${name} orbelantine_swig_mono)
    endif()
    add_dependencies(host ${name})
endfunction()

# dotnet builds the proxies as part of each program, one build at a time; Mono's compiler is given
# them once.
set_property(GLOBAL APPEND PROPERTY JOB_POOLS host=1)
if("mono" IN_LIST orbelantine_host_runtimes)
    set(mono_proxies "${CMAKE_BINARY_DIR}/host/mono/Orbelantine.Swig.dll")
    add_custom_command(
        OUTPUT "${mono_proxies}"
        COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_BINARY_DIR}/host/mono"
        COMMAND "${MCS_PROGRAM}" -nologo -unsafe -optimize -langversion:7.2 -target:library
            -out:${mono_proxies} -r:System.Core.dll "-recurse:${orbelantine_proxies}/*.cs" ${orbelantine_proxy_helpers}
        DEPENDS orbelantine ${orbelantine_proxy_helpers}
        COMMENT "Building the proxies with Mono"
        VERBATIM)
    add_custom_target(orbelantine_swig_mono DEPENDS "${mono_proxies}")
    add_dependencies(host orbelantine_swig_mono)
endif()
