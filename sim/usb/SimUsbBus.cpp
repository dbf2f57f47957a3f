#include "usb/SimUsbBus.h"

#include <algorithm>
#include <cstring>

namespace kavrosim {

namespace {

// A text into a fixed D2XX buffer, cut to fit with its terminator.
void copyText(char* out, const std::string& text, std::size_t size) {
    if (out == nullptr) return;
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
}

std::string defaultSerialNumber(std::size_t ordinal) {
    const std::string number = std::to_string(ordinal);
    return "SIMUSB" + std::string(number.size() < 4 ? 4 - number.size() : 0, '0') + number;
}

}  // namespace

SimUsbBus::~SimUsbBus() { clear(); }

std::size_t SimUsbBus::load(const SimScenario& scenario) {
    std::vector<std::shared_ptr<SimController>> controllers;
    std::vector<std::shared_ptr<SimUsbDevice>> devices;
    for (const SimScenarioController& entry : scenario.controllers) {
        if (entry.face != SimFaceKind::Usb) continue;
        auto controller = std::make_shared<SimController>(entry.config);
        for (const SimModule& module : entry.modules) controller->addModule(module);
        controllers.push_back(controller);
        const std::size_t ordinal = controllers.size();
        const std::string serial =
            entry.usb.serialNumber.empty() ? defaultSerialNumber(ordinal) : entry.usb.serialNumber;

        SimUsbDeviceInfo channelA;
        channelA.description = entry.usb.channelA;
        channelA.serialNumber = serial + "A";
        channelA.type = entry.usb.chip;
        channelA.flags = entry.usb.flags;
        channelA.locationId = static_cast<DWORD>(ordinal << 4 | 1);
        devices.push_back(std::make_shared<SimUsbDevice>(channelA, controller));
        if (!entry.usb.channelB.empty()) {
            SimUsbDeviceInfo channelB = channelA;
            channelB.description = entry.usb.channelB;
            channelB.serialNumber = serial + "B";
            channelB.flags = 0;
            channelB.locationId = static_cast<DWORD>(ordinal << 4 | 2);
            devices.push_back(std::make_shared<SimUsbDevice>(channelB, nullptr));
        }
    }
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto& device : devices) device->limitReadWait(readLimit_);
    for (auto& entry : handles_) entry.second->device->close();
    handles_.clear();
    listed_.clear();
    controllers_ = std::move(controllers);
    devices_ = std::move(devices);
    return devices_.size();
}

void SimUsbBus::clear() { load(SimScenario{}); }

std::size_t SimUsbBus::deviceCount() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return devices_.size();
}

std::shared_ptr<SimUsbDevice> SimUsbBus::device(std::size_t index) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return index < devices_.size() ? devices_[index] : nullptr;
}

std::shared_ptr<SimController> SimUsbBus::controller(std::size_t index) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return index < controllers_.size() ? controllers_[index] : nullptr;
}

void SimUsbBus::limitReadWait(std::optional<std::chrono::milliseconds> limit) {
    std::lock_guard<std::mutex> lock(mutex_);
    readLimit_ = limit;
    for (auto& device : devices_) device->limitReadWait(limit);
}

DWORD SimUsbBus::createInfoList() {
    std::lock_guard<std::mutex> lock(mutex_);
    listed_ = devices_;
    return static_cast<DWORD>(listed_.size());
}

FT_STATUS SimUsbBus::deviceInfo(DWORD index, DWORD* flags, DWORD* type, DWORD* id, DWORD* locationId,
                                char* serialNumber, char* description, FT_HANDLE* handle) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (index >= listed_.size()) return kFtDeviceNotFound;
    const SimUsbDevice& device = *listed_[index];
    const SimUsbDeviceInfo& info = device.info();
    if (flags != nullptr) *flags = device.listedFlags();
    if (type != nullptr) *type = info.type;
    if (id != nullptr) *id = info.id;
    if (locationId != nullptr) *locationId = info.locationId;
    copyText(serialNumber, info.serialNumber, kFtSerialNumberSize);
    copyText(description, info.description, kFtDescriptionSize);
    if (handle != nullptr) {
        *handle = nullptr;
        for (const auto& entry : handles_) {
            if (entry.second->device == listed_[index]) *handle = entry.first;
        }
    }
    return kFtOk;
}

FT_STATUS SimUsbBus::open(int index, FT_HANDLE* handle) {
    if (handle == nullptr) return kFtInvalidParameter;
    *handle = nullptr;
    std::lock_guard<std::mutex> lock(mutex_);
    if (index < 0 || static_cast<std::size_t>(index) >= devices_.size()) return kFtDeviceNotFound;
    const std::shared_ptr<SimUsbDevice>& device = devices_[static_cast<std::size_t>(index)];
    const FT_STATUS status = device->open();
    if (status != kFtOk) return status;
    auto entry = std::make_unique<Handle>();
    entry->device = device;
    FT_HANDLE opened = entry.get();
    handles_.emplace(opened, std::move(entry));
    *handle = opened;
    return kFtOk;
}

FT_STATUS SimUsbBus::close(FT_HANDLE handle) {
    std::unique_ptr<Handle> entry;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const auto found = handles_.find(handle);
        if (found == handles_.end()) return kFtInvalidHandle;
        entry = std::move(found->second);
        handles_.erase(found);
    }
    return entry->device->close();
}

std::shared_ptr<SimUsbDevice> SimUsbBus::opened(FT_HANDLE handle) const {
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found = handles_.find(handle);
    return found == handles_.end() ? nullptr : found->second->device;
}

}  // namespace kavrosim
