# Where the application's bundle folder is put together in the build tree; resources/ fills it.
set(ZELK_MAIN_BUNDLE ${CMAKE_BINARY_DIR}/share/lullwatch)
set(ZELK_BIN ${CMAKE_BINARY_DIR}/bin)
# Where it goes when it is installed: the program, which goes to "bin", looks for it there.
set(ZELK_INSTALLED_BUNDLE share/lullwatch)
