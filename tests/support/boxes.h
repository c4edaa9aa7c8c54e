#pragma once

#include "tests/support/boxtext.h"

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <deque>
#include <functional>
#include <vector>

/// A box that was shown.
struct SeenBox : BoxText
{
    bool hasParent = false;
};

/// Handles message boxes as a user would: records and answers each one that opens, so that no box blocks a
/// test. GUI thread.
class Boxes : public QObject
{
public:
    Boxes();

    /// Called once for each box, while it is open and before it is answered. May run the event loop.
    std::function<void(QMessageBox&)> whileOpen;

    /// Sets how boxes are answered; initially their default button is clicked.
    void answerWith(QMessageBox::StandardButton button);
    void answerWithEscape();
    void leaveOpen(); ///< boxes stay until dismissTop() or another way of answering

    /// Clicks the top box's default button, if there is a box.
    void dismissTop();

    [[nodiscard]] int openCount() const;
    [[nodiscard]] const std::vector<SeenBox>& seen() const { return all; }
    [[nodiscard]] QStringList lines() const; ///< BoxText::line() of each box so far, in the order they opened

protected:
    bool eventFilter(QObject* object, QEvent* event) override; ///< sees every box open

private:
    struct Opened
    {
        QPointer<QMessageBox> box;
        bool lookedAt = false; ///< whileOpen has been called for it
        bool isBusy = false;   ///< whileOpen is running for it
    };
    void look();
    [[nodiscard]] Opened* find(const QMessageBox* box);

    std::vector<SeenBox> all;
    std::deque<Opened> opened; ///< one for each of `all`; a deque keeps its elements in place
    std::function<void(QMessageBox&)> answer;
};
