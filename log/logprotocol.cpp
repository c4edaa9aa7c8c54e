#include "log/logprotocol.h"

#include <algorithm>

namespace logprotocol {

namespace {

enum Command : unsigned char { requestLog = 0x10, acknowledge = 0x30, resend = 0x70 };

constexpr std::size_t codeIndex = 0; // of a reply
constexpr std::size_t digestIndex = codeIndex + 1;
constexpr int digestLength = 32;
constexpr std::size_t partsIndex = digestIndex + digestLength;

constexpr std::size_t dataIndex = codeIndex + 1;
constexpr int dataLength = 63;
static_assert(dataIndex + dataLength == report::payloadLength);

constexpr std::size_t lastLengthIndex = codeIndex + 1;
constexpr std::size_t lastDataIndex = lastLengthIndex + 1;
constexpr int lastDataLength = 62;
static_assert(lastDataIndex + lastDataLength == report::payloadLength);

QByteArray bytesAt(const unsigned char* first, int length)
{
    return {reinterpret_cast<const char*>(first), length};
}

report::Output buildCommand(Command command)
{
    report::Output output{};
    output[report::idLength] = command; // intentional: at the payload's start for every model
    return output;
}

} // namespace

report::Output buildRequest(UnitType type, int number)
{
    const UnitModel* model = findUnitModel(type);
    const std::size_t index = report::commandIndex(model != nullptr ? model->layout : layoutA);
    report::Output request{};
    request[index] = requestLog;
    request[index + 1] = static_cast<unsigned char>(number);
    return request;
}

report::Output buildAcknowledge()
{
    return buildCommand(acknowledge);
}

report::Output buildResend()
{
    return buildCommand(resend);
}

unsigned char replyCode(const unsigned char* reply)
{
    return reply[codeIndex];
}

bool endsHeaderWait(const unsigned char* reply)
{
    return replyCode(reply) == logHeader || replyCode(reply) == noLog;
}

QByteArray headerDigest(const unsigned char* reply)
{
    return bytesAt(reply + digestIndex, digestLength);
}

std::int32_t headerParts(const unsigned char* reply)
{
    return static_cast<std::int32_t>(report::bigEndian32(reply + partsIndex));
}

QByteArray dataPartBytes(const unsigned char* reply)
{
    return bytesAt(reply + dataIndex, dataLength);
}

QByteArray lastPartBytes(const unsigned char* reply)
{
    return bytesAt(reply + lastDataIndex, std::min<int>(reply[lastLengthIndex], lastDataLength));
}

} // namespace logprotocol
