// The module command set. Every operation builds one ModuleCommand, hands it
// to the open link and turns the answer into a small result record; nothing
// here keeps state. See docs/design/protocol.md for the bytes of every command.
//
// Conventions of the records:
//  - LinkStatus: the link's status of the exchange (0 good, 255 nothing arrived,
//    253 checksum of a data block wrong).
//  - ModuleError (where a record has it): 0 the echo matched; 0x2100 | error
//    byte when the module answered "!" and that byte; 255 when the first byte
//    was neither, or the link failed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KavroChannelReadings.h"
#include "KavroEnums.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// Mode numbers of the set-mode command.
enum class eSetModeMode : std::int32_t {
    Normal = 0,
    BufferedSync = 11,
    BufferedSample = 21,
    SpeedLow = 40,
    SpeedHigh = 41,
    SpeedUltraHigh = 42,
    Averaging = 50,
    Resolution = 51,
    Dynamic1K = 60,
    Dynamic2K = 61,
    Dynamic4K = 62,
    Dynamic2Custom = 63,
    BufferedMaster = 75,
    DynamicMasterMode = 76,
    TxSample = 77,
    DynamicMasterRate = 78,
    DynamicMasterModules = 79,
};

// Actions of the broadcast control command.
enum class eKavroControlAction : std::int32_t {
    StopAcquisition = 0,
    StartSync = 1,
    StopBuffered = 2,
    SampleTrigger = 3,
    ApplySpeed = 10,
    StopDynamic = 21,
};

// Results of the addressing, identification and control commands.
struct KavroValueResult {
    std::uint32_t LinkStatus = 255;
    unsigned char Value = 0;
};

struct KavroCheckedValueResult {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    unsigned char Value = 0;
};

struct KavroIdentityResult {  // notify and get-probe-ID
    std::uint32_t LinkStatus = 255;
    char Identity[8] = {};
    char IdentitySuffix[2] = {};
    std::string IdentityText() const;  // the 10 characters; empty when none were taken
};

struct KavroIdentifyResult {
    std::uint32_t LinkStatus = 255;
    unsigned char Echo = 0;            // first reply byte ('I', or '!' for a refusal); 0 when nothing came
    char Identity[8] = {};             // reply bytes 1-8
    char IdentitySuffix[2] = {};       // 9-10
    char PartNumber[8] = {};           // 11-18
    char Model[4] = {};                // 19-22
    char Version[4] = {};              // 23-26
    char VersionSuffix[1] = {};        // 27
    unsigned char ProbeRange[2] = {};  // 28-29, little-endian millimetres
    std::string IdentityText() const;
    std::string PartNumberText() const;
    std::string VersionText() const;
    int ProbeRangeValue() const;
};

struct KavroGetInfoResult {
    std::uint32_t LinkStatus = 255;
    unsigned char Echo = 0;                   // first reply byte ('B', or '!' 0x03 from a first-generation module)
    char TypeText[4] = {' ', ' ', ' ', ' '};  // reply bytes 1-4
    std::uint16_t FirmwareVersion = 0;        // 5-6, hundredths
    std::uint16_t StrokeCode = 0;             // 7-8
    char InfoText[32];                        // 9-40
    KavroGetInfoResult();
    std::string TypeTextString() const;
    std::string InfoTextString() const;
};

struct KavroPingResult {
    std::uint32_t LinkStatus = 255;
    char Identity[8] = {};             // reply bytes 1-8
    std::uint16_t IdentitySuffix = 0;  // 9-10, as they came (byte 9 first in memory)
    std::uint16_t Checksum = 0;        // 11-12, high byte first
    std::string IdentityText() const;
};

struct KavroStatusResult {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    std::uint16_t StatusWord = 0;
};

// Results of the reading commands.
struct KavroRead1Result {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    std::uint16_t Reading = 0;
};

struct KavroRead2Result {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    std::uint32_t Reading = 0;
};

