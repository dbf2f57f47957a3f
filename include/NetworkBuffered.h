// Buffered mode across one network: the modules store readings on their own
// until the run stops and the host empties them.
#pragma once

#include <cstdint>
#include <string>

#include "KavroEnums.h"

namespace KavroLibrary {

class KavroNetwork;
class KavroModule;

// Buffered mode on one network: start, trigger and stop the enabled modules.
class NetworkBuffered {
public:
    // Made by its network; reached through KavroNetwork::Buffered().
    explicit NetworkBuffered(KavroNetwork* network);

    // Number of modules whose buffered mode is enabled.
    int EnabledCount() const;
    // Where the network's buffered run is.
    eBufferedModeStatus Status() const { return status_; }
    // Index of the master module; -1 for none.
    int MasterIndex() const { return masterIndex_; }
    // Chooses the master module that paces the run; -1 for none.
    void setMasterIndex(int index);
    // Number of enabled modules in Sample mode at the last start.
    int SampleCount() const { return sampleCount_; }
    // Number of enabled modules in Sync mode at the last start.
    int SyncCount() const { return syncCount_; }

    // Throws when the master index does not name a module that can be the master.
    void ValidateAddressOfModuleMaster();
    // Library use: sends a module its buffered set-up.
    void SetBufferedMode(KavroModule* module);
    // Library use: starts the synchronised recording.
    void StartBufferedModules();
    // Library use: sets the master up.
    void SetupBufferedMaster(KavroModule* module);
    // Library use: takes the master out of its role.
    void ClearBufferedMaster(KavroModule* module);
    // Library use: the start's commands, after its checks.
    void SendStartBufferedMode();
    // Checks the enabled modules and starts them recording; the network is busy until Stop().
    void Start();
    // Takes one reading on every Sample module.
    void Sample();
    // Library use: empties one module after the stop; returns its error line.
    std::string StoppedReadModule(KavroModule* module);
    // Stops the modules and empties each one; throws the failures together.
    void Stop();

private:
    KavroNetwork* network_;  // owner, not owned
    std::int32_t masterIndex_ = -1;
    eBufferedModeStatus status_ = eBufferedModeStatus::None;
    std::int32_t sampleCount_ = 0;
    std::int32_t syncCount_ = 0;
};

// Refuses a start when an enabled module cannot take part.
void ValidateBufferedModules(KavroNetwork* network, int masterIndex);

}  // namespace KavroLibrary
