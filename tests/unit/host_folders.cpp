// The search of the runtime folder and of the assembly folders.
#include "host/host_trace.h"
#include "host/netcore_version.h"
#include "host/netcore_version_parser.h"
#include "host/pal.nix.h"
#include "host_scene.h"

#include <algorithm>
#include <cstddef>
#include <dirent.h>
#include <dlfcn.h>
#include <stdexcept>
#include <type_traits>

// A name whose type the file system does not tell.
static std::string entry_of_unknown_type;

extern "C" dirent *readdir(DIR *folder) {
    static const auto real = reinterpret_cast<dirent *(*)(DIR *)>(dlsym(RTLD_NEXT, "readdir"));
    dirent *entry = real(folder);
    if (entry && entry_of_unknown_type == entry->d_name) entry->d_type = DT_UNKNOWN;
    return entry;
}

namespace {

static_assert(std::is_same_v<decltype(NetcoreVersion::major), int> &&
              std::is_same_v<decltype(NetcoreVersion::minor), int> &&
              offsetof(NetcoreVersion, major) == 0 && offsetof(NetcoreVersion, minor) == 4 &&
              sizeof(NetcoreVersion) == 8);
using Folder = NetcoreFolder<std::string>;
static_assert(offsetof(Folder, version) == 0 && offsetof(Folder, name) == 8);

const char file[] = "the.so";
using List = std::vector<std::string>;

TEST(Version, IsTwoIntegers) {
    RecordProperty("behaviour", "host-location.version.layout");
    EXPECT_EQ(sizeof(NetcoreVersion), 8u);
    EXPECT_TRUE(std::is_default_constructible_v<NetcoreVersion>);
    const NetcoreVersion version(6, 1);
    EXPECT_EQ(version.major, 6);
    EXPECT_EQ(version.minor, 1);
}

TEST(Version, IsComparedByMajorThenByMinor) {
    RecordProperty("behaviour", "host-location.version.order");
    EXPECT_TRUE(NetcoreVersion(6, 0) < NetcoreVersion(6, 1));
    EXPECT_TRUE(NetcoreVersion(6, 9) < NetcoreVersion(7, 0));
    EXPECT_TRUE(NetcoreVersion(9, 9) < NetcoreVersion(10, 0));
    EXPECT_FALSE(NetcoreVersion(6, 0) < NetcoreVersion(6, 0));
    EXPECT_FALSE(NetcoreVersion(7, 0) < NetcoreVersion(6, 9));
}

TEST(Version, StandsBeforeTheNameInAFolder) {
    RecordProperty("behaviour", "host-location.folder.record");
    const Folder folder{NetcoreVersion(6, 0), "netcore6.0"};
    EXPECT_EQ(static_cast<const void *>(&folder), &folder.version);
    EXPECT_EQ(folder.version.major, 6);
    EXPECT_EQ(folder.name, "netcore6.0");
}

TEST(FolderName, TellsTheVersion) {
    RecordProperty("behaviour", "host-location.try-parse.accepts");
    const struct {
        const char *name;
        int major, minor;
    } rows[] = {{"netcore6.0", 6, 0}, {"netcore10.12", 10, 12}, {"netcore06.00", 6, 0}};
    for (const auto &row : rows) {
        NetcoreVersion version(-1, -1);
        EXPECT_TRUE(try_parse(row.name, version)) << row.name;
        EXPECT_EQ(version.major, row.major) << row.name;
        EXPECT_EQ(version.minor, row.minor) << row.name;
    }
}

TEST(FolderName, IsRefusedInEveryOtherForm) {
    RecordProperty("behaviour", "host-location.try-parse.rejects");
    for (const char *name :
         {"netcore6", "netcore6.0.1", "netcore.1", "netcore6.", "netcore-6.0", "netcore6.x",
          "Netcore6.0", "netcore", "netcor6.0", "xnetcore6.0", "netcore 6.0", ""}) {
        NetcoreVersion version;
        EXPECT_FALSE(try_parse(name, version)) << name;
    }
}

TEST(Splitting, NeedsExactlyOneDot) {
    RecordProperty("behaviour", "host-location.split.one-dot");
    const struct {
        const char *text, *before, *after;
    } rows[] = {{"6.0", "6", "0"}, {"6.", "6", ""}, {".", "", ""}, {".5", "", "5"}};
    for (const auto &row : rows) {
        std::string parts[2] = {"old", "old"};
        EXPECT_TRUE(split(row.text, parts)) << row.text;
        EXPECT_EQ(parts[0], row.before) << row.text;
        EXPECT_EQ(parts[1], row.after) << row.text;
    }
}

TEST(Splitting, RefusesNoDotAndSeveral) {
    RecordProperty("behaviour", "host-location.split.rejects");
    std::string parts[2];
    for (const char *text : {"60", "", "6.0.1", "6..0"}) EXPECT_FALSE(split(text, parts)) << text;
}

TEST(Numbers, OfDigitsAreTaken) {
    RecordProperty("behaviour", "host-location.try-parse-int.accepts");
    const struct {
        const char *text;
        int number;
    } rows[] = {{"0", 0}, {"007", 7}, {"2147483647", 2147483647}};
    for (const auto &row : rows) {
        int value = -1;
        EXPECT_TRUE(try_parse_int(row.text, value)) << row.text;
        EXPECT_EQ(value, row.number) << row.text;
    }
}

TEST(Numbers, OfAnythingElseAreRefused) {
    RecordProperty("behaviour", "host-location.try-parse-int.rejects");
    int value = 0;
    for (const char *text : {"", "-1", "+1", " 1", "1 ", "0x1", "1a"})
        EXPECT_FALSE(try_parse_int(text, value)) << text;
}

template <typename Work> void expect_overflow(Work work) {
    try {
        work();
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range &error) {
        EXPECT_STREQ(error.what(), "stoi");
    }
}

TEST(Numbers, BeyondTheRangeThrow) {
    RecordProperty("behaviour", "host-location.try-parse-int.overflow");
    int value = 0;
    NetcoreVersion version;
    expect_overflow([&] { try_parse_int("2147483648", value); });
    expect_overflow([&] { try_parse("netcore2147483648.0", version); });
    expect_overflow([&] { try_parse("netcore6.99999999999", version); });
}

TEST(Numbers, AreReadFromLeftToRight) {
    NetcoreVersion version;
    expect_overflow([&] { try_parse("netcore99999999999.x", version); });
    EXPECT_FALSE(try_parse("netcorex.99999999999", version)); // refused before it throws
}

class RuntimeSearch : public testing::Test {
protected:
    // Adds the folders with the file in each, and gives the name of the winner.
    std::string winner(const List &names) {
        for (const std::string &name : names) root.add_file(name + "/" + file);
        return winner();
    }

