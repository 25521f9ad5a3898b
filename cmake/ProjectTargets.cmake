# The shape that every target of the tree has. The tree's layout is its architecture: what lies in
# a target's folder belongs to the target, so sources are found, not listed.

# The sources and headers of a folder, below it too.
macro(qos_sources OUT_SOURCES OUT_HEADERS FOLDER)
    file(GLOB_RECURSE ${OUT_SOURCES} CONFIGURE_DEPENDS "${FOLDER}/*.cpp")
    file(GLOB_RECURSE ${OUT_HEADERS} CONFIGURE_DEPENDS "${FOLDER}/*.h")
endmacro()

# Without a compiler cache, reading the standard library once for all sources of a target saves a
# quarter of the time.
function(qos_precompile_standard_library TARGET)
    get_target_property(sources ${TARGET} SOURCES)
    list(LENGTH sources count)
    if(count GREATER 8 AND NOT QOS_CCACHE)
        target_precompile_headers(${TARGET} PRIVATE
            <algorithm> <array> <charconv> <concepts> <cstddef> <cstdint> <functional> <iterator>
            <map> <memory> <optional> <set> <span> <sstream> <stdexcept> <string> <string_view>
            <tuple> <type_traits> <unordered_map> <utility> <variant> <vector>)
    endif()
endfunction()

# Gives a target the project's options, its headers (which must each compile alone: target
# all_verify_interface_header_sets) and include paths that begin at the root.
function(qos_target TARGET)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "HEADERS")
    target_link_libraries(${TARGET} PRIVATE project_options)
    target_compile_features(${TARGET} PUBLIC cxx_std_20)
    set_target_properties(${TARGET} PROPERTIES CXX_EXTENSIONS OFF)
    qos_precompile_standard_library(${TARGET})
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
