# Cross build for 32-bit ARM hard-float Linux with Debian's cross toolchain (g++-arm-linux-gnueabihf).
#
# Target programs run under user-mode emulation (qemu-user, no binfmt registration needed): CTest and
# GoogleTest's test discovery start them through CMAKE_CROSSCOMPILING_EMULATOR. qemu-arm finds the
# target's loader, C and C++ runtime under the prefix given with -L; test programs find libtevbase.so.1
# through their build-tree RUNPATH. A target killed by a signal makes qemu write a core file into the
# working directory whatever the kernel's core pattern, one per death test: the core limit is set to 0.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(TEVBASE_TARGET_PREFIX /usr/arm-linux-gnueabihf)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)  # GoogleTest's build enables C as well
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)

# Libraries, headers and packages from the target's tree only; programs from the host.
set(CMAKE_FIND_ROOT_PATH ${TEVBASE_TARGET_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

find_program(TEVBASE_QEMU_ARM qemu-arm REQUIRED)
find_program(TEVBASE_PRLIMIT prlimit REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${TEVBASE_PRLIMIT} --core=0 ${TEVBASE_QEMU_ARM} -L ${TEVBASE_TARGET_PREFIX})
