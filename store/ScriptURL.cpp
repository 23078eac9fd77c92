#include "store/ScriptURL.h"

#include "Brand.h"

namespace store {

std::string_view scriptURL() {
    return "http://" HELPER_STORE_HOST "/fastspring.php";
}

} // namespace store
