# What is installed, and how it is packed: `cmake --install`, and `cpack` for a Debian package. Programs, libraries and
# plug-ins say so where they are made (OssaTargets.cmake).
include(CMakePackageConfigHelpers)

set(OSSA_SHARE ${CMAKE_INSTALL_DATADIR}/ossa)
set(package ${PROJECT_SOURCE_DIR}/cmake/package)

# --- what the program reads
foreach(folder Icons NodeTypes Materials ExportPresets)
    install(DIRECTORY host/${folder} DESTINATION ${OSSA_SHARE} COMPONENT program PATTERN source EXCLUDE)
endforeach()
install(DIRECTORY examples DESTINATION ${OSSA_SHARE} COMPONENT program
    PATTERN builder EXCLUDE PATTERN scripts EXCLUDE PATTERN CMakeLists.txt EXCLUDE)
install(DIRECTORY docs/manual DESTINATION ${OSSA_SHARE}/docs COMPONENT program PATTERN CMakeLists.txt EXCLUDE)
install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ DESTINATION ${OSSA_SHARE}/manual COMPONENT program OPTIONAL)
install(FILES docs/ossa.pyi DESTINATION ${OSSA_SHARE} COMPONENT program)

# --- what the desktop reads
install(FILES ${package}/ossa.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT program)
install(FILES ${package}/ossa.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT program)
install(FILES ${package}/ossa.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT program)
install(FILES host/Icons/source/Ossa.svg RENAME ossa.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT program)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ossa RENAME copyright COMPONENT program)
install(FILES CHANGES.md README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ossa COMPONENT program)

# --- what shells and man read, told by the programs
set(described ${PROJECT_BINARY_DIR}/described)
set(pages "")
foreach(program ossa ossa-batch)
    foreach(form man bash zsh fish)
        set(page ${described}/${program}.${form})
        add_custom_command(OUTPUT ${page} DEPENDS ${program}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${described}
            COMMAND ${program} --describe ${form} > ${page})
        list(APPEND pages ${page})
    endforeach()
    install(FILES ${described}/${program}.man RENAME ${program}.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
    install(FILES ${described}/${program}.bash RENAME ${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
    install(FILES ${described}/${program}.zsh RENAME _${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT program)
    install(FILES ${described}/${program}.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)
endforeach()
add_custom_target(descriptions ALL DEPENDS ${pages})

# --- what plug-ins are built with
set(OSSA_CONFIG ${CMAKE_INSTALL_LIBDIR}/cmake/Ossa)
foreach(library ZelGL OssCore OssEvaluation OssRender OssGraphLayout OssNodeGraph OssModel OssInterface
        OssScriptObjects OssScripting)
    install(DIRECTORY host/${library} ${PROJECT_BINARY_DIR}/export/${library}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ossa COMPONENT development FILES_MATCHING PATTERN "*.h")
endforeach()
install(EXPORT OssaTargets NAMESPACE Ossa:: DESTINATION ${OSSA_CONFIG} COMPONENT development)
configure_package_config_file(${package}/OssaConfig.cmake.in ${PROJECT_BINARY_DIR}/OssaConfig.cmake
    INSTALL_DESTINATION ${OSSA_CONFIG} PATH_VARS OSSA_PLUGIN_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OssaConfigVersion.cmake COMPATIBILITY ExactVersion)
install(FILES ${PROJECT_BINARY_DIR}/OssaConfig.cmake ${PROJECT_BINARY_DIR}/OssaConfigVersion.cmake
    DESTINATION ${OSSA_CONFIG} COMPONENT development)

# --- packages, of what is built
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ossa)
set(CPACK_PACKAGE_VENDOR "The Ossa developers")
set(CPACK_PACKAGE_CONTACT "The Ossa developers <ossa@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Paints and generates textures with a node graph")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME ossa)
# Opened when they are needed, not linked.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "libqt5svg5, libegl1, libgl1-mesa-dri, fonts-dejavu-core, shared-mime-info")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "fonts-inter")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ossa-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "ossa (= ${PROJECT_VERSION}), qtbase5-dev, libglm-dev, cmake, g++")
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "The program, its node types, materials, examples and manual.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers and a CMake package for plug-ins.")
include(CPack)
