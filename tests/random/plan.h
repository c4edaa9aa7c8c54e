#pragma once

#include "virtualunit/options.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

/// Everything that one run derives from its seed. The same seed gives the same plan on every machine.
struct Plan
{
    /// How the server answers one of its requests.
    enum class Way {
        whole,
        inChunks,
        dripping,   ///< in many small writes
        redirected, ///< status 302 to a complete answer
        compressed, ///< gzip, complete
        overlong,   ///< the body continues past its Content-Length
        cut,        ///< half of the body, then the connection is closed
        reset,      ///< half of the body, then a TCP reset
        silent,     ///< the request is accepted but never answered
        stalling,   ///< half of the body, then nothing
        notFound,   ///< status 404
        html,       ///< a captive portal's page with status 200
    };
    enum class Catalogue {
        newer,
        same,
        older,
        newerUpdater,
        incomplete,
        broken, ///< contains no valid entry
        empty,
        oversized, ///< larger than the size limit that is reported; otherwise like `newer`
        noPathToChangeLog,
        noPathToImage,
    };
    /// Which of the image's file names is taken by a (non-empty) folder.
    enum class Taken { none, image, download, backup };
    enum class BusFault { none, unplug, failWrites, failReads, failOpens };
    enum class Act {
        wait,
        connect,
        update,
        log,
        stop,
        logKey,
        agree,  ///< the top box's default button
        refuse, ///< No in an offer; the default button of any other box
        escape,
        close,
        endSession, ///< the program is told to quit from outside, whether or not boxes are open
    };

    std::uint64_t seed = 0;
    QString user; ///< what kind of user this is

    std::vector<virtualunit::Options> units; ///< none, one, or one or both decks of a player
    BusFault busFault = BusFault::none;
    int busFaultUnit = 0; ///< index of `units`
    int busFaultTurn = 0; ///< the fault occurs before this turn of the user
    int busFaultCount = 0;

    Catalogue catalogue = Catalogue::newer;
    Way catalogueWay = Way::whole;
    Way changeLogWay = Way::whole;
    Way imageWay = Way::whole;
    QByteArray image; ///< the server's image, or the service file's content

    bool hasServiceFile = false;
    QByteArray oldImage; ///< null: no such file; likewise for the next two
    QByteArray oldDownload;
    QByteArray oldBackup;
    Taken taken = Taken::none;
    std::optional<int> fileSizeLimit; ///< bytes; simulates a full disk

    int paceMs = 2; ///< between the user's turns
    std::vector<Act> turns;

    [[nodiscard]] bool isPair() const { return units.size() == 2; }
    /// True if neither the unit, the bus, the server nor the disk has a fault.
    [[nodiscard]] bool isFaultless() const;
    /// How the run must end if nothing goes wrong and the user follows the prompts: "finished", "handed
    /// over" or "up to date"; empty if it cannot be predicted.
    [[nodiscard]] QString dueOutcome() const;
    /// The bytes that a successful download of the image produces; nullopt if it cannot succeed.
    [[nodiscard]] std::optional<QByteArray> arrivingImage() const;
    [[nodiscard]] QString describe() const;
};

[[nodiscard]] Plan drawPlan(std::uint64_t seed);

[[nodiscard]] QString nameOf(Plan::Act act);
