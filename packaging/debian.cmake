# packaging/debian.cmake: run by cpack on what it is about to pack, one folder a component. Adds what
# each Debian package has: its licence, its changelog, and manual pages that are compressed.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} COMPONENT)
  set(usr ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
  set(PACKAGE ${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME})
  set(doc ${usr}/share/doc/${PACKAGE})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${doc}/changelog @ONLY)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/../LICENSE ${doc}/copyright COPYONLY)
  file(GLOB_RECURSE pages ${usr}/share/man/*.[1-9n]*)
  execute_process(COMMAND gzip -9n ${doc}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
