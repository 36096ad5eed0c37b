#include "Progress.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "Console.h"
#include "Json.h"

namespace vyr::cli
{
namespace
{

using std::chrono::seconds;
using namespace std::chrono_literals;

constexpr std::size_t widestBar = 30;
constexpr std::size_t narrowestBar = 5;
constexpr auto redrawTime = 50ms;
/// Programs that read lines need fewer than eyes.
constexpr auto lineTime = 200ms;

/// Some terminals only print what they are sent.
bool canRedraw()
{
    const char* const kind = std::getenv("TERM");
    return errorsOnTerminal() && (!kind || std::string_view(kind) != "dumb");
}

std::string minutes(seconds time)
{
    const auto rest = std::to_string((time % 1min).count());
    return std::to_string(time / 1min) + (rest.size() < 2 ? ":0" : ":") + rest;
}

} // namespace

std::optional<seconds> TimeLeft::after(std::size_t done, std::size_t total, Clock::time_point now)
{
    if (done == 0 || done >= total)
        return std::nullopt;
    const double rest = static_cast<double>(total - done) / static_cast<double>(done);
    const auto end = now + std::chrono::duration_cast<Clock::duration>((now - _begin) * rest);
    if (now - _noted >= 1s)
    {
        const auto shift = _end ? std::chrono::abs(end - *_end) : end - now;
        _stable = _end && shift * 4 <= end - now + 1s;
        _end = end;
        _noted = now;
    }
    return _stable ? std::optional(std::chrono::ceil<seconds>(end - now)) : std::nullopt;
}

Progress::Progress(ProgressForm form, std::size_t total)
    : _form(total == 0 || (form == ProgressForm::Bar && !canRedraw()) ? ProgressForm::None : form),
      _total(total), _timeLeft(TimeLeft::Clock::now())
{
}

Progress::~Progress()
{
    clear();
}

void Progress::clear()
{
    if (_shown)
        drawOnTerminal("\r\x1b[K");
    _shown = false;
}

void Progress::show(std::size_t done, std::size_t failed)
{
    if (_form == ProgressForm::None)
        return;
    const auto now = TimeLeft::Clock::now();
    const auto left = _timeLeft.after(done, _total, now);
    if (_form == ProgressForm::Bar)
    {
        if (_shown && now - _told < redrawTime)
            return;
        draw(done, left);
    }
    else
    {
        if (done < _total && now - _told < lineTime)
            return;
        const JsonDocument line;
        const JsonNode progress = line.root().addObject("progress");
        progress.addCount("done", static_cast<std::int64_t>(done));
        progress.addCount("total", static_cast<std::int64_t>(_total));
        progress.addCount("failed", static_cast<std::int64_t>(failed));
        if (left)
            progress.addCount("secondsLeft", left->count());
        drawOnTerminal(line.line());
    }
    _told = now;
}

void Progress::draw(std::size_t done, std::optional<seconds> left)
{
    std::string text = std::to_string(done) + "/" + std::to_string(_total);
    if (left)
        text += "  " + minutes(*left) + " left";
    // The last column stays free: some terminals begin a new line when it is used.
    const std::size_t width = terminalWidth() - 1;
    if (text.size() > width)
        return;
    constexpr std::size_t around = 3; // brackets and a space
    if (const std::size_t room = width - std::min(width, text.size() + around);
        room >= narrowestBar)
    {
        const std::size_t bar = std::min(room, widestBar);
        const std::size_t filled = std::min(done, _total) * bar / _total;
        text = "[" + std::string(filled, '#') + std::string(bar - filled, ' ') + "] " + text;
    }
    drawOnTerminal("\r" + text + "\x1b[K");
    _shown = true;
}

} // namespace vyr::cli