struct KavroReadburstResult {
    std::uint32_t LinkStatus = 255;
    unsigned char* Data = nullptr;  // new[]; the caller frees it with delete[]; null when DataLength is 0
    int DataLength = 0;
};

struct KavroReadDiff1Result {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    std::uint16_t First = 0;      // reply bytes 1-2
    std::uint16_t Second = 0;     // 3-4
    std::uint32_t Zero = 0;       // always 0, kept where older callers look
    unsigned char ByteValue = 0;  // byte 9: bits 32-39 of the sum
    std::uint32_t Count24 = 0;    // bytes 10-12
    std::uint32_t SumLow = 0;     // bytes 5-8: bits 0-31 of the sum
};

struct KavroReadDiff2Result {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    std::uint32_t First = 0;
    std::uint32_t Second = 0;
};

struct KavroRead3Result {
    std::uint32_t LinkStatus = 255;
    std::uint16_t Count = 0;   // channel records in the reply
    unsigned char Status = 0;  // the device's read status byte (0 good)
    std::vector<sChannelReading> Readings;
    // 0, LinkStatus, 0x2100 | "!" error byte, or 0x2100 | read status byte.
    std::uint32_t ErrorCode = 255;
};

struct KavroReadBufferedResult {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    std::vector<std::uint16_t> Words;
    // The code buffered mode acts on: 0, LinkStatus (255 Timeout, 253
    // Checksum) or ModuleError.
    std::uint32_t ErrorCode() const { return LinkStatus != 0 ? LinkStatus : ModuleError; }
};

struct KavroReadMemoryResult {
    std::uint32_t LinkStatus = 255;
    std::vector<unsigned char> Reply;  // the whole reply, first byte 'M' (echo) or '!'
};

// Results of the configuration memory, pipe and pass-through commands.
struct KavroConfigReadResult {
    std::uint32_t LinkStatus = 255;
    unsigned char* Data = nullptr;  // new[]; null when nothing was taken
    int DataLength = 0;
};

struct KavroPipeReceiveResult {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    std::vector<unsigned char> Data;
};

struct KavroPassThroughRxResult {
    std::uint32_t LinkStatus = 255;
    std::uint32_t ModuleError = 255;
    bool Complete = false;  // the device's whole reply (up to its line end) is in Text
    std::string Text;       // the device's reply so far
};

// Two's complement of the 16-bit sum of the bytes: appended to a data block,
// the block and its checksum sum to 0 modulo 65536.
std::uint16_t CheckSum(const unsigned char* data, int length);

class KavroCommands {
public:
    // Addressing, identification and control.
    static KavroValueResult KavroSetAddr(NetworkConfiguration* config, std::string identity, int newAddress);
    static KavroIdentityResult KavroNotify(NetworkConfiguration* config);
    static KavroIdentifyResult KavroIdentify(NetworkConfiguration* config, int addr);
    static KavroIdentityResult KavroGetProbeID(NetworkConfiguration* config, int addr);
    static KavroGetInfoResult KavroGetInfo(NetworkConfiguration* config, int addr);
    static KavroPingResult Ping(NetworkConfiguration* config, unsigned char addr);
    static KavroValueResult KavroClr(NetworkConfiguration* config, int addr);
    static KavroValueResult KavroDirection(NetworkConfiguration* config, int addr);
    static KavroCheckedValueResult KavroRefMark(NetworkConfiguration* config, int addr);
    static KavroCheckedValueResult KavroPreset(NetworkConfiguration* config, int addr, unsigned int value);
    static KavroValueResult KavroSetMode(NetworkConfiguration* config, int addr, eSetModeMode mode, int argument);
    static void KavroControl(NetworkConfiguration* config, eKavroControlAction action);
    static void KavroRst(NetworkConfiguration* config);
    static void KavroClearTCon(NetworkConfiguration* config);
    static KavroStatusResult KavroGetStatus(NetworkConfiguration* config, int addr);

