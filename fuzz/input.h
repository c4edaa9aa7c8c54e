#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// The bytes that the fuzzer has made up; behind their end there are zeros.
class Input
{
public:
    Input(const std::uint8_t* bytes, std::size_t size) : next(bytes), end(bytes + size) {}

    [[nodiscard]] bool isEmpty() const { return next == end; }
    [[nodiscard]] std::size_t left() const { return static_cast<std::size_t>(end - next); }
    [[nodiscard]] std::uint8_t byte() { return isEmpty() ? std::uint8_t{0} : *next++; }
    [[nodiscard]] int number16() { return byte() << 8 | byte(); }

    /// At most `size` bytes; fewer where the input ends.
    [[nodiscard]] QByteArray bytes(std::size_t size)
    {
        const std::size_t taken = size < left() ? size : left();
        const QByteArray some(reinterpret_cast<const char*>(next), static_cast<int>(taken));
        next += taken;
        return some;
    }
    [[nodiscard]] QByteArray rest() { return bytes(left()); }

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

/// What must never be is a trap: a message and an abort, which the fuzzer keeps with the input that led
/// there.
inline void expect(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "it does not hold: %s\n", what);
    std::abort();
}

/// Called once, before the first input; a target may do without.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
/// Runs one input. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
