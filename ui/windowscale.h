#pragma once

#include <QObject>
#include <QRect>
#include <QSize>
#include <QVector>

class QMainWindow;
class QWidget;
class QWindow;
class Ui_MainWindow;

/// The factor by which a layout made for 100 % is scaled. Sizes are in widget pixels.
namespace windowscale {

/// The space that one control needs for its text.
struct Need
{
    QSize laidOut; ///< its size in the layout at 100 %
    QSize uncut;   ///< below this, letters are cut off
    QSize whole;   ///< fits whole lines with the style's margins
};

/// The factor for a screen with this many logical dots per inch (96 are 100 %); at least 1.
[[nodiscard]] double screenFactor(double dotsPerInch);

/// The screen's own factor if that cuts off no letter; otherwise the smallest factor at which every control
/// shows its whole text.
[[nodiscard]] double layoutFactor(double screenFactor, const QVector<Need>& needs);

/// Position and size times the factor, each rounded to whole pixels.
[[nodiscard]] QRect stretched(const QRect& laidOut, double factor);
[[nodiscard]] QSize stretched(const QSize& laidOut, double factor);

/// The new place and size of a window that is resized to `size`. Normally its top left corner stays. If that
/// moved its centre onto another screen, it would belong to that screen, and two screens of different factors
/// could pass it back and forth; in that case its centre stays instead.
[[nodiscard]] QRect resized(const QRect& window, const QSize& size, const QRect& ownScreen,
                            const QVector<QRect>& screens);

} // namespace windowscale

/// Keeps the main window's fixed layout as large as its screen and its fonts require, from the start.
/// Belongs to the window, on the GUI thread.
class WindowScale : public QObject
{
public:
    /// `ui` is set up in `window`; both must outlive this object.
    WindowScale(QMainWindow& window, const Ui_MainWindow& ui);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Control
    {
        QWidget* widget;
        QRect laidOut;
    };

    void watchScreen();
    void applyLater();
    void noteSize();
    void apply();
    void stretchControls();
    void resizeWindow(const QSize& size);
    [[nodiscard]] QVector<windowscale::Need> needs() const;
    [[nodiscard]] windowscale::Need needOfRow() const;

    QMainWindow& window;
    const Ui_MainWindow& ui;
    QVector<Control> controls; ///< those with a fixed position
    int rowSpacing;
    QSize windowSize; ///< at 100 %
    double factor = 1;
    double pixelRatio = 1;            ///< screen pixels in a widget pixel, as apply() last saw it
    QWindow* watchedWindow = nullptr; ///< only compared, never dereferenced
    QSize settledSize;                ///< the window's size before any change that waits for apply()
    bool applyWaits = false;
};
