#include "Browser.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <sstream>
#include <system_error>
#include <vector>

#if !defined(_WIN32)
#include <unistd.h>
#endif

#include <fmt/format.h>

#include "base/Paths.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

#if defined(_WIN32)
constexpr char pathSeparator = ';';
constexpr const char* names[] = {"chromium.exe", "chrome.exe", "msedge.exe"};
constexpr const char* places[] = {
    "C:\\Program Files\\Google\\Chrome\\Application\\chrome.exe",
    "C:\\Program Files (x86)\\Microsoft\\Edge\\Application\\msedge.exe",
};
#else
constexpr char pathSeparator = ':';
constexpr const char* names[] = {"chromium", "chromium-browser", "google-chrome",
                                 "google-chrome-stable", "microsoft-edge"};
constexpr const char* places[] = {
    "/Applications/Chromium.app/Contents/MacOS/Chromium",
    "/Applications/Google Chrome.app/Contents/MacOS/Google Chrome",
    "/Applications/Microsoft Edge.app/Contents/MacOS/Microsoft Edge",
};
#endif

std::vector<fs::path> searchPath()
{
    std::vector<fs::path> folders;
    const char* const path = std::getenv("PATH");
    std::istringstream stream(path ? path : "");
    for (std::string folder; std::getline(stream, folder, pathSeparator);)
        folders.push_back(base::pathFromUtf8(folder));
    return folders;
}

/// A folder for the browser's own files, which is gone with the object.
class Profile
{
  public:
    Profile()
    {
        std::random_device random;
        std::error_code error;
        const fs::path temporary = fs::temp_directory_path(error);
        while (!error && _folder.empty())
            if (const fs::path folder =
                    temporary / fmt::format("vyr-mtlx-browser-{:08x}", random());
                fs::create_directory(folder, error))
                _folder = folder;
    }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ~Profile()
    {
        std::error_code ignored;
        if (!_folder.empty())
            fs::remove_all(_folder, ignored);
    }

    /// Empty when it could not be made.
    const fs::path& folder() const { return _folder; }

  private:
    fs::path _folder;
};

/// A word of a command line as it stands.
std::string quoted(const fs::path& path)
{
    const std::string text = base::utf8FromPath(path);
#if defined(_WIN32)
    return '"' + text + '"';
#else
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + '\'';
#endif
}

std::string commandLine(const fs::path& browser, const std::string& url, const fs::path& profile)
{
    std::string command =
        quoted(browser) +
        " --headless --dump-dom --no-first-run --disable-extensions --disable-sync"
        " --disable-background-networking --disable-component-update"
        " --enable-unsafe-swiftshader --user-data-dir=" +
        quoted(profile);
#if defined(_WIN32)
    return '"' + command + " \"" + url + "\" 2>NUL\"";
#else
    // Its sandbox does not work for root, and the page runs nothing but what came with this program.
    if (::geteuid() == 0)
        command += " --no-sandbox";
    return command + " '" + url + "' 2>/dev/null";
#endif
}

struct ClosePipe
{
    void operator()(std::FILE* pipe) const
    {
#if defined(_WIN32)
        _pclose(pipe);
#else
        ::pclose(pipe);
#endif
    }
};

std::FILE* openPipe(const std::string& command)
{
#if defined(_WIN32)
    return _wpopen(base::wideFromUtf8(command).c_str(), L"rb");
#else
    return ::popen(command.c_str(), "r");
#endif
}

} // namespace

fs::path findBrowser()
{
    const std::vector<fs::path> folders = searchPath();
    for (const char* const name : names)
        for (const fs::path& folder : folders)
            if (!folder.empty() && base::isFile(folder / name))
                return folder / name;
    for (const char* const place : places)
        if (base::isFile(place))
            return place;
    return {};
}

std::string printPage(const fs::path& browser, const std::string& url,
                      const std::function<void(std::string_view)>& take)
{
    const Profile profile;
    if (profile.folder().empty())
        return "there is no folder for temporary files";
    const std::unique_ptr<std::FILE, ClosePipe> pipe(
        openPipe(commandLine(browser, url, profile.folder())));
    if (!pipe)
        return base::utf8FromPath(browser) + " cannot be started";
    std::array<char, 65536> buffer{};
    for (std::size_t count = 0;
         (count = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) > 0;)
        take({buffer.data(), count});
    return {};
}

} // namespace vyr::cli
