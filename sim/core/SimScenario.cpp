#include "core/SimScenario.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <set>

#include "core/SimModuleKind.h"
#include "core/SimSignal.h"
#include "core/SimSpeed.h"

namespace kavrosim {

namespace {

struct Word {
    std::string text;
    bool quoted = false;
};

class LineReader {
public:
    LineReader(std::string source, int line) : source_(std::move(source)), line_(line) {}

    [[noreturn]] void fail(const std::string& what) const {
        throw SimScenarioError(source_ + ":" + std::to_string(line_) + ": " + what);
    }

    // Blank-separated words; "double quotes" keep blanks; '#' outside
    // quotes starts a comment.
    std::vector<Word> split(const std::string& line) const {
        std::vector<Word> words;
        std::size_t i = 0;
        while (i < line.size()) {
            if (line[i] == ' ' || line[i] == '\t' || line[i] == '\r') {
                ++i;
                continue;
            }
            if (line[i] == '#') break;
            Word word;
            while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r') {
                if (line[i] == '"') {
                    const auto close = line.find('"', i + 1);
                    if (close == std::string::npos) fail("a quote is not closed");
                    word.text += line.substr(i + 1, close - i - 1);
                    word.quoted = true;
                    i = close + 1;
                } else {
                    word.text += line[i++];
                }
            }
            words.push_back(word);
        }
        return words;
    }

    int line() const { return line_; }

private:
    std::string source_;
    int line_;
};

// The key=value words after the fixed ones, each key at most once.
class Settings {
public:
    Settings(const LineReader& reader, const std::vector<Word>& words, std::size_t from) : reader_(reader) {
        for (std::size_t i = from; i < words.size(); ++i) {
            const auto equals = words[i].text.find('=');
            if (equals == std::string::npos || equals == 0) {
                reader_.fail("expected key=value, found '" + words[i].text + "'");
            }
            const std::string key = words[i].text.substr(0, equals);
            if (values_.count(key) != 0) reader_.fail("'" + key + "' is given twice");
            values_[key] = words[i].text.substr(equals + 1);
        }
    }

    bool has(const std::string& key) const { return values_.count(key) != 0; }

    // Takes a value out; what is left at the end was not understood.
    std::string take(const std::string& key) {
        auto found = values_.find(key);
        std::string value = found->second;
        values_.erase(found);
        return value;
    }

    double number(const std::string& key) {
        const std::string text = take(key);
        double value = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
        if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() ||
            !std::isfinite(value)) {
            reader_.fail(key + " '" + text + "' is not a number");
        }
        return value;
    }

    int whole(const std::string& key, int low, int high) {
        const std::string text = take(key);
        int value = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
        if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() || value < low ||
            value > high) {
            reader_.fail(key + " '" + text + "' must be a whole number from " + std::to_string(low) + " to " +
                         std::to_string(high));
        }
        return value;
    }

    void requireEmpty(const std::string& what) const {
        if (!values_.empty()) reader_.fail("unknown setting '" + values_.begin()->first + "' for " + what);
    }

private:
    const LineReader& reader_;
    std::map<std::string, std::string> values_;
};

// Runs a setter that validates, turning its complaint into a line error.
template <typename Apply>
void apply(const LineReader& reader, Apply&& setter) {
    try {
        setter();
    } catch (const std::invalid_argument& error) {
        reader.fail(error.what());
    }
}

// Printable text of at most `width` characters.
void requireText(const LineReader& reader, const std::string& key, const std::string& text, std::size_t width) {
    if (text.size() > width)
        reader.fail(key + " '" + text + "' is longer than " + std::to_string(width) + " characters");
    for (char c : text) {
        if (c < ' ' || c > '~') reader.fail(key + " must be printable text");
    }
}

// The keys of a usb controller's FTDI device.
void takeUsbChannels(const LineReader& reader, Settings& settings, SimUsbChannels& usb) {
    if (settings.has("channel-a")) usb.channelA = settings.take("channel-a");
    if (settings.has("channel-b")) {
        usb.channelB = settings.take("channel-b");
        if (usb.channelB == "none") usb.channelB.clear();
    }
    if (settings.has("flags")) usb.flags = static_cast<std::uint32_t>(settings.whole("flags", 0, 0xFFFF));
    if (settings.has("chip")) usb.chip = static_cast<std::uint32_t>(settings.whole("chip", 0, 0xFFFF));
    if (settings.has("serial")) usb.serialNumber = settings.take("serial");
    requireText(reader, "channel-a", usb.channelA, 63);
    requireText(reader, "channel-b", usb.channelB, 63);
    // The channel letter is appended to the serial number.
    requireText(reader, "serial", usb.serialNumber, 14);
}

