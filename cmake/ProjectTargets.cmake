# The shape that every target of the tree has. The tree's layout is its architecture: what lies in
# a target's folder belongs to the target, so sources are found, not listed.

# The sources and headers of a folder, below it too.
macro(qos_sources OUT_SOURCES OUT_HEADERS FOLDER)
    file(GLOB_RECURSE ${OUT_SOURCES} CONFIGURE_DEPENDS "${FOLDER}/*.cpp")
    file(GLOB_RECURSE ${OUT_HEADERS} CONFIGURE_DEPENDS "${FOLDER}/*.h")
endmacro()

# With QOS_UNITY, compiles the sources of a folder together: most of the time goes into the same
# headers and templates over and over. Sources of one folder therefore give their own functions and
# constants different names, but in these folders, whose sources follow one pattern, names and all.
set(separate_folders
    QosOpenConfig/QosOpenConfigClassifierStateSm agent/openconfig
    tests/agent/options tests/agent/program tests/model tests/platform/Vex)

function(qos_compile_folders_together TARGET)
    get_target_property(sources ${TARGET} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
        if(folder IN_LIST separate_folders)
            set_source_files_properties("${source}" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
        endif()
        string(MAKE_C_IDENTIFIER "${folder}" group)
        set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${group}")
    endforeach()
    set_target_properties(${TARGET} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    # A unit of several sources looks like a header to GCC.
    target_compile_options(${TARGET} PRIVATE
        $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()

# Gives a target the project's options, its headers (which must each compile alone: target
# all_verify_interface_header_sets) and include paths that begin at the root.
function(qos_target TARGET)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "HEADERS")
    target_link_libraries(${TARGET} PRIVATE project_options)
    target_compile_features(${TARGET} PUBLIC cxx_std_20)
    set_target_properties(${TARGET} PROPERTIES CXX_EXTENSIONS OFF)
    if(QOS_UNITY)
        qos_compile_folders_together(${TARGET})
    endif()
    if(ARG_HEADERS)
        target_sources(${TARGET} PUBLIC
            FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${ARG_HEADERS})
        set_target_properties(${TARGET} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    else()
        target_include_directories(${TARGET} PRIVATE "${PROJECT_SOURCE_DIR}")
    endif()
endfunction()

# Options that keep a test's compilation short: the matchers' code is by far the most that is
# compiled, and checking each of its references for null and alignment takes a third of the time.
# What is tested keeps all checks.
add_library(test_options INTERFACE)
target_compile_options(test_options INTERFACE $<$<CONFIG:Debug>:-g1>)
if(QOS_SANITIZE MATCHES undefined)
    target_compile_options(test_options INTERFACE -fno-sanitize=null,alignment)
endif()

function(qos_test_target TARGET)
    qos_target(${TARGET} ${ARGN})
    # Behind the project's own: the last word on a check counts.
    target_link_libraries(${TARGET} PRIVATE test_options)
endfunction()
