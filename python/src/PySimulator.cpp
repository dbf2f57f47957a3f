// kavro.sim.Simulator: the simulated bus of a scenario, in this process.
// Ethernet, serial and wireless controllers listen on loopback addresses and
// pseudo-terminals (their `locations`); USB controllers are served by the
// stand-in D2XX library, which is loaded here so that the library's
// FindNetworks lists them.
#include <dlfcn.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <pybind11/stl.h>

#include "PyBindings.h"
#include "core/KavroSim.h"
#include "core/SimBuffered.h"
#include "usb/KavroSimUsb.h"

namespace kavro_python {

using namespace kavrosim;

namespace {

std::string folderOfThisModule() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&folderOfThisModule), &info) == 0 || info.dli_fname == nullptr) return ".";
    const std::string path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

// Loaded once, by full path and globally, so that the library's own
// dlopen("libftd2xx.so") finds it by its SONAME.
void* standIn() {
    static void* const handle = [] {
        const std::string candidates[] = {folderOfThisModule() + "/" + KAVRO_PYTHON_USB_FROM_MODULE,
                                          KAVRO_PYTHON_USB_BUILT};
        std::string failures;
        for (const std::string& path : candidates) {
            if (void* loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL)) return loaded;
            failures += std::string("\n  ") + dlerror();
        }
        throw std::runtime_error("cannot load the simulator's stand-in D2XX library:" + failures);
    }();
    return handle;
}

template <typename F>
F standInCall(const char* name) {
    void* found = dlsym(standIn(), name);
    if (found == nullptr) throw std::runtime_error(std::string("the stand-in D2XX library lacks ") + name);
    return reinterpret_cast<F>(found);
}

// The stand-in serves one scenario per process.
std::atomic<bool> usbTaken{false};

class Simulator {
public:
    Simulator(const std::string& text, const std::string& sourceName) : text_(text) {
        std::istringstream in(text);
        scenario_ = parseScenario(in, sourceName);
        session_ = std::make_unique<SimSession>(scenario_);
    }
    ~Simulator() { stop(); }
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    static std::unique_ptr<Simulator> fromFile(const std::string& path) {
        std::ifstream in(path);
        if (!in) throw std::invalid_argument("cannot read the scenario file " + path);
        std::ostringstream text;
        text << in.rdbuf();
        return std::make_unique<Simulator>(text.str(), path);
    }

    void start() {
        if (running_) return;
        if (session_->usbControllersLeftOut() > 0) {
            if (usbTaken.exchange(true)) throw std::runtime_error("another Simulator serves USB controllers");
            if (standInCall<KavroSimUsbLoadText>("kavro_sim_usb_load_text")(text_.c_str()) < 0) {
                usbTaken = false;
                throw std::invalid_argument(standInCall<KavroSimUsbError>("kavro_sim_usb_error")());
            }
            usbLoaded_ = true;
        }
        try {
            session_->start();
        } catch (...) {
            releaseUsb();
            throw;
        }
        running_ = true;
    }

    void stop() noexcept {
        if (!running_) return;
        session_->stop();
        releaseUsb();
        running_ = false;
    }

    bool running() const { return running_; }

    // Where each Ethernet, serial and wireless controller is reached, in
    // scenario order: an IPv4 address or a device path.
    std::vector<std::string> locations() const {
        std::vector<std::string> found;
        for (std::size_t i = 0; i < session_->size(); ++i) found.push_back(session_->face(i).location());
        return found;
    }

    std::size_t usbControllers() const { return session_->usbControllersLeftOut(); }
    std::string describe() const { return session_->describe(); }

    void setSignal(const std::string& identity, const std::string& signal) {
        controllerOf(identity).setSignal(identity, SimSignal::parse(signal));
    }

    // Puts a new hand tool of that type (WHT, WHT_M, WMM_A) into a slot of a
    // concentrator, as a user swapping tools would.
    void setTool(const std::string& wcm, int slot, const std::string& type) {
        const std::optional<SimToolType> kind = SimHandTool::typeFromName(type);
        if (!kind) throw std::invalid_argument("no hand tool type " + type + ": WHT, WHT_M or WMM_A");
        if (slot < 1 || slot > 6) throw std::invalid_argument("slots are 1 to 6");
        controllerOf(wcm).updateModule(wcm, [&](SimModule& module) {
            if (module.wcm() == nullptr) throw std::invalid_argument(wcm + " is no wireless concentrator");
            module.wcm()->setTool(slot - 1, SimHandTool(*kind));
        });
    }