SimScenarioController parseController(const LineReader& reader, const std::vector<Word>& words, int ordinal) {
    const char* const faces = "ethernet, serial, usb or wireless";
    if (words.size() < 2) reader.fail(std::string("controller needs a face: ") + faces);
    SimScenarioController controller;
    std::size_t settingsFrom = 2;
    const std::string number = std::to_string(ordinal);
    const std::string suffix = std::string(4 - number.size(), '0') + number;
    const std::string& face = words[1].text;
    if (face == "ethernet" || face == "wireless") {
        if (words.size() < 3 || words[2].text.find('=') != std::string::npos) {
            reader.fail(std::string(face == "ethernet" ? "an " : "a ") + face +
                        " controller needs an address (an IPv4 address or auto)");
        }
        controller.address = words[2].text == "auto" ? "" : words[2].text;
        if (face == "ethernet") {
            controller.face = SimFaceKind::Ethernet;
            controller.config = SimControllerConfig::ethernet("ETHSIM" + suffix);
        } else {
            controller.face = SimFaceKind::Wireless;
            controller.config = SimControllerConfig::wireless("WIMSIM" + suffix);
        }
        settingsFrom = 3;
    } else if (face == "serial") {
        controller.face = SimFaceKind::Serial;
        controller.config = SimControllerConfig::serial("SERSIM" + suffix);
    } else if (face == "usb") {
        controller.face = SimFaceKind::Usb;
        controller.config = SimControllerConfig::usb("USBSIM" + suffix);
    } else {
        reader.fail("unknown controller face '" + face + "' (expected " + faces + ")");
    }

    Settings settings(reader, words, settingsFrom);
    SimControllerConfig& config = controller.config;
    if (settings.has("identity")) config.identity = settings.take("identity");
    if (settings.has("type")) config.typeCode = settings.take("type");
    if (settings.has("firmware")) config.firmwareNumber = settings.whole("firmware", 0, 9999);
    if (settings.has("version")) config.firmwareText = settings.take("version");
    if (settings.has("part")) config.partNumber = settings.take("part");
    if (settings.has("model")) config.model = settings.take("model");
    if (settings.has("limit")) config.limitText = settings.take("limit");
    if (settings.has("description")) config.description = settings.take("description");
    if (settings.has("speeds")) {
        std::string list = settings.take("speeds");
        std::string::size_type start = 0;
        while (true) {
            const auto comma = list.find(',', start);
            const std::string name = list.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
            const auto speed = speedFromName(name);
            if (!speed) reader.fail("unknown speed '" + name + "' (expected low, high or ultrahigh)");
            config.speeds.push_back(*speed);
            if (comma == std::string::npos) break;
            start = comma + 1;
        }
    }
    if (settings.has("stream")) {
        const std::string pace = settings.take("stream");
        if (pace != "paced" && pace != "unthrottled") reader.fail("stream must be paced or unthrottled");
        config.unthrottled = pace == "unthrottled";
    }
    if (settings.has("port")) {
        if (controller.face != SimFaceKind::Wireless) reader.fail("only a wireless controller has a port");
        controller.port = settings.whole("port", 1, 65535);
    }
    if (controller.face == SimFaceKind::Usb) takeUsbChannels(reader, settings, controller.usb);
    if (settings.has("link")) {
        if (controller.face != SimFaceKind::Serial) reader.fail("only a serial controller has a link");
        controller.link = settings.take("link");
        if (controller.link.empty()) reader.fail("link needs a path");
    }
    settings.requireEmpty("a controller");
    apply(reader, [&] { config.validate(); });
    return controller;
}

SimModule makeModule(const LineReader& reader, SimKind kind, const std::string& identity, Settings& settings) {
    switch (kind) {
        case SimKind::DigitalProbe: {
            if (!settings.has("range")) reader.fail("a probe needs range=MILLIMETRES");
            const double range = settings.number("range");
            std::optional<SimModule> module;
            apply(reader, [&] { module = SimModule::digitalProbe(identity, range); });
            return *module;
        }
        case SimKind::Analogue: {
            if (!settings.has("part")) reader.fail("an analogue module needs part=NUMBER (630101 to 630130)");
            std::string part = settings.take("part");
            if (part.size() == 8) part = part.substr(1, 6);
            int number = 0;
            const auto result = std::from_chars(part.data(), part.data() + part.size(), number);
            if (result.ec != std::errc() || result.ptr != part.data() + part.size() ||
                analogueScale(number) == nullptr) {
                reader.fail("no analogue input module has the part number '" + part + "'");
            }
            std::optional<SimModule> module;
            apply(reader, [&] { module = SimModule::analogue(identity, number); });
            return *module;
        }
        default:
            break;
    }
    std::optional<SimModule> module;
    apply(reader, [&] {
        switch (kind) {
            case SimKind::LinearEncoder:
                module = SimModule::linearEncoder(identity);
                break;
            case SimKind::EncoderInput:
                module = SimModule::encoderInput(identity);
                break;
            case SimKind::Diom:
                module = SimModule::diom(identity);
                break;
            case SimKind::Wcm:
                module = SimModule::wcm(identity);
                break;
            default:
                module = SimModule::dio2(identity);
                break;
        }
    });
    return *module;
}

