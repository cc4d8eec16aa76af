# Run by cpack after packing. Archives hold their files in the order in which the file system lists them; packed again
# in the order of their names, and owned by root, two builds give the same bytes.

# For the board: sha256sum -c there tells whether everything arrived.
function(writeChecksums folder)
  set(sums "")
  file(GLOB_RECURSE paths LIST_DIRECTORIES false RELATIVE "${folder}" "${folder}/usr/*")
  foreach(path IN LISTS paths)
    if(NOT IS_SYMLINK "${folder}/${path}")
      file(SHA256 "${folder}/${path}" sum)
      string(APPEND sums "${sum}  /${path}\n")
    endif()
  endforeach()
  file(WRITE "${folder}/usr/local/share/vornex_label_tcp/SHA256SUMS" "${sums}")
endfunction()

function(repack archive)
  set(folder "${CPACK_TEMPORARY_DIRECTORY}/repack")
  file(REMOVE_RECURSE "${folder}")
  file(ARCHIVE_EXTRACT INPUT "${archive}" DESTINATION "${folder}")
  if(CPACK_VORNEX_BOARD)
    writeChecksums("${folder}")
  endif()
  set(time "")
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    set(time "--mtime=@$ENV{SOURCE_DATE_EPOCH}")
  endif()
  file(GLOB roots RELATIVE "${folder}" "${folder}/*")
  execute_process(COMMAND tar --create --sort=name --owner=root:0 --group=root:0 --format=gnu ${time} ${roots}
                  COMMAND gzip -9n OUTPUT_FILE "${archive}"
                  WORKING_DIRECTORY "${folder}" COMMAND_ERROR_IS_FATAL ANY)
  file(SHA256 "${archive}" sum)
  get_filename_component(name "${archive}" NAME)
  file(WRITE "${archive}.sha256" "${sum}  ${name}\n")
endfunction()

if(CPACK_GENERATOR STREQUAL "TGZ")
  foreach(archive IN LISTS CPACK_PACKAGE_FILES)
    repack("${archive}")
  endforeach()
endif()
