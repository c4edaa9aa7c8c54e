#pragma once

#include "unit/unittype.h"

#include <QByteArray>
#include <QList>
#include <QMetaType>

#include <array>
#include <string_view>

Q_DECLARE_METATYPE(UnitType)

/// How users, servers and units identify each model: the tests' only list, written independently of the
/// program's own. Tests that cover all models iterate over this list; a new model takes one line.
namespace models {

/// The report layout of each family of models.
inline constexpr ReportLayout older{0, 5};
inline constexpr ReportLayout players{60, 1};

struct Model
{
    UnitType type;
    const char* option; ///< its name in the options of a virtual unit
    int productId;
    std::array<const char*, 2> names; ///< its USB product strings: none, one, or two (sibling models)
    int versionByte;                  ///< index of the firmware version in a 64-byte input report
    ReportLayout layout;
    const char* stem;      ///< prefix of its keys in the catalogue
    const char* connected; ///< the box's text
    const char* pair;      ///< the same for a deck and its twin; nullptr: not a deck

    /// The product string of a virtual unit. Two mixers have none of their own, and use the first model's.
    [[nodiscard]] constexpr const char* product() const { return names[0] != nullptr ? names[0] : "HB4"; }

    [[nodiscard]] constexpr bool isDeck() const { return pair != nullptr; }

    /// Index, in the 65-byte output report, of the command, and of the first of 60 data bytes.
    [[nodiscard]] constexpr int command() const { return layout.headerOffset + 1; }
    [[nodiscard]] constexpr int data() const { return layout.payloadOffset; }
};

// clang-format off
inline constexpr auto all = std::to_array<Model>({
    {UNIT_HB4,          "hb4",          0x0A21, {"HB4"},             63, older,   "HB4",    "HB4 connected",          nullptr},
    {UNIT_HB2,          "hb2",          0x0A22, {"HB2"},             63, older,   "HB2",    "HB2 connected",          nullptr},
    {UNIT_HBX,          "hbx",          0x0A1F, {"HBX"},             63, older,   "HBX",    "HBX connected",          nullptr},
    {UNIT_ZEQ_PRO,      "zeq-pro",      0x0B06, {},                  63, older,   "ZEQPRO", "ZEQ PRO connected",      nullptr},
    {UNIT_ZEQ_IO,       "zeq-io",       0x0B10, {},                  63, older,   "ZEQPRO", "ZEQ IO connected",       nullptr},
    {UNIT_PANEL2V,      "panel2v",      0x0A24, {"PANEL"},           62, older,   "PANEL",  "PANEL2V connected",      nullptr},
    {UNIT_PANEL4V,      "panel4v",      0x0A23, {"PANEL4"},          62, older,   "PANEL",  "PANEL4V connected",      nullptr},
    {UNIT_DSK10,        "dsk10",        0x2C16, {"DSK-10", "DSK-9"}, 62, older,   "DSK10",  "DSK10/DSK9 connected",   nullptr},
    {UNIT_DSK6,         "dsk6",         0x2C17, {"DSK-6", "DSK-5"},  62, older,   "DSK10",  "DSK6/DSK5 connected",    nullptr},
    {UNIT_LMB1,         "lmb1",         0x0D01, {"LMB-1"},           63, older,   "LMB1",   "LMB-1 connected",        nullptr},
    {UNIT_LMB2,         "lmb2",         0x0D02, {"LMB-2"},           63, older,   "LMB2",   "LMB-2 connected",        nullptr},
    {UNIT_PLT70,        "plt70",        0x2C15, {"PLT-70"},          63, players, "PLT70",  "PLT70 connected",        nullptr},
    {UNIT_TRK300_LEFT,  "trk300-left",  0x2A41, {"TRK-300 L"},       63, players, "PLT70",  "TRK300_LEFT connected",  "TRK300 connected"},
    {UNIT_TRK300_RIGHT, "trk300-right", 0x2A40, {"TRK-300 R"},       63, players, "PLT70",  "TRK300_RIGHT connected", "TRK300 connected"},
    {UNIT_TRK900_LEFT,  "trk900-left",  0x2B55, {"TRK-900 L"},       63, players, "PLT70",  "TRK900_LEFT connected",  "TRK900 connected"},
    {UNIT_TRK900_RIGHT, "trk900-right", 0x2B54, {"TRK-900 R"},       63, players, "PLT70",  "TRK900 RIGHT connected", "TRK900 connected"},
    {UNIT_PLT65,        "plt65",        0x2C01, {"PLT-65"},          63, players, "PLT70",  "PLT65 connected",        nullptr},
});
// clang-format on

static_assert(all.size() == unitModels.size(), "every model of the program has its line here");
static_assert(
    [] {
        for (std::size_t i = 0; i < all.size(); ++i)
            if (all[i].type != static_cast<UnitType>(i))
                return false;
        return true;
    }(),
    "the list is indexed by UnitType");

inline constexpr int count = static_cast<int>(all.size()); ///< and the first number past the models

[[nodiscard]] constexpr const Model& of(int type)
{
    return all.at(static_cast<std::size_t>(type));
}

inline constexpr const Model& hb4 = of(UNIT_HB4);
inline constexpr const Model& plt70 = of(UNIT_PLT70);

/// What one press of Connect connects: a single unit, or a deck and its twin.
struct Connection
{
    QByteArray name; ///< "hb4", "trk300"
    QList<Model> units;

    [[nodiscard]] const char* stem() const { return units.first().stem; }
    [[nodiscard]] const char* message() const
    {
        return units.size() == 1 ? units.first().connected : units.first().pair;
    }
};

inline constexpr std::string_view leftSide = "-left";

/// A left deck's twin is the next model.
[[nodiscard]] constexpr bool isLeftDeck(const Model& model)
{
    return model.isDeck() && std::string_view(model.option).ends_with(leftSide);
}

static_assert(
    [] {
        for (const Model& model : all)
            if (model.isDeck() &&
                isLeftDeck(model) == isLeftDeck(of(model.type + (isLeftDeck(model) ? 1 : -1))))
                return false;
        return true;
    }(),
    "every deck is in a connection");

/// All connections, single units first: every model is in exactly one.
[[nodiscard]] inline QList<Connection> connections()
{
    QList<Connection> found;
    for (const Model& model : all)
        if (!model.isDeck())
            found += Connection{model.option, {model}};
    for (const Model& model : all)
        if (isLeftDeck(model))
            found += Connection{QByteArray(model.option).chopped(static_cast<int>(leftSide.size())),
                                {model, of(model.type + 1)}};
    return found;
}

[[nodiscard]] inline Connection connectionOf(const QByteArray& name)
{
    for (const Connection& connection : connections())
        if (connection.name == name)
            return connection;
    qFatal("no model %s", name.constData());
}

} // namespace models
