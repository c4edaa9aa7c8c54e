#include "unit/report.h"

namespace report {

void putBigEndian(unsigned char* first, std::size_t length, std::uint32_t value)
{
    for (std::size_t i = length; i > 0; --i) {
        first[i - 1] = static_cast<unsigned char>(value & 0xFFU);
        value >>= 8U;
    }
}

std::uint32_t bigEndian32(const unsigned char* first)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i)
        value = value << 8U | first[i];
    return value;
}

unsigned char statusCode(const unsigned char* input, ReportLayout layout)
{
    return highNibble(input[layout.headerOffset]);
}

std::uint8_t firmwareVersion(const Input& input, UnitType type)
{
    const UnitModel* model = findUnitModel(type);
    // Intentional: for a type without a model, the last byte.
    return model != nullptr ? input[model->versionByte] : input.back();
}

} // namespace report
