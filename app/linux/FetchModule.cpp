#include "app/linux/ModuleTables.h"

extern "C" __attribute__((visibility("default")))
const app::FetchModule subscriptionHelperModule{base::fetch};
