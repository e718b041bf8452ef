// SPDX-License-Identifier: Apache-2.0
// The asset selector over real directories.

#include <aselector/aselector.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Attributes = std::vector<aselector_attribute_t>;

const Attributes BRIGHT{{1, 768}, {2, 1280}, {3, ASELECTOR_BRIGHT}, {}};
const Attributes DARK{{3, ASELECTOR_DARK}, {2, 1280}, {1, 768}, {}};
const char NONE[] = "No such file or directory";

class AssetSelector : public testing::Test
{
protected:
    AssetSelector() : _root(fs::temp_directory_path() / "aselector-XXXXXX")
    {
        _assets = ::mkdtemp(_root.data()) + std::string("/\xc3\xa4 assets");
    }
    ~AssetSelector() override { fs::remove_all(_root); }

    // Adds a file, or a symbolic link.
    void add(const fs::path &path, const fs::path &target = {}) const
    {
        fs::create_directories((_assets / path).parent_path());
        target.empty() ? void(std::ofstream(_assets / path)) : fs::create_symlink(target, _assets / path);
    }

    // The variant's path in the assets directory, or the text of the errno.
    std::string selected(const char *path, const Attributes &attributes = BRIGHT) const
    {
        aselector_context_t *context = nullptr;
        aselector_asset_t *asset = nullptr;
        const char *file = nullptr;
        const bool isFound = aselector_context_create(attributes.data(), &context) == 0 &&
                             aselector_asset_create(context, path, _assets.c_str(), &asset) == 0 &&
                             aselector_asset_get_path(asset, &file) == 0;
        const std::string result =
            isFound ? fs::path(file).lexically_relative(_assets) : std::strerror(errno);
        aselector_context_destroy(context);
        aselector_asset_destroy(asset);
        return result;
    }

    std::string _root;
    fs::path _assets;
};

} // namespace

TEST_F(AssetSelector, theMostSpecificFileThatExistsWins)
{
    const struct {
        std::string added, selected;
        Attributes attributes = BRIGHT;
    } steps[] = {
        {"i/\xc3\xa4", NONE},
        {"bright/i/\xc3\xa4/directory", NONE},
        {"dark/i/\xc3\xa4", "dark/i/\xc3\xa4", {{3, 2}, {2, 1280}, {}}}, // no width
        {"768x1280/i/\xc3\xa4", "768x1280/i/\xc3\xa4", DARK},
        {"768x1280/bright/i/\xc3\xa4", "768x1280/bright/i/\xc3\xa4"},
        {"768x1280/dark", "768x1280/i/\xc3\xa4", DARK}, // which is no directory
        {"a", "768x1280/i/\xc3\xa4", {{1, 768}, {2, 1280}, {}}},
        {"b", "Invalid argument", {{1, 0}, {}}},
        {"c", "Invalid argument", {{3, 3}, {}}},
        {"d", "Invalid argument", {{4, 1}, {}}},
    };
    for (const auto &step : steps) {
        add(step.added);
        EXPECT_EQ(selected("./i/../i//\xc3\xa4", step.attributes), step.selected) << step.added;
    }
}

TEST_F(AssetSelector, noPathLeadsOutOfTheAssets)
{
    const fs::path outside = _root + "/\xc3\xa4 assets, others"; // the same beginning
    add(outside / "a");
    add("dark/a");
    add("bright/in", _assets / "dark");
    add("bright/out", outside);
    add("bright/missing", outside / "missing");

    for (const char *path : {"../a", "b/../../\xc3\xa4 assets/a", "..", "out/a", "out", "/bright/a"}) {
        EXPECT_EQ(selected(path), "Permission denied") << path;
    }
    EXPECT_EQ(selected((_assets / "bright/in/a").c_str()), "Permission denied");
    EXPECT_EQ(selected("missing"), NONE);
    fs::create_symlink(_assets, _root + "/link");
    _assets = _root + "/link";
    EXPECT_EQ(selected("in/a"), "bright/in/a");
}
