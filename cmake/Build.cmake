# Compiler settings shared by every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

set(HELPER_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")
option(HELPER_WERROR "Treat warnings as errors" OFF)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wconversion -Wsign-conversion)
if(HELPER_WERROR)
    add_compile_options(-Werror)
endif()
# 32-bit programs need _FILE_OFFSET_BITS for fstat of files with large inode numbers (EOVERFLOW otherwise),
# and _TIME_BITS, which requires it, for times after January 2038.
add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
if(HELPER_SANITIZE)
    add_compile_options(-fsanitize=${HELPER_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${HELPER_SANITIZE})
else()
    # Hardening. tests/endtoend/ShippingTest.py checks it in the built files.
    add_compile_options(-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        add_link_options(-Wl,-z,relro,-z,now)
        # Leave unused functions out, most of them from the C++ library, which the process entry links statically.
        add_compile_options(-ffunction-sections)
        add_link_options(-Wl,--gc-sections)
    endif()
endif()
# Link only the shared libraries in use, because the process entry must not load those of the platform library.
# Release builds are shipped without symbols.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    add_link_options(-Wl,--as-needed $<$<CONFIG:Release>:-s>)
endif()

include(CheckPIESupported)
check_pie_supported()

# helper_library(NAME SOURCES...): adds a static library of the calling directory. Its headers are included as
# "directory/Header.h".
function(helper_library name)
    add_library(${name} STATIC ${ARGN})
    add_library(SubscriptionStore::${name} ALIAS ${name})
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<INSTALL_INTERFACE:include/subscription-store>)
    target_compile_features(${name} PUBLIC cxx_std_20)
    set_target_properties(${name} PROPERTIES OUTPUT_NAME subscription-store-${name})
endfunction()

# helper_part(NAME LIBRARY SOURCES...): adds the library NAME. Each target that links LIBRARY also links NAME. A target
# that defines the same functions itself lists NAME in its property HELPER_REPLACES, and then does not link NAME.
define_property(TARGET PROPERTY HELPER_REPLACES INITIALIZE_FROM_VARIABLE HELPER_REPLACES)
function(helper_part name library)
    helper_library(${name} ${ARGN})
    target_link_libraries(${name} PUBLIC ${library})
    target_link_libraries(${library} INTERFACE
        $<$<NOT:$<IN_LIST:${name},$<TARGET_PROPERTY:HELPER_REPLACES>>>:SubscriptionStore::${name}>)
endfunction()
