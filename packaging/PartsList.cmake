# The list of what the program is built from, as an SPDX document. It holds versions of the
# machine's packages, so a change of these makes it anew.
if(NOT Python3_FOUND)
    return()
endif()
string(REGEX MATCH "^[0-9]+" compiler "${CMAKE_CXX_COMPILER_VERSION}")
set(installed_packages /var/lib/dpkg/status)
if(NOT EXISTS "${installed_packages}")
    set(installed_packages "")
endif()

set(spdx "${CMAKE_CURRENT_BINARY_DIR}/qos-agent.spdx.json")
add_custom_command(OUTPUT "${spdx}"
    COMMAND Python3::Interpreter -B "${CMAKE_CURRENT_SOURCE_DIR}/spdx/write_spdx.py"
        "${PROJECT_VERSION}" "${compiler}" "${spdx}"
    DEPENDS spdx/write_spdx.py spdx/parts.json "${PROJECT_SOURCE_DIR}/debian/changelog" ${installed_packages})
add_custom_target(spdx ALL DEPENDS "${spdx}")
add_dependencies(qos-agent spdx)
install(FILES "${spdx}" DESTINATION ${docs} COMPONENT agent)
