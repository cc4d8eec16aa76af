# cmake --install, in four components:
#   runtime  the library, as a host loads it
#   tools    vornex-label and vornex-sim, the dissector, an example plant, the pages for who uses them; marked so in tools/
#   edge     vornex-edge and its unit for systemd; marked so in tools/edge
#   dev      headers, link name, CMake package and pkg-config file, the example host, the pages for who writes a host
include(CMakePackageConfigHelpers)

install(TARGETS vornex_label_tcp EXPORT vornex_label_tcp
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT dev)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/vornex_label_tcp" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        COMPONENT dev)

set(config_dir "${CMAKE_INSTALL_LIBDIR}/cmake/vornex_label_tcp")
install(EXPORT vornex_label_tcp NAMESPACE vornex:: FILE vornex_label_tcpTargets.cmake DESTINATION "${config_dir}"
        COMPONENT dev)
set_target_properties(vornex_label_tcp PROPERTIES EXPORT_NAME label_tcp)
configure_package_config_file(cmake/package/vornex_label_tcpConfig.cmake.in vornex_label_tcpConfig.cmake
                              INSTALL_DESTINATION "${config_dir}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(vornex_label_tcpConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/vornex_label_tcpConfig.cmake"
              "${PROJECT_BINARY_DIR}/vornex_label_tcpConfigVersion.cmake" DESTINATION "${config_dir}" COMPONENT dev)

# The prefix is told from where the file lies, so that an unpacked archive works anywhere.
file(RELATIVE_PATH pc_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
set(pc_qt QtCore)
if(vornex_qt_major EQUAL 5)
  set(pc_qt Qt5Core)
endif()
configure_file(cmake/package/vornex_label_tcp.pc.in vornex_label_tcp.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vornex_label_tcp.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT dev)

set(data_dir "${CMAKE_INSTALL_DATADIR}/vornex_label_tcp")
install(FILES examples/minimal_host.cpp DESTINATION "${data_dir}/examples" COMPONENT dev)
if(VORNEX_TOOLS)
  install(FILES examples/plant.json DESTINATION "${data_dir}/examples" COMPONENT tools)
  install(FILES share/vornex_label_tcp/labels.schema.json DESTINATION "${data_dir}" COMPONENT tools)
  install(DIRECTORY share/wireshark DESTINATION "${data_dir}" COMPONENT tools)
endif()
include(VornexDocs)
