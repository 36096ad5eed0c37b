#include "Loading.h"

#include <algorithm>
#include <unordered_map>

#include "base/Text.h"

namespace vyr::assetlib
{

namespace
{

using Edges = std::unordered_map<const Asset*, std::vector<const Connection*>>;

/// Walks along the connections from asset to asset and reports each that closes a circle. It keeps its
/// own stack, since chains of connections may be as long as a file.
class CycleSearch
{
  public:
    CycleSearch(const Edges& edges, std::vector<Report>& reports) : _edges(edges), _reports(reports)
    {
    }

    void walkFrom(const Asset& start)
    {
        enter(start);
        while (!_path.empty())
            step();
    }

  private:
    struct Step
    {
        const Asset* asset;
        std::size_t next = 0;
    };
    enum class State
    {
        New,
        OnPath,
        Done,
    };

    void enter(const Asset& asset)
    {
        State& state = _states[&asset];
        if (state != State::New)
            return;
        state = State::OnPath;
        _path.push_back({&asset});
    }

    void step()
    {
        Step& last = _path.back();
        const auto edges = _edges.find(last.asset);
        if (edges == _edges.end() || last.next == edges->second.size())
        {
            _states[last.asset] = State::Done;
            _path.pop_back();
            return;
        }
        const Connection& connection = *edges->second[last.next++];
        if (_states[connection.to] == State::OnPath)
            report(connection);
        else
            enter(*connection.to);
    }

    /// An inline asset has one connection to it, so what closes a circle names an id.
    void report(const Connection& closing)
    {
        constexpr std::size_t longestCycle = 8;
        const auto start = std::find_if(_path.begin(), _path.end(),
                                        [&](const Step& step) { return step.asset == closing.to; });
        std::string ids;
        std::size_t count = 0;
        for (auto step = start; step != _path.end(); ++step)
        {
            const std::string_view id = step->asset->content().id;
            if (!id.empty() && ++count <= longestCycle)
                ids += base::inQuotes(id) + " > ";
        }
        if (count > longestCycle)
            ids += "... > ";
        _reports[closing.file].error(closing.token, "expected connections without a cycle, found " +
                                                        ids + base::inQuotes(closing.id));
    }

    const Edges& _edges;
    std::vector<Report>& _reports;
    std::unordered_map<const Asset*, State> _states;
    std::vector<Step> _path;
};

/// The first asset of each id; reports the others.
std::unordered_map<std::string_view, const AssetOrigin*> indexOf(
    const std::vector<AssetOrigin>& origins, std::vector<Report>& reports)
{
    std::unordered_map<std::string_view, const AssetOrigin*> index(origins.size());
    for (const AssetOrigin& origin : origins)
        if (const auto [first, isNew] = index.try_emplace(origin.id, &origin); !isNew)
            reports[origin.file].error(origin.token,
                                       "expected an id of its own, " + base::inQuotes(origin.id) +
                                           " belongs to " + reports[first->second->file].file() +
                                           ": " + first->second->pointer);
    return index;
}

void resolve(Loading& loading, std::vector<Report>& reports, bool reportMissing)
{
    const auto index = indexOf(loading.origins, reports);
    for (Connection& connection : loading.connections)
    {
        if (!connection.to)
        {
            if (const auto origin = index.find(connection.id); origin != index.end())
                connection.to = origin->second->asset;
            else if (reportMissing)
                reports[connection.file].error(connection.token,
                                               "expected the id of an asset, no loaded file has " +
                                                   base::inQuotes(connection.id));
        }
        *connection.slot = connection.to;
    }
}

} // namespace

void connect(Loading& loading, std::vector<Report>& reports, bool reportMissing)
{
    resolve(loading, reports, reportMissing);
    Edges edges;
    for (const Connection& connection : loading.connections)
    {
        if (connection.to)
            edges[connection.from].push_back(&connection);
    }
    CycleSearch search(edges, reports);
    for (const Asset* asset : loading.assets)
        if (edges.contains(asset))
            search.walkFrom(*asset);
}

} // namespace vyr::assetlib
