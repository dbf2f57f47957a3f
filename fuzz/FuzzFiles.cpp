// The files a user may edit by hand: a network's settings file, the
// controller configuration files and the error dictionary. Byte 0 picks one.
#include <stdexcept>
#include <vector>

#include "FuzzTarget.h"
#include "FuzzTempFile.h"
#include "KavroNetwork.h"
#include "core/ErrorDictionary.h"
#include "network/ConfigurationFiles.h"

using namespace KavroLibrary;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const FuzzTempFile file(data + 1, size - 1);
    if (file.path().empty()) return 0;
    try {
        switch (data[0] % 3) {
            case 0: {
                KavroNetwork network(0, "fuzz");
                network.Load(file.path());
                break;
            }
            case 1: {
                std::vector<KavroNetwork*> networks;
                readSingleConfigurationFile(file.path(), networks);
                for (KavroNetwork* network : networks) delete network;
                break;
            }
            default:
                loadErrorDictionaryFrom(file.path());
                GetErrorDescriptionInternal(0x2105);
                break;
        }
    } catch (const std::exception&) {
        // A clear refusal is the wanted outcome for a bad file.
    }
    return 0;
}
