// Input: one reply of a unit that is asked for its log, 64 bytes; what is missing is zero.

#include "fuzz/input.h"
#include "log/logprotocol.h"

#include <algorithm>
#include <array>
#include <memory>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto reply =
        std::make_unique<std::array<unsigned char, 64>>(); // on the heap: no byte behind it is readable
    std::copy_n(data, std::min<std::size_t>(size, reply->size()), reply->begin());
    const unsigned char* const bytes = reply->data();
    const QByteArray all(reinterpret_cast<const char*>(bytes), 64);

    expect(logprotocol::replyCode(bytes) == bytes[0], "the code is the first byte");
    expect(logprotocol::endsHeaderWait(bytes) == (bytes[0] == 0x20 || bytes[0] == 0x60), "header, or no log");
    expect(logprotocol::headerDigest(bytes) == all.mid(1, 32), "the digest is 32 bytes");
    const std::uint32_t parts = static_cast<std::uint32_t>(bytes[33]) << 24 |
                                static_cast<std::uint32_t>(bytes[34]) << 16 |
                                static_cast<std::uint32_t>(bytes[35]) << 8 | bytes[36];
    expect(static_cast<std::uint32_t>(logprotocol::headerParts(bytes)) == parts, "the count is big-endian");
    expect(logprotocol::dataPartBytes(bytes) == all.mid(1), "a part is 63 bytes");
    expect(logprotocol::lastPartBytes(bytes) == all.mid(2, std::min<int>(bytes[1], 62)),
           "the last one at most 62");
    return 0;
}
