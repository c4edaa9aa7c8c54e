#pragma once

#include <QByteArray>

#include <cstdint>

/// How Windows keeps a user's proxy settings: a binary value in the registry.
namespace windowsproxy {

inline constexpr auto key =
    R"(Software\Microsoft\Windows\CurrentVersion\Internet Settings\Connections)"; ///< below HKEY_CURRENT_USER
inline constexpr auto name = "DefaultConnectionSettings";

/// The value for this proxy ("127.0.0.1:PORT"; empty: none) and this address of a script that chooses one
/// (empty: none). As elsewhere, the computer itself is asked without a proxy.
[[nodiscard]] inline QByteArray settings(const QByteArray& proxy, const QByteArray& script = {})
{
    constexpr std::uint32_t version = 0x46;
    enum : std::uint32_t { direct = 1, byProxy = 2, byScript = 4 };
    constexpr int unused = 32;
    QByteArray value;
    const auto add = [&](std::uint32_t word) {
        for (int shift = 0; shift < 32; shift += 8)
            value.append(static_cast<char>(word >> shift & 0xFFU));
    };
    const auto addText = [&](const QByteArray& text) {
        add(static_cast<std::uint32_t>(text.size()));
        value += text;
    };
    add(version);
    add(0);
    add(direct | (proxy.isEmpty() ? 0U : byProxy) | (script.isEmpty() ? 0U : byScript));
    addText(proxy);
    addText(proxy.isEmpty() ? "" : "127.0.0.1;localhost");
    addText(script);
    return value + QByteArray(unused, '\0');
}

} // namespace windowsproxy
