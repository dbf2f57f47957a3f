// The multi-channel read of a wireless device behind a concentrator.
#include <cstring>

#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"

namespace KavroLibrary {

namespace {

constexpr std::size_t kHeaderLength = 13;
constexpr std::size_t kRecordLength = 11;
constexpr double kInt7DPsScale = 1e7;

std::uint32_t moduleCode(unsigned char errorByte) {
    return static_cast<std::uint32_t>(eKavroErrors::ModuleBase) | errorByte;
}

}  // namespace

KavroRead3Result KavroCommands::KavroRead3(NetworkConfiguration* config, int addr, int deviceIndex,
                                           eRead3_ControlCode code, int channelMask, eRead3_UOM uom) {
    unsigned char data[7] = {'a',
                             lowByte(addr),
                             lowByte(deviceIndex),
                             lowByte(static_cast<int>(code)),
                             lowByte(channelMask),
                             lowByte(channelMask >> 8),
                             lowByte(static_cast<int>(uom))};
    const CommandReply reply = exchange(config, CommandUnknownReply, data, sizeof data, 0, 'a');

    KavroRead3Result result;
    result.LinkStatus = reply.status();
    if (reply.status() != 0) {
        result.ErrorCode = reply.status();
        return result;
    }
    if (reply.isRefusal()) {
        result.ErrorCode = moduleCode(reply.at(1));
        return result;
    }
    if (reply.at(0) != 'a' || reply.size() <= kHeaderLength) return result;

    // The code as served says how the values are encoded.
    const auto served = static_cast<eRead3_ControlCode>(reply.at(2));
    const bool fixedPoint = served == eRead3_ControlCode::NormalInt7DPs || served == eRead3_ControlCode::TaggedInt7DPs;
    const bool floating = served == eRead3_ControlCode::NormalFloat || served == eRead3_ControlCode::TaggedFloat;
    const std::uint16_t count = reply.le16(7);
    if ((!fixedPoint && !floating) || kHeaderLength + kRecordLength * count > reply.size()) return result;

    result.Count = count;
    result.Status = reply.at(6);
    result.Readings.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = kHeaderLength + kRecordLength * i;
        sChannelReading reading;
        reading.Channel = reply.at(at);
        reading.Error =
            reply.at(at + 1) == 0 ? eKavroErrors::NoError : static_cast<eKavroErrors>(moduleCode(reply.at(at + 1)));
        reading.Unit = static_cast<eRead3_UOM>(reply.at(at + 2));
        const std::uint64_t raw = reply.le64(at + 3);
        if (fixedPoint) {
            reading.Value = static_cast<double>(static_cast<std::int64_t>(raw)) / kInt7DPsScale;
        } else {
            std::memcpy(&reading.Value, &raw, sizeof reading.Value);
        }
        result.Readings.push_back(reading);
    }
    result.ErrorCode = result.Status == 0 ? 0 : moduleCode(result.Status);
    return result;
}

}  // namespace KavroLibrary
