#pragma once

#include "virtualunit/options.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

/// Everything that one run draws from its seed: the same seed gives the same plan on every machine.
struct Plan
{
    /// How the server answers one of its requests.
    enum class Way {
        whole,
        inChunks,
        dripping,   ///< in many small writes
        redirected, ///< status 302 to an answer that is whole
        compressed, ///< gzip, whole
        overlong,   ///< the body goes on behind its Content-Length
        cut,        ///< half of the body, then the connection is closed
        reset,      ///< the same with a TCP reset
        silent,     ///< the request is taken, nothing comes
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
        broken, ///< no line of it is an entry
        empty,
        oversized, ///< beyond the size that is reported; otherwise `newer`
        noPathToChangeLog,
        noPathToImage,
    };
    /// Which of the image's names a folder has taken; the folder holds a file.
    enum class Taken { none, image, download, backup };
    enum class BusFault { none, unplug, failWrites, failReads, failOpens };
    enum class Act {
        wait,
        connect,
        update,
        log,
        stop,
        logKey,
        agree,  ///< the default button of the box on top
        refuse, ///< No of an offer; the default button of any other box
        escape,
        close,
        endSession, ///< the program is told to quit from outside, boxes open or not
    };

    std::uint64_t seed = 0;
    QString user; ///< what kind of user this is

    std::vector<virtualunit::Options> units; ///< none, one, or two decks of one player (or only one of them)
    BusFault busFault = BusFault::none;
    int busFaultUnit = 0; ///< index of `units`
    int busFaultTurn = 0; ///< the user's turn before which it strikes
    int busFaultCount = 0;

    Catalogue catalogue = Catalogue::newer;
    Way catalogueWay = Way::whole;
    Way changeLogWay = Way::whole;
    Way imageWay = Way::whole;
    QByteArray image; ///< what the server has, or the service file

    bool hasServiceFile = false;
    QByteArray oldImage; ///< null: there is none; the same for the next two
    QByteArray oldDownload;
    QByteArray oldBackup;
    Taken taken = Taken::none;
    std::optional<int> fileSizeLimit; ///< bytes, as on a full disk

    int paceMs = 2; ///< between two turns of the user
    std::vector<Act> turns;

    [[nodiscard]] bool isPair() const { return units.size() == 2; }
    /// No fault of the unit, the bus, the server or the disk.
    [[nodiscard]] bool isFaultless() const;
    /// How a run must end in which nothing goes wrong and the user does what is asked: "finished", "handed
    /// over" or "up to date"; empty: nobody can tell.
    [[nodiscard]] QString dueOutcome() const;
    /// The bytes that a successful download of the image brings; nothing: it cannot succeed.
    [[nodiscard]] std::optional<QByteArray> arrivingImage() const;
    [[nodiscard]] QString describe() const;
};

[[nodiscard]] Plan drawPlan(std::uint64_t seed);

[[nodiscard]] QString nameOf(Plan::Act act);
