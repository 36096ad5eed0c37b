// The inputs that fuzzing has found, and some to begin with, without a fuzzer. VYR_TARGET is one of the functions of
// tools/attack/fuzz/Targets.h, VYR_INPUTS the folder of its inputs.

#include <filesystem>
#include <map>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "Targets.h"
#include "support/TemporaryFolder.h"

namespace vyr::attack
{

namespace
{

/// By their names, in the order of these.
std::map<std::string, std::string> inputs()
{
    std::map<std::string, std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(VYR_INPUTS))
        found[entry.path().filename().string()] = support::readFile(entry.path());
    return found;
}

TEST(Fuzz, KeptInputs)
{
    ASSERT_FALSE(inputs().empty());
    for (const auto& [name, bytes] : inputs())
        EXPECT_EQ(VYR_TARGET(bytes), "") << name;
}

/// One to four changes: bytes flipped, cut out, doubled or moved. Plain arithmetic on the generator's numbers, since
/// the standard distributions differ from one library to the next.
std::string mutated(std::string text, std::mt19937& random)
{
    for (std::size_t changes = 1 + random() % 4; changes > 0; --changes)
    {
        const std::size_t at = random() % (text.size() + 1);
        const std::string part = text.substr(at, random() % 40);
        const std::size_t kind = random() % 3;
        if (kind == 0)
            text.replace(at, 1, 1, static_cast<char>(random()));
        else if (kind == 1)
            text.erase(at, part.size());
        else
            text.insert(random() % (text.size() + 1), part);
    }
    return text;
}

TEST(Fuzz, InputsThatAreAlmostThose)
{
    std::mt19937 random(20240607);
    for (const auto& [name, content] : inputs())
        for (int round = 0; round < 20; ++round)
        {
            const std::string bytes = mutated(content, random);
            EXPECT_EQ(VYR_TARGET(bytes), "") << ::testing::PrintToString(bytes);
        }
}

} // namespace

} // namespace vyr::attack
