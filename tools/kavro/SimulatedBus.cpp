#include "SimulatedBus.h"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "core/KavroSim.h"
#include "usb/KavroSimUsb.h"

namespace kavro_tool {

namespace {

std::string programFolder() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : self.parent_path().string();
}

// Installed: relative to the program. Built: the build and source trees.
std::string firstReadable(const std::vector<std::string>& candidates) {
    for (const std::string& path : candidates) {
        if (!path.empty() && access(path.c_str(), R_OK) == 0) return path;
    }
    return std::string();
}

}  // namespace

SimulatedBus::SimulatedBus(const std::string& path) {
    const std::string folder = programFolder();
    const std::string scenario =
        path.empty()
            ? firstReadable({folder + "/" KAVRO_TOOL_SCENARIO_FROM_PROGRAM "/default.scn", KAVRO_TOOL_SCENARIO_SOURCE})
            : path;
    if (scenario.empty()) throw std::runtime_error("the default scenario is not installed");
    kavrosim::SimScenario loaded = kavrosim::loadScenario(scenario);
    // The D2XX device index of each usb controller's channel A.
    std::vector<int> usbDevices;
    int device = 0;
    for (kavrosim::SimScenarioController& controller : loaded.controllers) {
        if (controller.face == kavrosim::SimFaceKind::Ethernet) controller.address.clear();  // a free loopback address
        if (controller.face != kavrosim::SimFaceKind::Usb) continue;
        usbDevices.push_back(device);
        device += controller.usb.channelB.empty() ? 1 : 2;
    }
    session_ = std::make_unique<kavrosim::SimSession>(loaded);
    session_->start();
    for (std::size_t i = 0; i < session_->size(); ++i) {
        const kavrosim::SimFace& face = session_->face(i);
        const std::string type = session_->controller(i).config().typeCode;
        NetworkChoice choice;
        choice.where = face.location();
        if (type == "ETHI" || type == "ETH2") {
            choice.kind = NetworkChoice::Kind::Ethernet;
        } else if (type == "WIM2") {
            choice.kind = NetworkChoice::Kind::Wireless;
        } else {
            choice.kind = NetworkChoice::Kind::Serial;
        }
        networks_.push_back(choice);
    }
    if (!usbDevices.empty()) {
        // The stand-in D2XX library serves the usb controllers in this process.
        const std::string library =
            firstReadable({folder + "/" KAVRO_TOOL_USB_FROM_PROGRAM "/libftd2xx.so", KAVRO_TOOL_USB_BUILT});
        standIn_ = library.empty() ? nullptr : dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL);
        auto load =
            standIn_ ? reinterpret_cast<KavroSimUsbLoadFile>(dlsym(standIn_, "kavro_sim_usb_load_file")) : nullptr;
        if (load != nullptr && load(scenario.c_str()) > 0) {
            for (int index : usbDevices) networks_.push_back({NetworkChoice::Kind::Usb, "#" + std::to_string(index)});
        }
    }
}

SimulatedBus::~SimulatedBus() {
    if (standIn_ != nullptr) {
        if (auto clear = reinterpret_cast<KavroSimUsbClear>(dlsym(standIn_, "kavro_sim_usb_clear"))) clear();
    }
    if (session_) session_->stop();
}

}  // namespace kavro_tool
