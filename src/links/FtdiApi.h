// The D2XX calls the library makes, through one table of function pointers
// with the D2XX signatures and status codes. The table is bound to
// libftd2xx.so at run time (dlopen on first USB use); tests may install their
// own stand-in. The library builds, loads and runs without libftd2xx.
#pragma once

#include <cstdint>

namespace KavroLibrary {

using FT_HANDLE = void*;
using FT_STATUS = unsigned long;  // ULONG in the D2XX headers
using DWORD = std::uint32_t;
using ULONG = unsigned long;
using UCHAR = unsigned char;
using USHORT = unsigned short;
using LPDWORD = DWORD*;

// Status codes.
constexpr FT_STATUS FT_OK = 0;
constexpr FT_STATUS FT_INVALID_HANDLE = 1;
constexpr FT_STATUS FT_DEVICE_NOT_FOUND = 2;
constexpr FT_STATUS FT_DEVICE_NOT_OPENED = 3;
constexpr FT_STATUS FT_IO_ERROR = 4;
constexpr FT_STATUS FT_OTHER_ERROR = 18;

// Constants the library uses.
constexpr ULONG FT_DEVICE_2232H = 6;
constexpr UCHAR FT_BITS_8 = 8;
constexpr UCHAR FT_STOP_BITS_1 = 0;
constexpr UCHAR FT_PARITY_NONE = 0;
constexpr USHORT FT_FLOW_NONE = 0x0000;
constexpr ULONG FT_PURGE_RX = 1;
constexpr ULONG FT_PURGE_TX = 2;
constexpr UCHAR FT_BITMODE_RESET = 0x00;
constexpr UCHAR FT_BITMODE_MPSSE = 0x02;

struct FtdiApi {
    FT_STATUS (*Open)(int deviceNumber, FT_HANDLE* handle) = nullptr;
    FT_STATUS (*Close)(FT_HANDLE handle) = nullptr;
    FT_STATUS (*ResetDevice)(FT_HANDLE handle) = nullptr;
    FT_STATUS (*SetBitMode)(FT_HANDLE handle, UCHAR mask, UCHAR mode) = nullptr;
    FT_STATUS (*SetBaudRate)(FT_HANDLE handle, ULONG baud) = nullptr;
    FT_STATUS (*SetDataCharacteristics)(FT_HANDLE handle, UCHAR wordLength, UCHAR stopBits, UCHAR parity) = nullptr;
    FT_STATUS (*SetFlowControl)(FT_HANDLE handle, USHORT flow, UCHAR xon, UCHAR xoff) = nullptr;
    FT_STATUS(*SetChars)
    (FT_HANDLE handle, UCHAR eventChar, UCHAR eventEnable, UCHAR errorChar, UCHAR errorEnable) = nullptr;
    FT_STATUS (*SetTimeouts)(FT_HANDLE handle, ULONG readTimeout, ULONG writeTimeout) = nullptr;
    FT_STATUS (*Purge)(FT_HANDLE handle, ULONG mask) = nullptr;
    FT_STATUS (*GetStatus)(FT_HANDLE handle, DWORD* rxBytes, DWORD* txBytes, DWORD* eventDWord) = nullptr;
    FT_STATUS (*GetQueueStatus)(FT_HANDLE handle, DWORD* rxBytes) = nullptr;
    FT_STATUS (*Write)(FT_HANDLE handle, void* buffer, DWORD bytesToWrite, LPDWORD bytesWritten) = nullptr;
    FT_STATUS (*Read)(FT_HANDLE handle, void* buffer, DWORD bytesToRead, LPDWORD bytesReturned) = nullptr;
    FT_STATUS (*CreateDeviceInfoList)(LPDWORD numDevices) = nullptr;
    FT_STATUS (*GetDeviceInfo)
    (FT_HANDLE handle, LPDWORD type, LPDWORD id, char* serialNumber, char* description, void* dummy) = nullptr;
    FT_STATUS(*GetDeviceInfoDetail)
    (DWORD index, LPDWORD flags, LPDWORD type, LPDWORD id, LPDWORD locId, void* serialNumber, void* description,
     FT_HANDLE* handle) = nullptr;
};

// The table in use. Entries are null until ftdiBind() or ftdiInstall() fills them.
FtdiApi& ftdiTable();

// Binds the table to libftd2xx.so on first use (no-op when already bound or
// when a stand-in was installed). Returns false when no D2XX library is there.
bool ftdiBind();

// Installs a stand-in table (tests) or, with nullptr, returns to the real one.
void ftdiInstall(const FtdiApi* table);

}  // namespace KavroLibrary
