#include "core/SimSession.h"

#include "core/SimEthernetFace.h"
#include "core/SimSerialFace.h"
#include "core/SimWirelessFace.h"

namespace kavrosim {

SimSession::SimSession(const SimScenario& scenario) {
    for (const SimScenarioController& entry : scenario.controllers) {
        // USB controllers live in the application's process, behind the
        // stand-in D2XX library.
        if (entry.face == SimFaceKind::Usb) {
            ++usbControllers_;
            continue;
        }
        auto controller = std::make_unique<SimController>(entry.config);
        for (const SimModule& module : entry.modules) controller->addModule(module);
        std::unique_ptr<SimFace> face;
        if (entry.face == SimFaceKind::Ethernet) {
            face = std::make_unique<SimEthernetFace>(*controller, entry.address);
        } else if (entry.face == SimFaceKind::Wireless) {
            face = std::make_unique<SimWirelessFace>(*controller, entry.address, entry.port);
        } else {
            face = std::make_unique<SimSerialFace>(*controller, entry.link);
        }
        controllers_.push_back(std::move(controller));
        faces_.push_back(std::move(face));
    }
}

SimSession::~SimSession() { stop(); }

void SimSession::start() {
    try {
        for (auto& face : faces_) face->start();
    } catch (...) {
        stop();
        throw;
    }
}

void SimSession::stop() {
    for (auto& face : faces_) face->stop();
}

std::string SimSession::describe() const {
    std::string text;
    for (std::size_t i = 0; i < controllers_.size(); ++i) {
        text += controllers_[i]->config().describe() + "\n";
        text += "  on " + faces_[i]->describe() + "\n";
        const auto modules = controllers_[i]->modules();
        if (modules.empty()) text += "  no modules\n";
        for (const SimModule& module : modules) text += "  " + module.describe() + "\n";
    }
    return text;
}

}  // namespace kavrosim
