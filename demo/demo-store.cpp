// The demo store service. It answers the helper's requests on the loopback interface, keeps its
// state in memory, and prints one line for each request.

#include "demo/DemoOrders.h"
#include "demo/DemoStore.h"

#include <chrono>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <thread>

#include <CLI/CLI.hpp>
#include <httplib.h>

namespace {

constexpr std::size_t kRequestsPerConnection = 1000;
constexpr std::size_t kConnections = 40; // at the same time

using Operation = std::function<std::string(const httplib::Request&)>;
using Operations = std::map<std::string, Operation>;

Operations operationsOf(demo::DemoStore& store, std::chrono::milliseconds delay) {
    const auto host = [](const httplib::Request& request) {
        return request.get_header_value("Host");
    };
    return {
        {"getsubscription",
         [&store, host](const httplib::Request& request) {
             return store.subscriptionAnswer(request.get_param_value("subscriptionRef"),
                                             host(request));
         }},
        {"deletesubscription",
         [&store, host, delay](const httplib::Request& request) {
             std::this_thread::sleep_for(delay);
             return store.cancelAnswer(request.get_param_value("subscriptionRef"), host(request));
         }},
        {"getorder",
         [](const httplib::Request& request) {
             return demo::orderAnswer(request.get_param_value("orderRef"));
         }},
    };
}

void serveAnswer(httplib::Server& server, const std::string& answer) {
    server.Get(".*", [answer](const httplib::Request& /*request*/, httplib::Response& response) {
        response.set_content(answer, "application/xml");
    });
}

void serve(httplib::Server& server, demo::DemoStore& store, const Operations& operations) {
    server.Get("/fastspring.php",
               [&operations](const httplib::Request& request, httplib::Response& response) {
                   const auto operation = operations.find(request.get_param_value("f"));
                   if (operation == operations.end()) {
                       response.status = 404;
                       return;
                   }
                   response.set_content(operation->second(request), "application/xml");
               });
    server.Get(R"(/account/([^/]+))",
               [&store](const httplib::Request& request, httplib::Response& response) {
                   if (const auto page = store.accountPage(request.matches[1])) {
                       response.set_content(*page, "text/html; charset=utf-8");
                   } else {
                       response.status = 404;
                   }
               });
    // Log before the answer is written, so that requests sent one after the other keep their order.
    server.set_post_routing_handler(
        [](const httplib::Request& request, const httplib::Response& response) {
            std::cout << request.method + " " + request.target + " " +
                             std::to_string(response.status) + "\n"
                      << std::flush;
        });
}

} // namespace

int main(int argumentCount, char** arguments) {
    int port = DEMO_PORT;
    int delay = 0;
    int latency = 0;
    CLI::App command(
        "The demo store service, on the loopback interface. Prints its address and one "
        "line for each request.\nSubscriptions: DEMO-1001, DEMO-1002, and DEMO-KEEP, "
        "which refuses to be canceled.\nOrders: ORDER-2001, ORDER-2002, and ORDER-2003 (with an "
        "empty container).");
    command.add_option("PORT", port, "The port to listen on, or 0 for any free port")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command.add_option("--delay", delay, "The duration of a cancellation in milliseconds")
        ->check(CLI::Range(0, 20000))
        ->capture_default_str();
    command.add_option("--latency", latency, "The delay before each answer in milliseconds")
        ->check(CLI::Range(0, 20000))
        ->capture_default_str();
    std::optional<std::string> answer;
    command.add_option("--answer", answer, "Answer every request with this text");
    CLI11_PARSE(command, argumentCount, arguments);

    demo::DemoStore store;
    const Operations operations = operationsOf(store, std::chrono::milliseconds(delay));
    httplib::Server server;
    // Reuse the address of a store that just ended, but never listen beside a running one.
    server.set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    server.new_task_queue = [] { return new httplib::ThreadPool(kConnections); };
    server.set_keep_alive_max_count(kRequestsPerConnection);
    server.set_tcp_nodelay(true);
    server.set_pre_routing_handler([latency](const auto& /*request*/, auto& /*response*/) {
        std::this_thread::sleep_for(std::chrono::milliseconds(latency));
        return httplib::Server::HandlerResponse::Unhandled;
    });
    if (answer) {
        serveAnswer(server, *answer);
    }
    serve(server, store, operations);
    const std::string host = "127.0.0.1";
    if (port == 0) {
        port = server.bind_to_any_port(host);
    } else if (!server.bind_to_port(host, port)) {
        port = -1;
    }
    if (port < 0) {
        std::cerr << "demo-store: cannot listen on the port. Stop the program that uses it, or "
                     "choose another PORT\n";
        return EXIT_FAILURE;
    }
    std::cout << "Listening on http://" << host << ":" << port << "/fastspring.php" << std::endl;
    return server.listen_after_bind() ? EXIT_SUCCESS : EXIT_FAILURE;
}
