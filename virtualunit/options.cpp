#include "virtualunit/options.h"

#include "virtualunit/numbertext.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

namespace virtualunit {
namespace {

using Value = std::string_view;
using Apply = bool (*)(Options&, Value);

bool setByte(std::uint8_t& target, Value value, int largest)
{
    const std::optional<int> number = readNumber(value);
    if (!number || *number > largest)
        return false;
    target = static_cast<std::uint8_t>(*number);
    return true;
}

bool setMilliseconds(Milliseconds& target, Value value)
{
    const std::optional<int> number = readNumber(value);
    target = number.value_or(0);
    return number.has_value();
}

bool setPath(std::string& target, Value value)
{
    target = value;
    return !value.empty();
}

bool setFlag(bool& target, Value value)
{
    target = value == "yes";
    return target || value == "no";
}

bool readLog(Options& options, Value path)
{
    std::ifstream file(std::string(path), std::ios::binary);
    options.log.emplace(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    return file.is_open() && !file.bad();
}

struct Key
{
    std::string_view name;
    Apply apply; ///< false: the value is no good
};

constexpr std::array keys{
    Key{"version", [](Options& o, Value v) { return setByte(o.version, v, 255); }},
    Key{"product", [](Options& o, Value v) { return o.product.emplace(v), true; }},
    Key{"no-product", [](Options& o, Value v) { return o.hasProduct = false, v == "yes"; }},
    Key{"no-manufacturer", [](Options& o, Value v) { return o.hasManufacturer = false, v == "yes"; }},
    Key{"image", [](Options& o, Value v) { return setPath(o.imagePath, v); }},
    Key{"journal", [](Options& o, Value v) { return setPath(o.journalPath, v); }},
    Key{"log", readLog},
    Key{"period-ms", [](Options& o, Value v) { return setMilliseconds(o.periodMs, v); }},
    Key{"accept-ms", [](Options& o, Value v) { return setMilliseconds(o.acceptMs, v); }},
    Key{"install-ms", [](Options& o, Value v) { return setMilliseconds(o.installMs, v); }},
    Key{"low-nibble", [](Options& o, Value v) { return setByte(o.lowNibble, v, 15); }},
    Key{"repeats-outcome", [](Options& o, Value v) { return setFlag(o.repeatsOutcome, v); }},
    Key{"floods-log", [](Options& o, Value v) { return setFlag(o.floodsLog, v); }},
};

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos;
         end = text.find(separator, start)) {
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

/// Returns what is wrong with it, or an empty text.
std::string applyPair(Options& options, std::string_view pair)
{
    const std::size_t equals = pair.find('=');
    if (equals == std::string_view::npos)
        return "no '=' in " + std::string(pair);
    const std::string_view name = pair.substr(0, equals);
    const std::string_view value = pair.substr(equals + 1);
    if (name == "fault")
        return options.faults.addByName(value).value_or("");
    const auto known =
        std::find_if(keys.begin(), keys.end(), [&](const Key& key) { return key.name == name; });
    if (known == keys.end())
        return "unknown key " + std::string(name);
    return known->apply(options, value) ? "" : "bad value in " + std::string(pair);
}

std::string parseUnit(std::string_view text, Options& options)
{
    std::vector<std::string_view> pieces = split(text, ',');
    const std::optional<UnitType> type = findTypeByName(pieces.front());
    if (!type)
        return "unknown model " + std::string(pieces.front());
    options.type = *type;
    pieces.erase(pieces.begin());
    std::string error;
    for (const std::string_view piece : pieces)
        if (error.empty())
            error = applyPair(options, piece);
    return error;
}

} // namespace

ParsedOptions parseOptions(std::string_view text)
{
    ParsedOptions parsed;
    if (text.empty())
        return parsed;
    for (const std::string_view unit : split(text, ';')) {
        parsed.error = parseUnit(unit, parsed.units.emplace_back());
        if (!parsed.error.empty())
            return {{}, parsed.error};
    }
    return parsed;
}

std::optional<std::string> productOf(const Options& options)
{
    if (!options.hasProduct || options.faults.has(Fault::NoPermission))
        return std::nullopt;
    return options.product.value_or(std::string(identityOf(options.type).product));
}

} // namespace virtualunit
