#include "NetworkChoice.h"

#include <exception>
#include <stdexcept>
#include <thread>

#include <KavroLibrary.h>

#include "NumberArguments.h"

namespace kavro_tool {

using namespace KavroLibrary;

namespace {

int number(const std::string& text, const std::string& what) {
    const int value = wholeNumber(text, what);
    if (value < 0) throw std::invalid_argument("bad " + what + " '" + text + "'");
    return value;
}

}  // namespace

bool isUsbIndex(const NetworkChoice& choice) {
    if (choice.kind != NetworkChoice::Kind::Usb) return false;
    const std::string digits = choice.where[0] == '#' ? choice.where.substr(1) : choice.where;
    return !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos;
}

NetworkChoice parseChoice(NetworkChoice::Kind kind, const std::string& text) {
    if (text.empty()) throw std::invalid_argument("a network needs an address");
    NetworkChoice choice{kind, text};
    const auto colon = text.rfind(':');
    if (kind == NetworkChoice::Kind::Serial && colon != std::string::npos) number(text.substr(colon + 1), "baud rate");
    if (kind == NetworkChoice::Kind::Wireless && colon != std::string::npos) number(text.substr(colon + 1), "channel");
    return choice;
}

std::unique_ptr<KavroNetwork> makeNetwork(const NetworkChoice& choice, int n) {
    const auto colon = choice.where.rfind(':');
    switch (choice.kind) {
        case NetworkChoice::Kind::Ethernet:
            return std::make_unique<KavroNetworkETHIM>(n, "", choice.where);
        case NetworkChoice::Kind::Serial: {
            const bool baud = colon != std::string::npos;
            return std::make_unique<KavroNetworkRS232>(n, "", baud ? choice.where.substr(0, colon) : choice.where,
                                                       baud ? std::stoi(choice.where.substr(colon + 1)) : 115200);
        }
        case NetworkChoice::Kind::Usb: {
            const std::string index = choice.where[0] == '#' ? choice.where.substr(1) : choice.where;
            return std::make_unique<KavroNetworkUSBIM>(n, std::stoi(index));
        }
        case NetworkChoice::Kind::Wireless: {
            const bool channel = colon != std::string::npos;
            return std::make_unique<KavroNetworkWIM>(n, "", channel ? choice.where.substr(0, colon) : choice.where,
                                                     channel ? std::stoi(choice.where.substr(colon + 1)) : 5);
        }
    }
    return nullptr;
}

void inParallel(const std::vector<KavroNetwork*>& networks, const std::function<void(KavroNetwork&)>& work) {
    std::vector<std::exception_ptr> failures(networks.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < networks.size(); ++i) {
        threads.emplace_back([&, i] {
            try {
                work(*networks[i]);
            } catch (...) {
                failures[i] = std::current_exception();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::exception_ptr& failure : failures) {
        if (failure) std::rethrow_exception(failure);
    }
}

void connectAll(const std::vector<KavroNetwork*>& networks) {
    inParallel(networks, [](KavroNetwork& network) {
        try {
            network.Connect();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "kavro: %s\n", error.what());
        }
    });
}

std::string networkLabel(KavroNetwork& network, int n) {
    const std::string name = network.NetworkName();
    if (!name.empty()) return name;
    const std::string controller = network.ControllerID();
    return controller.empty() ? "net" + std::to_string(n) : controller;
}

}  // namespace kavro_tool
