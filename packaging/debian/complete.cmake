# Brings the staged tree of the package into the form that Debian requires: manual pages and
# changelogs compressed, the licences in the file "copyright", and static libraries without
# debugging symbols, which CPack does not strip. CPack runs it after the installation and before
# it builds the package. SOURCE_DATE_EPOCH sets the date.
# Test: tests/package.
set(share ${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
set(documentation ${share}/doc/${CPACK_PACKAGE_NAME})

# All licences in one file, where Debian looks for them.
file(READ ${documentation}/LICENSE licence)
file(READ ${documentation}/THIRD-PARTY-NOTICES.md notices)
file(WRITE ${documentation}/copyright
    "${licence}\n${notices}\n"
    "The GNU licences named here are in /usr/share/common-licenses, as GPL-3, LGPL-2 and\n"
    "LGPL-2.1.\n")
file(REMOVE ${documentation}/LICENSE ${documentation}/THIRD-PARTY-NOTICES.md)

# One entry, since the project's changes are in CHANGELOG.md and the package has none of its own.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
file(WRITE ${documentation}/changelog.Debian
    "${CPACK_PACKAGE_NAME} (${version}) unstable; urgency=medium\n\n"
    "  * Package of version ${CPACK_PACKAGE_VERSION}; its changes are in changelog.gz.\n\n"
    " -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${date}\n")
file(COPY_FILE ${CPACK_PFSDOC_SOURCE}/CHANGELOG.md ${documentation}/changelog)

file(GLOB compressed ${share}/man/man1/*.1 ${documentation}/changelog*)
file(CHMOD ${documentation}/changelog ${documentation}/changelog.Debian
    ${documentation}/copyright
    PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
execute_process(COMMAND gzip -9n ${compressed} COMMAND_ERROR_IS_FATAL ANY)

file(GLOB_RECURSE static_libraries ${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/*.a)
execute_process(COMMAND strip --strip-debug --enable-deterministic-archives ${static_libraries}
    COMMAND_ERROR_IS_FATAL ANY)