    // The next `times` requests to the controller holding `identity` wait
    // that long before they are answered.
    void delay(const std::string& identity, double seconds, int times) {
        const auto wait = std::chrono::milliseconds(static_cast<long long>(seconds * 1000.0));
        controllerOf(identity).injectFault(SimFault::delay(wait, times));
    }

    // The next `times` requests to the controller holding `identity` are
    // answered with the module error byte `error` ("!" and the byte).
    void errorReply(const std::string& identity, int error, int times) {
        if (error < 1 || error > 255) throw std::invalid_argument("a module error byte is 1 to 255");
        controllerOf(identity).injectFault(SimFault::errorReply(static_cast<std::uint8_t>(error), times));
    }

    // Requests the controller of that module has received so far.
    std::uint64_t requests(const std::string& identity) { return controllerOf(identity).requestCount(); }

    // Readings the module holds in its buffer right now (buffered mode).
    std::size_t bufferedHeld(const std::string& identity) {
        std::vector<SimModule> modules = controllerOf(identity).modules();
        SimBuffered::advance(modules, std::chrono::steady_clock::now());
        for (const SimModule& module : modules) {
            if (module.identity() == identity) return module.buffered().held();
        }
        return 0;
    }

private:
    SimController& controllerOf(const std::string& identity) {
        for (SimController* controller : controllers()) {
            if (controller->module(identity)) return *controller;
        }
        throw std::invalid_argument("no simulated module " + identity);
    }

    std::vector<SimController*> controllers() {
        std::vector<SimController*> all;
        for (std::size_t i = 0; i < session_->size(); ++i) all.push_back(&session_->controller(i));
        if (usbLoaded_) {
            auto usbController = standInCall<KavroSimUsbController>("kavro_sim_usb_controller");
            for (int i = 0; void* found = usbController(i); ++i) all.push_back(static_cast<SimController*>(found));
        }
        return all;
    }

    void releaseUsb() noexcept {
        if (!usbLoaded_) return;
        usbLoaded_ = false;
        if (void* clear = dlsym(standIn(), "kavro_sim_usb_clear")) reinterpret_cast<KavroSimUsbClear>(clear)();
        usbTaken = false;
    }

    std::string text_;
    SimScenario scenario_;
    std::unique_ptr<SimSession> session_;
    bool running_ = false;
    bool usbLoaded_ = false;
};

}  // namespace

void bindSimulator(py::module_& m) {
    py::module_ sim = m.def_submodule("sim", "The simulated bus, in this process.");
    py::register_exception<SimScenarioError>(sim, "ScenarioError", PyExc_ValueError);
    py::class_<Simulator>(sim, "Simulator",
                          "The controllers and modules of a scenario (the text of a scenario file), served in "
                          "this process between start() and stop(), or inside a with block.")
        .def(py::init<const std::string&, const std::string&>(), py::arg("scenario"),
             py::arg("source_name") = "scenario")
        .def_static("from_file", &Simulator::fromFile, py::arg("path"))
        .def("start", &Simulator::start, WithoutGil())
        .def("stop", &Simulator::stop, WithoutGil())
        .def_property_readonly("running", &Simulator::running)
        .def_property_readonly("locations", &Simulator::locations)
        .def_property_readonly("usb_controllers", &Simulator::usbControllers)
        .def("describe", &Simulator::describe)
        .def("set_signal", &Simulator::setSignal, py::arg("identity"), py::arg("signal"),
             "Gives a module a new signal, in the scenario's form: 'constant:1.2', 'sine:1,0.6,4' ...")
        .def("set_tool", &Simulator::setTool, py::arg("wcm"), py::arg("slot"), py::arg("type"),
             "Puts a new hand tool of that type (WHT, WHT_M, WMM_A) into a slot (1 to 6) of a concentrator.")
        .def("delay", &Simulator::delay, py::arg("identity"), py::arg("seconds"), py::arg("times") = 1,
             "Delays the answers to the next requests to the controller of that module.")
        .def("error_reply", &Simulator::errorReply, py::arg("identity"), py::arg("error"), py::arg("times") = 1,
             "Answers the next requests to the controller of that module with a module error byte.")
        .def("requests", &Simulator::requests, py::arg("identity"),
             "How many requests the controller of that module has received.")
        .def("buffered_held", &Simulator::bufferedHeld, py::arg("identity"),
             "How many readings that module holds in its buffer now.")
        .def("__enter__",
             [](Simulator& simulator) -> Simulator& {
                 py::gil_scoped_release released;
                 simulator.start();
                 return simulator;
             },
             py::return_value_policy::reference)
        .def("__exit__", [](Simulator& simulator, py::args) {
            py::gil_scoped_release released;
            simulator.stop();
        });
}

}  // namespace kavro_python
