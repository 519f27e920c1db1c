# `cpack -G DEB`: one Debian package with everything that is installed. What it depends on is read
# from the binaries by dpkg-shlibdeps. Folders in it get the modes that the umask leaves: 022.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ixomep)
set(CPACK_PACKAGE_VENDOR "the ixomep developers")
set(CPACK_PACKAGE_CONTACT "the ixomep developers <ixomep@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "library and command for Mep definition texts")
set(CPACK_PACKAGE_DESCRIPTION
    "Mep is a small language of two halves: definition texts, declarative and made of
elements and attributes, and expressions with variables, lambdas and objects.
This package has the library that applications embed, its headers and the
command mep.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Scripts of our own instead of those that cpack would write: they respect another root.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/postinst"
                                       "${CMAKE_CURRENT_LIST_DIR}/debian/postrm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