    // Reading.
    static KavroRead1Result KavroRead1(NetworkConfiguration* config, int addr);
    static KavroRead2Result KavroRead2(NetworkConfiguration* config, int addr);
    static KavroReadburstResult Readburst(NetworkConfiguration* config, int moduleCount);
    static KavroCheckedValueResult KavroDifference(NetworkConfiguration* config, int addr);
    static void KavroStartDiff(NetworkConfiguration* config);
    static void KavroStopDiff(NetworkConfiguration* config);
    static KavroReadDiff1Result KavroReadDiff1(NetworkConfiguration* config, int addr);
    static KavroReadDiff2Result KavroReadDiff2(NetworkConfiguration* config, int addr);
    static KavroRead3Result KavroRead3(NetworkConfiguration* config, int addr, int deviceIndex, eRead3_ControlCode code,
                                       int channelMask, eRead3_UOM uom);
    static KavroReadBufferedResult KavroReadBuffered1(NetworkConfiguration* config, int addr);
    // Throws std::runtime_error for a count outside 0 to 255, before sending.
    static KavroReadMemoryResult KavroReadMemory(NetworkConfiguration* config, int addr, std::uint32_t memoryAddress,
                                                 int count);

    // Configuration memory.
    static KavroConfigReadResult KavroConfigRead(NetworkConfiguration* config, int addr, int location, int secondWord);
    static KavroValueResult KavroConfigWrite(NetworkConfiguration* config, int addr, int location, int secondWord,
                                             unsigned char* data, int count);
    static std::uint32_t KavroConfigRead_Byte(NetworkConfiguration* config, int addr, int location,
                                              unsigned char& value);
    static std::uint32_t KavroConfigRead_UInt16(NetworkConfiguration* config, int addr, int location,
                                                unsigned short& value);
    static std::uint32_t KavroConfigRead_Int(NetworkConfiguration* config, int addr, int location, int& value);
    static std::uint32_t KavroConfigRead_UInt(NetworkConfiguration* config, int addr, int location,
                                              unsigned int& value);
    static std::uint32_t KavroConfigRead_Int64(NetworkConfiguration* config, int addr, int location,
                                               std::int64_t& value);
    static std::string KavroConfigRead_String(NetworkConfiguration* config, int addr, int location);
    static KavroValueResult KavroConfigWrite_Byte(NetworkConfiguration* config, int addr, int location,
                                                  unsigned char value);
    static KavroValueResult KavroConfigWrite_UInt16(NetworkConfiguration* config, int addr, int location,
                                                    unsigned short value);
    static KavroValueResult KavroConfigWrite_Int(NetworkConfiguration* config, int addr, int location, int value);
    static KavroValueResult KavroConfigWrite_UInt(NetworkConfiguration* config, int addr, int location,
                                                  unsigned int value);
    static KavroValueResult KavroConfigWrite_Int64(NetworkConfiguration* config, int addr, int location,
                                                   std::int64_t value);
    static KavroValueResult KavroConfigWrite_String(NetworkConfiguration* config, int addr, int location,
                                                    std::string value);

    // Pipe and pass-through.
    static KavroCheckedValueResult KavroPipeSend32(NetworkConfiguration* config, int addr, const unsigned char* data,
                                                   int count);
    static KavroPipeReceiveResult KavroPipeReceive32(NetworkConfiguration* config, int addr);
    static KavroCheckedValueResult KavroPassThroughTx(NetworkConfiguration* config, int addr, int deviceIndex,
                                                      std::string text);
    // Throws "Pass through Rx timed out." when nothing arrived (status 255) and
    // "Kavro passthrough reply too long" for more than 128 characters.
    static KavroPassThroughRxResult KavroPassThroughRx(NetworkConfiguration* config, int addr, int deviceIndex);
};

}  // namespace KavroLibrary
