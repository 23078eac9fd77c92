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
    const auto bundle = Bundle::containing(files.executable("Texts"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->localizedString("Close"), "Close it");
    EXPECT_EQ(bundle->localizedString("empty"), "");
    EXPECT_EQ(bundle->localizedString("missing"), "missing");
    EXPECT_EQ(bundle->localizedString("missing", "default"), "default");
    setenv("LC_ALL", "de_AT.UTF-8", 1);
    EXPECT_EQ(bundle->localizedString("Close"), "Schlie\xc3\x9f"
                                                "en");
    files.withResource("zh_Hans.lproj/Localizable.strings", "\"Close\" = \"\\U5173\";");
    for (const char* locale : {"zh_CN.UTF-8", "zh_SG", "zh"}) {
        setenv("LC_ALL", locale, 1);
        EXPECT_EQ(bundle->localizedString("Close"), "\xe5\x85\xb3") << locale;
    }
    test::writeFile(folder_ / "out.lproj" / "Localizable.strings", "\"Close\" = \"Out\";");
    const std::string outside = folder_ / "out";
    for (const char* locale : {"zh_TW.UTF-8", "C.UTF-8", outside.c_str()}) {
        setenv("LC_ALL", locale, 1);
        EXPECT_EQ(bundle->localizedString("Close"), "Close it") << locale;
    }
    files.withResource("pt_BR.lproj/Localizable.strings", "\"Close\" = Fechar;");
    setenv("LC_ALL", "pt_PT@euro", 1);
    EXPECT_EQ(bundle->localizedString("Close"), "Fechar");
    // A table directly in Resources precedes every language, and each lookup reads it again.
    files.withResource("Localizable.strings", "\"Close\" = \"Any\";");
    EXPECT_EQ(bundle->localizedString("Close"), "Any");
}

} // namespace
} // namespace platform
