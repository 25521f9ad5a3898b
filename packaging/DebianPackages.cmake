# Three packages of one build, each with its documents as the distribution wants them.
if(NOT CMAKE_SYSTEM_NAME STREQUAL Linux)
    return()
endif()

set(debian "${CMAKE_CURRENT_LIST_DIR}/debian")

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME qos-agent)
set(CPACK_PACKAGE_CONTACT "qos-agent maintainers <maintainers@qos-agent.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL agent library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${debian}/documents.cmake")

set(CPACK_COMPONENT_AGENT_DEPENDS library)
set(CPACK_DEBIAN_AGENT_PACKAGE_NAME qos-agent)
set(CPACK_DEBIAN_AGENT_PACKAGE_SECTION net)
set(CPACK_DEBIAN_AGENT_DESCRIPTION "agent for the OpenConfig QoS classifier state of a device
It watches class maps, policy maps and access lists, and publishes the state
of the OpenConfig classifiers that follows from them. The state database is
fed from documents and change streams; systemd can run it over a named pipe.")
set(CPACK_DEBIAN_AGENT_PACKAGE_CONTROL_EXTRA
    "${debian}/conffiles" "${debian}/postinst" "${debian}/postrm" "${debian}/prerm")

set(library libqosplatform${PROJECT_VERSION_MAJOR})
configure_file(debian/library/shlibs.in debian/shlibs @ONLY)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "platform of qos-agent and its plug-ins, shared library
The runtime in which a plug-in watches entities and publishes others: nodes,
collections, machines, the database, and the schemas of QoS and access lists.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
    "${debian}/library/postinst" "${debian}/library/postrm" "${debian}/library/triggers"
    "${CMAKE_CURRENT_BINARY_DIR}/debian/shlibs")

set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqosplatform-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "platform of qos-agent and its plug-ins, development files
The headers and the CMake package with which to build plug-ins of one's own.")

include(CPack)
