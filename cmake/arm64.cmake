# Toolchain file of Debian's cross compilers for arm64: see scripts/check-processor.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(PKG_CONFIG_EXECUTABLE aarch64-linux-gnu-pkg-config)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static) # for tests and for programs that the build itself runs
set(QT_HOST_PATH /usr) # contains the tools that generate sources
