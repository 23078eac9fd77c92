#include "platform/Bundle.h"

#include "tests/support/Test.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

class BundleTest : public testing::Test {
  protected:
    BundleTest() { setenv("LC_ALL", "C", 1); }

    test::TestHome home_;
    fs::path folder_ = test::TestHome::path() / "bundles";
};

TEST_F(BundleTest, IsFoundAroundItsExecutableAndNothingElseIs) {
    const test::TestBundle bundle(folder_ / "With blanks 'and quotes'.app");
    bundle.asMainBundle();
    ASSERT_TRUE(Bundle::mainBundle());
    EXPECT_EQ(Bundle::mainBundle()->bundlePath(), bundle.path());
    const test::TestBundle noList(folder_ / "NoList.app");
    fs::remove(noList.path() / "Contents" / "Info.plist");
    const test::TestBundle noApp(folder_ / "directory");
    for (const fs::path& executable :
         {fs::path(), fs::path("/"), fs::path("/usr/bin/true"), noList.executable("NoList"),
          noApp.executable("directory"), bundle.path() / "Contents" / "Plain",
          bundle.path() / "Contents" / "MacOS" / "Plain",
          fs::path("Plain.app/Contents/Linux/Plain")}) {
        EXPECT_FALSE(Bundle::containing(executable)) << executable;
    }
}

TEST_F(BundleTest, NamesAuxiliaryExecutablesInItsOwnDirectoryOnly) {
    const test::TestBundle files(folder_ / "Aux.app");
    fs::create_symlink("nowhere", files.executable("dangling"));
    const auto bundle = Bundle::containing(files.executable("Aux"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->pathForAuxiliaryExecutable("Aux"), files.executable("Aux"));
    EXPECT_EQ(bundle->pathForAuxiliaryExecutable("dangling"), files.executable("dangling"));
    for (const char* name : {"", ".", "..", "missing", "../Info.plist", "/bin/sh"}) {
        EXPECT_FALSE(bundle->pathForAuxiliaryExecutable(name)) << name;
    }
}

TEST_F(BundleTest, LooksTextsUpInTheOrderOfLanguages) {
    const test::TestBundle files(folder_ / "Texts.app");
    files.withResource("en.lproj/Localizable.strings", "\"Close\" = \"Close it\"; empty = \"\";");
    files.withResource("de.lproj/Localizable.strings", "\"Close\" = \"Schlie\\U00dfen\";");
    files.withResource("zh_Hans.lproj/Localizable.strings", "\"Close\" = \"\\U5173\";");
    files.withResource("pt_BR.lproj/Localizable.strings", "\"Close\" = Fechar;");
    files.withResource("in/side.lproj/Localizable.strings", "\"Close\" = \"Inside\";");
    const auto bundle = Bundle::containing(files.executable("Texts"));
    ASSERT_TRUE(bundle);
    const std::pair<std::string, std::string> rows[] = {
        {"C", "Close it"},         {"de_AT.UTF-8", "Schlie\u00dfen"},
        {"zh_CN.UTF-8", "\u5173"}, {"zh_SG", "\u5173"},
        {"zh", "\u5173"},          {"pt_PT@euro", "Fechar"},
        {"C.UTF-8", "Close it"},   {"zh_TW.UTF-8", "Close it"},
        {"in/side", "Close it"},
    };
    for (const auto& [locale, text] : rows) {
        setenv("LC_ALL", locale.c_str(), 1);
        EXPECT_EQ(bundle->localizedString("Close"), text) << locale;
    }
    EXPECT_EQ(bundle->localizedString("empty"), "");
    EXPECT_EQ(bundle->localizedString("missing"), "missing");
    EXPECT_EQ(bundle->localizedString("missing", "default"), "default");
    // A table directly in Resources precedes every language, and each lookup reads it again.
    files.withResource("Localizable.strings", "\"Close\" = \"Any\";");
    EXPECT_EQ(bundle->localizedString("Close"), "Any");
}

} // namespace
} // namespace platform
