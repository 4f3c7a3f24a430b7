# Publishes the managed assemblies unless the last publication is as new as every source.
cmake_minimum_required(VERSION 3.25)

set(inputs ${SOURCES}/Directory.Build.props ${SOURCES}/publish.proj ${SOURCES}/publish.cmake)
foreach(folder Interop Kelmor.GfxTypes Kelmor.PSD WrpInterop.Kelmor.GfxTypes WrpInterop.Kelmor.PSD
        WrpInterop.Kelmor.TypeModel)
    file(GLOB_RECURSE found ${SOURCES}/${folder}/*)
    list(APPEND inputs ${found})
endforeach()
file(GLOB_RECURSE entries ${GENERATED}/*.cs)
list(APPEND inputs ${entries})

# A file that has gone leaves no date behind, so the names are remembered too.
string(SHA256 names "${inputs}")
set(stamp ${ARTIFACTS}/published)
set(fresh FALSE)
if(EXISTS ${stamp})
    file(READ ${stamp} published)
    if(published STREQUAL names)
        set(fresh TRUE)
        foreach(input ${inputs})
            if(${input} IS_NEWER_THAN ${stamp})
                set(fresh FALSE)
                break()
            endif()
        endforeach()
    endif()
endif()
if(fresh)
    return()
endif()

file(TOUCH ${stamp}.start)
execute_process(
    COMMAND ${DOTNET} msbuild -nologo -v:q -nodeReuse:false ${SOURCES}/publish.proj
        -p:KelmorArtifacts=${ARTIFACTS}/ -p:KelmorAssemblies=${ASSEMBLIES}
        -p:KelmorGeneratedRoot=${GENERATED}
    RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "dotnet could not publish the managed assemblies")
endif()
# Dated at the start: what was edited meanwhile is newer, and is published next time.
file(WRITE ${stamp} "${names}")
execute_process(COMMAND touch -r ${stamp}.start ${stamp})
