// Enumerations of the library and their text forms.
//
// Every enumeration is a scoped 32-bit signed enumeration whose enumerators are
// named exactly as their texts. The `_ToString` companion returns the text of a
// value (an empty text for a value outside the table); the `_FromString`
// companion matches a text exactly (case-sensitive, untrimmed) and throws
// std::runtime_error("StringToEnum Conversion Error") when nothing matches.
#pragma once

#include <cstdint>
#include <string>

namespace KavroLibrary {

// The kind of a module, as decided from its answers.
enum class eModuleType : std::int32_t {
    DP = 0,
    AIM = 1,
    LE = 2,
    EIM = 3,
    LEIM = 4,
    DIOM = 5,
    DIM = 6,
    LTH = 7,
    LT = 8,
    MultiChannel = 9,
    CONFOCAL = 10,
    WCM = 11,
    DIO2 = 12,
    AGM = 13,
    LTA = 14,
    Unknown = 15,
};
std::string eModuleType_ToString(eModuleType value);
eModuleType eModuleType_FromString(const std::string& text);

// The kind of interface module (controller) a network is behind.
enum class eNetworkType : std::int32_t {
    Unknown = 0,
    RS232 = 2,
    WIMV2 = 7,
    RS232IM_Mk2 = 8,
    ETHIM = 13,
    USBIM_Mk2 = 14,
    PIM = 18,
    ETHIM2 = 19,
};
std::string eNetworkType_ToString(eNetworkType value);
eNetworkType eNetworkType_FromString(const std::string& text);

// The bus speed of a network.
enum class eNetSpeed : std::int32_t {
    Low = 0,
    High = 5,
    UltraHigh = 6,
};
std::string eNetSpeed_ToString(eNetSpeed value);
eNetSpeed eNetSpeed_FromString(const std::string& text);

// The generation of a module's electronics.
enum class eGeneration : std::int32_t {
    Classic = 0,
    Kavro2_A = 1,
    Kavro2_B = 2,
    Kavro3 = 3,
};
std::string eGeneration_ToString(eGeneration value);
eGeneration eGeneration_FromString(const std::string& text);

// Units of measure a module can report in.
enum class eUOM : std::int32_t {
    millimeters = 1,
    inches = 2,
    mils = 4,
};
std::string eUOM_ToString(eUOM value);
eUOM eUOM_FromString(const std::string& text);

// The sampling rate of a dynamic run (Dynamic2Custom: an interval of your own).
enum class eDynamicRate : std::int32_t {
    Rate4K = 0,
    Rate2K = 1,
    Rate1K = 2,
    Dynamic2Custom = 3,
};
std::string eDynamicRate_ToString(eDynamicRate value);
eDynamicRate eDynamicRate_FromString(const std::string& text);

// Where a network's dynamic run is: prepared, reading, decoding the last packets, complete.
enum class eDynamicState : std::int32_t {
    Inactive = 0,
    Prepared = 1,
    Reading = 2,
    Processing = 3,
    Complete = 4,
};
std::string eDynamicState_ToString(eDynamicState value);
eDynamicState eDynamicState_FromString(const std::string& text);

// What paces a dynamic run: the controller (Normal) or a master module (External).
enum class eDynamicMode : std::int32_t {
    Normal = 0,
    LinkedMaster = 1,
    LinkedSlave = 2,
    External = 3,
};
std::string eDynamicMode_ToString(eDynamicMode value);
eDynamicMode eDynamicMode_FromString(const std::string& text);

// Where a difference run is, for a network or a module.
enum class eDifferenceModeStatus : std::int32_t {
    None = 0,
    Started = 2,
    Stopped = 3,
    Reset = 5,
};
std::string eDifferenceModeStatus_ToString(eDifferenceModeStatus value);
eDifferenceModeStatus eDifferenceModeStatus_FromString(const std::string& text);

// How a module records in buffered mode: at its own interval (Sync) or per trigger (Sample).
enum class eBufferedMode : std::int32_t {
    None = 0,
    Sync = 1,
    Sample = 2,
};
std::string eBufferedMode_ToString(eBufferedMode value);
eBufferedMode eBufferedMode_FromString(const std::string& text);

// Where a buffered run is, for a network or a module.
enum class eBufferedModeStatus : std::int32_t {
    None = 0,
    Reading = 1,
    Finished = 2,
};
std::string eBufferedModeStatus_ToString(eBufferedModeStatus value);
eBufferedModeStatus eBufferedModeStatus_FromString(const std::string& text);

// A probe's resolution in bits.
enum class eResolution : std::int32_t {
    resNone = 0,
    res14Bit = 14,
    res16Bit = 16,
    res18Bit = 18,
};
std::string eResolution_ToString(eResolution value);
eResolution eResolution_FromString(const std::string& text);

// How an air gauge turns its display.
enum class eAGM_RotateDisplay : std::int32_t {
    RotateNone = 0,
    Rotate90 = 1,
    Rotate180 = 2,
    Rotate270 = 3,
    RotateAuto = 4,
};
std::string eAGM_RotateDisplay_ToString(eAGM_RotateDisplay value);
eAGM_RotateDisplay eAGM_RotateDisplay_FromString(const std::string& text);

// Whether an air gauge reads from zero to its scale or absolute.
enum class eAGM_MeasurementMode : std::int32_t {
    ZeroToScale = 0,
    Absolute = 1,
};
std::string eAGM_MeasurementMode_ToString(eAGM_MeasurementMode value);
eAGM_MeasurementMode eAGM_MeasurementMode_FromString(const std::string& text);

// Units an air gauge reports in.
enum class eAGM_UOM : std::int32_t {
    mm = 0,
    inches = 1,
    mils = 2,
};
std::string eAGM_UOM_ToString(eAGM_UOM value);
eAGM_UOM eAGM_UOM_FromString(const std::string& text);

// How many readings a probe averages into one.
enum class eAveraging : std::int32_t {
    averageNone = 0,
    average1 = 1,
    average2 = 2,
    average4 = 4,
    average8 = 8,
    average16 = 16,
    average32 = 32,
    average64 = 64,
    average128 = 128,
    average256 = 256,
};
std::string eAveraging_ToString(eAveraging value);
eAveraging eAveraging_FromString(const std::string& text);

// The line rate of an interface module's serial side.
enum class eInterfaceBaudRate : std::int32_t {
    BaudDefault = 0,
    Baud19200 = 2,
    Baud28800 = 3,
    Baud38400 = 4,
    Baud57600 = 5,
    Baud115200 = 6,
    Baud230400 = 7,
    Baud460800 = 8,
};
std::string eInterfaceBaudRate_ToString(eInterfaceBaudRate value);
eInterfaceBaudRate eInterfaceBaudRate_FromString(const std::string& text);

// When a digital input module takes its reading.
enum class eDimReadMode : std::int32_t {
    ReadContinuous = 0,
    ReadOnSwitch = 1,
    ReadOnSample = 2,
};
std::string eDimReadMode_ToString(eDimReadMode value);
eDimReadMode eDimReadMode_FromString(const std::string& text);

// What an encoder does with its reference mark: learn it or recall it.
enum class eReferenceMarkMode : std::int32_t {
    None = 0,
    Learn = 1,
    Recall = 2,
};
std::string eReferenceMarkMode_ToString(eReferenceMarkMode value);
eReferenceMarkMode eReferenceMarkMode_FromString(const std::string& text);

// How an encoder is wired to an encoder input module.
enum class eEncoderInterfaceType : std::int32_t {
    Differential = 0,
    SingleEnded = 1,
};
std::string eEncoderInterfaceType_ToString(eEncoderInterfaceType value);
eEncoderInterfaceType eEncoderInterfaceType_FromString(const std::string& text);

// How an encoder input module counts the quadrature edges.
enum class eQuadratureMode : std::int32_t {
    quadX1 = 0,
    quadX2 = 1,
    quadX4 = 2,
    CountAB = 3,
    CountDIR = 4,
};
std::string eQuadratureMode_ToString(eQuadratureMode value);
eQuadratureMode eQuadratureMode_FromString(const std::string& text);

// What an encoder does when it passes its reference mark.
enum class eRefAction : std::int32_t {
    None = 0,
    ContinuousReset = 1,
    ContinuousPreset = 2,
    Reset = 3,
    Preset = 4,
};
std::string eRefAction_ToString(eRefAction value);
eRefAction eRefAction_FromString(const std::string& text);

// How a DIOM2 master starts a dynamic run: at once, after a hold-off, or on an encoder reference action.
enum class eDynamicMasterMode : std::int32_t {
    Instant = 0,
    HoldOff = 1,
    Refaction_Reset = 5,
    Refaction_Preset = 6,
};
std::string eDynamicMasterMode_ToString(eDynamicMasterMode value);
eDynamicMasterMode eDynamicMasterMode_FromString(const std::string& text);

// The counting direction of an encoder.
enum class eDirection : std::int32_t {
    Normal = 0,
    Reversed = 1,
};
std::string eDirection_ToString(eDirection value);
eDirection eDirection_FromString(const std::string& text);

// Whether a DIOM pin is an input or an output.
enum class eDiomIoPinConfig : std::int32_t {
    output = 0,
    input = 1,
};
std::string eDiomIoPinConfig_ToString(eDiomIoPinConfig value);
eDiomIoPinConfig eDiomIoPinConfig_FromString(const std::string& text);

// The level of a DIOM pin.
enum class eDiomIoPinState : std::int32_t {
    low = 0,
    high = 1,
};
std::string eDiomIoPinState_ToString(eDiomIoPinState value);
eDiomIoPinState eDiomIoPinState_FromString(const std::string& text);

// How long a DIOM input must hold a level before it counts.
enum class eDiomInputDebounceTime : std::int32_t {
    None = 0,
    Time5ms = 5,
    Time10ms = 10,
    Time25ms = 25,
    Time50ms = 50,
};
std::string eDiomInputDebounceTime_ToString(eDiomInputDebounceTime value);
eDiomInputDebounceTime eDiomInputDebounceTime_FromString(const std::string& text);

// The electrical kind of a DIO2's outputs.
enum class eDIOOutputMode : std::int32_t {
    NPN = 0,
    PNP = 1,
    TTL = 2,
};
std::string eDIOOutputMode_ToString(eDIOOutputMode value);
eDIOOutputMode eDIOOutputMode_FromString(const std::string& text);

// The form of a wireless tool's multi-channel reading (plain or tagged, float or fixed point).
enum class eRead3_ControlCode : std::int32_t {
    Invalid = 0,
    NormalFloat = 1,
    NormalInt7DPs = 2,
    TaggedFloat = 3,
    TaggedInt7DPs = 4,
};
std::string eRead3_ControlCode_ToString(eRead3_ControlCode value);
eRead3_ControlCode eRead3_ControlCode_FromString(const std::string& text);

// The unit a wireless tool's reading is given in.
enum class eRead3_UOM : std::int32_t {
    Default = 0,
    Inches = 1,
    Mils = 2,
};
std::string eRead3_UOM_ToString(eRead3_UOM value);
eRead3_UOM eRead3_UOM_FromString(const std::string& text);

// Channels of a wireless tool's multi-channel read, one bit each.
enum class eChannelMask : std::int32_t {
    None = 0,
    Ch2 = 2,
    Ch3 = 4,
    Ch4 = 8,
    Ch5 = 16,
    Ch6 = 32,
    Ch7 = 64,
    Ch8 = 128,
    Ch9 = 256,
    Ch10 = 512,
    Ch11 = 1024,
    Ch12 = 2048,
    ChALL = 4095,
};
std::string eChannelMask_ToString(eChannelMask value);
eChannelMask eChannelMask_FromString(const std::string& text);

// The radio connection of a wireless hand tool.
enum class eWCM_DeviceStatus : std::int32_t {
    Unknown = 0,
    NotConnected = 1,
    Connecting = 2,
    Connected = 3,
    Error = 4,
};
std::string eWCM_DeviceStatus_ToString(eWCM_DeviceStatus value);
eWCM_DeviceStatus eWCM_DeviceStatus_FromString(const std::string& text);

// The kind of hand tool in a wireless concentrator's slot.
enum class eWCM_DeviceType : std::int32_t {
    None = 0,
    WHT = 1,
    WHT_M = 2,
    WMM_A = 3,
};
std::string eWCM_DeviceType_ToString(eWCM_DeviceType value);
eWCM_DeviceType eWCM_DeviceType_FromString(const std::string& text);

// Whether a hand tool reads absolute, from zero or from a preset.
enum class eWCM_DevicePZAMode : std::int32_t {
    Absolute = 65,
    Zero = 90,
    Preset = 80,
};
std::string eWCM_DevicePZAMode_ToString(eWCM_DevicePZAMode value);
eWCM_DevicePZAMode eWCM_DevicePZAMode_FromString(const std::string& text);

// What a hand tool sends: the reading, its maximum, minimum or spread, tagged or not.
enum class eWCM_DeviceOutputMode : std::int32_t {
    Normal = 0,
    Max = 1,
    Min = 2,
    Diff = 3,
    TaggedLast = 4,
    TaggedMax = 5,
    TaggedMin = 6,
    TaggedDiff = 7,
};
std::string eWCM_DeviceOutputMode_ToString(eWCM_DeviceOutputMode value);
eWCM_DeviceOutputMode eWCM_DeviceOutputMode_FromString(const std::string& text);

// Where a hand tool's reading lies against its tolerance limits.
enum class eWCM_DeviceLimitState : std::int32_t {
    Ok = 0,
    Invalid = 1,
    Lower = 2,
    Upper = 3,
    WarnUpper = 4,
    WarnLower = 5,
};
std::string eWCM_DeviceLimitState_ToString(eWCM_DeviceLimitState value);
eWCM_DeviceLimitState eWCM_DeviceLimitState_FromString(const std::string& text);

// How a hand tool turns its display.
enum class eWHT_DisplayOrientation : std::int32_t {
    Standard = 0,
    Clockwise1 = 1,
    Clockwise2 = 2,
    Clockwise3 = 3,
    AutoRotate = 4,
};
std::string eWHT_DisplayOrientation_ToString(eWHT_DisplayOrientation value);
eWHT_DisplayOrientation eWHT_DisplayOrientation_FromString(const std::string& text);

// The Bluetooth power class of a multi-channel hand tool.
enum class eWHT_BluetoothClass : std::int32_t {
    Bluetooth_Class_1 = 1,
    Bluetooth_Class_2 = 2,
    Bluetooth_Class_3 = 3,
};
std::string eWHT_BluetoothClass_ToString(eWHT_BluetoothClass value);
eWHT_BluetoothClass eWHT_BluetoothClass_FromString(const std::string& text);

// The layout of a hand tool's display.
enum class eWHT_DisplayLayout : std::int32_t {
    Standard = 0,
    Large = 1,
};
std::string eWHT_DisplayLayout_ToString(eWHT_DisplayLayout value);
eWHT_DisplayLayout eWHT_DisplayLayout_FromString(const std::string& text);

// What the large figures of a hand tool's display show.
enum class eWHT_DisplayLargeSource : std::int32_t {
    Current = 0,
    Computed = 1,
};
std::string eWHT_DisplayLargeSource_ToString(eWHT_DisplayLargeSource value);
eWHT_DisplayLargeSource eWHT_DisplayLargeSource_FromString(const std::string& text);

// When a hand tool indicates its limits: never, within them or outside them.
enum class eWHT_LimitStatus : std::int32_t {
    None = 0,
    Within = 1,
    Outside = 2,
};
std::string eWHT_LimitStatus_ToString(eWHT_LimitStatus value);
eWHT_LimitStatus eWHT_LimitStatus_FromString(const std::string& text);

// What a hand tool measures: the reading, its maximum, minimum or spread, tagged or not.
enum class eWHT_OperationMode : std::int32_t {
    Normal = 0,
    Maximum = 1,
    Minimum = 2,
    Difference = 3,
    Normal_LastTagged = 4,
    Max_Tagged = 5,
    Min_Tagged = 6,
    Diff_Tagged = 7,
};
std::string eWHT_OperationMode_ToString(eWHT_OperationMode value);
eWHT_OperationMode eWHT_OperationMode_FromString(const std::string& text);

// Whether a single-channel hand tool reads absolute, from zero or from a preset.
enum class eWHT_MeasurementMode : std::int32_t {
    Normal = 65,
    Zero = 90,
    Preset = 80,
};
std::string eWHT_MeasurementMode_ToString(eWHT_MeasurementMode value);
eWHT_MeasurementMode eWHT_MeasurementMode_FromString(const std::string& text);

// What a button of a single-channel hand tool does.
enum class eWHT_ButtonFunction : std::int32_t {
    Tag = 0,
    Zero = 1,
    Preset = 2,
};
std::string eWHT_ButtonFunction_ToString(eWHT_ButtonFunction value);
eWHT_ButtonFunction eWHT_ButtonFunction_FromString(const std::string& text);

// What the power-off button of a hand tool does.
enum class eWHT_PowerOffButtonOptions : std::int32_t {
    NoButtonPowerOff = 0,
    Button1 = 1,
    Button2 = 2,
    EitherButton = 3,
    BothButtons = 4,
};
std::string eWHT_PowerOffButtonOptions_ToString(eWHT_PowerOffButtonOptions value);
eWHT_PowerOffButtonOptions eWHT_PowerOffButtonOptions_FromString(const std::string& text);

// How fast a hand tool beeps outside its limits.
enum class eWHT_LimitBuzzerRate : std::int32_t {
    ThreeFastOnFail = 0,
    OnceSlowOnFail = 1,
};
std::string eWHT_LimitBuzzerRate_ToString(eWHT_LimitBuzzerRate value);
eWHT_LimitBuzzerRate eWHT_LimitBuzzerRate_FromString(const std::string& text);

// Which LED a hand tool lights for a limit.
enum class eWHT_LimitLED : std::int32_t {
    None = 0,
    Green = 1,
    Red = 2,
    Both = 3,
};
std::string eWHT_LimitLED_ToString(eWHT_LimitLED value);
eWHT_LimitLED eWHT_LimitLED_FromString(const std::string& text);

// What a multi-channel hand tool shows: charts or text.
enum class eWHT_M_DisplayMode : std::int32_t {
    Charts = 0,
    Text = 1,
};
std::string eWHT_M_DisplayMode_ToString(eWHT_M_DisplayMode value);
eWHT_M_DisplayMode eWHT_M_DisplayMode_FromString(const std::string& text);

// What a button of a multi-channel hand tool does.
enum class eWHT_M_ButtonFunction : std::int32_t {
    None = 0,
    Tag = 1,
    PowerOff = 2,
};
std::string eWHT_M_ButtonFunction_ToString(eWHT_M_ButtonFunction value);
eWHT_M_ButtonFunction eWHT_M_ButtonFunction_FromString(const std::string& text);

// What an LED of a multi-channel hand tool shows.
enum class eWHT_M_LEDFunction : std::int32_t {
    Off = 0,
    Streaming = 1,
    RangeErr = 2,
    AllOk = 3,
    LowBatt = 4,
};
std::string eWHT_M_LEDFunction_ToString(eWHT_M_LEDFunction value);
eWHT_M_LEDFunction eWHT_M_LEDFunction_FromString(const std::string& text);

// Whether a multi-channel hand tool beeps when a reading is tagged.
enum class eWHT_M_BuzzerFunction : std::int32_t {
    Off = 0,
    TagTaken = 1,
};
std::string eWHT_M_BuzzerFunction_ToString(eWHT_M_BuzzerFunction value);
eWHT_M_BuzzerFunction eWHT_M_BuzzerFunction_FromString(const std::string& text);

// The analogue filter of a laser sensor.
enum class eFilter : std::int32_t {
    Filter20kHz = 0,
    Filter4kHz = 1,
    Filter1kHz = 2,
    Filter200Hz = 3,
    Filter25Hz = 4,
    Filter1Hz = 5,
    Filter0Hz1 = 6,
};
std::string eFilter_ToString(eFilter value);
eFilter eFilter_FromString(const std::string& text);

// How a module tracks a difference run: word-sized (Mode1), full 32-bit (Mode2) or not at all.
enum class eDifferenceMode : std::int32_t {
    ModeNone = 0,
    Mode1 = 1,
    Mode2 = 2,
};
std::string eDifferenceMode_ToString(eDifferenceMode value);
eDifferenceMode eDifferenceMode_FromString(const std::string& text);

// The measuring rate of a laser sensor.
enum class eMeasuringRate : std::int32_t {
    rateNone = 0,
    rate250Hz = 1,
    rate500Hz = 2,
    rate1kHz = 3,
    rate2kHz = 4,
    rate4kHz = 5,
    rate8kHz = 6,
    rate10kHz = 7,
};
std::string eMeasuringRate_ToString(eMeasuringRate value);
eMeasuringRate eMeasuringRate_FromString(const std::string& text);

}  // namespace KavroLibrary
