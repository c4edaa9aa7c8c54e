// Text into a standard stream as a library may do it that takes the C++ standard at its word: a null text is
// undefined there, and libstdc++'s kind answer (the stream fails) is not every library's.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <thread>

/// Takes the place of libstdc++'s own, which is never inlined.
std::ostream& insertText(std::ostream& stream,
                         const char* text) __asm__("_ZStlsISt11char_traitsIcEERSt13basic_ostreamIcT_ES5_PKc");

std::ostream& insertText(std::ostream& stream, const char* text)
{
    if (text == nullptr) {
        std::fputs("a null text was inserted into a stream\n", stderr);
        std::abort();
    }
    stream.write(text, static_cast<std::streamsize>(std::strlen(text)));
    std::this_thread::yield(); // lets another thread in between, unless something keeps it out
    return stream;
}
