# Gives each package what the distribution wants in it, in the folder in which it is packed: its
# changelog, its copyright, and what a check of it is to pass over.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" key)
    set(package "${CPACK_DEBIAN_${key}_PACKAGE_NAME}")
    set(folder "${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share")
    configure_file("${CMAKE_CURRENT_LIST_DIR}/copyright" "${folder}/doc/${package}/copyright" COPYONLY)
    execute_process(
        COMMAND gzip -9nc "${CMAKE_CURRENT_LIST_DIR}/changelog"
        OUTPUT_FILE "${folder}/doc/${package}/changelog.gz"
        COMMAND_ERROR_IS_FATAL ANY)
    set(overrides "${CMAKE_CURRENT_LIST_DIR}/${component}.lintian-overrides")
    if(EXISTS "${overrides}")
        configure_file("${overrides}" "${folder}/lintian/overrides/${package}" COPYONLY)
    endif()
    file(GLOB pages "${folder}/man/*/*.1")
    if(pages)
        execute_process(COMMAND gzip -9nf ${pages} COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