    std::string winner() {
        std::string result = "unchanged";
        const bool found = pal::get_major_netcore_path(root.path(), file, result);
        EXPECT_EQ(found, result != "unchanged");
        const std::string start = root.path() + "/";
        return result.compare(0, start.size(), start) == 0 ? result.substr(start.size()) : result;
    }

    TemporaryFolder root;
};

TEST_F(RuntimeSearch, TooLargeANumberThrowsThoughAnotherFolderFits) {
    RecordProperty("behaviour", "host-location.netcore.overflow-folder-throws");
    root.add_file(std::string("netcore6.0/") + file);
    root.add_folder("netcore99999999999.0");
    expect_overflow([&] { winner(); });
}

TEST_F(RuntimeSearch, WithoutARootFindsNothing) {
    RecordProperty("behaviour", "host-location.netcore.no-root");
    std::string result = "unchanged";
    EXPECT_FALSE(pal::get_major_netcore_path(root.path("nowhere"), file, result));
    EXPECT_EQ(result, "unchanged");
}

TEST_F(RuntimeSearch, GivesTheFolderOfTheFile) {
    RecordProperty("behaviour", "host-location.netcore.finds");
    root.add_file(std::string("netcore6.0/") + file);
    std::string result;
    EXPECT_TRUE(pal::get_major_netcore_path(root.path(), file, result));
    EXPECT_EQ(result, root.path() + "/netcore6.0");
}

TEST_F(RuntimeSearch, SeesRealFoldersAlone) {
    RecordProperty("behaviour", "host-location.netcore.only-real-folders");
    root.add_file(std::string("elsewhere/") + file);
    root.add_file(std::string("netcore5.0/") + file);
    root.add_link("netcore9.0", root.path("elsewhere"));
    EXPECT_EQ(winner(), "netcore5.0");
    std::filesystem::remove(root.path("netcore9.0"));
    root.add_file("netcore9.0");
    EXPECT_EQ(winner(), "netcore5.0");
    entry_of_unknown_type = "netcore8.0";
    EXPECT_EQ(winner({"netcore8.0"}), "netcore5.0");
    entry_of_unknown_type = "";
    EXPECT_EQ(winner(), "netcore8.0");
}

TEST_F(RuntimeSearch, SkipsNamesThatAreNoVersion) {
    RecordProperty("behaviour", "host-location.netcore.foreign-names-skipped");
    root.add_file(file); // "." and ".." lead to it, or to its folder
    EXPECT_EQ(winner({"netcore7", "netcore7.x", "runtime"}), "unchanged");
}

TEST_F(RuntimeSearch, TakesTheHighestVersion) {
    RecordProperty("behaviour", "host-location.netcore.highest-wins");
    EXPECT_EQ(winner({"netcore6.0", "netcore8.0", "netcore6.1"}), "netcore8.0");
}

TEST_F(RuntimeSearch, ComparesNumbersAndNotTexts) {
    RecordProperty("behaviour", "host-location.netcore.numeric-order");
    EXPECT_EQ(winner({"netcore6.9", "netcore6.10"}), "netcore6.10");
    EXPECT_EQ(winner({"netcore9.9", "netcore10.0"}), "netcore10.0");
}

TEST_F(RuntimeSearch, FallsToALowerVersionWithTheFile) {
    RecordProperty("behaviour", "host-location.netcore.falls-to-lower");
    root.add_folder("netcore7.0");
    EXPECT_EQ(winner({"netcore6.0"}), "netcore6.0");
}

TEST_F(RuntimeSearch, AFileThatMayNotBeReadIsAbsent) {
    RecordProperty("behaviour", "host-location.netcore.unreadable-is-absent");
    EXPECT_EQ(winner({"netcore6.0", "netcore7.0"}), "netcore7.0");
    chmod((root.path("netcore7.0/") + file).c_str(), 0);
    expect_as_nobody([&] { return winner() == "netcore6.0"; });
}

TEST_F(RuntimeSearch, WithoutTheFileFindsNothing) {
    RecordProperty("behaviour", "host-location.netcore.none-found");
    root.add_folder("netcore6.0");
    root.add_file("netcore7.0/other.so");
    EXPECT_EQ(winner(), "unchanged");
}

TEST_F(RuntimeSearch, TwoNamesOfOneVersionHaveNoOrder) {
    RecordProperty("behaviour", "host-location.netcore.equal-versions");
    root.add_folder("netcore06.0");
    EXPECT_EQ(winner({"netcore6.0"}), "netcore6.0");
    root.add_file(std::string("netcore06.0/") + file);
    const std::string either = winner();
    EXPECT_TRUE(either == "netcore6.0" || either == "netcore06.0") << either;
    std::filesystem::remove(root.path("netcore6.0/") + file);
    EXPECT_EQ(winner(), "netcore06.0");
}

TEST_F(RuntimeSearch, PutsASlashBehindEveryRoot) {
    RecordProperty("behaviour", "host-location.netcore.separator");
    root.add_file(std::string("netcore6.0/") + file);
    std::string result;
    EXPECT_TRUE(pal::get_major_netcore_path(root.path() + "/", file, result));
    EXPECT_EQ(result, root.path() + "//netcore6.0");
}

class AssemblySearch : public testing::Test {
protected:
    List found(bool debug = false, List result = {}) {
        pal::get_app_folders(root.path(), debug, result);
        return result;
    }

