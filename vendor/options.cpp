#include "vendor/options.h"

#include "net/exchange.h"
#include "vendor/escaped.h"
#include "vendor/models.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <optional>

namespace options {

namespace {

Message misuse(const QString& why)
{
    return {misused, "talvex-catalogue: " + escaped(why) + "\nTry talvex-catalogue --help.\n"};
}

/// Adds the options common to all commands and parses. A message ends the matter: help or version, which take
/// precedence over any misuse, or the misuse.
std::optional<Message> parse(QCommandLineParser& parser, const QStringList& arguments)
{
    parser.addOption({{"h", "help"}, "Print this."});
    parser.addOption({{"v", "version"}, "Print the version."});
    const bool parsed = parser.parse(arguments);
    if (parser.isSet("help"))
        return Message{good, parser.helpText()};
    if (parser.isSet("version"))
        return Message{good, "talvex-catalogue " + QCoreApplication::applicationVersion() + '\n'};
    if (!parsed)
        return misuse(parser.errorText());
    return std::nullopt;
}

/// "NAME=VALUE", split at its first "=".
struct Pair
{
    QString name;
    QString value;
};

Pair pairOf(const QString& text)
{
    const auto equals = text.indexOf('=');
    return equals < 0 ? Pair{text, {}} : Pair{text.left(equals), text.mid(equals + 1)};
}

std::optional<Viewer> readViewer(const QString& text)
{
    constexpr int largestVersion = 255;
    const auto [name, value] = pairOf(text);
    bool isNumber = false;
    const int version = value.toInt(&isNumber);
    const auto stem = models::stemMeant(name);
    if (!stem || !isNumber || version < 0 || version > largestVersion)
        return std::nullopt;
    return Viewer{name, *stem, version};
}

void describeCheck(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "Tells what the updater would make of a catalogue.\n"
        "Exit code 0: good, notes at most; 1: errors; 2: wrong usage; 130: ended by Ctrl+C.");
    parser.addPositionalArgument("check", "This command.");
    parser.addPositionalArgument("FILE|URL", "The catalogue, on disk or as it is served.");
    parser.addOption(
        {"as", "Tell what the user of this model at this version (23 for 2.3) would see. May be repeated.",
         "MODEL=VERSION"});
    parser.addOption({"key", "Judge the signature as an updater with this public key does (RW...).", "KEY"});
    parser.addOption({"fetch", "Request every change log and image, as the updater would."});
    parser.addOption({"timeout", "Give up on a server that is silent for this long.", "SECONDS",
                      QString::number(exchange::silenceLimitMs / 1000)});
    parser.addOption({"json", "Print JSON, for a pipeline."});
}

Command readCheck(const QStringList& arguments)
{
    QCommandLineParser parser;
    describeCheck(parser);
    if (const auto message = parse(parser, arguments))
        return *message;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 2)
        return misuse("check takes one file or address");
    Check check;
    check.source = positional[1];
    check.json = parser.isSet("json");
    check.fetch = parser.isSet("fetch");
    for (const QString& text : parser.values("as")) {
        const auto viewer = readViewer(text);
        if (!viewer)
            return misuse("not a model and version like hb4=23: " + text);
        check.viewers.append(*viewer);
    }
    if (parser.isSet("key")) {
        check.key = signature::parseKey(parser.value("key").toUtf8());
        if (!check.key)
            return misuse("not a minisign public key: " + parser.value("key"));
    }
    constexpr int mostSeconds = 3600;
    const int seconds = parser.value("timeout").toInt();
    if (seconds < 1 || seconds > mostSeconds)
        return misuse("not a number of seconds from 1 to 3600: " + parser.value("timeout"));
    check.timeoutMs = seconds * 1000;
    return check;
}

bool holds(const QVector<Image>& images, const QString& stem)
{
    return std::any_of(images.begin(), images.end(), [&](const Image& image) { return image.stem == stem; });
}

Command readHash(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Writes the digests of images into a catalogue.\n"
                                     "Exit code 0: done; 1: nothing was changed; 2: wrong usage.");
    parser.addPositionalArgument("hash", "This command.");
    parser.addPositionalArgument("FILE", "The catalogue.");
    parser.addOption({"image",
                      "The image for the models with this key stem: " + models::stems().join(", ") +
                          ". May be repeated for other stems.",
                      "STEM=PATH"});
    if (const auto message = parse(parser, arguments))
        return *message;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 2)
        return misuse("hash takes one file");
    Hash hash{positional[1], {}};
    for (const QString& text : parser.values("image")) {
        const auto [name, path] = pairOf(text);
        const auto stem = models::stemWritten(name);
        if (!stem || path.isEmpty())
            return misuse("not a key stem and path like HB4=PATH: " + text);
        if (holds(hash.images, *stem))
            return misuse("two images for " + *stem);
        hash.images.append({*stem, path});
    }
    if (hash.images.isEmpty())
        return misuse("hash needs an --image");
    return hash;
}

Command readNeither(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Checks and completes the version catalogue of the Talvex updater.");
    parser.addPositionalArgument(
        "check", "Tells what the updater would make of a catalogue; see check --help.", "check FILE|URL");
    parser.addPositionalArgument("hash", "Writes the digests of images into one; see hash --help.",
                                 "| hash FILE --image STEM=PATH...");
    if (const auto message = parse(parser, arguments))
        return *message;
    const QStringList positional = parser.positionalArguments();
    return misuse(positional.isEmpty() ? "give a command: check or hash"
                                       : "there is no command " + positional.first());
}

} // namespace

Command read(const QStringList& arguments)
{
    const QString command = arguments.value(1);
    if (command == "check")
        return readCheck(arguments);
    if (command == "hash")
        return readHash(arguments);
    return readNeither(arguments);
}

} // namespace options
