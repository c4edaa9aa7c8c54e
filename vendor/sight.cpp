#include "vendor/sight.h"

#include "base/shownversion.h"
#include "base/updaterversion.h"
#include "net/plainaddress.h"

namespace {

Sight problem(const QString& why)
{
    return {"problem", "\"Problem with internet connection\": " + why};
}

Sight updaterOffer(const catalogue::Offer& offer)
{
    if (!takeApart(offer.mainChangeLogUrl))
        return problem("the address of the updater's change log cannot be split");
    return {"updater", QString("an offer of updater %1 (this one is %2), which the browser downloads from %3")
                           .arg(shownUpdaterVersion(offer.mainVersion.toInt()),
                                shownUpdaterVersion(updaterVersion), offer.mainBinUrl)};
}

Sight firmwareOffer(const catalogue::Offer& offer)
{
    if (!takeApart(offer.changeLogUrl))
        return problem("the address of the change log cannot be split");
    const QString shown = shownVersion(offer.newVersion.toInt());
    const auto image = takeApart(offer.binUrl);
    if (!image)
        return {"firmware",
                "an offer of firmware " + shown +
                    ", then a problem when it is accepted: the address of the image cannot be split"};
    return {"firmware", "an offer of firmware " + shown + ", from " + image->url()};
}

} // namespace

Sight sightOf(const catalogue::Entries& entries, qint64 size, const QString& stem, int version,
              const Genuineness& genuineness)
{
    if (genuineness.fault != nullptr)
        return {"problem", "\"The update server's answer is not genuine.\""};
    if (genuineness.isRequired && !genuineness.hasSignature)
        return problem("there is no signature");
    if (size > catalogue::reportedSize)
        return problem("the catalogue is too large");
    const catalogue::Offer offer = catalogue::lookUp(entries, stem);
    switch (catalogue::decide(offer, QString::number(version), genuineness.isRequired)) {
    case catalogue::Decision::incomplete:
        break;
    case catalogue::Decision::newerUpdater:
        return updaterOffer(offer);
    case catalogue::Decision::newerFirmware:
        return firmwareOffer(offer);
    case catalogue::Decision::upToDate:
        return {"up-to-date", "\"Your unit has the latest software\""};
    }
    return problem(genuineness.isRequired ? "a value or a digest is missing" : "a value is missing");
}
