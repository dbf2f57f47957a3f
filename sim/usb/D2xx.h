// The D2XX calls the stand-in libftd2xx.so answers, declared from the D2XX
// function names and their documented meaning: handles are opaque pointers,
// every call returns a status (0 good), DWORD is 32 bits and ULONG is the
// platform's unsigned long.
#pragma once

#include <cstdint>

namespace kavrosim {

using FT_HANDLE = void*;
using FT_STATUS = unsigned long;
using DWORD = std::uint32_t;
using ULONG = unsigned long;
using UCHAR = unsigned char;
using USHORT = unsigned short;

// Statuses.
constexpr FT_STATUS kFtOk = 0;
constexpr FT_STATUS kFtInvalidHandle = 1;
constexpr FT_STATUS kFtDeviceNotFound = 2;
constexpr FT_STATUS kFtDeviceNotOpened = 3;
constexpr FT_STATUS kFtIoError = 4;
constexpr FT_STATUS kFtInvalidParameter = 6;
constexpr FT_STATUS kFtInvalidBaudRate = 7;
constexpr FT_STATUS kFtOtherError = 18;

// Device-list flags and types.
constexpr DWORD kFtFlagOpened = 1;
constexpr DWORD kFtDevice2232H = 6;

// Purge masks and bit modes.
constexpr ULONG kFtPurgeRx = 1;
constexpr ULONG kFtPurgeTx = 2;
constexpr UCHAR kFtBitModeReset = 0x00;
constexpr UCHAR kFtBitModeMpsse = 0x02;

// Widths of the texts FT_GetDeviceInfoDetail fills, terminator included.
constexpr int kFtSerialNumberSize = 16;
constexpr int kFtDescriptionSize = 64;

}  // namespace kavrosim

extern "C" {

kavrosim::FT_STATUS FT_CreateDeviceInfoList(kavrosim::DWORD* numDevices);
kavrosim::FT_STATUS FT_GetDeviceInfoDetail(kavrosim::DWORD index, kavrosim::DWORD* flags, kavrosim::DWORD* type,
                                           kavrosim::DWORD* id, kavrosim::DWORD* locId, void* serialNumber,
                                           void* description, kavrosim::FT_HANDLE* handle);
kavrosim::FT_STATUS FT_GetDeviceInfo(kavrosim::FT_HANDLE handle, kavrosim::DWORD* type, kavrosim::DWORD* id,
                                     char* serialNumber, char* description, void* dummy);
kavrosim::FT_STATUS FT_Open(int deviceNumber, kavrosim::FT_HANDLE* handle);
kavrosim::FT_STATUS FT_Close(kavrosim::FT_HANDLE handle);
kavrosim::FT_STATUS FT_ResetDevice(kavrosim::FT_HANDLE handle);
kavrosim::FT_STATUS FT_SetBitMode(kavrosim::FT_HANDLE handle, kavrosim::UCHAR mask, kavrosim::UCHAR mode);
kavrosim::FT_STATUS FT_SetBaudRate(kavrosim::FT_HANDLE handle, kavrosim::ULONG baudRate);
kavrosim::FT_STATUS FT_SetDataCharacteristics(kavrosim::FT_HANDLE handle, kavrosim::UCHAR wordLength,
                                              kavrosim::UCHAR stopBits, kavrosim::UCHAR parity);
kavrosim::FT_STATUS FT_SetFlowControl(kavrosim::FT_HANDLE handle, kavrosim::USHORT flowControl, kavrosim::UCHAR xon,
                                      kavrosim::UCHAR xoff);
kavrosim::FT_STATUS FT_SetChars(kavrosim::FT_HANDLE handle, kavrosim::UCHAR eventChar, kavrosim::UCHAR eventEnable,
                                kavrosim::UCHAR errorChar, kavrosim::UCHAR errorEnable);
kavrosim::FT_STATUS FT_SetTimeouts(kavrosim::FT_HANDLE handle, kavrosim::ULONG readTimeout,
                                   kavrosim::ULONG writeTimeout);
kavrosim::FT_STATUS FT_Purge(kavrosim::FT_HANDLE handle, kavrosim::ULONG mask);
kavrosim::FT_STATUS FT_GetStatus(kavrosim::FT_HANDLE handle, kavrosim::DWORD* rxBytes, kavrosim::DWORD* txBytes,
                                 kavrosim::DWORD* eventStatus);
kavrosim::FT_STATUS FT_GetQueueStatus(kavrosim::FT_HANDLE handle, kavrosim::DWORD* rxBytes);
kavrosim::FT_STATUS FT_Write(kavrosim::FT_HANDLE handle, void* buffer, kavrosim::DWORD bytesToWrite,
                             kavrosim::DWORD* bytesWritten);
kavrosim::FT_STATUS FT_Read(kavrosim::FT_HANDLE handle, void* buffer, kavrosim::DWORD bytesToRead,
                            kavrosim::DWORD* bytesReturned);

}  // extern "C"
