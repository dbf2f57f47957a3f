// The per-network link record: the open link and its table of transport
// functions, the controller's identity and capabilities, the module list and
// the hand-over between the dynamic streaming threads.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "KavroDynamicTypes.h"
#include "KavroEnums.h"
#include "links/ControllerReplies.h"
#include "links/ModuleCommand.h"

namespace KavroLibrary {

class KavroDynamic;
class KavroDynamicData;
class KavroModule;
struct NetworkConfiguration;

// The link table: one set per transport, filled by field name in one place.
using IdentifyFn = ControllerIdentifyReply (*)(NetworkConfiguration*);
using GetInfoFn = ControllerInfoReply (*)(NetworkConfiguration*);
using SendCommandFn = void (*)(NetworkConfiguration*, ModuleCommand*);
using GetReplyFn = ModuleReply (*)(NetworkConfiguration*, unsigned char echo, bool longReply);
using SetSpeedFn = std::uint32_t (*)(NetworkConfiguration*, eNetSpeed);
using SetIdleFn = std::uint32_t (*)(NetworkConfiguration*);
using StartDynamicFn = void (*)(NetworkConfiguration*, sDynamicMode);
using NetworkHookFn = bool (*)(NetworkConfiguration*);
using NetworkActionFn = void (*)(NetworkConfiguration*);
using DynamicCallbackFn = void (*)(int);

// Codes of ActiveOperation.
enum ActiveOperationCode : int {
    OperationIdle = 0,
    OperationNotifying = 1,
    OperationNotifyEnding = 2,
    OperationDifference = 3,
    OperationBuffered = 4,
    OperationDynamic = 5,
};

struct NetworkConfiguration {
    NetworkConfiguration(int networkNumber, std::string networkName);
    ~NetworkConfiguration();
    NetworkConfiguration(const NetworkConfiguration&) = delete;
    NetworkConfiguration& operator=(const NetworkConfiguration&) = delete;

    // Fields that worker threads share are atomic: each poll reads a fresh value.
    std::atomic<int> ActiveOperation{OperationIdle};
    std::string ControllerName;
    eNetworkType NetworkType = eNetworkType::Unknown;
    KavroDynamic* Dynamic = nullptr;
    std::atomic<bool> DynamicStopRequest{false};
    StartDynamicFn StartDynamic = nullptr;
    void* FtdiHandle = nullptr;
    int DeviceIndex = -1;      // FTDI device index (USB link)
    std::string DeviceSerial;  // its serial number when found (USB link)
    int PacketNumber = 0;      // 0..7
    unsigned char PacketCrc = 0;
    unsigned char DynamicRequestFlags = 0;
    std::uint16_t ExtraReplyBytes = 0;
    std::mutex QueueLock;
    sDynamicMode DynamicMode;
    std::atomic<bool> DynamicRunning{false};
    std::atomic<bool> DynamicFinished{false};
    std::atomic<int> DynamicError{0};
    std::deque<unsigned char*> DynamicQueue;  // owned 4096-byte new[] blocks
    // Under QueueLock: a block was queued, or the read thread has finished.
    std::condition_variable QueueSignal;
    // Both joined by whoever ends or replaces the run, never detached.
    std::thread ReadThread;
    std::thread DecodeThread;
    // Under RunLock: the run has reached Complete.
    std::mutex RunLock;
    std::condition_variable RunSignal;
    // The health of the current or last run, counted by the read thread.
    std::atomic<std::uint64_t> DynamicPackets{0};
    std::atomic<std::uint64_t> DynamicPacketsAskedAgain{0};
    std::atomic<std::uint64_t> DynamicSetsReceived{0};
    std::atomic<std::uint64_t> DynamicSetsLost{0};
    std::atomic<bool> DynamicDataLost{false};
    // Held for one request and its answer on the link, so that threads
    // sharing a network (the application's, notification, a dynamic run's
    // read thread) never interleave their bytes.
    std::mutex LinkLock;
    int SocketFd = -1;
    std::string Address;
    int BaudRate = 115200;    // serial link
    int WirelessChannel = 5;  // wireless link

    // The link table.
    IdentifyFn Identify = nullptr;
    GetInfoFn GetInfo = nullptr;
    SendCommandFn SendCommand = nullptr;
    GetReplyFn GetReply = nullptr;
    SetSpeedFn SetSpeed = nullptr;
    SetIdleFn SetIdle = nullptr;

    int NetworkNumber = 0;
    std::string NetworkName;
    std::string Description = "Unknown Network";
    std::string ControllerID;
    std::string ControllerTypeCode;
    std::int32_t ControllerValue = 0;  // get-info number: the controller firmware version
    std::atomic<bool> Connected{false};
    std::atomic<eNetSpeed> NetSpeed{eNetSpeed::Low};
    int MaxModules = 0;
    std::vector<eNetSpeed> ControllerSpeeds{eNetSpeed::Low};
    // Appends a speed the controller offers, once.
    void offerSpeed(eNetSpeed speed);

    // Controller capability flags 0 to 6, set by the link's capability update.
    bool ControllerFlag0 = false;  // plain reading (always true once connected)
    bool BufferedExternalSourceFlag = false;
    bool ReadburstFlag = false;
    bool DynamicFlag = false;
    bool Dynamic2Flag = false;
    bool DynamicExternalSourceFlag = false;
    bool ControllerFlag6 = false;

    // USB extended mode (USB controllers of firmware 1.18 and later).
    bool UsbExtendedMode = false;
    unsigned char UsbExtendedByte = 0;
    int UsbExtendedValue = 0;

    std::vector<KavroModule*> Modules;  // owned; position = bus address - 1

    NetworkHookFn InitNetworkHook = nullptr;
    NetworkActionFn ResetAllSpeedsHook = nullptr;

    std::atomic<eDynamicState> DynamicState{eDynamicState::Inactive};
    std::atomic<DynamicCallbackFn> DynamicCallback{nullptr};
    KavroDynamicData* DynamicData = nullptr;  // owned by the network's KavroDynamic
    std::mutex DataLock;
    // Set by the decoding thread when a run is fully processed.
    std::atomic<bool> DynamicProcessed{false};
    std::atomic<bool> DynamicComplete{false};

    // The settings-file writer while a save runs (an xmlTextWriterPtr), else null.
    void* XmlWriter = nullptr;
};

}  // namespace KavroLibrary
