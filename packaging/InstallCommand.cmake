# install_command(NAME FOLDER FILE...): installs the script NAME, and the FILEs that it finds beside itself,
# in share/tamsel/FOLDER, with a relative link in bin to the script. To be called from their source folder.
include(GNUInstallDirs)
function(install_command name folder)
  set(destination ${CMAKE_INSTALL_DATADIR}/tamsel/${folder})
  install(PROGRAMS ${name} DESTINATION ${destination} COMPONENT tcl)
  install(FILES ${ARGN} DESTINATION ${destination} COMPONENT tcl)

  file(RELATIVE_PATH target ${CMAKE_INSTALL_FULL_BINDIR}
    ${CMAKE_INSTALL_FULL_DATADIR}/tamsel/${folder}/${name})
  file(CREATE_LINK ${target} ${CMAKE_CURRENT_BINARY_DIR}/${name} SYMBOLIC)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tcl)
endfunction()
