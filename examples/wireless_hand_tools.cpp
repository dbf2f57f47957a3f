// Lists the hand tools behind the wireless concentrator of kavro-sim's
// default scenario, reads the channels of its multi-channel tool together and
// changes that tool's off time.
//
//   example-wireless_hand_tools [controller address]      (default 127.0.0.1)
#include <KavroLibrary.h>

#include <iomanip>
#include <iostream>
#include <string>

using namespace KavroLibrary;

int main(int argc, char** argv) {
    const std::string address = argc > 1 ? argv[1] : "127.0.0.1";
    KavroNetworkETHIM network(0, "Bench", address);
    network.Connect();
    if (!network.IsConnected()) {
        std::cerr << "No controller answers at " << address << ": start kavro-sim first (build/sim/kavro-sim).\n";
        return 1;
    }
    try {
        network.AddModule("WC00000007", "");
        auto* wcm = dynamic_cast<KavroModuleWCM*>(network.GetModuleByID("WC00000007"));
        if (wcm == nullptr) {
            std::cerr << "WC00000007 is no wireless concentrator.\n";
            return 1;
        }
        WCM_Device* multi = nullptr;
        for (int i = 0; i < wcm->Devices()->DeviceCount(); ++i) {
            WCM_Device* device = wcm->Devices()->GetDevice(i);
            if (device->DeviceType() == eWCM_DeviceType::None) continue;
            const eWCM_DeviceStatus link = device->ConnectionStatus();
            std::cout << "slot " << i + 1 << "  " << eWCM_DeviceType_ToString(device->DeviceType()) << "  "
                      << device->KavroIdentity() << "  " << device->DeviceName() << "  "
                      << eWCM_DeviceStatus_ToString(link) << "  battery " << device->BatteryStatus() << "\n";
            if (multi == nullptr && device->DeviceType() == eWCM_DeviceType::WHT_M &&
                link == eWCM_DeviceStatus::Connected) {
                multi = device;
            }
        }
        if (multi == nullptr) {
            std::cerr << "No multi-channel tool is connected.\n";
            return 1;
        }

        // Every channel in one read, in millimetres.
        const KavroChannelReadings readings = multi->ReadAllChannels();
        for (int i = 0; i < readings.ReadingCount(); ++i) {
            const sChannelReading reading = readings[i];
            std::cout << multi->KavroIdentity() << " channel " << reading.Channel << "  "
                      << multi->GetChannelData(reading.Channel - 1).Text << "  " << std::fixed << std::setprecision(4)
                      << reading.Value << " mm\n";
        }

        // Settings travel as text commands; the concentrator enters and
        // leaves the tool's configuration mode around each.
        auto* settings = dynamic_cast<WCM_DeviceSettings_WHTM*>(multi->Settings());
        const int before = settings->OffTime();
        settings->setOffTime(before + 5);
        std::cout << multi->KavroIdentity() << " off time " << before << " -> " << settings->OffTime() << " minutes\n";
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
