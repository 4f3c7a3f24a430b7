// Paths, environment, numbers and output of the platform layer.
#include "host/pal.nix.h"
#include "host/str_utils.h"
#include "host/utils.h"
#include "host_scene.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>

// What the system answers about the running program, unless a test says otherwise.
static enum class Readlink { real, fails, fills } readlink_answer = Readlink::real;
static std::size_t readlink_buffer_size = 0;

extern "C" ssize_t readlink(const char *path, char *buffer, std::size_t size) {
    readlink_buffer_size = size;
    if (readlink_answer == Readlink::fails) {
        errno = EACCES;
        return -1;
    }
    if (readlink_answer == Readlink::fills) {
        std::memset(buffer, 'x', size);
        return static_cast<ssize_t>(size);
    }
    static const auto real = reinterpret_cast<ssize_t (*)(const char *, char *, std::size_t)>(
        dlsym(RTLD_NEXT, "readlink"));
    return real(path, buffer, size);
}

namespace {

const char variable[] = "KELMOR_TEST_VARIABLE";

TEST(Environment, AnAbsentVariableClearsTheValue) {
    RecordProperty("behaviour", "host-platform.getenv.absent");
    unsetenv(variable);
    std::string value = "old";
    EXPECT_FALSE(pal::getenv(variable, value));
    EXPECT_EQ(value, "");
}

TEST(Environment, AVariableWithTextIsAssigned) {
    RecordProperty("behaviour", "host-platform.getenv.present");
    setenv(variable, "text", 1);
    std::string value = "old";
    EXPECT_TRUE(pal::getenv(variable, value));
    EXPECT_EQ(value, "text");
}

TEST(Environment, AnEmptyVariableCountsAsAbsent) {
    RecordProperty("behaviour", "host-platform.getenv.empty");
    setenv(variable, "", 1);
    std::string value = "old";
    EXPECT_FALSE(pal::getenv(variable, value));
    EXPECT_EQ(value, "");
}

TEST(Numbers, AreReadInBaseTenWithoutErrors) {
    RecordProperty("behaviour", "host-platform.to-int.base-ten");
    EXPECT_EQ(pal::to_int("42"), 42);
    EXPECT_EQ(pal::to_int("-7"), -7);
    EXPECT_EQ(pal::to_int(" 5"), 5);
    EXPECT_EQ(pal::to_int("12abc"), 12);
    EXPECT_EQ(pal::to_int("abc"), 0);
    EXPECT_EQ(pal::to_int(""), 0);
    EXPECT_EQ(pal::to_int("0x10"), 0);
}

TEST(Files, AFileThatCanBeReadExists) {
    RecordProperty("behaviour", "host-platform.file-exists.readable");
    const TemporaryFolder folder;
    folder.add_file("file");
    EXPECT_TRUE(pal::is_file_exists(folder.path("file")));
    EXPECT_FALSE(pal::is_file_exists(folder.path("other")));
}

TEST(Files, AFileThatMayNotBeReadDoesNotExist) {
    RecordProperty("behaviour", "host-platform.file-exists.unreadable");
    const TemporaryFolder folder;
    folder.add_file("open");
    folder.add_file("closed");
    chmod(folder.path("closed").c_str(), 0);
    expect_as_nobody([&] {
        return pal::is_file_exists(folder.path("open")) &&
               !pal::is_file_exists(folder.path("closed"));
    });
}

TEST(Files, AFolderExists) {
    RecordProperty("behaviour", "host-platform.file-exists.folder");
    const TemporaryFolder folder;
    EXPECT_TRUE(pal::is_file_exists(folder.path()));
}

std::string appended(std::string path, const std::string &part) {
    pal::path_append(path, part);
    return path;
}

TEST(Paths, APartIsAppendedBehindASlash) {
    RecordProperty("behaviour", "host-platform.path-append.joins");
    EXPECT_EQ(appended("a", "b"), "a/b");
}

TEST(Paths, AnEmptyPathBecomesThePart) {
    RecordProperty("behaviour", "host-platform.path-append.empty-path");
    EXPECT_EQ(appended("", "b"), "b");
}

TEST(Paths, ASlashThatIsThereAlreadyIsNotLookedAt) {
    RecordProperty("behaviour", "host-platform.path-append.no-slash-check");
    EXPECT_EQ(appended("a/", "b"), "a//b");
    EXPECT_EQ(appended("a", ""), "a/");
}

TEST(Paths, TheFolderIsWhatStandsBeforeTheLastSlash) {
    RecordProperty("behaviour", "host-platform.path-directory.last-slash");
    EXPECT_EQ(pal::path_get_directory("/a/bin/python"), "/a/bin");
    EXPECT_EQ(pal::path_get_directory("a/b/"), "a/b");
}

TEST(Paths, APathWithoutASlashHasNoFolder) {
    RecordProperty("behaviour", "host-platform.path-directory.none");
    EXPECT_EQ(pal::path_get_directory("python"), "");
}

TEST(Paths, TheFolderUnderTheRootIsEmpty) {
    RecordProperty("behaviour", "host-platform.path-directory.under-root");
    EXPECT_EQ(pal::path_get_directory("/python"), "");
}

TEST(Paths, ARelativePathDoesNotBeginWithASlash) {
    RecordProperty("behaviour", "host-platform.path-relative.rule");
    for (const char *path : {"", "a", "./a", "a/b"})
        EXPECT_TRUE(pal::path_is_relative(path)) << path;
    for (const char *path : {"/", "/a"}) EXPECT_FALSE(pal::path_is_relative(path)) << path;
}

TEST(Program, ItsFileIsTheTargetOfTheSystemsLink) {
    RecordProperty("behaviour", "host-platform.entry-exe.resolved");
    EXPECT_EQ(pal::get_entry_point_exe(), std::filesystem::read_symlink("/proc/self/exe").native());
}

TEST(Program, ItsFileIsReadWithinALimitAndMayFail) {
    RecordProperty("behaviour", "host-platform.entry-exe.limit-and-failure");
    readlink_answer = Readlink::fails;
    EXPECT_EQ(pal::get_entry_point_exe(), "");
    EXPECT_EQ(readlink_buffer_size, 4095u);
    readlink_answer = Readlink::fills;
    EXPECT_EQ(pal::get_entry_point_exe(), std::string(4095, 'x'));
    readlink_answer = Readlink::real;
}

void err(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    pal::err_vprintf(format, arguments);
    va_end(arguments);
}

void out(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    pal::out_vprintf(format, arguments);
    va_end(arguments);
}

TEST(Output, AnErrorGoesToStandardErrorAlone) {
    RecordProperty("behaviour", "host-platform.vprintf.err");
    const Written written = written_by([] { err("%d of %s", 1, "two"); });
    EXPECT_EQ(written, (Written{"", "1 of two\r\n"}));
}

TEST(Output, OtherTextGoesToStandardOutputAlone) {
    RecordProperty("behaviour", "host-platform.vprintf.out");
    const Written written = written_by([] { out("%d of %s", 1, "two"); });
    EXPECT_EQ(written, (Written{"1 of two\r\n", ""}));
}

TEST(Output, IsNotLostWhenTheProcessAborts) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const auto child = [&] {
        dup2(ends[1], STDOUT_FILENO);
        out("%s", "the last word");
        abort();
    };
    EXPECT_EXIT(child(), testing::KilledBySignal(SIGABRT), "");
    close(ends[1]);
    char text[64] = {};
    EXPECT_GT(read(ends[0], text, sizeof text - 1), 0);
    close(ends[0]);
    EXPECT_STREQ(text, "the last word\r\n");
}

