// bench-start PROGRAM
// Starts a program, waits for its first window, ends it and prints "mapped=T painted=T", in ms from the start
// of the process: until the window is there, and until it shows something. The screen behind it is black.

#include <xcb/xcb.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

namespace {

using Clock = std::chrono::steady_clock;

template<typename T> using Owned = std::unique_ptr<T, decltype(&std::free)>;

template<typename T> Owned<T> owned(T* reply)
{
    return {reply, &std::free};
}

constexpr auto longestStart = std::chrono::seconds(20);

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "bench-start: %s\n", what);
    std::exit(1);
}

class Screen
{
public:
    Screen() : display(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(display) != 0)
            fail("no X server");
        root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        const auto cookie = xcb_change_window_attributes_checked(display, root, XCB_CW_EVENT_MASK, &events);
        if (owned(xcb_request_check(display, cookie)))
            fail("cannot watch the windows");
    }

    /// The window that was mapped since, if one was. Waits up to `ms` for the server to say something.
    std::optional<xcb_window_t> mappedWindow(int ms)
    {
        pollfd incoming{xcb_get_file_descriptor(display), POLLIN, 0};
        poll(&incoming, 1, ms);
        while (const auto event = owned(xcb_poll_for_event(display)))
            if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY)
                return reinterpret_cast<const xcb_map_notify_event_t*>(event.get())->window;
        return std::nullopt;
    }

    /// Whether the window's upper left corner is not black any more.
    bool isPainted(xcb_window_t window)
    {
        constexpr std::uint32_t allPlanes = ~0U;
        const auto cookie = xcb_get_image(display, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 2, 2, 1, 1, allPlanes);
        const auto image = owned(xcb_get_image_reply(display, cookie, nullptr));
        return image && xcb_get_image_data(image.get())[0] != 0;
    }

private:
    xcb_connection_t* display;
    xcb_window_t root = XCB_NONE;
};

struct Start
{
    Clock::time_point begun = Clock::now();
    std::optional<xcb_window_t> window;
    double mapped = 0;
    bool isPainted = false;

    [[nodiscard]] double age() const
    {
        return std::chrono::duration<double, std::milli>(Clock::now() - begun).count();
    }
};

void waitForWindow(Screen& screen, Start& start)
{
    constexpr int pollMs = 1000;
    while (!start.window && Clock::now() - start.begun < longestStart)
        start.window = screen.mappedWindow(pollMs);
    start.mapped = start.age();
    while (start.window && !start.isPainted && Clock::now() - start.begun < longestStart)
        start.isPainted = screen.isPainted(*start.window);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        fail("which program?");
    Screen screen;
    Start start;
    pid_t program = 0;
    if (posix_spawn(&program, argv[1], nullptr, nullptr, argv + 1, environ) != 0)
        fail("cannot start the program");
    waitForWindow(screen, start);
    const double painted = start.age();
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
    if (!start.isPainted)
        fail("no window came");
    std::printf("mapped=%.2f painted=%.2f\n", start.mapped, painted);
    return 0;
}
