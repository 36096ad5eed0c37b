#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vyr::assetlib
{

/// Memory for things that go all at once. Nothing in it is destroyed, so that it must own nothing
/// outside. Filled by one thread.
class Arena
{
  public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    /// A copy of the items.
    template <class Items> auto keep(const Items& items)
    {
        using Item = std::remove_cvref_t<decltype(*std::data(items))>;
        const std::size_t count = std::size(items);
        // Nothing has a place of its own too.
        const std::size_t size = std::max<std::size_t>(count, 1) * sizeof(Item);
        auto* kept = static_cast<Item*>(_memory.allocate(size, alignof(Item)));
        std::uninitialized_copy_n(std::data(items), count, kept);
        return std::span<Item>(kept, count);
    }

    std::string_view keepText(std::string_view text)
    {
        const auto kept = keep(text);
        return {kept.data(), kept.size()};
    }

    template <class Thing, class... Arguments> Thing* make(Arguments&&... arguments)
    {
        void* place = _memory.allocate(sizeof(Thing), alignof(Thing));
        return ::new (place) Thing(std::forward<Arguments>(arguments)...);
    }

  private:
    static constexpr std::size_t firstBlock = std::size_t{1} << 16;
    std::pmr::monotonic_buffer_resource _memory{firstBlock};
};

} // namespace vyr::assetlib
