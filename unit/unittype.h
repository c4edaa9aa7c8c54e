#pragma once

#include <QtGlobal>

#include <array>
#include <cstdint>
#include <string_view>

/// The supported models. Connect tries them in the order of these values.
enum UnitType : int {
    UNIT_HB4 = 0,
    UNIT_HB2 = 1,
    UNIT_HBX = 2,
    UNIT_ZEQ_PRO = 3,
    UNIT_ZEQ_IO = 4,
    UNIT_PANEL2V = 5,
    UNIT_PANEL4V = 6,
    UNIT_DSK10 = 7,
    UNIT_DSK6 = 8,
    UNIT_LMB1 = 9,
    UNIT_LMB2 = 10,
    UNIT_PLT70 = 11,
    UNIT_TRK300_LEFT = 12,
    UNIT_TRK300_RIGHT = 13,
    UNIT_TRK900_LEFT = 14,
    UNIT_TRK900_RIGHT = 15,
    UNIT_PLT65 = 16,
};

/// USB vendor ID of every unit.
inline constexpr std::uint16_t unitVendorId = 0x3A5D;

/// Where the two fields of a 64-byte report are.
struct ReportLayout
{
    std::uint8_t headerOffset;  ///< 0-based index, in the 64 payload bytes, of the command or status byte
    std::uint8_t payloadOffset; ///< index, in the 65-byte output report, of the first of 60 data bytes
};

inline constexpr ReportLayout layoutA{0, 5};  ///< older family: header first, then data
inline constexpr ReportLayout layoutB{60, 1}; ///< players: data first, header in the last four bytes

/// HID product strings; nullptr after the last one.
using ProductNames = std::array<const wchar_t*, 2>;

/// The fixed facts about one model.
struct UnitModel
{
    UnitType type;
    std::uint16_t productId;  ///< USB product ID
    std::uint8_t versionByte; ///< 0-based index of the firmware version in a 64-byte input report
    ReportLayout layout;
    const char* catalogueStem;    ///< beginning of the model's keys in the version catalogue
    ProductNames productNames;    ///< the names that its units may report
    const char* connectedMessage; ///< shown on connection; translated in the context "MainWindow"
    const char* pairMessage;      ///< the same for a deck opened with its twin; nullptr: not a deck
};

/// One line per model; the index is the UnitType.
/// Intentional: the blank in "TRK900 RIGHT", the slashes of sibling models, the stems that models share, and
/// the two models without a product name: they are found only under another model's.
// clang-format off
inline constexpr auto unitModels = std::to_array<UnitModel>({
    {UNIT_HB4,          0x0A21, 63, layoutA, "HB4",    {L"HB4"},              QT_TRANSLATE_NOOP("MainWindow", "HB4 connected"),          nullptr},
    {UNIT_HB2,          0x0A22, 63, layoutA, "HB2",    {L"HB2"},              QT_TRANSLATE_NOOP("MainWindow", "HB2 connected"),          nullptr},
    {UNIT_HBX,          0x0A1F, 63, layoutA, "HBX",    {L"HBX"},              QT_TRANSLATE_NOOP("MainWindow", "HBX connected"),          nullptr},
    {UNIT_ZEQ_PRO,      0x0B06, 63, layoutA, "ZEQPRO", {},                    QT_TRANSLATE_NOOP("MainWindow", "ZEQ PRO connected"),      nullptr},
    {UNIT_ZEQ_IO,       0x0B10, 63, layoutA, "ZEQPRO", {},                    QT_TRANSLATE_NOOP("MainWindow", "ZEQ IO connected"),       nullptr},
    {UNIT_PANEL2V,      0x0A24, 62, layoutA, "PANEL",  {L"PANEL"},            QT_TRANSLATE_NOOP("MainWindow", "PANEL2V connected"),      nullptr},
    {UNIT_PANEL4V,      0x0A23, 62, layoutA, "PANEL",  {L"PANEL4"},           QT_TRANSLATE_NOOP("MainWindow", "PANEL4V connected"),      nullptr},
    {UNIT_DSK10,        0x2C16, 62, layoutA, "DSK10",  {L"DSK-10", L"DSK-9"}, QT_TRANSLATE_NOOP("MainWindow", "DSK10/DSK9 connected"),   nullptr},
    {UNIT_DSK6,         0x2C17, 62, layoutA, "DSK10",  {L"DSK-6", L"DSK-5"},  QT_TRANSLATE_NOOP("MainWindow", "DSK6/DSK5 connected"),    nullptr},
    {UNIT_LMB1,         0x0D01, 63, layoutA, "LMB1",   {L"LMB-1"},            QT_TRANSLATE_NOOP("MainWindow", "LMB-1 connected"),        nullptr},
    {UNIT_LMB2,         0x0D02, 63, layoutA, "LMB2",   {L"LMB-2"},            QT_TRANSLATE_NOOP("MainWindow", "LMB-2 connected"),        nullptr},
    {UNIT_PLT70,        0x2C15, 63, layoutB, "PLT70",  {L"PLT-70"},           QT_TRANSLATE_NOOP("MainWindow", "PLT70 connected"),        nullptr},
    {UNIT_TRK300_LEFT,  0x2A41, 63, layoutB, "PLT70",  {L"TRK-300 L"},        QT_TRANSLATE_NOOP("MainWindow", "TRK300_LEFT connected"),  QT_TRANSLATE_NOOP("MainWindow", "TRK300 connected")},
    {UNIT_TRK300_RIGHT, 0x2A40, 63, layoutB, "PLT70",  {L"TRK-300 R"},        QT_TRANSLATE_NOOP("MainWindow", "TRK300_RIGHT connected"), QT_TRANSLATE_NOOP("MainWindow", "TRK300 connected")},
    {UNIT_TRK900_LEFT,  0x2B55, 63, layoutB, "PLT70",  {L"TRK-900 L"},        QT_TRANSLATE_NOOP("MainWindow", "TRK900_LEFT connected"),  QT_TRANSLATE_NOOP("MainWindow", "TRK900 connected")},
    {UNIT_TRK900_RIGHT, 0x2B54, 63, layoutB, "PLT70",  {L"TRK-900 R"},        QT_TRANSLATE_NOOP("MainWindow", "TRK900 RIGHT connected"), QT_TRANSLATE_NOOP("MainWindow", "TRK900 connected")},
    {UNIT_PLT65,        0x2C01, 63, layoutB, "PLT70",  {L"PLT-65"},           QT_TRANSLATE_NOOP("MainWindow", "PLT65 connected"),        nullptr},
});
// clang-format on

/// The model's line, or nullptr if the value has none.
[[nodiscard]] constexpr const UnitModel* findUnitModel(UnitType type)
{
    const auto index = static_cast<std::size_t>(type); // a negative value becomes a huge index
    return index < unitModels.size() ? &unitModels[index] : nullptr;
}

/// Whether any model has this HID product string, which makes a device acceptable. Intentional: whatever its
/// product ID is.
[[nodiscard]] constexpr bool isProductName(std::wstring_view name)
{
    for (const UnitModel& model : unitModels)
        for (const wchar_t* const known : model.productNames)
            if (known != nullptr && name == known)
                return true;
    return false;
}

static_assert(
    [] {
        for (int value = 0; value < static_cast<int>(unitModels.size()); ++value)
            if (unitModels[static_cast<std::size_t>(value)].type != value)
                return false;
        return true;
    }(),
    "the table is indexed by UnitType");