TEST(PathBuilding, EachPartIsAppendedToACopyOfTheBase) {
    RecordProperty("behaviour", "host-platform.build-path.parts");
    const std::string base = "a";
    EXPECT_EQ(pal::build_path(base, "b", "c"), "a/b/c");
    EXPECT_EQ(base, "a");
    EXPECT_EQ(pal::build_path("a/", "b"), "a//b");
    EXPECT_EQ(pal::build_path("", "b"), "b");
    EXPECT_EQ(pal::build_path("a"), "a");
}

TEST(Joining, PutsOneSeparatorBetweenItems) {
    RecordProperty("behaviour", "host-platform.join.plain");
    EXPECT_EQ(pal::join({"a", "b", "a"}, ':', false), "a:b:a");
    EXPECT_EQ(pal::join({"", "a", ""}, ':', false), ":a:"); // empty items are items too
}

TEST(Joining, AnEmptyListGivesNothing) {
    RecordProperty("behaviour", "host-platform.join.empty-list");
    EXPECT_EQ(pal::join({}, ':', false), "");
    EXPECT_EQ(pal::join({}, ':', true), "");
}

TEST(Joining, LeavesRepeatedItemsOutWhenAsked) {
    RecordProperty("behaviour", "host-platform.join.unique");
    EXPECT_EQ(pal::join({"a", "b", "a", "ab"}, ':', true), "a:b:ab");
    EXPECT_EQ(pal::join({"", "a", ""}, ':', true), ":a");
}

