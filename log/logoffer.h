#pragma once

/// When Ctrl+Shift+L offers the unit's log.
namespace logoffer {

/// What the window knows at that moment.
struct Situation
{
    bool unitIsOpen = false;
    bool isPair = false; ///< of decks
    bool updateHasBegun = false;
    bool logHasBegun = false;
    bool answerIsAwaited = false; ///< by the update checker
};

/// For a single unit, before any update or other log. Not while the update server may still answer: an image
/// that arrives would enable Update Device during the log download.
[[nodiscard]] constexpr bool isAllowed(const Situation& now)
{
    return now.unitIsOpen && !now.isPair && !now.updateHasBegun && !now.logHasBegun && !now.answerIsAwaited;
}

} // namespace logoffer
