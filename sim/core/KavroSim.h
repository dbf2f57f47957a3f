// The simulated bus, in-process: everything a test needs to run controllers
// and modules behind real sockets and pseudo-terminals.
//
//   using namespace kavrosim;
//   SimController controller(SimControllerConfig::ethernet("ETHSIM0001"));
//   controller.addModule(SimModule::digitalProbe("GP00000001", 2.0));
//   SimEthernetFace face(controller);      // no address: a free 127.x.y.z
//   face.start();                          // port 10001, own thread
//   connect to face.address() ...
//
//   SimSerialFace line(controller2);       // a pseudo-terminal
//   line.start();                          // open line.slavePath() as the RS-232 line
//
//   SimWirelessFace radio(controller3);    // serial framing over TCP
//   radio.start();                         // a wireless network's address: radio.location()
//
// USB controllers are served by the stand-in libftd2xx.so (sim/usb): load
// it and hand it a scenario (sim/usb/KavroSimUsb.h).
//
// While a face runs, the test may change the bus from its own thread:
//   controller.setSignal("GP00000001", SimSignal::sine(1.0, 0.5, 2.0));
//   controller.updateModule("GP00000001", [](SimModule& m) { m.setResolutionBits(18); });
//   controller.replaceModule("GP00000001", SimModule::linearEncoder("LE00000001"));
//   controller.hotPlug(SimModule::digitalProbe("GP00000002", 5.0));   // self-addressed
//   controller.announce("GP00000002");                                // answers the next notify
//
// Faults hit the next N matching requests, in the order injected:
//   controller.injectFault(SimFault::dropReply(2).only('L'));
//   controller.injectFault(SimFault::errorReply(0x12));
//   controller.injectFault(SimFault::delay(std::chrono::milliseconds(200)));
//   controller.injectFault(SimFault::closeConnection().on(SimRequestKind::Identify));
//
// The request log holds every request with its raw bytes and decoding:
//   controller.waitForRequestCount(3, std::chrono::seconds(2));
//   for (const SimRequest& r : controller.requestLog()) ... r.kind, r.command, r.raw
//   controller.clearRequestLog();
//
// face.stop() (or its destructor) closes the listener and joins the thread.
// A whole scenario file starts with SimSession(loadScenario(path)).start().
#pragma once

#include "core/SimController.h"
#include "core/SimControllerConfig.h"
#include "core/SimEthernetFace.h"
#include "core/SimFault.h"
#include "core/SimLoopback.h"
#include "core/SimModule.h"
#include "core/SimRequest.h"
#include "core/SimScenario.h"
#include "core/SimSerialFace.h"
#include "core/SimSession.h"
#include "core/SimSignal.h"
#include "core/SimSpeed.h"
#include "core/SimWirelessFace.h"
