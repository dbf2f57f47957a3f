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

class KavroDynamic {
public:
    explicit KavroDynamic(KavroNetwork* network);
    ~KavroDynamic();
    KavroDynamic(const KavroDynamic&) = delete;
    KavroDynamic& operator=(const KavroDynamic&) = delete;

    int CollectionSize() const { return collectionSize_; }
    int DynamicInterval() const { return dynamicInterval_; }
    eDynamicMode DynamicMode() const { return dynamicMode_; }
    eDynamicRate DynamicRate() const { return dynamicRate_; }
    int MasterIndex() const { return masterIndex_; }
    int NumberOfModules() const { return numberOfModules_; }
    KavroDynamicData* DynamicData() const;
    // Shortest interval the bus allows for the collection, at least 256 µs.
    int MinimumInterval() const;
    // Clears the flag when the network has lost its dynamic capability.
    bool Enabled();
    // A finished read with decoding still at work reports Processing.
    eDynamicState DynamicState() const;
    bool ValidateInterval(int microseconds) const;
    // How the current or last run went: packets, packets asked for again,
    // reading sets, and whether readings went missing.
    sDynamicHealth Health() const;

    void setCollectionSize(int size);
    void setDynamicRate(eDynamicRate rate);
    void setDynamicInterval(int microseconds);
    void setMasterIndex(int index);
    void setNumberOfModules(int count);
    void setDynamicMode(eDynamicMode mode);
    void setEnabled(bool enabled);

    // Validators: an empty text when all is well, else complaints.
    std::string ValidateDynamic_NumModules(int count) const;
    std::string ValidateDynamic_Mode(eDynamicMode mode) const;
    std::string ValidateDynamic_AddressOfModuleMaster() const;
    std::string ValidateDynamic_Rate(eDynamicRate rate) const;
    std::string ValidateDynamic_Time() const;
    std::string ValidateDynamic_NetSpeed(eNetSpeed speed) const;
    std::string ValidateDynamic() const;

    std::string Dynamic_Setup(eDynamicRate rate, int modules, int index);
    void PostValidatePrepare();
    void Prepare();
    void ClearPrepared();
    void StartDynamic(void (*callback)(int));
    void StartDynamic();
    void StartDynamicValidated();
    void StopDynamic();
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
