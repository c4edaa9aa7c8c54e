#pragma once

#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/support/models.h"
#include "tests/support/testimage.h"
#include "tests/support/texts.h"

/// The steps of an update that several tests share. The unit is at version 2.3, the server offers 2.8.
namespace scenario {

inline constexpr int unitVersion = 23;
inline constexpr const char* offeredVersion = "28";
inline constexpr int longOnItsWay = 6'000'000; ///< an image of a hundred seconds at least: nobody misses it
inline constexpr const char* silentInstallation = ",fault=silent-installation";
/// For http_proxy: a port at which nobody ever listens.
inline constexpr const char* deadProxy = "http://127.0.0.1:1";
inline constexpr const char* changeLog = "- Tempo range kept over a restart.\n- Brighter pads.\n";

/// What a virtual unit of this model is told: its image and its journal go into the program's scratch
/// directory, named after `label`; `more` are further options (",fault=...").
[[nodiscard]] QString unitOptions(const Program& program, const QString& model, const QString& more = {},
                                  const QString& label = "unit");
/// The options of what is connected together, each unit labelled by its own model.
[[nodiscard]] QStringList options(const Program& program, const models::Connection& connection);
[[nodiscard]] QByteArray receivedImage(const Program& program, const QString& label = "unit");
[[nodiscard]] QStringList journal(const Program& program, const QString& label = "unit");
/// The last line of it: "closed" once the unit is given back; also of one that was never opened.
[[nodiscard]] QString lastWord(const Program& program);

/// The journal of a unit that got this image in the proper way and was closed when the program ended.
[[nodiscard]] QStringList faultlessJournal(const QByteArray& image);

/// The server offers the program this image for what is connected together.
Outcome offer(Program& program, UpdateServer& server, const models::Connection& connection,
              const QByteArray& image);

/// Starts the program with a unit HB4 plugged in; `more` as for unitOptions().
Outcome startWithUnit(Program& program, const QString& proxy, const QString& more = {});

/// Connect, the box with this message, Ok. Without a message: that of a unit HB4.
Outcome connectUnit(Program& program, const QString& message = models::hb4.connected);
/// The offer of 2.8 to a unit that shows as `version`, Yes, and the download until Update Device can be
/// pressed.
Outcome acceptOffer(Program& program, const QString& version = "2.3");
/// Any offer to a unit HB4, and No.
Outcome declineOffer(Program& program);
/// Connect, the offer, Yes, the download, likewise.
Outcome connectAndDownload(Program& program, const QString& message = models::hb4.connected);
/// The same, and Update Device; and then the transfer, the installation under way. The server offers an image
/// for HB4.
/// @{
Outcome pressUpdate(Program& program);
Outcome streamImage(Program& program);
Outcome install(Program& program);
/// @}
/// Starts the program with a unit HB4 plugged in and connects it; a name server that never answers is asked.
Outcome lookHostUp(Program& program);
/// Connects the unit, asks for its log and waits until `line` stands in its journal.
Outcome fetchLog(Program& program, const QString& line);
/// The transfer under way, the installation under way: behind the press of Update Device.
/// @{
Outcome awaitStream(Program& program);
Outcome awaitInstallation(Program& program);
/// @}
/// The finished installation as it is shown, its box, Ok, and the program's end.
Outcome seeFinished(Program& program);

/// Closes the window; the program ends at once, and well.
Outcome leave(Program& program);

/// What the offer of `offeredVersion` to a unit that shows as `version` reads.
[[nodiscard]] QString offerText(const QString& version = "2.3");

/// The box that ends a successful update.
[[nodiscard]] BoxText finishedBox();
/// What all network problems read like.
[[nodiscard]] BoxText networkProblemBox();

} // namespace scenario
