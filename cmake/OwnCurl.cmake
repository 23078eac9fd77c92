# CURL::libcurl for a self-contained bundle: Debian's newest source package, with its patches, built for HTTP
# and HTTPS only. Debian's own library brings 25 others into the process, this one libssl and libcrypto.
include(ExternalProject)
find_package(OpenSSL REQUIRED)

set(curl_source "${PROJECT_BINARY_DIR}/curl/src/curl")
set(curl_library "${PROJECT_BINARY_DIR}/curl/src/curl-build/lib/libcurl.so.4")
string(JOIN " " curl_flags -fstack-protector-strong -D_FORTIFY_SOURCE=2 -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64
    "'-ffile-prefix-map=${PROJECT_BINARY_DIR}=.'") # the same bytes from each build folder
ExternalProject_Add(curl
    PREFIX "${PROJECT_BINARY_DIR}/curl"
    DOWNLOAD_COMMAND "${PROJECT_SOURCE_DIR}/scripts/debian-source" curl <SOURCE_DIR>
    INSTALL_COMMAND ""
    LOG_DOWNLOAD ON LOG_CONFIGURE ON LOG_BUILD ON LOG_OUTPUT_ON_FAILURE ON
    BUILD_BYPRODUCTS "${curl_library}"
    CMAKE_ARGS
        -DCMAKE_BUILD_TYPE=Release
        "-DCMAKE_C_FLAGS=${curl_flags}" -DCMAKE_SKIP_BUILD_RPATH=ON
        "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,-z,relro,-z,now,--as-needed,-s"
        -DBUILD_CURL_EXE=OFF -DBUILD_TESTING=OFF -DENABLE_MANUAL=OFF
        -DHTTP_ONLY=ON -DCURL_USE_OPENSSL=ON -DCURL_DISABLE_HSTS=ON -DCURL_DISABLE_NTLM=ON
        -DCURL_DISABLE_OPENSSL_AUTO_LOAD_CONFIG=ON
        -DCURL_ZLIB=OFF -DCURL_USE_LIBPSL=OFF -DCURL_USE_LIBSSH2=OFF -DUSE_LIBIDN2=OFF
        # Where most systems keep their certificates.
        -DCURL_CA_BUNDLE=/etc/ssl/certs/ca-certificates.crt -DCURL_CA_PATH=/etc/ssl/certs)

file(MAKE_DIRECTORY "${curl_source}/include")
add_library(CURL::libcurl SHARED IMPORTED)
set_target_properties(CURL::libcurl PROPERTIES
    IMPORTED_LOCATION "${curl_library}" IMPORTED_SONAME libcurl.so.4
    INTERFACE_INCLUDE_DIRECTORIES "${curl_source}/include")
add_dependencies(CURL::libcurl curl)
