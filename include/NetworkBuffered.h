// Buffered mode across one network: the modules store readings on their own
// until the run stops and the host empties them.
#pragma once

#include <cstdint>
#include <string>

#include "KavroEnums.h"

namespace KavroLibrary {

class KavroNetwork;
class KavroModule;

class NetworkBuffered {
public:
    explicit NetworkBuffered(KavroNetwork* network);

    // Number of modules whose buffered mode is enabled.
    int EnabledCount() const;
    eBufferedModeStatus Status() const { return status_; }
    int MasterIndex() const { return masterIndex_; }
    void setMasterIndex(int index);
    int SampleCount() const { return sampleCount_; }
    int SyncCount() const { return syncCount_; }

    void ValidateAddressOfModuleMaster();
    void SetBufferedMode(KavroModule* module);
    void StartBufferedModules();
    void SetupBufferedMaster(KavroModule* module);
    void ClearBufferedMaster(KavroModule* module);
    void SendStartBufferedMode();
    void Start();
    void Sample();
    std::string StoppedReadModule(KavroModule* module);
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
