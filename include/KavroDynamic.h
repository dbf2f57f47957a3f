// Dynamic (high-speed streaming) mode of one network: its settings, their
// validation, preparing the modules, and starting and stopping a run.
#pragma once

#include <cstdint>
#include <string>

#include "KavroDynamicTypes.h"
#include "KavroEnums.h"

namespace KavroLibrary {

class KavroNetwork;
class KavroDynamicData;

// Dynamic streaming on one network: set it up, prepare, start, stop, and where the readings go.
class KavroDynamic {
public:
    // Made by its network; reached through KavroNetwork::Dynamic().
    explicit KavroDynamic(KavroNetwork* network);
    ~KavroDynamic();
    KavroDynamic(const KavroDynamic&) = delete;
    KavroDynamic& operator=(const KavroDynamic&) = delete;

    // Reading sets per run; 0 streams until stopped.
    int CollectionSize() const { return collectionSize_; }
    // Microseconds between reading sets at the custom rate.
    int DynamicInterval() const { return dynamicInterval_; }
    // What paces the run.
    eDynamicMode DynamicMode() const { return dynamicMode_; }
    // The run's sampling rate.
    eDynamicRate DynamicRate() const { return dynamicRate_; }
    // Index of the master module pacing the run; -1 for none.
    int MasterIndex() const { return masterIndex_; }
    // How many leading modules the run streams.
    int NumberOfModules() const { return numberOfModules_; }
    // The readings of the current or last run; valid as long as the network.
    KavroDynamicData* DynamicData() const;
    // Shortest interval the bus allows for the collection, at least 256 µs.
    int MinimumInterval() const;
    // Clears the flag when the network has lost its dynamic capability.
    bool Enabled();
    // A finished read with decoding still at work reports Processing.
    eDynamicState DynamicState() const;
    // Whether the bus allows this custom interval (0 for none).
    bool ValidateInterval(int microseconds) const;
    // How the current or last run went: packets, packets asked for again,
    // reading sets, and whether readings went missing.
    sDynamicHealth Health() const;

    // Reading sets per run; 0 streams until StopDynamic().
    void setCollectionSize(int size);
    // Sets the sampling rate.
    void setDynamicRate(eDynamicRate rate);
    // Sets the interval of the custom rate; throws when the bus cannot keep it.
    void setDynamicInterval(int microseconds);
    // Chooses the module that paces the run; -1 for the controller's clock.
    void setMasterIndex(int index);
    // Streams the first `count` modules of the network.
    void setNumberOfModules(int count);
    // Chooses what paces the run.
    void setDynamicMode(eDynamicMode mode);
    // Allows dynamic runs on the network; enabling checks the set-up and throws its complaints.
    void setEnabled(bool enabled);

    // Validators: an empty text when all is well, else complaints.
    std::string ValidateDynamic_NumModules(int count) const;
    // Complaints about the pacing for this mode.
    std::string ValidateDynamic_Mode(eDynamicMode mode) const;
    // Complaints about the master index.
    std::string ValidateDynamic_AddressOfModuleMaster() const;
    // Complaints about this rate for the collection.
    std::string ValidateDynamic_Rate(eDynamicRate rate) const;
    // Complaints about the custom interval.
    std::string ValidateDynamic_Time() const;
    // Complaints about running at this bus speed.
    std::string ValidateDynamic_NetSpeed(eNetSpeed speed) const;
    // Every complaint about the set-up; empty when a run can be prepared.
    std::string ValidateDynamic() const;

    // Puts the modules into dynamic mode; returns the complaints of those that refused.
    std::string Dynamic_Setup(eDynamicRate rate, int modules, int index);
    // Prepare() after validation: sets the modules and the master up.
    void PostValidatePrepare();
    // Checks the set-up (throwing the complaints) and puts the modules into dynamic mode.
    void Prepare();
    // Takes a prepared run's modules out of dynamic mode again.
    void ClearPrepared();
    // Starts a prepared run; `callback(networkNumber)` comes once on a library thread when it is complete.
    void StartDynamic(void (*callback)(int));
    // Starts a prepared run.
    void StartDynamic();
    // Library use: StartDynamic() after its checks.
    void StartDynamicValidated();
    // Stops the run and returns once it is complete and its threads have ended.
    void StopDynamic();
    // Library use: sends the stop commands to the bus.
    void StopCommands();

private:
    friend class KavroNetwork;

    // Every setter starts here: refuses while the network is busy and
    // un-prepares a prepared run.
    void dynamicAllowChange();
    // Takes the collection's modules out of dynamic mode, as well as the bus allows.
    void leaveDynamicMode() noexcept;
    // Stops a run if one goes and waits for its threads, whatever the
    // network's state: the network is going or its link closing.
    void endRun() noexcept;

    KavroNetwork* network_;  // owner, not owned
    std::int32_t collectionSize_ = 0;
    std::int32_t dynamicInterval_ = 0;
    eDynamicMode dynamicMode_ = eDynamicMode::Normal;
    eDynamicRate dynamicRate_ = eDynamicRate::Rate4K;
    bool enabled_ = false;
    std::int32_t masterIndex_ = -1;
    std::int32_t numberOfModules_ = 0;
    bool stopped_ = true;
};

// Fewest modules for which the custom rate needs no extra interval.
int MinAtRate(KavroNetwork* network);

}  // namespace KavroLibrary
