# Build rules of the project: flags, layers, extension modules.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1")
set(CMAKE_C_FLAGS_DEV "-O1 -g1")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1 -DNDEBUG")

set(KELMOR_PYTHON "/usr/bin/python3" CACHE FILEPATH "The interpreter that the modules are built for")
set(KELMOR_TOOL_PYTHON "/usr/bin/python3" CACHE FILEPATH "The interpreter of generator and tests")
option(KELMOR_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Werror)
# The records of the interpreter are named field by field; what is not named is zero.
add_compile_options(-Wno-missing-field-initializers)
# A unique symbol would be shared by all modules of the family that one process has loaded.
add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
# The reference-counted string is the object that type names cross the boundary in.
add_compile_definitions(_GLIBCXX_USE_CXX11_ABI=0)
if(KELMOR_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

execute_process(
    COMMAND ${KELMOR_PYTHON} -c
            "import sysconfig as s; print(s.get_paths()['include']); print(s.get_config_var('EXT_SUFFIX'))"
    OUTPUT_VARIABLE python_facts
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" python_facts "${python_facts}")
list(GET python_facts 0 KELMOR_PYTHON_INCLUDE)
list(GET python_facts 1 KELMOR_EXT_SUFFIX)

# The staged package: what `build/python` imports and what the wheel is made of.
set(KELMOR_STAGE ${CMAKE_BINARY_DIR}/package)

# kelmor_layer(<name> [<lower layer>...]): an object library of all sources of this folder. Its
# headers are reached as "<name>/x.h", and only by layers that name it here, so that a dependency
# that points upwards does not compile.
function(kelmor_layer name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    if(NOT sources)
        return()
    endif()
    add_library(kelmor_${name} OBJECT ${sources})
    set(view ${CMAKE_BINARY_DIR}/include/${name})
    file(MAKE_DIRECTORY ${view})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${view}/${name} SYMBOLIC)
    target_include_directories(kelmor_${name} PUBLIC ${view})
    foreach(lower ${ARGN})
        target_include_directories(kelmor_${name} PUBLIC ${CMAKE_BINARY_DIR}/include/${lower})
    endforeach()
    if(NOT name STREQUAL host)
        target_include_directories(kelmor_${name} SYSTEM PUBLIC ${KELMOR_PYTHON_INCLUDE})
    endif()
endfunction()

set(KELMOR_RUNTIME_LAYERS host shell marshal binding collections)
set(KELMOR_RUNTIME_OBJECTS)
foreach(layer ${KELMOR_RUNTIME_LAYERS})
    list(APPEND KELMOR_RUNTIME_OBJECTS $<TARGET_OBJECTS:kelmor_${layer}>)
endforeach()

# kelmor_extension(<target> OUTPUT <leaf> SOURCES ... [LAYERS ...]): a Python extension module over
# the runtime. Only its entry and the data that the family documents leave it.
function(kelmor_extension target)
    cmake_parse_arguments(ARG "" "OUTPUT;DIRECTORY" "SOURCES;LAYERS" ${ARGN})
    if(NOT ARG_LAYERS)
        set(ARG_LAYERS ${KELMOR_RUNTIME_LAYERS})
    endif()
    set(objects)
    foreach(layer ${ARG_LAYERS})
        list(APPEND objects $<TARGET_OBJECTS:kelmor_${layer}>)
    endforeach()
    add_library(${target} MODULE ${ARG_SOURCES} ${objects})
    foreach(layer ${ARG_LAYERS})
        target_include_directories(${target} PRIVATE ${CMAKE_BINARY_DIR}/include/${layer})
    endforeach()
    target_include_directories(${target} SYSTEM PRIVATE ${KELMOR_PYTHON_INCLUDE})
    if(NOT ARG_DIRECTORY)
        set(ARG_DIRECTORY ${KELMOR_STAGE}/kelmor)
    endif()
    set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${ARG_OUTPUT}
        SUFFIX ${KELMOR_EXT_SUFFIX} LIBRARY_OUTPUT_DIRECTORY ${ARG_DIRECTORY})
    set(map ${CMAKE_SOURCE_DIR}/cmake/extension.map)
    target_link_options(${target} PRIVATE -Wl,--version-script=${map} -Wl,-Bsymbolic
        -Wl,--gc-sections)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
    target_link_libraries(${target} PRIVATE dl)
endfunction()
