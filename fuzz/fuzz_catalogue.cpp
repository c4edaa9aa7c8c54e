// Input: the unit type, its version, then the catalogue as the server sends it.

#include "base/updaterversion.h"
#include "fuzz/input.h"
#include "net/catalogue.h"
#include "tests/support/models.h"

#include <QStringList>

#include <array>
#include <cmath>

namespace {

/// The value of the last line with this key, found from the text's end.
QString lastValue(const QByteArray& bytes, const QString& key)
{
    const QStringList lines = QString::fromUtf8(bytes.constData()).split('\n');
    for (auto line = lines.crbegin(); line != lines.crend(); ++line)
        if (line->startsWith(key + '=') && !key.contains('='))
            return line->mid(key.size() + 1);
    return {};
}

void checkOffer(const catalogue::Offer& offer, const QByteArray& bytes, const QString& stem)
{
    expect(offer.newVersion == lastValue(bytes, stem + "Ver"), "the version is that of its last line");
    expect(offer.binUrl == lastValue(bytes, stem + "Bin"), "the image's address is that of its last line");
    expect(offer.changeLogUrl == lastValue(bytes, stem + "ChangeLog"), "so is the change log's");
    expect(offer.mainVersion == lastValue(bytes, "MainVer"), "so is the updater's version");
    expect(offer.mainChangeLogUrl == lastValue(bytes, "MainChangeLog"), "so is its change log's");
    expect(offer.mainBinUrl == lastValue(bytes, "MacMainBin"), "so is its address");
}

void checkDecision(catalogue::Decision decision, const catalogue::Offer& offer, const QString& current)
{
    using catalogue::Decision;
    const bool incomplete = offer.newVersion.isEmpty() || offer.binUrl.isEmpty() ||
                            offer.changeLogUrl.isEmpty() || offer.mainBinUrl.isEmpty() ||
                            offer.mainVersion.isEmpty();
    expect((decision == Decision::incomplete) == incomplete, "a required value is missing, or none is");
    if (incomplete)
        return;
    const bool newerUpdater = offer.mainVersion.toInt() > updaterVersion;
    expect((decision == Decision::newerUpdater) == newerUpdater, "the updater goes first");
    const double offered = catalogue::leadingNumber(offer.newVersion);
    expect(!std::isnan(offered), "a version is a number");
    if (!newerUpdater)
        expect((decision == Decision::newerFirmware) == (offered > current.toDouble()), "newer is greater");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const models::Model& model = models::of(input.byte() % models::count);
    const QString current = QString::number(input.byte());
    const QByteArray sent = input.rest();
    const QByteArray bytes = catalogue::withoutCarriageReturns(sent);
    expect(!bytes.contains('\r'), "no carriage return is left");
    const int half = sent.size() / 2;
    expect(bytes == catalogue::withoutCarriageReturns(sent.left(half)) +
                        catalogue::withoutCarriageReturns(sent.mid(half)),
           "it does not matter in which pieces a catalogue arrives");
    const catalogue::Offer offer = catalogue::lookUp(catalogue::parse(bytes), model.stem);
    checkOffer(offer, bytes, model.stem);
    checkDecision(catalogue::decide(offer, current), offer, current);
    return 0;
}
