#pragma once

#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/support/models.h"
#include "tests/support/testimage.h"
#include "tests/support/texts.h"

#include <QMetaType>

#include <functional>

class SilentServer;

/// Update steps shared by several tests. The unit is at version 2.3, the server offers 2.8.
namespace scenario {

inline constexpr int unitVersion = 23;
inline constexpr const char* offeredVersion = "28";
inline constexpr int longOnItsWay = 6'000'000; ///< an image that takes 100 s or more: no test misses it
inline constexpr const char* silentInstallation = ",fault=silent-installation";
/// For http_proxy: a port on which nothing ever listens.
inline constexpr const char* deadProxy = "http://127.0.0.1:1";
inline constexpr const char* changeLog = "- Tempo range kept over a restart.\n- Brighter pads.\n";

/// What a row of a test does with a program.
using Deed = std::function<Outcome(Program&)>;

/// The options of a virtual unit of this model. Its image and journal are written to the program's scratch
/// directory and named after `label`; `more` holds further options (",fault=...").
[[nodiscard]] QString unitOptions(const Program& program, const QString& model, const QString& more = {},
                                  const QString& label = "unit");
/// The options of the units that are connected together, each labelled with its model.
[[nodiscard]] QStringList options(const Program& program, const models::Connection& connection);
[[nodiscard]] QByteArray receivedImage(const Program& program, const QString& label = "unit");
[[nodiscard]] QStringList journal(const Program& program, const QString& label = "unit");
/// The journal's last line: "closed" once the unit is released, even if it was never opened.
[[nodiscard]] QString lastWord(const Program& program);

/// Whether the unit was given back, or never opened.
[[nodiscard]] Outcome seeGivenBack(const Program& program);

/// The journal of a unit that received this image correctly and was closed when the program ended.
[[nodiscard]] QStringList faultlessJournal(const QByteArray& image);

/// Publishes this image for an HB4.
Outcome publish(UpdateServer& server, const QByteArray& image, const QString& version = offeredVersion);

/// Makes the server offer this image to the program for the units that are connected together.
Outcome offer(Program& program, UpdateServer& server, const models::Connection& connection,
              const QByteArray& image);

/// Starts the program with a unit HB4 plugged in; `more` as for unitOptions().
Outcome startWithUnit(Program& program, const QString& proxy, const QString& more = {});

/// Presses Connect, waits for the box with this message and presses Ok. The default message is that of an
/// HB4.
Outcome connectUnit(Program& program, const QString& message = models::hb4.connected);
/// Presses Connect, waits for the box that says that no unit was found, and closes it with Ok.
Outcome connectInVain(Program& program);
/// Starts the program with a unit HB4 plugged in, connects it, and waits until the server has been asked.
Outcome askSilentServer(Program& program, const SilentServer& server);
/// Waits for the offer of 2.8 to a unit shown as `version`, presses Yes, and waits for the download until
/// Update Device is enabled.
Outcome acceptOffer(Program& program, const QString& version = "2.3");
/// Connects an HB4 and waits for any offer; the others then press No, or Yes.
/// @{
Outcome seeOffer(Program& program);
Outcome declineOffer(Program& program);
Outcome acceptAnyOffer(Program& program);
/// @}
/// Connects the unit, accepts the offer and waits for the download, likewise.
Outcome connectAndDownload(Program& program, const QString& message = models::hb4.connected);
/// Like connectAndDownload(), then press Update Device; streamImage() then waits for the transfer, and
/// install() for the installation, to be under way. The server offers an image for an HB4.
/// @{
Outcome pressUpdate(Program& program);
Outcome streamImage(Program& program);
Outcome install(Program& program);
/// @}
/// Connects an HB4 and presses Update Device; the image was put beside the program by hand.
Outcome updateByHand(Program& program);
/// Starts the program with a unit HB4 plugged in and connects it, with a name server that never answers.
Outcome lookHostUp(Program& program);
/// Presses the keys that offer the log.
Outcome pressLogKeys(Program& program);
/// Connects the unit, likewise with this message, and requests its log; fetchLog() then waits until `line`
/// appears in its journal.
/// @{
Outcome askForLog(Program& program, const QString& message = models::hb4.connected);
Outcome fetchLog(Program& program, const QString& line);
/// @}
/// Wait until the transfer, or the installation, is under way; call after pressing Update Device.
/// @{
Outcome awaitStream(Program& program);
Outcome awaitInstallation(Program& program);
/// @}
/// Checks how the finished installation is shown, presses Ok in its box and waits for the program to end.
Outcome seeFinished(Program& program);

/// Waits for this box, closes it with Ok, and checks that the program then ends promptly and successfully.
Outcome seeLastBox(Program& program, const BoxText& box);
/// Closes the window and checks that the program ends promptly and successfully; or only that it does so in
/// the end.
/// @{
Outcome leave(Program& program);
Outcome closeAndWait(Program& program);
/// @}
/// Asks the program to end, by SIGTERM.
Outcome terminate(Program& program);

/// The text of the offer of `offeredVersion` to a unit shown as `version`.
[[nodiscard]] QString offerText(const QString& version = "2.3");

/// The box that ends a successful update.
inline const BoxText finishedBox = infoBox(text::finished);
/// The box that is shown for every network problem.
inline const BoxText networkProblemBox = errorBox(QString(text::networkProblem) + '\n');

} // namespace scenario

Q_DECLARE_METATYPE(scenario::Deed)
