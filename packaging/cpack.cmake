# The Debian package, one for everything that is installed: the command with its module, the
# library with headers and what builds find it by, and the files for other programs. scripts/package makes it; tests/package looks at it from outside.
#
# dpkg-shlibdeps finds what the binaries need, so the package suits the release of Debian that
# it was built on. Debian's rules of compression and of the changelog are kept in the staged
# tree, by packaging/debian/complete.cmake, and not in what cmake --install writes.
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
# No mailbox is behind the name; the domain says so.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "the vs_pfs authors <authors@vs-pfs.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "file, pandoc, shared-mime-info")
# The names of the two libraries, for packages that need them; and the trigger that has the
# linker's cache made anew.
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