TEST(Joining, HasAShortFormForUniqueItems) {
    RecordProperty("behaviour", "host-platform.join-unique.alias");
    const std::vector<std::string> items = {"b", "a", "b", "a", "c"};
    EXPECT_EQ(pal::join_unique(items, ';'), pal::join(items, ';', true));
    EXPECT_EQ(pal::join_unique(items, ';'), "b;a;c");
}

TEST(JoiningFullPaths, RelativeItemsGetTheBase) {
    RecordProperty("behaviour", "host-platform.join-full-path.relative");
    EXPECT_EQ(pal::join_to_full_path("/r", {"a", "/b", "c"}, ':'), "/r/a:/b:/r/c");
}

TEST(JoiningFullPaths, AnEmptyItemIsRelative) {
    RecordProperty("behaviour", "host-platform.join-full-path.empty-item");
    EXPECT_EQ(pal::join_to_full_path("/r", {""}, ':'), "/r/");
}

TEST(JoiningFullPaths, SeparatorsAtTheEndAreRemoved) {
    RecordProperty("behaviour", "host-platform.join-full-path.trailing");
    EXPECT_EQ(pal::join_to_full_path("/r", {"/a::"}, ':'), "/a");
}

TEST(JoiningFullPaths, SeparatorsAloneStay) {
    RecordProperty("behaviour", "host-platform.join-full-path.only-separators");
    EXPECT_EQ(pal::join_to_full_path("", {""}, ':'), ":");
    EXPECT_EQ(pal::join_to_full_path("", {"", ""}, ':'), "::");
}

TEST(JoiningFullPaths, AnEmptyListGivesNothing) {
    RecordProperty("behaviour", "host-platform.join-full-path.empty-list");
    EXPECT_EQ(pal::join_to_full_path("/r", {}, ':'), "");
}

TEST(Texts, ASubstringHasAtMostTheLength) {
    RecordProperty("behaviour", "host-platform.substr.limit");
    EXPECT_EQ(cxxaw_substr("abcdef", 2, 3), "cde");
    EXPECT_EQ(cxxaw_substr("abc", 1, 10), "bc");
    EXPECT_EQ(cxxaw_substr("abc", 3, 1), "");
}

TEST(Texts, ALengthOfAllBitsReachesToTheEnd) {
    RecordProperty("behaviour", "host-platform.substr.to-end");
    EXPECT_EQ(cxxaw_substr("abcdef", 2, static_cast<std::size_t>(-1)), "cdef");
}

TEST(Texts, DigitsAreTheAsciiOnesAlone) {
    RecordProperty("behaviour", "host-platform.isdigitstr.rule");
    for (const char *text : {"0", "007", "123456789012345678901"})
        EXPECT_TRUE(cxxaw_isdigitstr(text)) << text;
    for (const char *text : {"", "1a", "-1", "+1", " 1", "1.0", "\u0663"})
        EXPECT_FALSE(cxxaw_isdigitstr(text)) << text;
}

} // namespace