    List sorted(List list) {
        std::sort(list.begin(), list.end());
        return list;
    }

    TemporaryFolder root;
};

TEST_F(AssemblySearch, WithoutARootAddsNothing) {
    RecordProperty("behaviour", "host-location.app.no-root");
    List result = {"before"};
    const Written written =
        written_by([&] { pal::get_app_folders(root.path("nowhere"), false, result); });
    EXPECT_EQ(result, List{"before"});
    EXPECT_EQ(written, (Written{"", ""}));
}

TEST_F(AssemblySearch, AddsToTheList) {
    RecordProperty("behaviour", "host-location.app.adds");
    root.add_folder("a");
    EXPECT_EQ(sorted(found(false, {"before"})), (List{root.path("a"), "before"}));
}

TEST_F(AssemblySearch, PutsTheDrawingFolderLastAndOthersFirst) {
    RecordProperty("behaviour", "host-location.app.front-and-back");
    root.add_folder("gfxtypes");
    root.add_folder("a");
    EXPECT_EQ(found(false, {"x", "y"}), (List{root.path("a"), "x", "y", root.path("gfxtypes")}));
}

TEST_F(AssemblySearch, TurnsTheOrderOfTheFolderRound) {
    RecordProperty("behaviour", "host-location.app.reverse-order");
    for (const char *name : {"a", "gfxtypes", "b", "c", "zz", "d1"}) root.add_folder(name);
    List expected;
    DIR *folder = opendir(root.path().c_str());
    while (const dirent *entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && name != "gfxtypes")
            expected.insert(expected.begin(), root.path(name));
    }
    closedir(folder);
    expected.push_back(root.path("gfxtypes"));
    EXPECT_EQ(found(), expected);
}

