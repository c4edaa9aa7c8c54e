// Writes the command line that it was started with to the file that TALVEX_OPENED names.

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string utf8(const wchar_t* text)
{
    std::string all(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, all.data(), static_cast<int>(all.size()), nullptr, nullptr);
    all.pop_back(); // the zero behind it
    return all;
}

} // namespace

int main()
{
    const char* const told = std::getenv("TALVEX_OPENED");
    if (told == nullptr)
        return EXIT_FAILURE;
    const std::string partial = std::string(told) + ".partial";
    std::FILE* const file = std::fopen(partial.c_str(), "wb");
    if (file == nullptr)
        return EXIT_FAILURE;
    std::fputs(utf8(GetCommandLineW()).c_str(), file);
    std::fclose(file);
    return std::rename(partial.c_str(), told) == 0 ? EXIT_SUCCESS : EXIT_FAILURE; // there once it is whole
}
