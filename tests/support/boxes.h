#pragma once

#include "tests/support/boxtext.h"

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <deque>
#include <functional>
#include <vector>

/// A box that came up.
struct SeenBox : BoxText
{
    bool hasParent = false;
};

/// The user in front of message boxes: notes each one that opens and answers it, so that no box ever holds a
/// test up. GUI thread.
class Boxes : public QObject
{
public:
    Boxes();

    /// Called once for each box, while it is open and before it is answered. May run the event loop.
    std::function<void(QMessageBox&)> whileOpen;

    /// How a box is answered; at first: its default button is clicked.
    void answerWith(QMessageBox::StandardButton button);
    void answerWithEscape();
    void leaveOpen(); ///< boxes stay until dismissTop() or another way of answering

    /// Clicks the default button of the box on top, if there is one.
    void dismissTop();

    [[nodiscard]] int openCount() const;
    [[nodiscard]] const std::vector<SeenBox>& seen() const { return all; }
    [[nodiscard]] QStringList lines() const; ///< BoxText::line() of each box so far, in the order they opened

protected:
    bool eventFilter(QObject* object, QEvent* event) override; ///< sees every box come up

private:
    struct Opened
    {
        QPointer<QMessageBox> box;
        bool lookedAt = false; ///< whileOpen was called for it
        bool isBusy = false;   ///< whileOpen runs for it
    };
    void look();
    [[nodiscard]] Opened* find(const QMessageBox* box);

    std::vector<SeenBox> all;
    std::deque<Opened> opened; ///< one for each of `all`; a deque keeps its elements in place
    std::function<void(QMessageBox&)> answer;
};
