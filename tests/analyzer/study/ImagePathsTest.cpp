#include "TemporaryFolder.h"

#include <analyzer/study/ImagePaths.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using analyzer::ImagePaths;

namespace fs = std::filesystem;

namespace {

class ImagePathsTest : public testing::Test
{
protected:
    ImagePathsTest()
    {
        m_home.write("outside/secret.png", "");
        m_home.write("study/a.png", "");
        m_home.write("study/sub/b.png", "");
        fs::create_symlink(m_home.path() / "outside", study() / "out");
        fs::create_symlink(m_home.path() / "outside/secret.png", study() / "leak.png");
        fs::create_symlink(m_home.path() / "outside/later.png", study() / "dangling.png");
        fs::create_symlink("sub", study() / "in");
        fs::create_symlink("a.png", study() / "alias.png");
        fs::create_symlink(study(), m_home.path() / "way");
    }

    [[nodiscard]] fs::path study() const { return m_home.path() / "study"; }

    TemporaryFolder m_home;
};

} // namespace

TEST_F(ImagePathsTest, GivesAbsolutePathsInsideTheFolder)
{
    const std::string root = study().string();
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"a.png", root + "/a.png"},
        {"missing/x.JPeG", root + "/missing/x.JPeG"},
        {" a.png\t", root + "/a.png"},
        {"./sub/../a.png", root + "/a.png"},
        {"sub\\b.png", root + "/sub/b.png"},
        {"in/b.png", root + "/in/b.png"},
        {"in/missing.png", root + "/in/missing.png"},
        {"alias.png", root + "/alias.png"},
        {root + "/sub/b.png", root + "/sub/b.png"},
        {m_home.path().string() + "/way/a.png", root + "/a.png"},
        {"a:b.png", root + "/a:b.png"},
    };
    ImagePaths paths(root);
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);

        const ImagePaths::Resolved result = paths.resolve(text);

        EXPECT_EQ(result.absolutePath, expected);
        EXPECT_STREQ(result.refusal, "");
    }
}

TEST_F(ImagePathsTest, RefusesWhatLeavesTheFolder)
{
    const std::vector<std::string> cases = {
        "../outside/secret.png",
        "sub/../../outside/secret.png",
        "..\\outside\\secret.png",
        "../missing.png",
        "../study2/a.png",
        "out/secret.png",
        "out/missing.png",
        "out/deep/missing.png",
        "in/../out/secret.png",
        "leak.png",
        "dangling.png",
        (m_home.path() / "outside/secret.png").string(),
        "/etc/missing.png",
        "//host/share/x.png",
        "C:\\pictures\\x.png",
        std::string("a.png\0.png", 10),
    };
    ImagePaths paths(study().string());
    for (const std::string& text : cases) {
        SCOPED_TRACE(text);

        const ImagePaths::Resolved result = paths.resolve(text);

        EXPECT_EQ(result.absolutePath, "");
        EXPECT_STREQ(result.refusal, "leaves the study's folder");
    }
}

TEST_F(ImagePathsTest, RefusesWebAddressesOtherFilesAndEndlessPaths)
{
    ImagePaths paths(study().string());
    std::string endless;
    for (int part = 0; part < 1000000; ++part) {
        endless += "a/";
    }

    for (const char* address :
         {"https://x.org/a.png",
          "HTTP://x/a.png",
          "ftp://x/a.png",
          "file:/etc/a.png",
          "data:image/png"}) {
        EXPECT_STREQ(paths.resolve(address).refusal, "is a web address and is not fetched")
            << address;
    }
    for (const char* other : {"a.txt", "png", "a", "-180", "a.png/", ".."}) {
        EXPECT_STREQ(paths.resolve(other).refusal, "does not end like the name of an image")
            << other;
    }
    EXPECT_STREQ(paths.resolve(endless + "a.png").refusal, "is longer than a path can be");
}
