#include "tests/vendor/goodcatalogue.h"

namespace {

const QByteArray host = "http://updates.example.com";

} // namespace

QByteArray goodCatalogue()
{
    QByteArray text = "[updater]\n"
                      "MainVer=11\n"
                      "MainChangeLog=" +
                      host +
                      "/logs/updater.txt\n"
                      "MacMainBin=https://updates.example.com/updater.zip\n";
    for (const QByteArray& stem : everyStem())
        text += "\n[" + stem + "]\n" + stem + "Ver=27\n" + stem + "Bin=" + host + "/bin/" + stem + ".sb\n" +
                stem + "ChangeLog=" + host + "/logs/" + stem + ".txt\n";
    return text;
}

QByteArray catalogueWith(const QByteArray& from, const QByteArray& to)
{
    QByteArray text = goodCatalogue();
    const auto place = text.indexOf(from);
    if (place < 0)
        qFatal("the good catalogue does not hold %s", from.constData());
    return text.replace(place, from.size(), to);
}

QByteArray catalogueWithDigests(const QByteArray& digest)
{
    QByteArray text = goodCatalogue();
    for (const QByteArray& stem : everyStem())
        text += stem + "Sha256=" + digest + '\n';
    return text;
}

const QByteArrayList& everyStem()
{
    static const QByteArrayList stems{"HB4",   "HB2",  "HBX",  "ZEQPRO", "PANEL",
                                      "DSK10", "LMB1", "LMB2", "PLT70"};
    return stems;
}
