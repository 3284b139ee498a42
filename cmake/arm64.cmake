# Cross-builds for arm64 with Debian's g++-aarch64-linux-gnu; programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_INSTALL_LIBDIR lib/aarch64-linux-gnu CACHE PATH "")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
