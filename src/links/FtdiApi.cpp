#include "links/FtdiApi.h"
#include "core/Diagnostics.h"

#include <dlfcn.h>

#include <mutex>

namespace KavroLibrary {

namespace {

struct FtdiBinding {
    std::mutex lock;
    FtdiApi table;
    bool installed = false;  // a stand-in table was installed
    bool bound = false;      // the table holds libftd2xx's functions
    bool reported = false;   // the missing library was reported once
    void* library = nullptr;
};

FtdiBinding& binding() {
    static FtdiBinding instance;
    return instance;
}

template <typename F>
bool bindSymbol(void* library, const char* name, F& slot) {
    void* symbol = dlsym(library, name);
    slot = reinterpret_cast<F>(symbol);
    return symbol != nullptr;
}

bool bindAll(void* library, FtdiApi& t) {
    bool ok = true;
    ok &= bindSymbol(library, "FT_Open", t.Open);
    ok &= bindSymbol(library, "FT_Close", t.Close);
    ok &= bindSymbol(library, "FT_ResetDevice", t.ResetDevice);
    ok &= bindSymbol(library, "FT_SetBitMode", t.SetBitMode);
    ok &= bindSymbol(library, "FT_SetBaudRate", t.SetBaudRate);
    ok &= bindSymbol(library, "FT_SetDataCharacteristics", t.SetDataCharacteristics);
    ok &= bindSymbol(library, "FT_SetFlowControl", t.SetFlowControl);
    ok &= bindSymbol(library, "FT_SetChars", t.SetChars);
    ok &= bindSymbol(library, "FT_SetTimeouts", t.SetTimeouts);
    ok &= bindSymbol(library, "FT_Purge", t.Purge);
    ok &= bindSymbol(library, "FT_GetStatus", t.GetStatus);
    ok &= bindSymbol(library, "FT_GetQueueStatus", t.GetQueueStatus);
    ok &= bindSymbol(library, "FT_Write", t.Write);
    ok &= bindSymbol(library, "FT_Read", t.Read);
    ok &= bindSymbol(library, "FT_CreateDeviceInfoList", t.CreateDeviceInfoList);
    ok &= bindSymbol(library, "FT_GetDeviceInfoDetail", t.GetDeviceInfoDetail);
    ok &= bindSymbol(library, "FT_GetDeviceInfo", t.GetDeviceInfo);
    return ok;
}

}  // namespace

FtdiApi& ftdiTable() { return binding().table; }

bool ftdiBind() {
    FtdiBinding& b = binding();
    std::lock_guard<std::mutex> guard(b.lock);
    if (b.installed || b.bound) return true;
    if (b.library == nullptr) {
        b.library = dlopen("libftd2xx.so", RTLD_NOW | RTLD_LOCAL);
        if (b.library == nullptr) {
            if (!b.reported) {
                const char* why = dlerror();
                diagnostic("USB interface modules unavailable: libftd2xx.so could not be loaded (",
                           why != nullptr ? why : "not found", ").");
                b.reported = true;
            }
            return false;
        }
    }
    FtdiApi table;
    if (!bindAll(b.library, table)) {
        if (!b.reported) {
            diagnostic("USB interface modules unavailable: libftd2xx.so lacks a D2XX function.");
            b.reported = true;
        }
        return false;
    }
    b.table = table;
    b.bound = true;
    return true;
}

void ftdiInstall(const FtdiApi* table) {
    FtdiBinding& b = binding();
    std::lock_guard<std::mutex> guard(b.lock);
    if (table != nullptr) {
        b.table = *table;
        b.installed = true;
    } else {
        b.table = FtdiApi{};
        b.installed = false;
        b.bound = false;
    }
}

}  // namespace KavroLibrary
