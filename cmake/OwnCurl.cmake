# Builds CURL::libcurl for a self-contained bundle from Debian's newest source package and its patches, for HTTP
# and HTTPS only. The fetch module alone uses it, and links it and OpenSSL statically. Debian's libcurl needs
# 25 libraries, and a shared OpenSSL has 4,000 symbols that the dynamic linker looks up at each start.
include(ExternalProject)
set(OPENSSL_USE_STATIC_LIBS ON)
find_package(OpenSSL REQUIRED)

set(curl_source "${PROJECT_BINARY_DIR}/curl/src/curl")
set(curl_library "${PROJECT_BINARY_DIR}/curl/src/curl-build/lib/libcurl.a")
string(JOIN " " curl_flags -fstack-protector-strong -D_FORTIFY_SOURCE=2 -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64
    -ffunction-sections "'-ffile-prefix-map=${PROJECT_BINARY_DIR}=.'") # same bytes from each build directory
ExternalProject_Add(curl
    PREFIX "${PROJECT_BINARY_DIR}/curl"
    DOWNLOAD_COMMAND "${PROJECT_SOURCE_DIR}/cmake/debian-source" curl <SOURCE_DIR>
    INSTALL_COMMAND ""
    LOG_DOWNLOAD ON LOG_CONFIGURE ON LOG_BUILD ON LOG_OUTPUT_ON_FAILURE ON
    BUILD_BYPRODUCTS "${curl_library}"
    CMAKE_ARGS
        "-DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}"
        -DCMAKE_BUILD_TYPE=Release "-DCMAKE_C_FLAGS=${curl_flags}"
        -DBUILD_SHARED_LIBS=OFF -DCMAKE_POSITION_INDEPENDENT_CODE=ON
        -DBUILD_CURL_EXE=OFF -DBUILD_TESTING=OFF -DENABLE_MANUAL=OFF
        -DHTTP_ONLY=ON -DCURL_USE_OPENSSL=ON -DCURL_DISABLE_HSTS=ON -DCURL_DISABLE_NTLM=ON
        -DCURL_DISABLE_OPENSSL_AUTO_LOAD_CONFIG=ON
        -DCURL_ZLIB=OFF -DCURL_USE_LIBPSL=OFF -DCURL_USE_LIBSSH2=OFF -DUSE_LIBIDN2=OFF
        # The usual certificate locations.
        -DCURL_CA_BUNDLE=/etc/ssl/certs/ca-certificates.crt -DCURL_CA_PATH=/etc/ssl/certs)

file(MAKE_DIRECTORY "${curl_source}/include")
add_library(CURL::libcurl STATIC IMPORTED)
set_target_properties(CURL::libcurl PROPERTIES
    IMPORTED_LOCATION "${curl_library}"
    INTERFACE_COMPILE_DEFINITIONS CURL_STATICLIB
    INTERFACE_INCLUDE_DIRECTORIES "${curl_source}/include"
    INTERFACE_LINK_LIBRARIES "OpenSSL::SSL;OpenSSL::Crypto")
add_dependencies(CURL::libcurl curl)
