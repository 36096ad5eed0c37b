#include "baking/ImageRows.h"

#include <algorithm>
#include <atomic>
#include <cfenv>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <mutex>

#include <OpenImageIO/parallel.h>
#include <fmt/format.h>

#include "base/Paths.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace vyr::MaterialTranslation::baking
{

namespace
{

constexpr std::int64_t minimumPixels = 1024;
/// More blocks than threads, so that a thread that was held up does not hold up the rest.
constexpr std::int64_t blocksPerThread = 4;

/// The default floating-point environment for the life of the object.
class FloatEnvironment
{
  public:
    FloatEnvironment()
    {
        std::fegetenv(&_saved);
        std::fesetenv(FE_DFL_ENV);
    }
    ~FloatEnvironment() { std::fesetenv(&_saved); }
    FloatEnvironment(const FloatEnvironment&) = delete;
    FloatEnvironment& operator=(const FloatEnvironment&) = delete;

  private:
    std::fenv_t _saved{};
};

/// Filling fresh memory costs more in page faults than in computing. Huge pages, where the system has them
/// to give, take most of that away; this is a hint and may do nothing.
void adviseHugePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size)
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr std::uintptr_t page = std::uintptr_t{2} << 20;
    // Smaller blocks come from the heap, whose pages are in use already.
    constexpr std::size_t largeAllocation = std::size_t{32} << 20;
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = (address + page - 1) / page * page;
    const std::uintptr_t end = (address + size) / page * page;
    if (size >= largeAllocation && begin < end)
        madvise(static_cast<std::byte*>(memory) + (begin - address), end - begin, MADV_HUGEPAGE);
#endif
}

} // namespace

BakeError::BakeError(const std::filesystem::path& file, const std::string& reason)
    : std::runtime_error(fmt::format("{}: {}", base::utf8FromPath(file), reason))
{
}

void forEachRowBlock(int width, int height, int threads,
                     const std::function<void(int yBegin, int yEnd)>& task)
{
    if (width <= 0 || height <= 0)
        return;
    OIIO::paropt options(threads, OIIO::paropt::SplitDir::Y, minimumPixels);
    options.resolve();
    const std::int64_t blocks =
        options.maxthreads() <= 1 ? 1 : options.maxthreads() * blocksPerThread;
    const std::int64_t rows =
        std::max((height + blocks - 1) / blocks, (minimumPixels + width - 1) / width);
    const auto begin = [&](std::int64_t i)
    { return static_cast<int>(std::min<std::int64_t>(i * rows, height)); };
    forEachTask(static_cast<int>((height + rows - 1) / rows), threads,
                [&](int i) { task(begin(i), begin(i + 1)); });
}

void forEachTask(int count, int threads, const std::function<void(int)>& task)
{
    OIIO::paropt options(threads, OIIO::paropt::SplitDir::Y, 1);
    options.resolve();
    std::atomic<int> next{0};
    std::mutex mutex;
    std::exception_ptr failure;
    const auto work = [&](std::int64_t, std::int64_t)
    {
        const FloatEnvironment environment;
        try
        {
            for (int i = next++; i < count; i = next++)
                task(i);
        }
        catch (...)
        {
            next = count;
            const std::lock_guard lock(mutex);
            if (!failure)
                failure = std::current_exception();
        }
    };
    const int workers = std::min(options.maxthreads(), count);
    if (workers <= 1)
        work(0, 1);
    else
        OIIO::parallel_for_chunked(0, workers, 1, work, options);
    if (failure)
        std::rethrow_exception(failure);
}

OIIO::ImageBuf uninitializedImage(const char* name, const OIIO::ImageSpec& spec)
{
    OIIO::ImageBuf image;
    if (spec.width <= 0 || spec.height <= 0)
        return image;
    image.reset(name, spec, OIIO::InitializePixels::No);
    if (image.localpixels() == nullptr)
    {
        image.geterror(); // else it is printed
        throw std::runtime_error(fmt::format("not enough memory for an image of {} x {} pixels",
                                             spec.width, spec.height));
    }
    adviseHugePages(image.localpixels(), spec.image_bytes());
    return image;
}

} // namespace vyr::MaterialTranslation::baking
