# What a device gets, and what somebody needs who builds a plug-in against it: components of which
# each can be installed alone.
include(CMakePackageConfigHelpers)

install(TARGETS qos-agent DESTINATION bin COMPONENT agent)
install(TARGETS QosOpenConfig qos-agent-loop DESTINATION lib/qos-agent COMPONENT agent)
if(TARGET qos-agent-gnmi)
    install(TARGETS qos-agent-gnmi DESTINATION lib/qos-agent COMPONENT gnmi OPTIONAL)
endif()
install(TARGETS platform EXPORT QosPlatformTargets
    LIBRARY DESTINATION ${QOS_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
    FILE_SET HEADERS DESTINATION include/qos-agent COMPONENT development)
configure_file(cmake/InstallByPrefix.cmake.in InstallByPrefix.cmake @ONLY)
install(SCRIPT "${PROJECT_BINARY_DIR}/InstallByPrefix.cmake" COMPONENT agent)

set(package_dir ${QOS_LIBDIR}/cmake/QosPlatform)
install(EXPORT QosPlatformTargets NAMESPACE QosPlatform:: DESTINATION ${package_dir}
    COMPONENT development)
configure_package_config_file(cmake/QosPlatformConfig.cmake.in QosPlatformConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(QosPlatformConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/QosPlatformConfig.cmake"
    "${PROJECT_BINARY_DIR}/QosPlatformConfigVersion.cmake"
    DESTINATION ${package_dir} COMPONENT development)
