#include "ui/windowscale.h"

#include "ui_mainwindow.h"
#include "update/labeltexts.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QScreen>
#include <QStyleOptionButton>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace windowscale {

double screenFactor(double dotsPerInch)
{
    constexpr double normal = 96;
    // A server without a configured resolution reports what its monitor measures, up to about 108, which is
    // not a request for a larger window. The next step that anybody chooses is 120.
    constexpr double firstLarger = 112;
    return dotsPerInch < firstLarger ? 1 : dotsPerInch / normal;
}

double layoutFactor(double screenFactor, const QVector<Need>& needs)
{
    const bool cut = std::any_of(needs.begin(), needs.end(), [&](const Need& need) {
        const QSize given = stretched(need.laidOut, screenFactor);
        return need.uncut.width() > given.width() || need.uncut.height() > given.height();
    });
    if (!cut)
        return screenFactor;
    double factor = screenFactor;
    for (const Need& need : needs) {
        factor = std::max({factor, double(need.whole.width()) / need.laidOut.width(),
                           double(need.whole.height()) / need.laidOut.height()});
    }
    return factor;
}

QSize stretched(const QSize& laidOut, double factor)
{
    return {qRound(laidOut.width() * factor), qRound(laidOut.height() * factor)};
}

QRect stretched(const QRect& laidOut, double factor)
{
    return {QPoint(qRound(laidOut.x() * factor), qRound(laidOut.y() * factor)),
            stretched(laidOut.size(), factor)};
}

QRect resized(const QRect& window, const QSize& size, const QRect& ownScreen, const QVector<QRect>& screens)
{
    QRect wanted(window.topLeft(), size);
    const QPoint centre = wanted.center();
    const auto holdsCentre = [&centre](const QRect& screen) { return screen.contains(centre); };
    if (!holdsCentre(ownScreen) && std::any_of(screens.begin(), screens.end(), holdsCentre))
        wanted.moveCenter(window.center());
    return wanted;
}

} // namespace windowscale

namespace {

using windowscale::Need;

/// Qt's platforms without a screen have a default font that no user chose, larger than any desktop's; only
/// its family is set. It must not stretch the layout; only a font whose size has been set may.
bool isFontChosen()
{
    const QString platform = QGuiApplication::platformName();
    const bool hasScreen = platform != "offscreen" && platform != "minimal";
    return hasScreen || (QApplication::font().resolve() & QFont::SizeResolved) != 0;
}

/// The height that a centred line needs: nothing is cut off while only the space above its highest and below
/// its lowest letter is missing.
int heightOfLetters(const QFontMetrics& metrics, const QString& text)
{
    const QRect letters = metrics.tightBoundingRect(text);
    const int above = metrics.ascent() + letters.top();
    const int below = metrics.descent() - letters.bottom() - 1;
    return metrics.height() - 2 * std::max(0, std::min(above, below));
}

int widthOf(const QFontMetrics& metrics, const QString& text)
{
    return std::max(metrics.horizontalAdvance(text), metrics.boundingRect(text).width()) + 1;
}

Need needOfLabel(const QLabel& label, const QSize& laidOut, const QString& longest)
{
    const QFontMetrics metrics = label.fontMetrics();
    const int width = widthOf(metrics, longest);
    return {laidOut, {width, heightOfLetters(metrics, longest)}, {width, metrics.height()}};
}

Need needOfBar(const QProgressBar& bar, const QSize& laidOut)
{
    const QSize size(widthOf(bar.fontMetrics(), "100%"), bar.minimumSizeHint().height());
    return {laidOut, size, size};
}

Need needOfButton(const QPushButton& button, const QSize& laidOut)
{
    const QFontMetrics metrics = button.fontMetrics();
    QStyleOptionButton option;
    option.initFrom(&button);
    option.rect = QRect(QPoint(0, 0), laidOut);
    const QSize inside =
        button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button).size();
    const QSize letters(widthOf(metrics, button.text()), heightOfLetters(metrics, button.text()));
    return {laidOut, letters + (laidOut - inside), button.sizeHint()};
}

} // namespace

WindowScale::WindowScale(QMainWindow& scaledWindow, const Ui_MainWindow& itsUi)
    : window(scaledWindow),
      ui(itsUi),
      rowSpacing(itsUi.horizontalLayout->spacing()),
      windowSize(scaledWindow.size()),
      settledSize(windowSize)
{
    const auto placed = ui.centralWidget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* widget : placed)
        controls.append({widget, widget->geometry()});
    window.installEventFilter(this);
    apply();
}

