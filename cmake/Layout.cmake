# Layout: where the build tree puts things, and how libraries find each other there.

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/archive)

# Every library of ours lies in lib/, so a relative path serves wherever the tree is moved to.
set(CMAKE_SKIP_BUILD_RPATH FALSE)
set(CMAKE_BUILD_RPATH_USE_ORIGIN TRUE)
set(CMAKE_BUILD_RPATH "$ORIGIN;$ORIGIN/../lib")

# The plug-in lies three folders below lib/.
set(TARVO_BUNDLE_DIRECTORY ${PROJECT_BINARY_DIR}/lib/TarvoAT.bundle)
