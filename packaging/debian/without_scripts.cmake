# Removes the scripts postinst and postrm from the built package. CPack adds them whenever there
# are shared libraries, to call ldconfig; the package's trigger already does that, once for all
# packages of an installation, and a package without scripts can be installed to a system that is
# not running. CPack runs this on the package that it has built. Test: tests/package.
set(repacked ${CPACK_TEMPORARY_DIRECTORY}.repacked)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    file(REMOVE_RECURSE ${repacked})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${repacked}
        COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${repacked}/DEBIAN/postinst ${repacked}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${repacked} ${package}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${repacked})
endforeach()
