# Runs between installing into the staging folder and packing it: the customs of Debian that other systems
# do not share.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${share}/doc/tavrin)
if(NOT EXISTS ${documents}/permission.html)
    message(FATAL_ERROR "the Debian package needs CMAKE_INSTALL_PREFIX=/usr")
endif()

# The licence stands in the copyright file.
file(REMOVE ${documents}/LICENSE)
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(READ ${documents}/README.md readme)
string(REPLACE "](LICENSE)" "](copyright)" readme "${readme}")
string(REPLACE "](CHANGELOG.md)" "](changelog.gz)" readme "${readme}")
file(WRITE ${documents}/README.md "${readme}")
foreach(file copyright changelog.Debian)
    file(COPY ${CMAKE_CURRENT_LIST_DIR}/${file} DESTINATION ${documents}
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
execute_process(
    COMMAND gzip --best --no-name ${documents}/changelog ${documents}/changelog.Debian ${share}/man/man1/tavrin.1
    COMMAND_ERROR_IS_FATAL ANY)
