#include "tests/harness/xscreen.h"

#include <utility>

// Xlib's macros (None, Bool, ...) break Qt's headers: these come last.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

namespace {

/// A window may vanish between two requests; what it was asked for then fails, and that is all.
int ignoreError(Display*, XErrorEvent*)
{
    return 0;
}

/// Up to `most` items of a window's property, each of 32 bits; none if it has no such property.
QVector<unsigned long> itemsOf(Display* display, Window window, const char* property, Atom type, long most)
{
    Atom actualType = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* value = nullptr;
    XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, most, False, type,
                       &actualType, &format, &count, &rest, &value);
    if (value == nullptr)
        return {};
    const auto* const items = reinterpret_cast<const unsigned long*>(value); // Xlib uses a long for each
    const QVector<unsigned long> copy(items, items + count);
    XFree(value);
    return copy;
}

} // namespace

XScreen::~XScreen()
{
    shut();
}

void XScreen::shut()
{
    if (display != nullptr)
        XCloseDisplay(display);
    display = nullptr;
}

bool XScreen::open(const QString& name)
{
    XSetErrorHandler(ignoreError);
    display = XOpenDisplay(qPrintable(name));
    if (display == nullptr)
        return false;
    int unused = 0;
    return XTestQueryExtension(display, &unused, &unused, &unused, &unused) == True;
}

bool XScreen::hasWindowManager()
{
    const ::Window root = DefaultRootWindow(display);
    if (itemsOf(display, root, "_NET_SUPPORTING_WM_CHECK", XA_WINDOW, 1).size() != 1)
        return false;
    // It says so before it looks after windows: one that asks to be shown in between may stay hidden for
    // good.
    if (trial == 0)
        trial = XCreateSimpleWindow(display, root, 0, 0, 8, 8, 0, 0, 0);
    XMapWindow(display, trial);
    if (!originOf(trial))
        return false;
    XDestroyWindow(display, std::exchange(trial, 0));
    XSync(display, False);
    return true;
}

std::optional<QPoint> XScreen::originOf(Window window)
{
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) == 0 || attributes.map_state != IsViewable)
        return std::nullopt;
    int x = 0;
    int y = 0;
    ::Window child = 0;
    if (XTranslateCoordinates(display, window, DefaultRootWindow(display), 0, 0, &x, &y, &child) == 0)
        return std::nullopt;
    return QPoint(x, y);
}

QSize XScreen::sizeOf(Window window)
{
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) == 0)
        return {};
    return {attributes.width, attributes.height};
}

QVector<QImage> XScreen::icons(Window window)
{
    constexpr long most = 1L << 20; // far above any icon
    const QVector<unsigned long> items = itemsOf(display, window, "_NET_WM_ICON", XA_CARDINAL, most);
    QVector<QImage> icons;
    for (auto next = items.begin(); items.end() - next >= 2;) { // width, height, then line after line
        const auto width = static_cast<int>(*next++);
        const auto height = static_cast<int>(*next++);
        QImage image(width, height, QImage::Format_ARGB32);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width && next != items.end(); ++x)
                image.setPixel(x, y, static_cast<QRgb>(*next++));
        icons += image;
    }
    return icons;
}

QString XScreen::classOf(Window window)
{
    XClassHint hint{};
    if (XGetClassHint(display, window, &hint) == 0)
        return {};
    const QString name(hint.res_class);
    XFree(hint.res_name);
    XFree(hint.res_class);
    return name;
}

bool XScreen::pointAt(QPoint position, Window window)
{
    constexpr int deepest = 16; // frames of the window manager, the window, its native children
    XTestFakeMotionEvent(display, -1, position.x(), position.y(), CurrentTime);
    XSync(display, False);
    ::Window under = DefaultRootWindow(display);
    for (int depth = 0; depth < deepest && under != 0; ++depth) {
        if (under == window)
            return true;
        ::Window root = 0;
        ::Window child = 0;
        int x = 0;
        int y = 0;
        unsigned int mask = 0;
        if (XQueryPointer(display, under, &root, &child, &x, &y, &x, &y, &mask) == 0)
            return false;
        under = child;
    }
    return false;
}

bool XScreen::hasFocus(Window window)
{
    ::Window focus = 0;
    int unused = 0;
    return XGetInputFocus(display, &focus, &unused) != 0 && focus == window;
}

void XScreen::click()
{
    XTestFakeButtonEvent(display, Button1, True, CurrentTime);
    XTestFakeButtonEvent(display, Button1, False, CurrentTime);
    XSync(display, False);
}

void XScreen::pressKeys(std::initializer_list<unsigned long> symbols)
{
    for (const unsigned long symbol : symbols)
        XTestFakeKeyEvent(display, XKeysymToKeycode(display, symbol), True, CurrentTime);
    for (auto symbol = std::rbegin(symbols); symbol != std::rend(symbols); ++symbol)
        XTestFakeKeyEvent(display, XKeysymToKeycode(display, *symbol), False, CurrentTime);
    XSync(display, False);
}

void XScreen::move(Window window, QPoint position)
{
    XMoveWindow(display, window, position.x(), position.y());
    XSync(display, False);
}

void XScreen::resize(Window window, QSize size)
{
    XResizeWindow(display, window, static_cast<unsigned>(size.width()), static_cast<unsigned>(size.height()));
    XSync(display, False);
}

void XScreen::setResources(const QByteArray& resources)
{
    constexpr int bitsOfAnItem = 8;
    XChangeProperty(display, DefaultRootWindow(display), XA_RESOURCE_MANAGER, XA_STRING, bitsOfAnItem,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(resources.constData()),
                    static_cast<int>(resources.size()));
    XSync(display, False);
}

void XScreen::close(Window window)
{
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, "_NET_CLOSE_WINDOW", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = CurrentTime;
    event.xclient.data.l[1] = 2; // asked for by the user
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureNotifyMask | SubstructureRedirectMask,
               &event);
    XSync(display, False);
}

QImage XScreen::picture()
{
    if (display == nullptr)
        return {};
    const ::Window root = DefaultRootWindow(display);
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, root, &attributes) == 0)
        return {};
    XImage* const image = XGetImage(display, root, 0, 0, static_cast<unsigned>(attributes.width),
                                    static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    if (image == nullptr || image->bits_per_pixel != 32)
        return {};
    const QImage seen(reinterpret_cast<const uchar*>(image->data), image->width, image->height,
                      image->bytes_per_line, QImage::Format_RGB32);
    QImage copy = seen.copy();
    XDestroyImage(image);
    return copy;
}
