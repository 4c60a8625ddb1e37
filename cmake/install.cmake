# What "cmake --install" puts where.
install(TARGETS tav)
install(PROGRAMS data/tav-start TYPE BIN)
install(DIRECTORY data/programs/ DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/tav USE_SOURCE_PERMISSIONS)
install(FILES data/tav.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/tav.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES data/tav.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES resources/images/tav.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
