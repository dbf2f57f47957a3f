// One network over any of the three wired links, each to a simulated
// controller of its own: the tests that must hold on every link use it.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "KavroLibrary.h"
#include "UsbStandIn.h"
#include "core/KavroSim.h"

enum class LinkKind { Usb, Ethernet, Serial };

inline std::string linkName(LinkKind kind) {
    switch (kind) {
        case LinkKind::Usb:
            return "Usb";
        case LinkKind::Ethernet:
            return "Ethernet";
        case LinkKind::Serial:
            return "Serial";
    }
    return "";
}

struct LinkRig {
    // Connects, and adds the modules to the bus (not to the network). A lost
    // USB answer costs `usbReadWait` rather than the host's full time-out.
    LinkRig(LinkKind link, const std::vector<kavrosim::SimModule>& modules,
            std::chrono::milliseconds usbReadWait = std::chrono::milliseconds(200))
        : kind(link) {
        using namespace kavrosim;
        if (kind == LinkKind::Usb) {
            usb = std::make_unique<UsbStandIn>("controller usb identity=USBSIM0101 firmware=150\n");
            usb->limitReadWait(usbReadWait);
            network = std::make_unique<KavroLibrary::KavroNetworkUSBIM>(0, 0);
        } else if (kind == LinkKind::Ethernet) {
            SimControllerConfig config = SimControllerConfig::ethernet("ETHSIM0101");
            config.typeCode = "ETH2";  // the Ethernet controller that streams
            own = std::make_unique<SimController>(config);
            face = std::make_unique<SimEthernetFace>(*own);
            face->start();
            network = std::make_unique<KavroLibrary::KavroNetworkETHIM>(0, "Rig", face->location());
        } else {
            own = std::make_unique<SimController>(SimControllerConfig::serial("SERSIM0101"));
            face = std::make_unique<SimSerialFace>(*own);
            face->start();
            network = std::make_unique<KavroLibrary::KavroNetworkRS232>(0, "Rig", face->location(), 115200);
        }
        for (const SimModule& module : modules) controller().addModule(module);
        network->Connect();
    }
    ~LinkRig() {
        // The network says goodbye to the bus before the bus goes.
        network.reset();
        if (face) face->stop();
    }

    kavrosim::SimController& controller() const { return usb ? usb->controller(0) : *own; }

    LinkKind kind;
    std::unique_ptr<UsbStandIn> usb;
    std::unique_ptr<kavrosim::SimController> own;
    std::unique_ptr<kavrosim::SimFace> face;
    std::unique_ptr<KavroLibrary::KavroNetwork> network;
};
