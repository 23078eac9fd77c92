#include "platform/Workspace.h"

#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/Log.h"
#include "platform/URL.h"

#include <memory>
#include <string>

#include <gio/gio.h>
#include <unistd.h>

namespace platform::workspace {
namespace {

namespace fs = std::filesystem;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using File = std::unique_ptr<GFile, Unref>;

struct Free {
    void operator()(gchar* text) const { g_free(text); }
};
using Text = std::unique_ptr<gchar, Free>;

File fileFor(const fs::path& path) {
    return File(g_file_new_for_path(path.c_str()));
}

bool isExecutableFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

bool openWithDefaultApplication(const char* uri) {
    return g_app_info_launch_default_for_uri(uri, nullptr, nullptr) != FALSE;
}

} // namespace

bool recycle(const fs::path& directory, const fs::path& name) {
    // A name such as ".." would move something else than the caller named.
    if (name.empty() || name == "." || name == ".." || name.has_parent_path()) {
        return false;
    }
    return g_file_trash(fileFor(directory / name).get(), nullptr, nullptr) != FALSE;
}

bool openFile(const fs::path& file) {
    std::error_code error;
    const bool isBundle = file.extension() == ".app" && fs::is_directory(file, error);
    const fs::path program = isBundle ? Bundle::executableOf(file) : file;
    if (isExecutableFile(program)) {
        return startChildProcess({program.native()});
    }
    return !isBundle && fs::exists(file, error) &&
           openWithDefaultApplication(Text(g_file_get_uri(fileFor(file).get())).get());
}

bool openURL(std::string_view address) {
    const auto url = webAddress(address);
    if (!url) {
        return false;
    }
    return openWithDefaultApplication(url->text().c_str());
}

} // namespace platform::workspace
