#include "Console.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace vyr::cli
{
namespace
{

constexpr std::size_t barWidth = 30;
constexpr std::chrono::milliseconds redrawTime(50);

bool isTerminal(std::FILE* stream)
{
#if defined(_WIN32)
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

} // namespace

void prepareStandardStreams()
{
#if defined(SIGPIPE)
    std::signal(SIGPIPE, SIG_IGN);
#endif
#if defined(SIGXFSZ)
    // A file that may not grow further fails its material, not the run.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
#if defined(_WIN32)
    SetConsoleOutputCP(CP_UTF8);
#endif
}

std::string oneLine(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string line;
    line.reserve(text.size());
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n')
            line += "\\n";
        else if (byte < 0x20 || byte == 0x7f)
            line.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
        else
            line += c;
    }
    return line;
}

void complain(std::string_view line)
{
    complainAsIs(oneLine(line) + '\n');
}

void complainAsIs(std::string_view lines)
{
    std::fwrite(lines.data(), 1, lines.size(), stderr);
    std::fflush(stderr);
}

void Results::write(std::string_view text)
{
    if (!_delivered)
        return;
    errno = 0;
    _delivered =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!_delivered && errno != EPIPE)
        complain("vyr-mtlx: standard output: " + std::generic_category().message(errno));
}

bool Results::onTerminal()
{
    static const bool terminal = isTerminal(stdout);
    return terminal;
}

Progress::Progress(bool wanted, std::size_t total)
    : _enabled(wanted && total > 0 && isTerminal(stderr)), _total(total)
{
}

Progress::~Progress()
{
    clear();
}

void Progress::clear()
{
    if (_shown)
        complainAsIs("\r\x1b[K");
    _shown = false;
}

void Progress::show(std::size_t done)
{
    const auto now = std::chrono::steady_clock::now();
    if (!_enabled || (_shown && now - _drawn < redrawTime))
        return;
    const std::size_t filled = std::min(done, _total) * barWidth / _total;
    complainAsIs("\r[" + std::string(filled, '#') + std::string(barWidth - filled, ' ') + "] " +
                 std::to_string(done) + "/" + std::to_string(_total));
    _shown = true;
    _drawn = now;
}

} // namespace vyr::cli
