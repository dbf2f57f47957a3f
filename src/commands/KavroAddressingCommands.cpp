// Addressing and identification: set address, notify, identify, get probe ID,
// get info and ping.
#include <cstring>

#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"

namespace KavroLibrary {

namespace {

constexpr long kSetAddressSettleMs = 70;
constexpr std::size_t kIdentityLength = 10;

// Reply bytes 1 to 10 into the 8 + 2 identity fields, only from a full reply.
void takeIdentity(const CommandReply& reply, char (&first8)[8], char (&last2)[2]) {
    if (reply.size() < 1 + kIdentityLength) return;
    reply.copy(1, first8, sizeof first8);
    reply.copy(9, last2, sizeof last2);
}

}  // namespace

KavroValueResult KavroCommands::KavroSetAddr(NetworkConfiguration* config, std::string identity, int newAddress) {
    // A short identity is padded with zeros, which no module's identity holds.
    identity.resize(kIdentityLength, '\0');
    unsigned char data[13] = {'S', lowByte(newAddress)};
    std::memcpy(data + 2, identity.data(), kIdentityLength);
    data[12] = 0x00;
    // Every module compares the identity before the addressed one answers.
    const CommandReply reply =
        exchange(config, CommandWithReply, data, sizeof data, 2, 'S', false, kSetAddressSettleMs);

    KavroValueResult result;
    result.LinkStatus = reply.echoedStatus('S');
    if (result.LinkStatus == 0 && reply.size() > 1) result.Value = reply.at(1);
    return result;
}

KavroIdentityResult KavroCommands::KavroNotify(NetworkConfiguration* config) {
    unsigned char data[2] = {'N', 0x00};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 11, 'N');

    KavroIdentityResult result;
    result.LinkStatus = reply.linkStatus();
    if (result.LinkStatus == 0) takeIdentity(reply, result.Identity, result.IdentitySuffix);
    return result;
}

KavroIdentifyResult KavroCommands::KavroIdentify(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'I', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 30, 'I');

    KavroIdentifyResult result;
    result.LinkStatus = reply.status();
    if (reply.status() != 0 || reply.size() == 0) return result;
    result.Echo = reply.at(0);
    if (reply.isRefusal()) return result;
    // The 29 bytes behind the echo, in field order; a short reply fills what it holds.
    unsigned char fields[29] = {};
    reply.copy(1, fields, sizeof fields);
    const unsigned char* next = fields;
    auto take = [&next](auto& field) {
        std::memcpy(field, next, sizeof field);
        next += sizeof field;
    };
    take(result.Identity);
    take(result.IdentitySuffix);
    take(result.PartNumber);
    take(result.Model);
    take(result.Version);
    take(result.VersionSuffix);
    take(result.ProbeRange);
    return result;
}

KavroIdentityResult KavroCommands::KavroGetProbeID(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'i', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 11, 'i');

    KavroIdentityResult result;
    result.LinkStatus = reply.linkStatus();
    if (result.LinkStatus == 0) takeIdentity(reply, result.Identity, result.IdentitySuffix);
    return result;
}

KavroGetInfoResult KavroCommands::KavroGetInfo(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'B', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 41, 'B');

    KavroGetInfoResult result;
    result.LinkStatus = reply.status();
    if (reply.status() != 0 || reply.size() == 0) return result;
    result.Echo = reply.at(0);
    // A refusal (first-generation modules answer "!" 0x03) leaves the blanks.
    if (reply.isRefusal()) return result;
    reply.copy(1, result.TypeText, sizeof result.TypeText);
    if (reply.size() >= 7) result.FirmwareVersion = reply.le16(5);
    if (reply.size() >= 9) result.StrokeCode = reply.le16(7);
    reply.copy(9, result.InfoText, sizeof result.InfoText);
    return result;
}

KavroPingResult KavroCommands::Ping(NetworkConfiguration* config, unsigned char addr) {
    unsigned char data[3] = {':', addr, 0x00};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 13, ':');

    KavroPingResult result;
    result.LinkStatus = reply.status();
    // Colliding answers may come with a bad status; the caller's checksum test
    // sorts them out, so anything but "nothing arrived" is taken.
    if (reply.status() == static_cast<std::uint32_t>(eKavroErrors::Timeout) || reply.size() < 13) return result;
    reply.copy(1, result.Identity, sizeof result.Identity);
    reply.copy(9, &result.IdentitySuffix, sizeof result.IdentitySuffix);
    result.Checksum = static_cast<std::uint16_t>((reply.at(11) << 8) | reply.at(12));
    return result;
}

}  // namespace KavroLibrary
