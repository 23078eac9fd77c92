// Times commands in turn (A B A B ...) to compare them. Reads one JSON object from standard input:
//   {"runs": 20, "until": "exit" or "mapped",
//    "commands": [{"argv": [...], "prepare": [...] or absent, "environment": {...}}, ...]}
// Prints the times in microseconds, as a list for each command. "exit" measures from the start
// until the process exits, "mapped" until its first window is on the screen. Then the process is
// killed. A "prepare" command runs untimed before each run.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;
using nlohmann::json;

constexpr std::uint16_t kSmallestWindow = 50; // ignores the toolkits' invisible windows
constexpr std::chrono::seconds kLongestStart{20};

std::vector<std::string> environmentWith(const json& additions) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (!additions.contains(text.substr(0, text.find('=')))) {
            result.push_back(text);
        }
    }
    for (const auto& [name, value] : additions.items()) {
        result.push_back(name + "=" + value.get<std::string>());
    }
    return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t start(const json& argv, const json& environment) {
    auto command = argv.get<std::vector<std::string>>();
    auto variables = environmentWith(environment);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int error = posix_spawnp(&process, command.front().c_str(), &actions, nullptr,
                                   pointersTo(command).data(), pointersTo(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error("cannot start " + command.front());
    }
    return process;
}

/// Watches for windows that appear on the screen.
class Screen {
  public:
    Screen() : connection_(xcb_connect(nullptr, nullptr), xcb_disconnect) {
        if (xcb_connection_has_error(connection_.get()) != 0) {
            throw std::runtime_error("cannot connect to the display. Set DISPLAY");
        }
        const xcb_setup_t* setup = xcb_get_setup(connection_.get());
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_.get(), xcb_setup_roots_iterator(setup).data->root,
                                     XCB_CW_EVENT_MASK, &events);
        xcb_flush(connection_.get());
    }

    void forgetEvents() {
        while (nextEvent()) {
        }
    }

    void waitForWindow() {
        const auto deadline = Clock::now() + kLongestStart;
        pollfd entry{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
        while (Clock::now() < deadline) {
            for (auto event = nextEvent(); event; event = nextEvent()) {
                if ((event->response_type & 0x7fU) == XCB_MAP_NOTIFY && isLarge(*event)) {
                    return;
                }
            }
            ::poll(&entry, 1, 100);
        }
        throw std::runtime_error("the command's window did not appear within 20 s");
    }

  private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };
    using Event = std::unique_ptr<xcb_generic_event_t, Free>;

    Event nextEvent() { return Event(xcb_poll_for_event(connection_.get())); }

    bool isLarge(const xcb_generic_event_t& event) {
        const auto window = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
        const std::unique_ptr<xcb_get_geometry_reply_t, Free> geometry(xcb_get_geometry_reply(
            connection_.get(), xcb_get_geometry(connection_.get(), window), nullptr));
        return geometry && std::min(geometry->width, geometry->height) >= kSmallestWindow;
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
};

double microsecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

void wait(pid_t process) {
    ::waitpid(process, nullptr, 0);
}

double timeOf(const json& command, Screen* screen) {
    if (command.contains("prepare")) {
        wait(start(command["prepare"], json::object()));
    }
    if (screen != nullptr) {
        screen->forgetEvents();
    }
    const json environment = command.value("environment", json::object());
    const auto begin = Clock::now();
    const pid_t process = start(command["argv"], environment);
    if (screen == nullptr) {
        wait(process);
        return microsecondsSince(begin);
    }
    screen->waitForWindow();
    const double time = microsecondsSince(begin);
    ::kill(process, SIGKILL);
    wait(process);
    return time;
}

} // namespace

int main() {
    try {
        const json task = json::parse(std::cin);
        const json& commands = task["commands"];
        const auto screen = task["until"] == "mapped" ? std::make_unique<Screen>() : nullptr;
        std::vector<std::vector<double>> times(commands.size());
        for (int run = 0; run < task["runs"].get<int>(); ++run) {
            for (std::size_t index = 0; index < commands.size(); ++index) {
                times[index].push_back(timeOf(commands[index], screen.get()));
            }
        }
        std::cout << json(times) << std::endl;
        return EXIT_SUCCESS;
    } catch (const std::exception& failure) {
        std::cerr << "measure: " << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
