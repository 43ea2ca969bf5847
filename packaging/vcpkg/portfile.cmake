# A port of this tree: vcpkg install qvnalu --overlay-ports=packaging/vcpkg, from the root of the repository.
if(NOT VCPKG_TARGET_IS_LINUX)
  vcpkg_check_linkage(ONLY_STATIC_LIBRARY)
endif()

get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../.." ABSOLUTE)
vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS
    -DQVNALU_BUILD_TESTS=OFF
    -DQVNALU_BUILD_TOOLS=OFF
    -DQVNALU_BUILD_FUZZERS=OFF
    -DQVNALU_DEVELOPER=OFF
    -DCMAKE_INSTALL_DOCDIR=share/qvnalu)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/qvnalu)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share/qvnalu")
file(INSTALL "${SOURCE_PATH}/packaging/debian/copyright" DESTINATION "${CURRENT_PACKAGES_DIR}/share/qvnalu")
