# Finds .NET on the machine, and says where the staged package keeps its own view of the runtime.
#   KELMOR_DOTNET          the dotnet command
#   KELMOR_DOTNET_RUNTIME  folder of the newest shared framework, empty without .NET
#   KELMOR_RUNTIME_DIR     runtime/netcore<major>.<minor> of the staged package
include_guard(GLOBAL)

find_program(KELMOR_DOTNET dotnet)
if(NOT KELMOR_DOTNET_RUNTIME AND KELMOR_DOTNET)
    execute_process(COMMAND ${KELMOR_DOTNET} --list-runtimes OUTPUT_VARIABLE runtimes)
    string(REGEX MATCHALL "Microsoft\\.NETCore\\.App [^\n]+" runtimes "${runtimes}")
    list(SORT runtimes COMPARE NATURAL ORDER DESCENDING)
    list(GET runtimes 0 runtime)
    if(runtime MATCHES "^Microsoft\\.NETCore\\.App ([^ ]+) \\[(.+)\\]$")
        set(KELMOR_DOTNET_RUNTIME "${CMAKE_MATCH_2}/${CMAKE_MATCH_1}" CACHE PATH
            "Folder of the runtime that the package is built over" FORCE)
    endif()
endif()

# Without a runtime the folder is for the version that the managed assemblies target.
set(KELMOR_NETCORE_FOLDER netcore10.0)
if(KELMOR_DOTNET_RUNTIME MATCHES "/([0-9]+\\.[0-9]+)\\.[^/]*$")
    set(KELMOR_NETCORE_FOLDER netcore${CMAKE_MATCH_1})
endif()
set(KELMOR_RUNTIME_DIR ${KELMOR_STAGE}/kelmor/runtime/${KELMOR_NETCORE_FOLDER} CACHE INTERNAL
    "Folder of the wrap library in the staged package")
