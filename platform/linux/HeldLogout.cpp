#include "platform/Desktop.h"

#include "base/Handle.h"

#include <cerrno>
#include <utility>

#include <gio/gio.h>

namespace platform::desktop {
namespace {

/// Until the connection, in milliseconds. The window paints the progress sheet first, which takes
/// half as long again while GIO connects.
constexpr gint kDelay = 100;

using Cancellable = base::Handle<GCancellable, g_object_unref>;
using Connection = base::Handle<GDBusConnection, g_object_unref>;

/// The thread's own copy of what it sends, and the end of its hold.
struct Hold {
    std::string identifier;
    std::string reason;
    Cancellable end;
};

/// Returns the address of the session bus. Leaves out GIO's last resort, which starts a new bus.
std::string sessionBus() {
    const char* const address = g_getenv("DBUS_SESSION_BUS_ADDRESS");
    return address != nullptr ? address
                              : "unix:path=" + std::string(g_get_user_runtime_dir()) + "/bus";
}

void sendCall(GDBusConnection* bus, const Hold& hold) {
    constexpr const char* kManager = "org.gnome.SessionManager";
    constexpr guint32 kNoWindow = 0;
    constexpr guint32 kLogout = 1;
    // Without a callback, the call expects no answer.
    g_dbus_connection_call(
        bus, kManager, "/org/gnome/SessionManager", kManager, "Inhibit",
        g_variant_new("(susu)", hold.identifier.c_str(), kNoWindow, hold.reason.c_str(), kLogout),
        nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

/// Waits for the end, at most as many milliseconds, or without a limit if they are -1. A signal
/// ends a poll.
void waitFor(GCancellable* end, gint milliseconds) {
    GPollFD descriptor;
    if (g_cancellable_make_pollfd(end, &descriptor) != FALSE) {
        while (g_poll(&descriptor, 1, milliseconds) < 0 && errno == EINTR) {
        }
        g_cancellable_release_fd(end);
    }
}

/// Runs in a thread of its own, because the session bus may hang. The session manager ends the hold
/// when the connection closes.
void* keep(void* data) {
    const std::unique_ptr<Hold> hold(static_cast<Hold*>(data));
    GCancellable* const end = hold->end.get();
    waitFor(end, kDelay);
    constexpr auto kFlags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                 G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const Connection bus(g_dbus_connection_new_for_address_sync(sessionBus().c_str(), kFlags,
                                                                nullptr, end, nullptr));
    if (bus) {
        sendCall(bus.get(), *hold);
        waitFor(end, -1);
        g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    }
    return nullptr;
}

void cancel(GCancellable* end) {
    g_cancellable_cancel(end);
    g_object_unref(end);
}

} // namespace

std::shared_ptr<void> holdLogout(const std::string& identifier, const std::string& reason) {
    Cancellable end(g_cancellable_new());
    auto hold = std::make_unique<Hold>(
        Hold{identifier, reason, Cancellable(G_CANCELLABLE(g_object_ref(end.get())))});
    GThread* const thread = g_thread_try_new("logout", keep, hold.get(), nullptr);
    if (thread == nullptr) {
        return nullptr;
    }
    static_cast<void>(hold.release()); // the thread owns it
    g_thread_unref(thread);
    return {end.release(), cancel};
}

} // namespace platform::desktop
