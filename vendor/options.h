#pragma once

#include "net/signature.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>
#include <variant>

/// What the command line asks for.
namespace options {

/// Exit codes.
inline constexpr int good = 0;
inline constexpr int faulty = 1;
inline constexpr int misused = 2;

/// Somebody with a unit: "--as hb4=23".
struct Viewer
{
    QString name; ///< as written
    QString stem;
    int version; ///< 0 .. 255, as a unit tells it
};

struct Check
{
    QString source; ///< a file, or an address with "://"
    QVector<Viewer> viewers;
    std::optional<signature::PublicKey> key; ///< that the program would be built with
    bool json = false;
    bool fetch = false;
    int timeoutMs = 0; ///< of silence
};

/// An image for the models of a stem: "--image HB4=PATH".
struct Image
{
    QString stem;
    QString path;
};

struct Hash
{
    QString file;
    QVector<Image> images;
};

/// Only something to print: on standard output if the exit code is good, else on standard error.
struct Message
{
    int exitCode;
    QString text; ///< with its line end
};

using Command = std::variant<Check, Hash, Message>;

/// Reads the arguments, the program's own name first. Needs a QCoreApplication.
[[nodiscard]] Command read(const QStringList& arguments);

} // namespace options
