#pragma once

#include <QByteArray>

#include <cstdint>
#include <initializer_list>
#include <random>
#include <utility>

/// Draws random values from a seed, identically with every C++ library (unlike the standard distributions).
class Draw
{
public:
    explicit Draw(std::uint64_t seed) : engine(seed) {}

    /// 0 to limit - 1.
    [[nodiscard]] int below(int limit)
    {
        return static_cast<int>(engine() % static_cast<std::uint64_t>(limit));
    }
    [[nodiscard]] int between(int first, int last) { return first + below(last - first + 1); }
    [[nodiscard]] bool chance(int percent) { return below(100) < percent; }

    template<typename T> [[nodiscard]] T oneOf(std::initializer_list<T> values)
    {
        return values.begin()[below(static_cast<int>(values.size()))];
    }

    /// One of the values, each with a probability proportional to its weight.
    template<typename T> [[nodiscard]] T weighted(std::initializer_list<std::pair<T, int>> values)
    {
        int total = 0;
        for (const auto& [value, weight] : values)
            total += weight;
        int left = below(total);
        for (const auto& [value, weight] : values) {
            left -= weight;
            if (left < 0)
                return value;
        }
        return values.begin()->first;
    }

    [[nodiscard]] QByteArray bytes(int size)
    {
        QByteArray bytes(size, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(below(256));
        return bytes;
    }

private:
    std::mt19937_64 engine;
};