SimModule parseModule(const LineReader& reader, const std::vector<Word>& words) {
    if (words.size() < 3) reader.fail("module needs a kind and a 10-character identity");
    const auto kind = kindFromName(words[1].text);
    if (!kind) {
        std::string expected;
        for (const auto& name : kindNames()) expected += (expected.empty() ? "" : ", ") + name;
        reader.fail("unknown module kind '" + words[1].text + "' (expected " + expected + ")");
    }
    if (words[2].text.find('=') != std::string::npos) reader.fail("module needs an identity before its settings");
    Settings settings(reader, words, 3);
    SimModule module = makeModule(reader, *kind, words[2].text, settings);

    apply(reader, [&] {
        if (settings.has("generation")) module.setGeneration(settings.whole("generation", 0, 3));
        if (settings.has("firmware")) module.setFirmwareNumber(settings.whole("firmware", 0, 9999));
        if (settings.has("format")) {
            const std::string format = settings.take("format");
            if (format != "old" && format != "new") reader.fail("format must be old or new");
            module.setInfoFormat(format == "old" ? SimInfoFormat::Old : SimInfoFormat::New);
        }
        if (settings.has("part")) module.setPartNumber(settings.take("part"));
        if (settings.has("model")) module.setModel(settings.take("model"));
        if (settings.has("range")) {
            if (*kind != SimKind::LinearEncoder) reader.fail("only probes and encoders have a range");
            module.setRange(settings.number("range"));
        }
        if (settings.has("cpu")) {
            if (*kind != SimKind::LinearEncoder && *kind != SimKind::EncoderInput) {
                reader.fail("only encoders take cpu (counts per unit)");
            }
            module.setCountsPerUnit(settings.number("cpu"));
        }
        if (settings.has("resolution")) module.setResolutionBits(settings.whole("resolution", 0, 99));
        if (settings.has("averaging")) module.setAveraging(settings.whole("averaging", 0, 9999));
        if (settings.has("address")) module.setAddress(settings.whole("address", 0, 255));
        if (settings.has("speed")) {
            const std::string name = settings.take("speed");
            const auto speed = speedFromName(name);
            if (!speed) reader.fail("unknown speed '" + name + "' (expected low, high or ultrahigh)");
            module.setSpeed(*speed);
        }
        if (settings.has("signal")) module.setSignal(SimSignal::parse(settings.take("signal")));
        if (settings.has("rate")) module.difference().setSampleRate(settings.number("rate"));
        if (settings.has("buffer")) {
            module.buffered().setCapacity(static_cast<std::size_t>(settings.whole("buffer", 1, 1000000)));
        }
        if (settings.has("announce")) {
            const std::string on = settings.take("announce");
            if (on != "yes" && on != "no") reader.fail("announce must be yes or no");
            module.setAnnouncing(on == "yes");
        }
        if (settings.has("scan") || settings.has("restart")) {
            if (module.wcm() == nullptr) reader.fail("only a wcm has scan and restart times");
            if (settings.has("scan"))
                module.wcm()->setScanSeconds(static_cast<unsigned>(settings.whole("scan", 0, 3600)));
            if (settings.has("restart")) module.wcm()->setRestartSeconds(settings.number("restart"));
        }
        settings.requireEmpty("a " + kindName(*kind) + " module");
        module.validate();
    });
    return module;
}

}  // namespace

