// What Convert costs for a decal or a thread beside making the same text by MaterialX's interface alone: the ratio is
// the figure, at most 1.25.

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialTranslation/ThreadInfo.h>

#include "ByHand.h"
#include "PairedTiming.h"

namespace vyr::benchmarks
{

namespace
{

namespace mt = MaterialTranslation;
namespace mx = MaterialX;

using kelvor::platform::core::string::IString;
using kelvor::platform::core::string::UTF8String;

class Text final : public IString
{
  public:
    void Assign(const UTF8String& assigned) override { text = assigned.str(); }
    std::string text;
};

mt::TextureInfo image()
{
    mt::TextureInfo texture;
    texture.path = VYR_IMAGE;
    texture.realWorldScale = {25.13f, 10.1f};
    texture.rotation = 12.5f;
    return texture;
}

std::string convert(mt::MaterialXConverter& converter, mt::ConversionType type, void* payload)
{
    mt::MaterialInfo info;
    info.name = "Overlay";
    info.type = type;
    info.payload = payload;
    Text text;
    converter.Convert(info, text);
    return std::move(text.text);
}

void measure(benchmark::State& state, mt::ConversionType type, void* payload)
{
    mt::ConverterOptions options;
    mt::MaterialXConverter converter(options);
    const std::string text = convert(converter, type, payload);
    const HandDocument hand = contentsOf(text);
    if (writeByHand(hand) != text)
        throw std::runtime_error("the document by hand is not that of the converter:\n" +
                                 writeByHand(hand));
    constexpr int count = 50;
    PairedTiming timing(1);
    for (auto step : state)
        state.SetIterationTime(timing.measure(
            0,
            [&]
            {
                for (int i = 0; i < count; ++i)
                    benchmark::DoNotOptimize(convert(converter, type, payload));
            },
            [&]
            {
                for (int i = 0; i < count; ++i)
                    benchmark::DoNotOptimize(writeByHand(hand));
            }));
    state.counters["ratio"] = timing.ratio();
    state.counters["overlays/s"] = count / timing.ours();
    state.counters["by hand/s"] = count / timing.floor();
}

void decal(benchmark::State& state, int kind)
{
    mt::DecalInfo info;
    info.kind = kind;
    info.value1 = 255;
    info.texture = image();
    measure(state, mt::ConversionType::Decal, &info);
}
BENCHMARK_CAPTURE(decal, by_alpha, 1)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decal, by_key, 2)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void thread(benchmark::State& state, bool isWhole)
{
    mt::ThreadInfo info;
    info.threadTexture = std::make_shared<mt::TextureInfo>(image());
    if (isWhole)
    {
        info.flag = true;
        info.normalTexture = info.threadTexture;
        info.baseMaterialColor =
            std::make_shared<std::array<float, 4>>(std::array{0.51f, 0.52f, 0.53f, 1.0f});
        info.startClippingPlane =
            std::make_shared<std::array<float, 4>>(std::array{0.5f, 0.25f, 1.0f, 0.125f});
        info.endClippingPlane = info.startClippingPlane;
    }
    measure(state, mt::ConversionType::Thread, &info);
}
BENCHMARK_CAPTURE(thread, image_alone, false)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(thread, with_everything, true)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace vyr::benchmarks
