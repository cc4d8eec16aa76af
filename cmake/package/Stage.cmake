# Run by cpack over the staged files, before it packs them: adds what only a package holds, and takes the time of the
# build out of it.
set(staged "${CPACK_TEMPORARY_DIRECTORY}")

# A Debian package finds its libraries where Debian keeps them; a search path of the board's is an error there.
if(CPACK_GENERATOR STREQUAL "DEB")
  file(GLOB_RECURSE programs LIST_DIRECTORIES false "${staged}/*/usr/bin/*" "${staged}/*/usr/lib/*.so*")
  foreach(program IN LISTS programs)
    if(NOT IS_SYMLINK "${program}")
      file(RPATH_REMOVE FILE "${program}")
    endif()
  endforeach()
endif()

# Debian wants a licence note and a changelog in each package.
if(CPACK_GENERATOR STREQUAL "DEB")
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" upper)
    set(doc "${staged}/${component}/usr/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
    file(MAKE_DIRECTORY "${doc}")
    configure_file("${CPACK_VORNEX_SOURCE}/cmake/package/copyright" "${doc}/copyright" COPYONLY)
    configure_file("${CPACK_VORNEX_SOURCE}/cmake/package/changelog.in" "${doc}/changelog.Debian" @ONLY)
    execute_process(COMMAND gzip -9nf "${doc}/changelog.Debian" COMMAND_ERROR_IS_FATAL ANY)
    if(EXISTS "${staged}/${component}/usr/share/man")
      file(GLOB_RECURSE pages "${staged}/${component}/usr/share/man/*.[1-8]")
      execute_process(COMMAND gzip -9nf ${pages} COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endforeach()
endif()

execute_process(COMMAND find "${staged}" -type d -exec chmod 755 {} + COMMAND_ERROR_IS_FATAL ANY)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND find "${staged}" -exec touch -h -d "@$ENV{SOURCE_DATE_EPOCH}" {} + COMMAND_ERROR_IS_FATAL ANY)
endif()