SimScenario parseScenario(std::istream& in, const std::string& sourceName) {
    SimScenario scenario;
    std::map<std::string, int> identities;  // module identity -> line
    std::set<std::string> addresses;
    std::set<std::string> links;
    std::string text;
    int lineNumber = 0;
    while (std::getline(in, text)) {
        ++lineNumber;
        const LineReader reader(sourceName, lineNumber);
        const std::vector<Word> words = reader.split(text);
        if (words.empty()) continue;
        const std::string& keyword = words[0].text;
        if (keyword == "controller") {
            SimScenarioController controller =
                parseController(reader, words, static_cast<int>(scenario.controllers.size()) + 1);
            const std::string where = controller.address + ":" + std::to_string(controller.port);
            if (!controller.address.empty() && !addresses.insert(where).second) {
                reader.fail("another controller already listens on " + where);
            }
            if (!controller.link.empty() && !links.insert(controller.link).second) {
                reader.fail("another controller already uses the link " + controller.link);
            }
            scenario.controllers.push_back(std::move(controller));
        } else if (keyword == "module") {
            if (scenario.controllers.empty()) reader.fail("a module line must follow a controller line");
            SimModule module = parseModule(reader, words);
            const auto seen = identities.find(module.identity());
            if (seen != identities.end()) {
                reader.fail("the identity " + module.identity() + " is already used on line " +
                            std::to_string(seen->second));
            }
            identities[module.identity()] = lineNumber;
            scenario.controllers.back().modules.push_back(std::move(module));
        } else if (keyword == "tool") {
            // A hand tool in a slot of the wcm module on the line above.
            SimWcm* wcm = scenario.controllers.empty() || scenario.controllers.back().modules.empty()
                              ? nullptr
                              : scenario.controllers.back().modules.back().wcm();
            if (wcm == nullptr) reader.fail("a tool line must follow a wcm module line");
            if (words.size() < 3) reader.fail("tool needs a slot (1 to 6) and a type (WHT, WHT_M or WMM_A)");
            const int slot = std::atoi(words[1].text.c_str());
            if (words[1].text.size() != 1 || slot < 1 || slot > SimWcm::kSlots) {
                reader.fail("tool slot '" + words[1].text + "' must be from 1 to 6");
            }
            if (wcm->tool(slot - 1) != nullptr) reader.fail("slot " + words[1].text + " already holds a tool");
            std::vector<std::string> rest;
            for (std::size_t i = 2; i < words.size(); ++i) rest.push_back(words[i].text);
            apply(reader, [&] { wcm->setTool(slot - 1, SimHandTool::parse(rest)); });
        } else {
            reader.fail("unknown line '" + keyword + "' (expected controller, module or tool)");
        }
    }
    if (scenario.controllers.empty()) {
        throw SimScenarioError(sourceName + ": the scenario names no controller");
    }
    return scenario;
}

SimScenario loadScenario(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw SimScenarioError(path + ": cannot be read");
    return parseScenario(in, path);
}

std::string scenarioFormatHelp() {
    return R"(Scenario format: one line each, '#' starts a comment, "quotes" keep blanks.

  controller ethernet ADDRESS [key=value ...]    ADDRESS: IPv4 (port 10001) or auto
  controller serial [key=value ...]              a pseudo-terminal; link=PATH adds a symlink
  controller usb [key=value ...]                 served by the stand-in libftd2xx.so, in the
                                                 application's process (KAVRO_SIM_USB_SCENARIO)
      channel-a="Pellaquin USBIM A" channel-b="Pellaquin USBIM B"|none flags=0 chip=6 serial=TEXT
  controller wireless ADDRESS [port=10001]       serial framing over TCP
      identity=TEXT10 type=ETHI|ETH2|232I|485I|USB2|WIM2 firmware=150 version=1.50
      part=P770100A model=ETHI limit=L032 description=TEXT speeds=low,high,ultrahigh
      stream=paced|unthrottled   (ETH2 and USB2 from 1.50 stream dynamic data: at the
                                  run's rate, or as fast as the host asks)

  module KIND IDENTITY [key=value ...]           on the bus of the controller above
      KIND: probe (range=MM required), encoder, encoder-input, diom, dio2, wcm,
            analogue (part=630101 ... 630130 required)
      generation=0..3 firmware=N format=old|new part=P541000A model=DP
      range=MM (probe, encoder stroke) cpu=COUNTS (encoders) resolution=14|16|18
      averaging=1..256 address=N speed=low|high|ultrahigh announce=yes|no
      rate=HZ (difference samples a second, 1000) buffer=N (buffered readings held, 8000)
      signal=constant:V | ramp:FROM,TO,SECONDS | sine:MEAN,AMPLITUDE,SECONDS
             | noise:MEAN,AMPLITUDE,SEED          (values in the module's units)
      wcm: scan=SECONDS (5) restart=SECONDS (2)

  tool SLOT TYPE [key=value ...]                 a hand tool in slot 1..6 of the wcm above
      TYPE: WHT, WHT_M, WMM_A   name=TEXT20 identity=TEXT10 battery=0..255
      ch1..ch12=SIGNAL (mm) text1..text12=TEXT channels=N enter=SECONDS (0.3)
      connection=STATE[@SECONDS],...  (unknown notconnected connecting connected error)
      fault=none|never-config|connection-error|incomplete|wrong-prefix
)";
}

}  // namespace kavrosim
