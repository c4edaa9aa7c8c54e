#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <deque>
#include <functional>
#include <vector>

/// A message box as a user sees it.
struct SeenBox
{
    QString kind; ///< "information", "critical", "plain"
    QString title;
    QString text;
    QString informativeText;
    QString detailedText;
    QStringList buttons; ///< "OK", "Yes", ... without "&", in alphabetical order
    QString defaultButton;
    bool hasParent = false;

    /// "critical|Error|text|OK": the parts that every box has.
    [[nodiscard]] QString line() const;
};

/// The line of the usual box with one Ok button.
[[nodiscard]] QString criticalBox(const QString& text, const QString& title = "Error");
[[nodiscard]] QString informationBox(const QString& text);

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
    [[nodiscard]] QStringList lines() const; ///< SeenBox::line() of each box so far, in the order they opened

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
