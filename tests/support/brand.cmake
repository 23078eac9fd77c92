# The demo product's brand with a store of its own for each build folder, so that the tests of two
# checkouts and a demonstration can run at the same time. The ports are not those that the system deals out.
include("${CMAKE_CURRENT_LIST_DIR}/../../demo/product/brand.cmake")
string(MD5 hash "${PROJECT_BINARY_DIR}")
string(SUBSTRING "${hash}" 0 6 hash)
math(EXPR port "20000 + 0x${hash} % 10000")
set(HELPER_STORE_HOST "127.0.0.1:${port}")
set(HELPER_UNINSTALLER "../../demo/product/${HELPER_UNINSTALLER}")
