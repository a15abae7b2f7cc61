# The Debian package, one for everything that is installed: the command with its module, the
# library with headers, CMake packages and pkg-config files, and the files for other programs.
# scripts/package builds it; tests/package checks it.
#
# dpkg-shlibdeps finds the binaries' dependencies, so the package fits the release of Debian that
# it was built on. packaging/debian/complete.cmake applies Debian's rules for compression and
# changelogs to the staged tree; cmake --install does not.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME pfsdoc)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "the vs_pfs authors")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "converter of PFS: WRITE, Professional Write and First Choice files")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"The command pfsdoc identifies, explains and converts the documents of
PFS: WRITE, Professional Write, IBM Writing Assistant and PFS: First
Choice. It writes text, Markdown, HTML, OpenDocument, JSON and pandoc's
tree.
.
The package also holds the library libpfsdoc and the filter module vs_pfs
for programs, and lets the desktop, file(1), pandoc and Tika know the
documents.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
# There is no such mailbox, as the domain shows.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "the vs_pfs authors <authors@vs-pfs.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "file, pandoc, shared-mime-info")
# The names of the two libraries, for packages that need them, and the trigger that rebuilds the
# linker's cache.
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/shlibs.in
    ${PROJECT_BINARY_DIR}/packaging/debian/shlibs @ONLY)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/packaging/debian/shlibs
    ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/complete.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/without_scripts.cmake)
# For the first script, which knows the package's variables only.
set(CPACK_PFSDOC_SOURCE ${PROJECT_SOURCE_DIR})
include(CPack)
