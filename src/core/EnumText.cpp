// Text tables of every public enumeration, in declaration order.
#include "KavroEnums.h"
#include "KavroErrors.h"
#include "core/EnumTable.h"

namespace KavroLibrary {

static const EnumRow<eModuleType> keModuleTypeRows[] = {
    {eModuleType::DP, "DP"},
    {eModuleType::AIM, "AIM"},
    {eModuleType::LE, "LE"},
    {eModuleType::EIM, "EIM"},
    {eModuleType::LEIM, "LEIM"},
    {eModuleType::DIOM, "DIOM"},
    {eModuleType::DIM, "DIM"},
    {eModuleType::LTH, "LTH"},
    {eModuleType::LT, "LT"},
    {eModuleType::MultiChannel, "MultiChannel"},
    {eModuleType::CONFOCAL, "CONFOCAL"},
    {eModuleType::WCM, "WCM"},
    {eModuleType::DIO2, "DIO2"},
    {eModuleType::AGM, "AGM"},
    {eModuleType::LTA, "LTA"},
    {eModuleType::Unknown, "Unknown"},
};
std::string eModuleType_ToString(eModuleType value) { return enumToString(keModuleTypeRows, value); }
eModuleType eModuleType_FromString(const std::string& text) { return enumFromString(keModuleTypeRows, text); }

static const EnumRow<eNetworkType> keNetworkTypeRows[] = {
    {eNetworkType::Unknown, "Unknown"}, {eNetworkType::RS232, "RS232"},
    {eNetworkType::WIMV2, "WIMV2"},     {eNetworkType::RS232IM_Mk2, "RS232IM_Mk2"},
    {eNetworkType::ETHIM, "ETHIM"},     {eNetworkType::USBIM_Mk2, "USBIM_Mk2"},
    {eNetworkType::PIM, "PIM"},         {eNetworkType::ETHIM2, "ETHIM2"},
};
std::string eNetworkType_ToString(eNetworkType value) { return enumToString(keNetworkTypeRows, value); }
eNetworkType eNetworkType_FromString(const std::string& text) { return enumFromString(keNetworkTypeRows, text); }

static const EnumRow<eNetSpeed> keNetSpeedRows[] = {
    {eNetSpeed::Low, "Low"},
    {eNetSpeed::High, "High"},
    {eNetSpeed::UltraHigh, "UltraHigh"},
};
std::string eNetSpeed_ToString(eNetSpeed value) { return enumToString(keNetSpeedRows, value); }
eNetSpeed eNetSpeed_FromString(const std::string& text) { return enumFromString(keNetSpeedRows, text); }

static const EnumRow<eGeneration> keGenerationRows[] = {
    {eGeneration::Classic, "Classic"},
    {eGeneration::Kavro2_A, "Kavro2_A"},
    {eGeneration::Kavro2_B, "Kavro2_B"},
    {eGeneration::Kavro3, "Kavro3"},
};
std::string eGeneration_ToString(eGeneration value) { return enumToString(keGenerationRows, value); }
eGeneration eGeneration_FromString(const std::string& text) { return enumFromString(keGenerationRows, text); }

static const EnumRow<eUOM> keUOMRows[] = {
    {eUOM::millimeters, "millimeters"},
    {eUOM::inches, "inches"},
    {eUOM::mils, "mils"},
};
std::string eUOM_ToString(eUOM value) { return enumToString(keUOMRows, value); }
eUOM eUOM_FromString(const std::string& text) { return enumFromString(keUOMRows, text); }

static const EnumRow<eDynamicRate> keDynamicRateRows[] = {
    {eDynamicRate::Rate4K, "Rate4K"},
    {eDynamicRate::Rate2K, "Rate2K"},
    {eDynamicRate::Rate1K, "Rate1K"},
    {eDynamicRate::Dynamic2Custom, "Dynamic2Custom"},
};
std::string eDynamicRate_ToString(eDynamicRate value) { return enumToString(keDynamicRateRows, value); }
eDynamicRate eDynamicRate_FromString(const std::string& text) { return enumFromString(keDynamicRateRows, text); }

static const EnumRow<eDynamicState> keDynamicStateRows[] = {
    {eDynamicState::Inactive, "Inactive"}, {eDynamicState::Prepared, "Prepared"},
    {eDynamicState::Reading, "Reading"},   {eDynamicState::Processing, "Processing"},
    {eDynamicState::Complete, "Complete"},
};
std::string eDynamicState_ToString(eDynamicState value) { return enumToString(keDynamicStateRows, value); }
eDynamicState eDynamicState_FromString(const std::string& text) { return enumFromString(keDynamicStateRows, text); }

static const EnumRow<eDynamicMode> keDynamicModeRows[] = {
    {eDynamicMode::Normal, "Normal"},
    {eDynamicMode::LinkedMaster, "LinkedMaster"},
    {eDynamicMode::LinkedSlave, "LinkedSlave"},
    {eDynamicMode::External, "External"},
};
std::string eDynamicMode_ToString(eDynamicMode value) { return enumToString(keDynamicModeRows, value); }
eDynamicMode eDynamicMode_FromString(const std::string& text) { return enumFromString(keDynamicModeRows, text); }

static const EnumRow<eDifferenceModeStatus> keDifferenceModeStatusRows[] = {
    {eDifferenceModeStatus::None, "None"},
    {eDifferenceModeStatus::Started, "Started"},
    {eDifferenceModeStatus::Stopped, "Stopped"},
    {eDifferenceModeStatus::Reset, "Reset"},
};
std::string eDifferenceModeStatus_ToString(eDifferenceModeStatus value) {
    return enumToString(keDifferenceModeStatusRows, value);
}
eDifferenceModeStatus eDifferenceModeStatus_FromString(const std::string& text) {
    return enumFromString(keDifferenceModeStatusRows, text);
}

static const EnumRow<eBufferedMode> keBufferedModeRows[] = {
    {eBufferedMode::None, "None"},
    {eBufferedMode::Sync, "Sync"},
    {eBufferedMode::Sample, "Sample"},
};
std::string eBufferedMode_ToString(eBufferedMode value) { return enumToString(keBufferedModeRows, value); }
eBufferedMode eBufferedMode_FromString(const std::string& text) { return enumFromString(keBufferedModeRows, text); }

static const EnumRow<eBufferedModeStatus> keBufferedModeStatusRows[] = {
    {eBufferedModeStatus::None, "None"},
    {eBufferedModeStatus::Reading, "Reading"},
    {eBufferedModeStatus::Finished, "Finished"},
};
std::string eBufferedModeStatus_ToString(eBufferedModeStatus value) {
    return enumToString(keBufferedModeStatusRows, value);
}
eBufferedModeStatus eBufferedModeStatus_FromString(const std::string& text) {
    return enumFromString(keBufferedModeStatusRows, text);
}

static const EnumRow<eResolution> keResolutionRows[] = {
    {eResolution::resNone, "resNone"},
    {eResolution::res14Bit, "res14Bit"},
    {eResolution::res16Bit, "res16Bit"},
    {eResolution::res18Bit, "res18Bit"},
};
std::string eResolution_ToString(eResolution value) { return enumToString(keResolutionRows, value); }
eResolution eResolution_FromString(const std::string& text) { return enumFromString(keResolutionRows, text); }

static const EnumRow<eAGM_RotateDisplay> keAGM_RotateDisplayRows[] = {
    {eAGM_RotateDisplay::RotateNone, "RotateNone"}, {eAGM_RotateDisplay::Rotate90, "Rotate90"},
    {eAGM_RotateDisplay::Rotate180, "Rotate180"},   {eAGM_RotateDisplay::Rotate270, "Rotate270"},
    {eAGM_RotateDisplay::RotateAuto, "RotateAuto"},
};
std::string eAGM_RotateDisplay_ToString(eAGM_RotateDisplay value) {
    return enumToString(keAGM_RotateDisplayRows, value);
}
eAGM_RotateDisplay eAGM_RotateDisplay_FromString(const std::string& text) {
    return enumFromString(keAGM_RotateDisplayRows, text);
}

static const EnumRow<eAGM_MeasurementMode> keAGM_MeasurementModeRows[] = {
    {eAGM_MeasurementMode::ZeroToScale, "ZeroToScale"},
    {eAGM_MeasurementMode::Absolute, "Absolute"},
};
std::string eAGM_MeasurementMode_ToString(eAGM_MeasurementMode value) {
    return enumToString(keAGM_MeasurementModeRows, value);
}
eAGM_MeasurementMode eAGM_MeasurementMode_FromString(const std::string& text) {
    return enumFromString(keAGM_MeasurementModeRows, text);
}

static const EnumRow<eAGM_UOM> keAGM_UOMRows[] = {
    {eAGM_UOM::mm, "mm"},
    {eAGM_UOM::inches, "inches"},
    {eAGM_UOM::mils, "mils"},
};
std::string eAGM_UOM_ToString(eAGM_UOM value) { return enumToString(keAGM_UOMRows, value); }
eAGM_UOM eAGM_UOM_FromString(const std::string& text) { return enumFromString(keAGM_UOMRows, text); }

static const EnumRow<eAveraging> keAveragingRows[] = {
    {eAveraging::averageNone, "averageNone"}, {eAveraging::average1, "average1"},
    {eAveraging::average2, "average2"},       {eAveraging::average4, "average4"},
    {eAveraging::average8, "average8"},       {eAveraging::average16, "average16"},
    {eAveraging::average32, "average32"},     {eAveraging::average64, "average64"},
    {eAveraging::average128, "average128"},   {eAveraging::average256, "average256"},
};
std::string eAveraging_ToString(eAveraging value) { return enumToString(keAveragingRows, value); }
eAveraging eAveraging_FromString(const std::string& text) { return enumFromString(keAveragingRows, text); }

static const EnumRow<eInterfaceBaudRate> keInterfaceBaudRateRows[] = {
    {eInterfaceBaudRate::BaudDefault, "BaudDefault"}, {eInterfaceBaudRate::Baud19200, "Baud19200"},
    {eInterfaceBaudRate::Baud28800, "Baud28800"},     {eInterfaceBaudRate::Baud38400, "Baud38400"},
    {eInterfaceBaudRate::Baud57600, "Baud57600"},     {eInterfaceBaudRate::Baud115200, "Baud115200"},
    {eInterfaceBaudRate::Baud230400, "Baud230400"},   {eInterfaceBaudRate::Baud460800, "Baud460800"},
};
std::string eInterfaceBaudRate_ToString(eInterfaceBaudRate value) {
    return enumToString(keInterfaceBaudRateRows, value);
}
eInterfaceBaudRate eInterfaceBaudRate_FromString(const std::string& text) {
    return enumFromString(keInterfaceBaudRateRows, text);
}

static const EnumRow<eDimReadMode> keDimReadModeRows[] = {
    {eDimReadMode::ReadContinuous, "ReadContinuous"},
    {eDimReadMode::ReadOnSwitch, "ReadOnSwitch"},
    {eDimReadMode::ReadOnSample, "ReadOnSample"},
};
std::string eDimReadMode_ToString(eDimReadMode value) { return enumToString(keDimReadModeRows, value); }
eDimReadMode eDimReadMode_FromString(const std::string& text) { return enumFromString(keDimReadModeRows, text); }

static const EnumRow<eReferenceMarkMode> keReferenceMarkModeRows[] = {
    {eReferenceMarkMode::None, "None"},
    {eReferenceMarkMode::Learn, "Learn"},
    {eReferenceMarkMode::Recall, "Recall"},
};
std::string eReferenceMarkMode_ToString(eReferenceMarkMode value) {
    return enumToString(keReferenceMarkModeRows, value);
}
eReferenceMarkMode eReferenceMarkMode_FromString(const std::string& text) {
    return enumFromString(keReferenceMarkModeRows, text);
}

static const EnumRow<eEncoderInterfaceType> keEncoderInterfaceTypeRows[] = {
    {eEncoderInterfaceType::Differential, "Differential"},
    {eEncoderInterfaceType::SingleEnded, "SingleEnded"},
};
std::string eEncoderInterfaceType_ToString(eEncoderInterfaceType value) {
    return enumToString(keEncoderInterfaceTypeRows, value);
}
eEncoderInterfaceType eEncoderInterfaceType_FromString(const std::string& text) {
    return enumFromString(keEncoderInterfaceTypeRows, text);
}

static const EnumRow<eQuadratureMode> keQuadratureModeRows[] = {
    {eQuadratureMode::quadX1, "quadX1"},   {eQuadratureMode::quadX2, "quadX2"},     {eQuadratureMode::quadX4, "quadX4"},
    {eQuadratureMode::CountAB, "CountAB"}, {eQuadratureMode::CountDIR, "CountDIR"},
};
std::string eQuadratureMode_ToString(eQuadratureMode value) { return enumToString(keQuadratureModeRows, value); }
eQuadratureMode eQuadratureMode_FromString(const std::string& text) {
    return enumFromString(keQuadratureModeRows, text);
}

static const EnumRow<eRefAction> keRefActionRows[] = {
    {eRefAction::None, "None"},
    {eRefAction::ContinuousReset, "ContinuousReset"},
    {eRefAction::ContinuousPreset, "ContinuousPreset"},
    {eRefAction::Reset, "Reset"},
    {eRefAction::Preset, "Preset"},
};
std::string eRefAction_ToString(eRefAction value) { return enumToString(keRefActionRows, value); }
eRefAction eRefAction_FromString(const std::string& text) { return enumFromString(keRefActionRows, text); }

static const EnumRow<eDynamicMasterMode> keDynamicMasterModeRows[] = {
    {eDynamicMasterMode::Instant, "Instant"},
    {eDynamicMasterMode::HoldOff, "HoldOff"},
    {eDynamicMasterMode::Refaction_Reset, "Refaction_Reset"},
    {eDynamicMasterMode::Refaction_Preset, "Refaction_Preset"},
};
std::string eDynamicMasterMode_ToString(eDynamicMasterMode value) {
    return enumToString(keDynamicMasterModeRows, value);
}
eDynamicMasterMode eDynamicMasterMode_FromString(const std::string& text) {
    return enumFromString(keDynamicMasterModeRows, text);
}

static const EnumRow<eDirection> keDirectionRows[] = {
    {eDirection::Normal, "Normal"},
    {eDirection::Reversed, "Reversed"},
};
std::string eDirection_ToString(eDirection value) { return enumToString(keDirectionRows, value); }
eDirection eDirection_FromString(const std::string& text) { return enumFromString(keDirectionRows, text); }

static const EnumRow<eDiomIoPinConfig> keDiomIoPinConfigRows[] = {
    {eDiomIoPinConfig::output, "output"},
    {eDiomIoPinConfig::input, "input"},
};
std::string eDiomIoPinConfig_ToString(eDiomIoPinConfig value) { return enumToString(keDiomIoPinConfigRows, value); }
eDiomIoPinConfig eDiomIoPinConfig_FromString(const std::string& text) {
    return enumFromString(keDiomIoPinConfigRows, text);
}

static const EnumRow<eDiomIoPinState> keDiomIoPinStateRows[] = {
    {eDiomIoPinState::low, "low"},
    {eDiomIoPinState::high, "high"},
};
std::string eDiomIoPinState_ToString(eDiomIoPinState value) { return enumToString(keDiomIoPinStateRows, value); }
eDiomIoPinState eDiomIoPinState_FromString(const std::string& text) {
    return enumFromString(keDiomIoPinStateRows, text);
}

static const EnumRow<eDiomInputDebounceTime> keDiomInputDebounceTimeRows[] = {
    {eDiomInputDebounceTime::None, "None"},         {eDiomInputDebounceTime::Time5ms, "Time5ms"},
    {eDiomInputDebounceTime::Time10ms, "Time10ms"}, {eDiomInputDebounceTime::Time25ms, "Time25ms"},
    {eDiomInputDebounceTime::Time50ms, "Time50ms"},
};
std::string eDiomInputDebounceTime_ToString(eDiomInputDebounceTime value) {
    return enumToString(keDiomInputDebounceTimeRows, value);
}
eDiomInputDebounceTime eDiomInputDebounceTime_FromString(const std::string& text) {
    return enumFromString(keDiomInputDebounceTimeRows, text);
}

static const EnumRow<eDIOOutputMode> keDIOOutputModeRows[] = {
    {eDIOOutputMode::NPN, "NPN"},
    {eDIOOutputMode::PNP, "PNP"},
    {eDIOOutputMode::TTL, "TTL"},
};
std::string eDIOOutputMode_ToString(eDIOOutputMode value) { return enumToString(keDIOOutputModeRows, value); }
eDIOOutputMode eDIOOutputMode_FromString(const std::string& text) { return enumFromString(keDIOOutputModeRows, text); }

static const EnumRow<eRead3_ControlCode> keRead3_ControlCodeRows[] = {
    {eRead3_ControlCode::Invalid, "Invalid"},
    {eRead3_ControlCode::NormalFloat, "NormalFloat"},
    {eRead3_ControlCode::NormalInt7DPs, "NormalInt7DPs"},
    {eRead3_ControlCode::TaggedFloat, "TaggedFloat"},
    {eRead3_ControlCode::TaggedInt7DPs, "TaggedInt7DPs"},
};
std::string eRead3_ControlCode_ToString(eRead3_ControlCode value) {
    return enumToString(keRead3_ControlCodeRows, value);
}
eRead3_ControlCode eRead3_ControlCode_FromString(const std::string& text) {
    return enumFromString(keRead3_ControlCodeRows, text);
}

static const EnumRow<eRead3_UOM> keRead3_UOMRows[] = {
    {eRead3_UOM::Default, "Default"},
    {eRead3_UOM::Inches, "Inches"},
    {eRead3_UOM::Mils, "Mils"},
};
std::string eRead3_UOM_ToString(eRead3_UOM value) { return enumToString(keRead3_UOMRows, value); }
eRead3_UOM eRead3_UOM_FromString(const std::string& text) { return enumFromString(keRead3_UOMRows, text); }

static const EnumRow<eChannelMask> keChannelMaskRows[] = {
    {eChannelMask::None, "None"},   {eChannelMask::Ch2, "Ch2"},   {eChannelMask::Ch3, "Ch3"},
    {eChannelMask::Ch4, "Ch4"},     {eChannelMask::Ch5, "Ch5"},   {eChannelMask::Ch6, "Ch6"},
    {eChannelMask::Ch7, "Ch7"},     {eChannelMask::Ch8, "Ch8"},   {eChannelMask::Ch9, "Ch9"},
    {eChannelMask::Ch10, "Ch10"},   {eChannelMask::Ch11, "Ch11"}, {eChannelMask::Ch12, "Ch12"},
    {eChannelMask::ChALL, "ChALL"},
};
std::string eChannelMask_ToString(eChannelMask value) { return enumToString(keChannelMaskRows, value); }
eChannelMask eChannelMask_FromString(const std::string& text) { return enumFromString(keChannelMaskRows, text); }

static const EnumRow<eWCM_DeviceStatus> keWCM_DeviceStatusRows[] = {
    {eWCM_DeviceStatus::Unknown, "Unknown"},       {eWCM_DeviceStatus::NotConnected, "NotConnected"},
    {eWCM_DeviceStatus::Connecting, "Connecting"}, {eWCM_DeviceStatus::Connected, "Connected"},
    {eWCM_DeviceStatus::Error, "Error"},
};
std::string eWCM_DeviceStatus_ToString(eWCM_DeviceStatus value) { return enumToString(keWCM_DeviceStatusRows, value); }
eWCM_DeviceStatus eWCM_DeviceStatus_FromString(const std::string& text) {
    return enumFromString(keWCM_DeviceStatusRows, text);
}

static const EnumRow<eWCM_DeviceType> keWCM_DeviceTypeRows[] = {
    {eWCM_DeviceType::None, "None"},
    {eWCM_DeviceType::WHT, "WHT"},
    {eWCM_DeviceType::WHT_M, "WHT_M"},
    {eWCM_DeviceType::WMM_A, "WMM_A"},
};
std::string eWCM_DeviceType_ToString(eWCM_DeviceType value) { return enumToString(keWCM_DeviceTypeRows, value); }
eWCM_DeviceType eWCM_DeviceType_FromString(const std::string& text) {
    return enumFromString(keWCM_DeviceTypeRows, text);
}

static const EnumRow<eWCM_DevicePZAMode> keWCM_DevicePZAModeRows[] = {
    {eWCM_DevicePZAMode::Absolute, "Absolute"},
    {eWCM_DevicePZAMode::Zero, "Zero"},
    {eWCM_DevicePZAMode::Preset, "Preset"},
};
std::string eWCM_DevicePZAMode_ToString(eWCM_DevicePZAMode value) {
    return enumToString(keWCM_DevicePZAModeRows, value);
}
eWCM_DevicePZAMode eWCM_DevicePZAMode_FromString(const std::string& text) {
    return enumFromString(keWCM_DevicePZAModeRows, text);
}

static const EnumRow<eWCM_DeviceOutputMode> keWCM_DeviceOutputModeRows[] = {
    {eWCM_DeviceOutputMode::Normal, "Normal"},
    {eWCM_DeviceOutputMode::Max, "Max"},
    {eWCM_DeviceOutputMode::Min, "Min"},
    {eWCM_DeviceOutputMode::Diff, "Diff"},
    {eWCM_DeviceOutputMode::TaggedLast, "TaggedLast"},
    {eWCM_DeviceOutputMode::TaggedMax, "TaggedMax"},
    {eWCM_DeviceOutputMode::TaggedMin, "TaggedMin"},
    {eWCM_DeviceOutputMode::TaggedDiff, "TaggedDiff"},
};
std::string eWCM_DeviceOutputMode_ToString(eWCM_DeviceOutputMode value) {
    return enumToString(keWCM_DeviceOutputModeRows, value);
}
eWCM_DeviceOutputMode eWCM_DeviceOutputMode_FromString(const std::string& text) {
    return enumFromString(keWCM_DeviceOutputModeRows, text);
}

static const EnumRow<eWCM_DeviceLimitState> keWCM_DeviceLimitStateRows[] = {
    {eWCM_DeviceLimitState::Ok, "Ok"},
    {eWCM_DeviceLimitState::Invalid, "Invalid"},
    {eWCM_DeviceLimitState::Lower, "Lower"},
    {eWCM_DeviceLimitState::Upper, "Upper"},
    {eWCM_DeviceLimitState::WarnUpper, "WarnUpper"},
    {eWCM_DeviceLimitState::WarnLower, "WarnLower"},
};
std::string eWCM_DeviceLimitState_ToString(eWCM_DeviceLimitState value) {
    return enumToString(keWCM_DeviceLimitStateRows, value);
}
eWCM_DeviceLimitState eWCM_DeviceLimitState_FromString(const std::string& text) {
    return enumFromString(keWCM_DeviceLimitStateRows, text);
}

static const EnumRow<eWHT_DisplayOrientation> keWHT_DisplayOrientationRows[] = {
    {eWHT_DisplayOrientation::Standard, "Standard"},     {eWHT_DisplayOrientation::Clockwise1, "Clockwise1"},
    {eWHT_DisplayOrientation::Clockwise2, "Clockwise2"}, {eWHT_DisplayOrientation::Clockwise3, "Clockwise3"},
    {eWHT_DisplayOrientation::AutoRotate, "AutoRotate"},
};
std::string eWHT_DisplayOrientation_ToString(eWHT_DisplayOrientation value) {
    return enumToString(keWHT_DisplayOrientationRows, value);
}
eWHT_DisplayOrientation eWHT_DisplayOrientation_FromString(const std::string& text) {
    return enumFromString(keWHT_DisplayOrientationRows, text);
}

static const EnumRow<eWHT_BluetoothClass> keWHT_BluetoothClassRows[] = {
    {eWHT_BluetoothClass::Bluetooth_Class_1, "Bluetooth_Class_1"},
    {eWHT_BluetoothClass::Bluetooth_Class_2, "Bluetooth_Class_2"},
    {eWHT_BluetoothClass::Bluetooth_Class_3, "Bluetooth_Class_3"},
};
std::string eWHT_BluetoothClass_ToString(eWHT_BluetoothClass value) {
    return enumToString(keWHT_BluetoothClassRows, value);
}
eWHT_BluetoothClass eWHT_BluetoothClass_FromString(const std::string& text) {
    return enumFromString(keWHT_BluetoothClassRows, text);
}

static const EnumRow<eWHT_DisplayLayout> keWHT_DisplayLayoutRows[] = {
    {eWHT_DisplayLayout::Standard, "Standard"},
    {eWHT_DisplayLayout::Large, "Large"},
};
std::string eWHT_DisplayLayout_ToString(eWHT_DisplayLayout value) {
    return enumToString(keWHT_DisplayLayoutRows, value);
}
eWHT_DisplayLayout eWHT_DisplayLayout_FromString(const std::string& text) {
    return enumFromString(keWHT_DisplayLayoutRows, text);
}

static const EnumRow<eWHT_DisplayLargeSource> keWHT_DisplayLargeSourceRows[] = {
    {eWHT_DisplayLargeSource::Current, "Current"},
    {eWHT_DisplayLargeSource::Computed, "Computed"},
};
std::string eWHT_DisplayLargeSource_ToString(eWHT_DisplayLargeSource value) {
    return enumToString(keWHT_DisplayLargeSourceRows, value);
}
eWHT_DisplayLargeSource eWHT_DisplayLargeSource_FromString(const std::string& text) {
    return enumFromString(keWHT_DisplayLargeSourceRows, text);
}

static const EnumRow<eWHT_LimitStatus> keWHT_LimitStatusRows[] = {
    {eWHT_LimitStatus::None, "None"},
    {eWHT_LimitStatus::Within, "Within"},
    {eWHT_LimitStatus::Outside, "Outside"},
};
std::string eWHT_LimitStatus_ToString(eWHT_LimitStatus value) { return enumToString(keWHT_LimitStatusRows, value); }
eWHT_LimitStatus eWHT_LimitStatus_FromString(const std::string& text) {
    return enumFromString(keWHT_LimitStatusRows, text);
}

static const EnumRow<eWHT_OperationMode> keWHT_OperationModeRows[] = {
    {eWHT_OperationMode::Normal, "Normal"},
    {eWHT_OperationMode::Maximum, "Maximum"},
    {eWHT_OperationMode::Minimum, "Minimum"},
    {eWHT_OperationMode::Difference, "Difference"},
    {eWHT_OperationMode::Normal_LastTagged, "Normal_LastTagged"},
    {eWHT_OperationMode::Max_Tagged, "Max_Tagged"},
    {eWHT_OperationMode::Min_Tagged, "Min_Tagged"},
    {eWHT_OperationMode::Diff_Tagged, "Diff_Tagged"},
};
std::string eWHT_OperationMode_ToString(eWHT_OperationMode value) {
    return enumToString(keWHT_OperationModeRows, value);
}
eWHT_OperationMode eWHT_OperationMode_FromString(const std::string& text) {
    return enumFromString(keWHT_OperationModeRows, text);
}

static const EnumRow<eWHT_MeasurementMode> keWHT_MeasurementModeRows[] = {
    {eWHT_MeasurementMode::Normal, "Normal"},
    {eWHT_MeasurementMode::Zero, "Zero"},
    {eWHT_MeasurementMode::Preset, "Preset"},
};
std::string eWHT_MeasurementMode_ToString(eWHT_MeasurementMode value) {
    return enumToString(keWHT_MeasurementModeRows, value);
}
eWHT_MeasurementMode eWHT_MeasurementMode_FromString(const std::string& text) {
    return enumFromString(keWHT_MeasurementModeRows, text);
}

static const EnumRow<eWHT_ButtonFunction> keWHT_ButtonFunctionRows[] = {
    {eWHT_ButtonFunction::Tag, "Tag"},
    {eWHT_ButtonFunction::Zero, "Zero"},
    {eWHT_ButtonFunction::Preset, "Preset"},
};
std::string eWHT_ButtonFunction_ToString(eWHT_ButtonFunction value) {
    return enumToString(keWHT_ButtonFunctionRows, value);
}
eWHT_ButtonFunction eWHT_ButtonFunction_FromString(const std::string& text) {
    return enumFromString(keWHT_ButtonFunctionRows, text);
}

static const EnumRow<eWHT_PowerOffButtonOptions> keWHT_PowerOffButtonOptionsRows[] = {
    {eWHT_PowerOffButtonOptions::NoButtonPowerOff, "NoButtonPowerOff"},
    {eWHT_PowerOffButtonOptions::Button1, "Button1"},
    {eWHT_PowerOffButtonOptions::Button2, "Button2"},
    {eWHT_PowerOffButtonOptions::EitherButton, "EitherButton"},
    {eWHT_PowerOffButtonOptions::BothButtons, "BothButtons"},
};
std::string eWHT_PowerOffButtonOptions_ToString(eWHT_PowerOffButtonOptions value) {
    return enumToString(keWHT_PowerOffButtonOptionsRows, value);
}
eWHT_PowerOffButtonOptions eWHT_PowerOffButtonOptions_FromString(const std::string& text) {
    return enumFromString(keWHT_PowerOffButtonOptionsRows, text);
}

static const EnumRow<eWHT_LimitBuzzerRate> keWHT_LimitBuzzerRateRows[] = {
    {eWHT_LimitBuzzerRate::ThreeFastOnFail, "ThreeFastOnFail"},
    {eWHT_LimitBuzzerRate::OnceSlowOnFail, "OnceSlowOnFail"},
};
std::string eWHT_LimitBuzzerRate_ToString(eWHT_LimitBuzzerRate value) {
    return enumToString(keWHT_LimitBuzzerRateRows, value);
}
eWHT_LimitBuzzerRate eWHT_LimitBuzzerRate_FromString(const std::string& text) {
    return enumFromString(keWHT_LimitBuzzerRateRows, text);
}

static const EnumRow<eWHT_LimitLED> keWHT_LimitLEDRows[] = {
    {eWHT_LimitLED::None, "None"},
    {eWHT_LimitLED::Green, "Green"},
    {eWHT_LimitLED::Red, "Red"},
    {eWHT_LimitLED::Both, "Both"},
};
std::string eWHT_LimitLED_ToString(eWHT_LimitLED value) { return enumToString(keWHT_LimitLEDRows, value); }
eWHT_LimitLED eWHT_LimitLED_FromString(const std::string& text) { return enumFromString(keWHT_LimitLEDRows, text); }

static const EnumRow<eWHT_M_DisplayMode> keWHT_M_DisplayModeRows[] = {
    {eWHT_M_DisplayMode::Charts, "Charts"},
    {eWHT_M_DisplayMode::Text, "Text"},
};
std::string eWHT_M_DisplayMode_ToString(eWHT_M_DisplayMode value) {
    return enumToString(keWHT_M_DisplayModeRows, value);
}
eWHT_M_DisplayMode eWHT_M_DisplayMode_FromString(const std::string& text) {
    return enumFromString(keWHT_M_DisplayModeRows, text);
}

static const EnumRow<eWHT_M_ButtonFunction> keWHT_M_ButtonFunctionRows[] = {
    {eWHT_M_ButtonFunction::None, "None"},
    {eWHT_M_ButtonFunction::Tag, "Tag"},
    {eWHT_M_ButtonFunction::PowerOff, "PowerOff"},
};
std::string eWHT_M_ButtonFunction_ToString(eWHT_M_ButtonFunction value) {
    return enumToString(keWHT_M_ButtonFunctionRows, value);
}
eWHT_M_ButtonFunction eWHT_M_ButtonFunction_FromString(const std::string& text) {
    return enumFromString(keWHT_M_ButtonFunctionRows, text);
}

static const EnumRow<eWHT_M_LEDFunction> keWHT_M_LEDFunctionRows[] = {
    {eWHT_M_LEDFunction::Off, "Off"},           {eWHT_M_LEDFunction::Streaming, "Streaming"},
    {eWHT_M_LEDFunction::RangeErr, "RangeErr"}, {eWHT_M_LEDFunction::AllOk, "AllOk"},
    {eWHT_M_LEDFunction::LowBatt, "LowBatt"},
};
std::string eWHT_M_LEDFunction_ToString(eWHT_M_LEDFunction value) {
    return enumToString(keWHT_M_LEDFunctionRows, value);
}
eWHT_M_LEDFunction eWHT_M_LEDFunction_FromString(const std::string& text) {
    return enumFromString(keWHT_M_LEDFunctionRows, text);
}

static const EnumRow<eWHT_M_BuzzerFunction> keWHT_M_BuzzerFunctionRows[] = {
    {eWHT_M_BuzzerFunction::Off, "Off"},
    {eWHT_M_BuzzerFunction::TagTaken, "TagTaken"},
};
std::string eWHT_M_BuzzerFunction_ToString(eWHT_M_BuzzerFunction value) {
    return enumToString(keWHT_M_BuzzerFunctionRows, value);
}
eWHT_M_BuzzerFunction eWHT_M_BuzzerFunction_FromString(const std::string& text) {
    return enumFromString(keWHT_M_BuzzerFunctionRows, text);
}

static const EnumRow<eFilter> keFilterRows[] = {
    {eFilter::Filter20kHz, "Filter20kHz"}, {eFilter::Filter4kHz, "Filter4kHz"}, {eFilter::Filter1kHz, "Filter1kHz"},
    {eFilter::Filter200Hz, "Filter200Hz"}, {eFilter::Filter25Hz, "Filter25Hz"}, {eFilter::Filter1Hz, "Filter1Hz"},
    {eFilter::Filter0Hz1, "Filter0Hz1"},
};
std::string eFilter_ToString(eFilter value) { return enumToString(keFilterRows, value); }
eFilter eFilter_FromString(const std::string& text) { return enumFromString(keFilterRows, text); }

static const EnumRow<eDifferenceMode> keDifferenceModeRows[] = {
    {eDifferenceMode::ModeNone, "ModeNone"},
    {eDifferenceMode::Mode1, "Mode1"},
    {eDifferenceMode::Mode2, "Mode2"},
};
std::string eDifferenceMode_ToString(eDifferenceMode value) { return enumToString(keDifferenceModeRows, value); }
eDifferenceMode eDifferenceMode_FromString(const std::string& text) {
    return enumFromString(keDifferenceModeRows, text);
}

static const EnumRow<eMeasuringRate> keMeasuringRateRows[] = {
    {eMeasuringRate::rateNone, "rateNone"},   {eMeasuringRate::rate250Hz, "rate250Hz"},
    {eMeasuringRate::rate500Hz, "rate500Hz"}, {eMeasuringRate::rate1kHz, "rate1kHz"},
    {eMeasuringRate::rate2kHz, "rate2kHz"},   {eMeasuringRate::rate4kHz, "rate4kHz"},
    {eMeasuringRate::rate8kHz, "rate8kHz"},   {eMeasuringRate::rate10kHz, "rate10kHz"},
};
std::string eMeasuringRate_ToString(eMeasuringRate value) { return enumToString(keMeasuringRateRows, value); }
eMeasuringRate eMeasuringRate_FromString(const std::string& text) { return enumFromString(keMeasuringRateRows, text); }

static const EnumRow<eKavroErrors> keKavroErrorsRows[] = {
    {eKavroErrors::NoError, "NoError"},
    {eKavroErrors::NETWORK_CONTROLLER_NOT_FOUND, "NETWORK_CONTROLLER_NOT_FOUND"},
    {eKavroErrors::NETWORK_CONTROLLER_TIMEOUT, "NETWORK_CONTROLLER_TIMEOUT"},
    {eKavroErrors::NETWORK_CONTROLLER_WRITE_TIMEOUT, "NETWORK_CONTROLLER_WRITE_TIMEOUT"},
    {eKavroErrors::NETWORK_CONTROLLER_READ_TIMEOUT, "NETWORK_CONTROLLER_READ_TIMEOUT"},
    {eKavroErrors::NOT_CONNECTED_TO_KAVRO_NETWORKS, "NOT_CONNECTED_TO_KAVRO_NETWORKS"},
    {eKavroErrors::UNRECOGNISED_NETWORK_CONTROLLER, "UNRECOGNISED_NETWORK_CONTROLLER"},
    {eKavroErrors::BAD_RS232_SETTING_BYTE, "BAD_RS232_SETTING_BYTE"},
    {eKavroErrors::BAD_KAVRO_SPEED_BYTE, "BAD_KAVRO_SPEED_BYTE"},
    {eKavroErrors::MISSING_MODULE_ACKNOWLEDGEMENT, "MISSING_MODULE_ACKNOWLEDGEMENT"},
    {eKavroErrors::BAD_NETWORK_NUMBER, "BAD_NETWORK_NUMBER"},
    {eKavroErrors::BAD_MODULE_ADDRESS, "BAD_MODULE_ADDRESS"},
    {eKavroErrors::BAD_ID_STRING_LENGTH, "BAD_ID_STRING_LENGTH"},
    {eKavroErrors::BAD_MODULE_TYPE_STRING_LENGTH, "BAD_MODULE_TYPE_STRING_LENGTH"},
    {eKavroErrors::BAD_SOFTWARE_VERSION_STRING_LENGTH, "BAD_SOFTWARE_VERSION_STRING_LENGTH"},
    {eKavroErrors::NETWORK_ADDRESS_ALREADY_ALLOCATED, "NETWORK_ADDRESS_ALREADY_ALLOCATED"},
    {eKavroErrors::BAD_NETWORK_STRING_LENGTH, "BAD_NETWORK_STRING_LENGTH"},
    {eKavroErrors::BAD_DEVICE_TYPE_STRING_LENGTH, "BAD_DEVICE_TYPE_STRING_LENGTH"},
    {eKavroErrors::BAD_MODULE_INFO_STRING_LENGTH, "BAD_MODULE_INFO_STRING_LENGTH"},
    {eKavroErrors::BAD_IF_VERSION_STRING_LENGTH, "BAD_IF_VERSION_STRING_LENGTH"},
    {eKavroErrors::BAD_ERROR_STRING_LENGTH, "BAD_ERROR_STRING_LENGTH"},
    {eKavroErrors::BAD_MODE, "BAD_MODE"},
    {eKavroErrors::BAD_CMD_FOR_THIS_MODE, "BAD_CMD_FOR_THIS_MODE"},
    {eKavroErrors::BAD_IF_SPEED_CODE, "BAD_IF_SPEED_CODE"},
    {eKavroErrors::BAD_KAVRO_SPEED_CODE, "BAD_KAVRO_SPEED_CODE"},
    {eKavroErrors::BAD_PARAMETER_COMBINATION, "BAD_PARAMETER_COMBINATION"},
    {eKavroErrors::STORAGE_DATA_NOT_ALLOCATED, "STORAGE_DATA_NOT_ALLOCATED"},
    {eKavroErrors::STORAGE_DATA_NOT_FREED, "STORAGE_DATA_NOT_FREED"},
    {eKavroErrors::PENDING_INTERRUPT_NOT_SERVICED, "PENDING_INTERRUPT_NOT_SERVICED"},
    {eKavroErrors::BAD_READCOLLECTED_PARAMETER, "BAD_READCOLLECTED_PARAMETER"},
    {eKavroErrors::CARD_IS_NOT_MASTER, "CARD_IS_NOT_MASTER"},
    {eKavroErrors::CARD_IS_NOT_TARGET, "CARD_IS_NOT_TARGET"},
    {eKavroErrors::TOO_MANY_READINGS_REQUESTED, "TOO_MANY_READINGS_REQUESTED"},
    {eKavroErrors::BAD_MODE_FOR_THIS_REVISION, "BAD_MODE_FOR_THIS_REVISION"},
    {eKavroErrors::KAVRO_5V_CURRENT_LIMIT, "KAVRO_5V_CURRENT_LIMIT"},
    {eKavroErrors::KAVRO_5V_LOW, "KAVRO_5V_LOW"},
    {eKavroErrors::KAVRO_5V_HIGH, "KAVRO_5V_HIGH"},
    {eKavroErrors::BLOCK_CHECKSUM_ERROR, "BLOCK_CHECKSUM_ERROR"},
    {eKavroErrors::XRAM_CHECKSUM_ERROR, "XRAM_CHECKSUM_ERROR"},
    {eKavroErrors::BAD_START_ADDRESS, "BAD_START_ADDRESS"},
    {eKavroErrors::FLASH_VERIFY_ERROR, "FLASH_VERIFY_ERROR"},
    {eKavroErrors::DYNAMIC_BUFFER_UNDERRUN, "DYNAMIC_BUFFER_UNDERRUN"},
    {eKavroErrors::DynamicStopped, "DynamicStopped"},
    {eKavroErrors::CORRUPT_PACKET_ERR, "CORRUPT_PACKET_ERR"},
    {eKavroErrors::SYNC_TIMING_VIOLATION, "SYNC_TIMING_VIOLATION"},
    {eKavroErrors::FRAMING_ERROR, "FRAMING_ERROR"},
    {eKavroErrors::OVERRUN_ERROR, "OVERRUN_ERROR"},
    {eKavroErrors::Checksum, "Checksum"},
    {eKavroErrors::Parity, "Parity"},
    {eKavroErrors::Timeout, "Timeout"},
    {eKavroErrors::ModuleBase, "ModuleBase"},
    {eKavroErrors::COIL_RANGE, "COIL_RANGE"},
    {eKavroErrors::NO_CMD, "NO_CMD"},
    {eKavroErrors::BCAST_NA, "BCAST_NA"},
    {eKavroErrors::ADDR_NA, "ADDR_NA"},
    {eKavroErrors::ADDR_CH_NA, "ADDR_CH_NA"},
    {eKavroErrors::WRONG_MODE, "WRONG_MODE"},
    {eKavroErrors::NO_CALTABLE, "NO_CALTABLE"},
    {eKavroErrors::MISSED_RDG, "MISSED_RDG"},
    {eKavroErrors::RDG_HOLDOFF, "RDG_HOLDOFF"},
    {eKavroErrors::FRAMING_ERR, "FRAMING_ERR"},
    {eKavroErrors::KAVRO_ERR_REREAD_INFO_REQUIRED, "KAVRO_ERR_REREAD_INFO_REQUIRED"},
    {eKavroErrors::GT16BIT, "GT16BIT"},
    {eKavroErrors::UnderRange, "UnderRange"},
    {eKavroErrors::OverRange, "OverRange"},
    {eKavroErrors::MULT_OVERFLOW, "MULT_OVERFLOW"},
    {eKavroErrors::BUFFER_FULL, "BUFFER_FULL"},
    {eKavroErrors::RDBFR_NOT_VALID, "RDBFR_NOT_VALID"},
    {eKavroErrors::READ_NOT_VALID, "READ_NOT_VALID"},
    {eKavroErrors::BFR_RD_WR_ERR, "BFR_RD_WR_ERR"},
    {eKavroErrors::BFR_NOT_EMPTY, "BFR_NOT_EMPTY"},
    {eKavroErrors::BFR_EMPTY_STOP, "BFR_EMPTY_STOP"},
    {eKavroErrors::DIFF_NOT_SET, "DIFF_NOT_SET"},
    {eKavroErrors::DIFF_WAITING, "DIFF_WAITING"},
    {eKavroErrors::DIFFMODE_NA, "DIFFMODE_NA"},
    {eKavroErrors::NUM_OVERFLOW, "NUM_OVERFLOW"},
    {eKavroErrors::SUM_OVERFLOW, "SUM_OVERFLOW"},
    {eKavroErrors::DIFF_RUNNING, "DIFF_RUNNING"},
    {eKavroErrors::DIFF_NA_HIRES, "DIFF_NA_HIRES"},
    {eKavroErrors::ARGUMENT_NOT_VALID, "ARGUMENT_NOT_VALID"},
    {eKavroErrors::MODE_NOT_VALID, "MODE_NOT_VALID"},
    {eKavroErrors::DELAY_NOT_VALID, "DELAY_NOT_VALID"},
    {eKavroErrors::SYNC_WAITING, "SYNC_WAITING"},
    {eKavroErrors::SYNC_RUNNING, "SYNC_RUNNING"},
    {eKavroErrors::SAMPLE_RUNNING, "SAMPLE_RUNNING"},
    {eKavroErrors::AVERAGE_NOT_VALID, "AVERAGE_NOT_VALID"},
    {eKavroErrors::AVE_CHANGE_NOT_ALLOWED, "AVE_CHANGE_NOT_ALLOWED"},
    {eKavroErrors::RESOLUTION_NOT_VALID, "RESOLUTION_NOT_VALID"},
    {eKavroErrors::RESO_CHANGE_NOT_ALLOWED, "RESO_CHANGE_NOT_ALLOWED"},
    {eKavroErrors::PROBE_SET_TO_HI_RES, "PROBE_SET_TO_HI_RES"},
    {eKavroErrors::PROBE_SET_TO_LO_RES, "PROBE_SET_TO_LO_RES"},
    {eKavroErrors::NOT_IN_NORMAL_MODE, "NOT_IN_NORMAL_MODE"},
    {eKavroErrors::ADDR_RANGE_ERROR_DYN, "ADDR_RANGE_ERROR_DYN"},
    {eKavroErrors::NOT_IN_HIGH_BAUD, "NOT_IN_HIGH_BAUD"},
    {eKavroErrors::INPUT_TYPE_NOT_VALID, "INPUT_TYPE_NOT_VALID"},
    {eKavroErrors::QUAD_CODE_NOT_VALID, "QUAD_CODE_NOT_VALID"},
    {eKavroErrors::REF_ACTION_NOT_VALID, "REF_ACTION_NOT_VALID"},
    {eKavroErrors::PRESET_OUT_OF_RANGE, "PRESET_OUT_OF_RANGE"},
    {eKavroErrors::PRESET_IGNORED, "PRESET_IGNORED"},
    {eKavroErrors::ENCODER_ERROR, "ENCODER_ERROR"},
    {eKavroErrors::SYNC_GAP_ERROR, "SYNC_GAP_ERROR"},
    {eKavroErrors::CONTROL_GAP_ERROR, "CONTROL_GAP_ERROR"},
    {eKavroErrors::Voltage_Error_5V_LOW_WARNING, "Voltage_Error_5V_LOW_WARNING"},
    {eKavroErrors::Voltage_Error_5V_TOO_LOW, "Voltage_Error_5V_TOO_LOW"},
    {eKavroErrors::Voltage_Error_5V_TOO_HIGH, "Voltage_Error_5V_TOO_HIGH"},
    {eKavroErrors::Voltage_Error_5V_HIGH_WARNING, "Voltage_Error_5V_HIGH_WARNING"},
    {eKavroErrors::ADC_FAULT, "ADC_FAULT"},
    {eKavroErrors::PSU_FAULT, "PSU_FAULT"},
    {eKavroErrors::I2C_MEM_FAULT, "I2C_MEM_FAULT"},
    {eKavroErrors::I2C_ACCELEROMETER_FAULT, "I2C_ACCELEROMETER_FAULT"},
    {eKavroErrors::I2C_PRESSURE_SENSOR_FAULT, "I2C_PRESSURE_SENSOR_FAULT"},
    {eKavroErrors::Inph_Low, "Inph_Low"},
    {eKavroErrors::Inph_High, "Inph_High"},
    {eKavroErrors::Quad_Low, "Quad_Low"},
    {eKavroErrors::Quad_High, "Quad_High"},
    {eKavroErrors::Counter_Error, "Counter_Error"},
    {eKavroErrors::Ref_running, "Ref_running"},
    {eKavroErrors::Too_fast, "Too_fast"},
    {eKavroErrors::Low_signal, "Low_signal"},
    {eKavroErrors::KAVRO_READ_DEVICE_TIMEOUT, "KAVRO_READ_DEVICE_TIMEOUT"},
    {eKavroErrors::KAVRO_READ_INVALID_DEVICEINDEX, "KAVRO_READ_INVALID_DEVICEINDEX"},
    {eKavroErrors::KAVRO_READ_INVALID_CONTROLCODE, "KAVRO_READ_INVALID_CONTROLCODE"},
    {eKavroErrors::KAVRO_READ_INVALID_UOM, "KAVRO_READ_INVALID_UOM"},
    {eKavroErrors::KAVRO_READ_INVALID_CHANNEL, "KAVRO_READ_INVALID_CHANNEL"},
    {eKavroErrors::KAVRO_READ_READING_OVERFLOW, "KAVRO_READ_READING_OVERFLOW"},
    {eKavroErrors::KAVRO_READ_NO_TAGGED_DATA, "KAVRO_READ_NO_TAGGED_DATA"},
    {eKavroErrors::KAVRO_WCM_CONFIG_DATA_LENGTH, "KAVRO_WCM_CONFIG_DATA_LENGTH"},
    {eKavroErrors::KAVRO_WCM_CONFIG_DATA_CHECKSUM, "KAVRO_WCM_CONFIG_DATA_CHECKSUM"},
    {eKavroErrors::KAVRO_WCM_CONFIG_FIELD_ID, "KAVRO_WCM_CONFIG_FIELD_ID"},
    {eKavroErrors::KAVRO_WCM_CONFIG_DATA_READ_ONLY, "KAVRO_WCM_CONFIG_DATA_READ_ONLY"},
    {eKavroErrors::INCOMPATIBLE_BOARD, "INCOMPATIBLE_BOARD"},
    {eKavroErrors::INCOMPATIBLE_STROKE, "INCOMPATIBLE_STROKE"},
    {eKavroErrors::INCOMPATIBLE_COMPANY, "INCOMPATIBLE_COMPANY"},
    {eKavroErrors::BAD_CALIBRATION_DATA, "BAD_CALIBRATION_DATA"},
    {eKavroErrors::INCOMPATIBLE_HOTSWAP, "INCOMPATIBLE_HOTSWAP"},
    {eKavroErrors::ONEWIRE_HOTSWAP, "ONEWIRE_HOTSWAP"},
    {eKavroErrors::INCOMPATIBLE_PROBE, "INCOMPATIBLE_PROBE"},
    {eKavroErrors::NO_PROBE, "NO_PROBE"},
    {eKavroErrors::INCORRECT_COMMAND_FORMAT, "INCORRECT_COMMAND_FORMAT"},
    {eKavroErrors::COMMUNICATIONS_ERROR, "COMMUNICATIONS_ERROR"},
    {eKavroErrors::DISPLAY_ERROR, "DISPLAY_ERROR"},
    {eKavroErrors::Empty, "Empty"},
    {eKavroErrors::OverAndUnderRange, "OverAndUnderRange"},
    {eKavroErrors::Unknown, "Unknown"},
};
std::string eKavroErrors_ToString(eKavroErrors value) { return enumToString(keKavroErrorsRows, value); }
eKavroErrors eKavroErrors_FromString(const std::string& text) { return enumFromString(keKavroErrorsRows, text); }

}  // namespace KavroLibrary
