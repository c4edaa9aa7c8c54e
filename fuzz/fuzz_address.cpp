// Input: an address of the catalogue.

#include "fuzz/input.h"
#include "net/plainaddress.h"

#include <QUrl>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString address = QString::fromUtf8(Input(data, size).rest());
    const std::optional<PlainAddress> parts = takeApart(address);
    if (!parts) {
        const int slashes = address.indexOf("//");
        const bool isGood =
            slashes >= 0 && address.indexOf("//", slashes + 2) < 0 && address.indexOf('/', slashes + 2) >= 0;
        expect(!isGood, "a good address is taken apart");
        return 0;
    }
    expect(!parts->host.contains('/'), "the host ends at the first slash");
    expect(parts->path.startsWith('/'), "the path begins with it");
    const QString behindScheme = "//" + parts->host + parts->path;
    expect(address.endsWith(behindScheme), "host and path are those of the address");
    expect(address.split("//").size() == 2, "the two slashes stand there once");
    expect(parts->url() == "http:" + behindScheme, "plain HTTP is asked");
    const QUrl url(parts->url(), QUrl::TolerantMode);
    expect(!url.isValid() || url.scheme() == "http", "whatever stands in it");
    return 0;
}
