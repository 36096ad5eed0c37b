#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "CommandLine.h"
#include "Console.h"
#include "Documents.h"
#include "PreviewPage.h"
#include "PreviewPictures.h"
#include "base/Paths.h"
#include "batch/Refusal.h"
#include "batch/Source.h"

// A page of materials: converts them and overlays into folders of the page, and writes what it shows.
namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

/// How often files are looked at, and how long they have to stay as they are: editors write in several steps.
constexpr std::chrono::milliseconds watchTime(250);

/// Size and time of files; those of one that is not there are 0.
using FileStates = std::map<std::string, std::pair<std::uintmax_t, fs::file_time_type>>;

void addState(FileStates& states, const std::string& file)
{
    std::error_code error;
    const fs::path path = base::pathFromUtf8(file);
    const auto size = fs::file_size(path, error);
    const auto time = error ? fs::file_time_type() : fs::last_write_time(path, error);
    states.try_emplace(file, error ? 0 : size, error ? fs::file_time_type() : time);
}

/// The same files as they are now.
FileStates stateNow(const FileStates& states)
{
    FileStates now;
    for (const auto& [file, state] : states)
        addState(now, file);
    return now;
}

/// Adds the images that the files name.
void addImages(FileStates& states, const batch::Source& source)
{
    std::vector<std::string> images;
    for (const assetlib::Material& material : source.library.materials())
        std::ranges::move(batch::imagesOf(*material.asset), std::back_inserter(images));
    for (const assetlib::Overlay& overlay : source.library.overlays())
        std::ranges::move(batch::imagesOf(overlay), std::back_inserter(images));
    for (const std::string& image : images)
        addState(states, image);
}

class Preview
{
  public:
    explicit Preview(const PreviewCommand& command)
        : _command(command), _page(base::pathFromUtf8(command.convert.output))
    {
    }

    /// Converts, and writes the page.
    ExitStatus make()
    {
        // Before they are read: what changes from now on is converted again.
        _shown.clear();
        for (const std::string& file : _command.convert.files)
            addState(_shown, file);
        const batch::Source source = loadFiles(_command.convert);
        addImages(_shown, source);
        _items.clear();
        ExitStatus status = ExitStatus::Done;
        if (!source.library.materials().empty())
            status = convert(_command.convert, "documents");
        if (!source.library.overlays().empty() && status <= ExitStatus::SomeFailed)
            status = std::max(status, convert(OverlayCommand{_command.convert}, "overlays"));
        if (status <= ExitStatus::SomeFailed)
            writePieces(_page, _items, settings(source));
        return status;
    }

    bool drawPictures() const { return writePictures(_page, _items, _command.browser); }

    /// Makes the page anew whenever a file changes, until somebody asks to stop.
    void watch()
    {
        FileStates before = _shown;
        while (!stopRequested())
        {
            std::this_thread::sleep_for(watchTime);
            FileStates now = stateNow(_shown);
            const bool isStill = now == before;
            before = std::move(now);
            if (isStill && before != _shown)
            {
                makeOrTell();
                before = _shown;
            }
        }
    }

  private:
    /// What is wrong with a change is told, and the next one is waited for.
    void makeOrTell()
    {
        try
        {
            make();
            return;
        }
        catch (const batch::Refusal& refusal)
        {
            complainOf(refusal);
        }
        catch (const std::exception& error)
        {
            complain(std::string("vyr-mtlx: ") + error.what());
        }
        tellPage(_page, "The last change could not be converted; the terminal says why.");
    }

    template <class Command> ExitStatus convert(Command command, const char* folder)
    {
        const fs::path output = _page / folder;
        const fs::path report = output / "report.json";
        command.output = base::utf8FromPath(output);
        command.report = base::utf8FromPath(report);
        command.printDocuments = false;
        command.replace = true; // The folder is the page's own.
        command.sync = false;
        const ExitStatus status = run(command);
        if (status <= ExitStatus::SomeFailed)
            std::ranges::move(itemsOfReport(report), std::back_inserter(_items));
        return status;
    }

    PageSettings settings(const batch::Source& source) const
    {
        const std::size_t count =
            source.library.materials().size() + source.library.overlays().size();
        PageSettings settings;
        settings.limits = _command.convert.limits;
        settings.workers = batch::workersFor(_command.convert, count);
        settings.watch = _command.watch;
        settings.about = std::to_string(count) + (count == 1 ? " material of" : " materials of");
        for (const std::string& file : _command.convert.files)
            settings.about += ' ' + base::utf8FromPath(base::pathFromUtf8(file).filename());
        return settings;
    }

    const PreviewCommand& _command;
    fs::path _page;
    std::vector<PageItem> _items;
    /// What the page shows was made of.
    FileStates _shown;
};

} // namespace

ExitStatus run(const PreviewCommand& command)
{
    const fs::path folder = base::pathFromUtf8(command.convert.output);
    if (std::ranges::find(command.convert.files, standardStream) != command.convert.files.end())
        throw batch::Refusal(
            "a page is made of files, which are read more than once, not of standard input");
    checkCanHoldPage(folder);
    Preview preview(command);
    ExitStatus status = preview.make();
    if (status > ExitStatus::SomeFailed)
        return status;
    writeViewer(folder);
    if (!canDraw())
        complain(
            "vyr-mtlx: the page is without pictures: there is no share/vyr_mtlx_converter/painter "
            "beside the program");
    if (command.pictures && !preview.drawPictures())
        status = ExitStatus::SomeFailed;
    Results results;
    results.write(base::utf8FromPath(folder / "index.html") + '\n');
    if (!results.delivered())
        status = ExitStatus::SomeFailed;
    if (command.watch)
        preview.watch();
    return status;
}

} // namespace vyr::cli
