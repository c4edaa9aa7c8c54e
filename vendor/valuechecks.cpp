#include "vendor/valuechecks.h"

#include "base/shownversion.h"
#include "base/updaterversion.h"
#include "net/plainaddress.h"
#include "vendor/models.h"

#include <QUrl>

#include <functional>

namespace checks {

namespace {

namespace key = catalogue::key;
namespace suffix = catalogue::suffix;
using catalogue::Line;

bool isHttps(const QString& address)
{
    return address.startsWith("https://", Qt::CaseInsensitive);
}

/// A person reads "2,8" as a fraction; the program compares it as 2 and shows it as 0.0.
Findings firmwareVersion(const Line& line)
{
    bool isWhole = false;
    const int shown = line.value.toInt(&isWhole);
    const double compared = catalogue::leadingNumber(line.value);
    if (isWhole && shown >= 0 && compared == shown)
        return {};
    return {{Severity::error, "misread-number", line.number, line.key,
             QString("%1 is compared as %2 and shown as %3: write a whole number, 27 for 2.7")
                 .arg(line.value, QString::number(compared), shownVersion(shown))}};
}

Findings updaterVersion(const Line& line)
{
    bool isWhole = false;
    const int number = line.value.toInt(&isWhole);
    if (!isWhole || number < 0)
        return {{Severity::error, "misread-number", line.number, line.key,
                 QString("%1 is read as %2: write a whole number, 9 for 0.9")
                     .arg(line.value, QString::number(number))}};
    if (number < UPDATER_VERSION_THRESHOLD)
        return {};
    return {{Severity::note, "newer-updater", line.number, line.key,
             QString("updaters older than %1 offer the new updater and no firmware")
                 .arg(shownUpdaterVersion(number))}};
}

/// An address that the program itself requests.
Findings askedAddress(const Line& line)
{
    const auto parts = takeApart(line.value);
    if (!parts)
        return {{Severity::error, "bad-address", line.number, line.key,
                 line.value + " cannot be split: write http://host/path, with // only once"}};
    if (const QUrl url(parts->url(), QUrl::TolerantMode); !url.isValid() || url.host().isEmpty())
        return {{Severity::error, "bad-address", line.number, line.key,
                 line.value + " has no host that could be asked"}};
    if (isHttps(line.value))
        return {{Severity::note, "asked-as-http", line.number, line.key,
                 line.value + " will be requested as " + parts->url()}};
    return {};
}

/// The address handed to the user's browser, whatever it is.
Findings openedAddress(const Line& line)
{
    if (isHttps(line.value))
        return {};
    return {{Severity::note, "not-https", line.number, line.key,
             line.value + " is not https: whoever controls the network chooses what the browser downloads"}};
}

Findings imageDigest(const Line& line)
{
    if (catalogue::isDigest(line.value))
        return {};
    return {{Severity::error, "bad-digest", line.number, line.key,
             line.value + " is no SHA-256 digest: 64 hexadecimal digits"}};
}

enum class Need { always, withKey };

struct Rule
{
    const char* ending; ///< of the key; the whole key for the updater's own
    Findings (*check)(const Line&);
    Need need;
};

constexpr Rule updaterRules[] = {
    {key::mainVersion, updaterVersion, Need::always},
    {key::mainChangeLog, askedAddress, Need::always},
    {key::mainImage, openedAddress, Need::always},
};

constexpr Rule modelRules[] = {
    {suffix::version, firmwareVersion, Need::always},
    {suffix::image, askedAddress, Need::always},
    {suffix::changeLog, askedAddress, Need::always},
    {suffix::digest, imageDigest, Need::withKey},
};

const Rule* ruleOf(const QString& name)
{
    for (const Rule& rule : updaterRules)
        if (name == rule.ending)
            return &rule;
    for (const QString& stem : models::stems())
        for (const Rule& rule : modelRules)
            if (name == stem + rule.ending)
                return &rule;
    return nullptr;
}

} // namespace

QStringList keysOf(const QString& stem)
{
    QStringList keys;
    for (const Rule& rule : modelRules)
        keys.append(stem + rule.ending);
    return keys;
}

QStringList updaterKeys()
{
    QStringList keys;
    for (const Rule& rule : updaterRules)
        keys.append(rule.ending);
    return keys;
}

QStringList knownKeys()
{
    QStringList keys = updaterKeys();
    for (const QString& stem : models::stems())
        keys.append(keysOf(stem));
    return keys;
}

Findings ofValue(const QString& key, const Line* line, bool areDigestsRequired)
{
    const Rule* rule = ruleOf(key);
    if (rule == nullptr)
        return {};
    if (line != nullptr && !line->value.isEmpty())
        return rule->check(*line);
    if (rule->need == Need::withKey && !areDigestsRequired)
        return {};
    if (line == nullptr)
        return {{Severity::error, "missing", 0, key, "is missing"}};
    return {{Severity::error, "empty", line->number, key, "is empty"}};
}

} // namespace checks