bool WindowScale::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::WinIdChange:
    case QEvent::Show:
        watchScreen();
        break;
    case QEvent::Resize:
        // A new screen's pixels first change the size; the notification follows.
        QMetaObject::invokeMethod(
            this, [this] { noteSize(); }, Qt::QueuedConnection);
        break;
    case QEvent::FontChange:
    case QEvent::StyleChange:
        applyLater();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void WindowScale::watchScreen()
{
    QWindow* const handle = window.windowHandle();
    if (handle == nullptr || handle == watchedWindow)
        return;
    watchedWindow = handle;
    QObject::connect(handle, &QWindow::screenChanged, this, [this] { applyLater(); });
}

/// Waits until the change has reached all controls and the window's size: X keeps the size in screen pixels,
/// however large the new screen's pixels are.
void WindowScale::applyLater()
{
    if (applyWaits)
        return;
    applyWaits = true;
    QMetaObject::invokeMethod(
        this, [this] { apply(); }, Qt::QueuedConnection);
}

void WindowScale::noteSize()
{
    if (!applyWaits)
        settledSize = window.size();
}

void WindowScale::apply()
{
    const QSize before = settledSize;
    const double earlier = factor;
    const double earlierRatio = std::exchange(pixelRatio, window.screen()->devicePixelRatio());
    applyWaits = false;
    const double ofScreen = windowscale::screenFactor(window.screen()->logicalDotsPerInchY());
    factor = isFontChosen() ? windowscale::layoutFactor(ofScreen, needs()) : ofScreen;
    const bool factorStays = qFuzzyCompare(factor, earlier);
    if (factorStays && qFuzzyCompare(pixelRatio, earlierRatio)) {
        noteSize(); // that of a window moved and resized at once is as the user wants it
        return;
    }
    if (!factorStays)
        stretchControls();
    const bool asLaidOut = before == windowscale::stretched(windowSize, earlier);
    resizeWindow(asLaidOut ? windowscale::stretched(windowSize, factor)
                           : windowscale::stretched(before, factor / earlier));
}

void WindowScale::stretchControls()
{
    for (const Control& control : qAsConst(controls))
        control.widget->setGeometry(windowscale::stretched(control.laidOut, factor));
    ui.horizontalLayout->setSpacing(qRound(rowSpacing * factor));
}

void WindowScale::resizeWindow(const QSize& size)
{
    if (size == window.size() || window.isMaximized() || window.isFullScreen())
        return;
    settledSize = size;
    QVector<QRect> screens;
    for (const QScreen* screen : window.screen()->virtualSiblings())
        screens.append(screen->geometry());
    const QRect now = window.geometry();
    const QRect wanted = windowscale::resized(now, size, window.screen()->geometry(), screens);
    if (window.isVisible() && wanted.topLeft() != now.topLeft())
        window.setGeometry(wanted);
    else
        window.resize(size);
}

QVector<Need> WindowScale::needs() const
{
    QVector<Need> all{needOfRow()};
    for (const Control& control : controls) {
        const QSize size = control.laidOut.size();
        if (control.widget == ui.labelTransfer)
            all += needOfLabel(*ui.labelTransfer, size, labeltexts::longestOfTransfer);
        else if (control.widget == ui.labelUpdate)
            all += needOfLabel(*ui.labelUpdate, size, labeltexts::longestOfUpdate);
        else if (const auto* bar = qobject_cast<QProgressBar*>(control.widget))
            all += needOfBar(*bar, size);
        else if (const auto* button = qobject_cast<QPushButton*>(control.widget))
            all += needOfButton(*button, size);
    }
    return all;
}

/// The row of buttons is centred in its area, which ends below the window's edge.
Need WindowScale::needOfRow() const
{
    const QSize left = ui.connect_button->sizeHint();
    const QSize right = ui.updateDeviceButton->sizeHint();
    const QSize both(left.width() + right.width(), std::max(left.height(), right.height()));
    const auto isRow = [this](const Control& control) { return control.widget == ui.layoutWidget; };
    const QRect row = std::find_if(controls.begin(), controls.end(), isRow)->laidOut;
    const int middle = row.y() + row.height() / 2;
    return {{row.width() - rowSpacing, 2 * (windowSize.height() - middle)}, both, both};
}
