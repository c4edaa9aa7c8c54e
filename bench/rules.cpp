// The rules, each beside the least that could be done in its place: a copy of one report.

#include "log/logprotocol.h"
#include "net/catalogue.h"
#include "update/transferprotocol.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

constexpr std::array<unsigned char, report::dataLength> imageBytes{1, 2, 3};
constexpr report::Input reply{0x50, 62};
constexpr int catalogueSize = 10'000;

QByteArray catalogueBytes()
{
    QByteArray bytes;
    for (int line = 0; bytes.size() < catalogueSize; ++line)
        bytes += "MODEL" + QByteArray::number(line) + "Bin=http://updates.example/image" +
                 QByteArray::number(line) + ".sb\n";
    bytes.truncate(catalogueSize);
    return bytes;
}

void copyReport(benchmark::State& state)
{
    const report::Output from{1};
    report::Output to;
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), to.size());
        benchmark::DoNotOptimize(to);
        benchmark::ClobberMemory();
    }
}

void copyCatalogue(benchmark::State& state)
{
    const QByteArray from = catalogueBytes();
    QByteArray to(from.size(), '\0');
    for (auto _ : state) {
        std::memcpy(to.data(), from.constData(), static_cast<std::size_t>(from.size()));
        benchmark::ClobberMemory();
    }
}

void dataPacket(benchmark::State& state)
{
    std::uint32_t number = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(transferprotocol::buildDataPacket(layoutA, ++number, imageBytes));
}

void finalPacket(benchmark::State& state)
{
    std::uint32_t number = 0;
    const auto rest = transferprotocol::ImageBytes(imageBytes).first(59);
    for (auto _ : state)
        benchmark::DoNotOptimize(transferprotocol::buildFinalPacket(layoutA, ++number, rest));
}

void percentOfTransfer(benchmark::State& state)
{
    int packets = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(transferprotocol::transferPercent(++packets & 0xFFFF, 6'000'000));
}

void parseCatalogue(benchmark::State& state)
{
    const QByteArray bytes = catalogueBytes();
    for (auto _ : state)
        benchmark::DoNotOptimize(catalogue::parse(bytes));
}

void logHeader(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(logprotocol::headerDigest(reply.data()));
        benchmark::DoNotOptimize(logprotocol::headerParts(reply.data()));
    }
}

void logDataPart(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(logprotocol::dataPartBytes(reply.data()));
}

void logLastPart(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(logprotocol::lastPartBytes(reply.data()));
}

BENCHMARK(copyReport);
BENCHMARK(dataPacket);
BENCHMARK(finalPacket);
BENCHMARK(percentOfTransfer);
BENCHMARK(logHeader);
BENCHMARK(logDataPart);
BENCHMARK(logLastPart);
BENCHMARK(copyCatalogue);
BENCHMARK(parseCatalogue);

} // namespace

BENCHMARK_MAIN();
