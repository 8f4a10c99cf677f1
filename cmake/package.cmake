# cmake --install, and the Debian package that CPack makes of it:
#   cmake --build build && cmake --install build --prefix PREFIX
#   cd build && cpack
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON) # the tests need not be built for it
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(GNUInstallDirs)

set(QY_PACKAGE quillary-settings)
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(files_permissions PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

install(TARGETS QYSettings qydata qydrive RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(part base catalogue countries help minimal resources sample schema)
  install(DIRECTORY data/${part} DESTINATION ${CMAKE_INSTALL_DATADIR}/quillary FILE_PERMISSIONS OWNER_READ OWNER_WRITE
          GROUP_READ WORLD_READ PATTERN svg EXCLUDE)
endforeach()
install(FILES packaging/QYSettings.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications ${files_permissions})
install(FILES packaging/com.quillary.QYSettings.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
        ${files_permissions})
foreach(size 16 32 48 64 128)
  install(FILES data/resources/quillary-${size}.png RENAME ${QY_PACKAGE}.png ${files_permissions}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES data/resources/svg/quillary.svg RENAME ${QY_PACKAGE}.svg ${files_permissions}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES packaging/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${QY_PACKAGE} ${files_permissions})

# Manual pages and the list of changes are packed without the time, so that the same files make the same package.
find_program(QY_GZIP gzip REQUIRED)
function(qy_install_packed file folder)
  get_filename_component(name ${file} NAME)
  set(packed ${CMAKE_BINARY_DIR}/packaging/${name}.gz)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${packaging}/${file})
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/packaging)
  execute_process(COMMAND ${QY_GZIP} -9nc ${packaging}/${file} OUTPUT_FILE ${packed} COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${packed} DESTINATION ${folder} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()
foreach(page QYSettings qydata qydrive)
  qy_install_packed(man/${page}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
qy_install_packed(changelog ${CMAKE_INSTALL_DATADIR}/doc/${QY_PACKAGE})

file(STRINGS packaging/description description_lines)
list(POP_FRONT description_lines summary)
list(TRANSFORM description_lines STRIP)
list(JOIN description_lines "\n" description)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${QY_PACKAGE})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Quillary developers <developers@quillary.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${summary}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "${description}")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core, tzdata")
include(CPack)