TEST_F(AssemblySearch, KnowsTheDrawingFolderByItsExactName) {
    RecordProperty("behaviour", "host-location.app.gfxtypes-exact");
    for (const char *name : {"GfxTypes", "gfxtypes2", "gfxtype"}) root.add_folder(name);
    const List list = found(false, {"before"});
    EXPECT_EQ(list.size(), 4u);
    EXPECT_EQ(list.back(), "before");
}

TEST_F(AssemblySearch, SeesRealFoldersAlone) {
    RecordProperty("behaviour", "host-location.app.only-real-folders");
    root.add_folder("a");
    root.add_file("file");
    root.add_link("link", root.path("a"));
    EXPECT_EQ(found(), List{root.path("a")});
    root.add_folder("b");
    entry_of_unknown_type = "b";
    EXPECT_EQ(found(), List{root.path("a")});
    entry_of_unknown_type = "";
    EXPECT_EQ(found().size(), 2u);
}

TEST_F(AssemblySearch, PutsASlashBehindEveryRoot) {
    RecordProperty("behaviour", "host-location.app.separator");
    root.add_folder("a");
    List result;
    pal::get_app_folders(root.path() + "/", false, result);
    EXPECT_EQ(result, List{root.path() + "//a"});
}

TEST_F(AssemblySearch, DoesNotLookIntoTheFolders) {
    RecordProperty("behaviour", "host-location.app.no-content-check");
    root.add_folder("empty");
    root.add_file("full/any.txt");
    EXPECT_EQ(sorted(found()), (List{root.path("empty"), root.path("full")}));
    chmod(root.path("empty").c_str(), 0);
    expect_as_nobody([&] { return found().size() == 2; });
    chmod(root.path("empty").c_str(), 0755); // it is removed again by whoever runs the tests
}

TEST_F(AssemblySearch, TakesTheDebugFoldersThatThereAre) {
    RecordProperty("behaviour", "host-location.app.debug-suffix");
    root.add_folder("a/debug");
    root.add_file("b/debug");
    root.add_folder("c/release");
    EXPECT_EQ(sorted(found(true)), (List{root.path("a/debug"), root.path("b/debug")}));
}

TEST_F(AssemblySearch, KnowsTheDrawingFolderInADebugSearch) {
    RecordProperty("behaviour", "host-location.app.debug-gfxtypes");
    root.add_folder("gfxtypes/debug");
    root.add_folder("a/debug");
    EXPECT_EQ(found(true, {"x"}), (List{root.path("a/debug"), "x", root.path("gfxtypes/debug")}));
}

TEST_F(AssemblySearch, WithoutSubFoldersAddsNothing) {
    RecordProperty("behaviour", "host-location.app.no-sub-folders");
    root.add_file("file");
    EXPECT_EQ(found(false, {"before"}), List{"before"});
}

TEST_F(AssemblySearch, IsSilentLikeTheOther) {
    RecordProperty("behaviour", "host-location.search.silent");
    trace::enable();
    const Written written = written_by([&] {
        std::string result;
        List list;
        pal::get_major_netcore_path(root.path(), file, result);
        pal::get_major_netcore_path(root.path("nowhere"), file, result);
        pal::get_app_folders(root.path(), true, list);
        pal::get_app_folders(root.path("nowhere"), false, list);
    });
    trace::disable();
    EXPECT_EQ(written, (Written{"", ""}));
}

} // namespace
