// Loading of shared libraries: who brought one into the process, and who may end it.
#include "host/dynamic_library.h"
#include "host/host_trace.h"
#include "host/pal.nix.h"
#include "host_friend.h"
#include "host_scene.h"

#include <dlfcn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <type_traits>
#include <typeinfo>

// How a library was opened last.
static int last_mode = 0;

extern "C" void *dlopen(const char *path, int mode) noexcept {
    static const auto real =
        reinterpret_cast<void *(*)(const char *, int)>(dlsym(RTLD_NEXT, "dlopen"));
    last_mode = mode;
    return real(path, mode);
}

namespace {

static_assert(HostTest::can_free_offset == 0 && HostTest::handle_offset == 8 &&
              HostTest::first_load_offset == 16 && sizeof(DynamicLibrary) == 24);
static_assert(std::is_move_constructible_v<DynamicLibrary> &&
              std::is_move_assignable_v<DynamicLibrary> &&
              !std::is_copy_constructible_v<DynamicLibrary> &&
              !std::is_copy_assignable_v<DynamicLibrary>);

// Copies of one library, each of which the loader takes for a library of its own.
class Library : public testing::Test {
protected:
    void SetUp() override {
        trace::disable();
        one = copy("one.so");
        two = copy("two.so");
        missing = folder.path("missing.so");
    }
    void TearDown() override { trace::disable(); }

    std::string copy(const char *name) {
        const std::string path = folder.path(name);
        std::filesystem::copy_file(KELMOR_SAMPLE_LIBRARY, path);
        return path;
    }

    static bool is_in_process(const std::string &path) {
        void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (handle) dlclose(handle);
        return handle != nullptr;
    }

    // Ends the one load that nobody else ends any more.
    static void unload(const std::string &path) {
        void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
        dlclose(handle);
        dlclose(handle);
    }

    // Asked in a child: a symbol that the program has found keeps its library in the process.
    static bool is_global() {
        const pid_t child = fork();
        if (child == 0) _exit(dlsym(RTLD_DEFAULT, "sample_answer") ? 1 : 0);
        int status = 0;
        waitpid(child, &status, 0);
        return WEXITSTATUS(status) == 1;
    }

    TemporaryFolder folder;
    std::string one, two, missing;
};

TEST_F(Library, HasItsMembersInOrder) {
    RecordProperty("behaviour", "host-platform.dynlib.members");
    EXPECT_EQ(HostTest::can_free_offset, 0u);
    EXPECT_EQ(HostTest::handle_offset, 8u);
    EXPECT_EQ(HostTest::first_load_offset, 16u);
    const DynamicLibrary library;
    EXPECT_TRUE(HostTest::can_free(library));
    EXPECT_EQ(HostTest::handle(library), nullptr);
    EXPECT_FALSE(library.is_first_load());
}

TEST_F(Library, HoldsNothingAtFirst) {
    RecordProperty("behaviour", "host-platform.dynlib.defaults");
    DynamicLibrary library;
    EXPECT_FALSE(library.is_first_load());
    EXPECT_FALSE(library.free());
}

TEST_F(Library, CanBeMovedAndNotCopied) {
    RecordProperty("behaviour", "host-platform.dynlib.move-only");
    EXPECT_TRUE(std::is_move_constructible_v<DynamicLibrary>);
    EXPECT_TRUE(std::is_move_assignable_v<DynamicLibrary>);
    EXPECT_FALSE(std::is_copy_constructible_v<DynamicLibrary>);
    EXPECT_FALSE(std::is_copy_assignable_v<DynamicLibrary>);
}

TEST_F(Library, AMoveTakesTheHandle) {
    RecordProperty("behaviour", "host-platform.dynlib.move-takes-handle");
    DynamicLibrary source = DynamicLibrary::load(one, "");
    DynamicLibrary target = std::move(source);
    EXPECT_TRUE(target.is_first_load());
    EXPECT_FALSE(source.free()); // NOLINT: what a moved-from library does is the point
    EXPECT_TRUE(is_in_process(one));
    DynamicLibrary assigned;
    assigned = std::move(target);
    EXPECT_TRUE(assigned.is_first_load());
    EXPECT_FALSE(target.free()); // NOLINT
    EXPECT_TRUE(is_in_process(one));
    EXPECT_TRUE(assigned.free());
    EXPECT_FALSE(is_in_process(one));
}

TEST_F(Library, TheRightToFreeStaysWithThePlace) {
    RecordProperty("behaviour", "host-platform.dynlib.move-keeps-can-free");
    {
        DynamicLibrary source = DynamicLibrary::load(one, "");
        source.set_can_free(false);
        DynamicLibrary target;
        target = std::move(source);
    }
    EXPECT_FALSE(is_in_process(one));
    {
        DynamicLibrary source = DynamicLibrary::load(two, "");
        DynamicLibrary target;
        target.set_can_free(false);
        target = std::move(source);
    }
    EXPECT_TRUE(is_in_process(two));
    unload(two);
    {
        DynamicLibrary source = DynamicLibrary::load(one, "");
        source.set_can_free(false);
        const DynamicLibrary made = std::move(source);
    }
    EXPECT_FALSE(is_in_process(one));
}

TEST_F(Library, IsLoadedWithGlobalSymbols) {
    RecordProperty("behaviour", "host-platform.load-library.flags");
    ASSERT_FALSE(is_global());
    void *handle = pal::load_library(one);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(last_mode, RTLD_NOW | RTLD_GLOBAL);
    EXPECT_TRUE(is_global());
    pal::free_library(handle);
}

TEST_F(Library, IsResolvedAtOnce) {
    RecordProperty("behaviour", "host-platform.load-library.flags");
    EXPECT_EQ(pal::load_library(KELMOR_UNRESOLVED_LIBRARY), nullptr);
    void *lazy = dlopen(KELMOR_UNRESOLVED_LIBRARY, RTLD_LAZY);
    ASSERT_NE(lazy, nullptr) << dlerror();
    dlclose(lazy);
}

TEST_F(Library, AFailedLoadGivesNull) {
    RecordProperty("behaviour", "host-platform.load-library.failure");
    EXPECT_EQ(pal::load_library(missing), nullptr);
}

TEST_F(Library, LookingForOneDoesNotLoadIt) {
    RecordProperty("behaviour", "host-platform.get-module.not-loaded");
    void *handle = this;
    EXPECT_FALSE(pal::get_module(one, &handle));
    EXPECT_EQ(last_mode, RTLD_NOW | RTLD_NOLOAD);
    EXPECT_EQ(handle, nullptr);
    EXPECT_FALSE(is_in_process(one));
}

TEST_F(Library, LookingForALoadedOneFindsIt) {
    RecordProperty("behaviour", "host-platform.get-module.loaded");
    void *loaded = pal::load_library(one);
    void *handle = nullptr;
    EXPECT_TRUE(pal::get_module(one, &handle));
    EXPECT_EQ(handle, loaded);
    pal::free_library(handle);
    pal::free_library(loaded);
}

TEST_F(Library, FreeingGivesTheLoadersResult) {
    RecordProperty("behaviour", "host-platform.free-library.result");
    void *handle = pal::load_library(one);
    EXPECT_EQ(pal::free_library(handle), 0);
    EXPECT_FALSE(is_in_process(one));
}

TEST_F(Library, ASymbolIsFoundByName) {
    RecordProperty("behaviour", "host-platform.get-symbol.result");
    void *handle = pal::load_library(one);
    const auto answer = reinterpret_cast<int (*)()>(pal::get_symbol(handle, "sample_answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(pal::get_symbol(handle, "sample_question"), nullptr);
    pal::free_library(handle);
}

TEST_F(Library, ALookUpWithoutAHandleIsALogicError) {
    RecordProperty("behaviour", "host-start.bind.null-handle");
    const DynamicLibrary library;
    try {
        library.get_symbol("sample_question");
        FAIL() << "nothing was thrown";
    } catch (const std::logic_error &error) {
        EXPECT_STREQ(error.what(), "Library was not opened!");
        EXPECT_EQ(typeid(error), typeid(std::logic_error)); // none of those that derive from it
    }
}

TEST_F(Library, TryingFreesWhatTheTargetHeld) {
    RecordProperty("behaviour", "host-platform.try-load.frees-target");
    DynamicLibrary target = DynamicLibrary::load(one, "");
    EXPECT_TRUE(DynamicLibrary::try_load(two, "", target));
    EXPECT_FALSE(is_in_process(one));
    EXPECT_TRUE(is_in_process(two));
    EXPECT_FALSE(DynamicLibrary::try_load(missing, "", target));
    EXPECT_FALSE(is_in_process(two));
}

Written traced_load(const std::string &path, DynamicLibrary &target, bool expected) {
    trace::enable();
    return written_by([&] { EXPECT_EQ(DynamicLibrary::try_load(path, "", target), expected); });
}

TEST_F(Library, OneThatIsThereAlreadyIsUsed) {
    RecordProperty("behaviour", "host-platform.try-load.existing");
    void *loaded = dlopen(one.c_str(), RTLD_NOW | RTLD_LOCAL);
    DynamicLibrary target;
    const Written written = traced_load(one, target, true);
    EXPECT_FALSE(target.is_first_load());
    EXPECT_EQ(written, (Written{"Try get module...\r\nUsing existed module...\r\n", ""}));
    EXPECT_FALSE(is_global());
    dlclose(loaded);
}

TEST_F(Library, OneThatIsNewIsAFirstLoad) {
    RecordProperty("behaviour", "host-platform.try-load.first");
    DynamicLibrary target;
    const Written written = traced_load(one, target, true);
    EXPECT_TRUE(target.is_first_load());
    EXPECT_EQ(written, (Written{"Try get module...\r\nNo existed module...\r\n", ""}));
    EXPECT_TRUE(is_global());
}

TEST_F(Library, OneThatIsMissingIsNamedWithoutAReason) {
    RecordProperty("behaviour", "host-platform.try-load.missing");
    DynamicLibrary target;
    dlerror();
    const Written written = traced_load(missing, target, false);
    EXPECT_NE(dlerror(), nullptr); // nobody has asked for the reason
    EXPECT_EQ(written, (Written{"Try get module...\r\nNo existed module...\r\nNo module...\r\n"
                                "No: '" +
                                    missing + "'\r\n",
                                ""}));
}

TEST_F(Library, TheNameHasNoEffect) {
    RecordProperty("behaviour", "host-platform.try-load.name-unused");
    for (const char *name : {"", "two.so", "/nowhere/else.so"}) {
        DynamicLibrary target;
        EXPECT_TRUE(DynamicLibrary::try_load(one, name, target)) << name;
        EXPECT_TRUE(target.is_first_load()) << name;
        target.free();
        EXPECT_TRUE(DynamicLibrary::load(one, name).is_first_load()) << name;
        EXPECT_FALSE(DynamicLibrary::try_load(missing, name, target)) << name;
        EXPECT_THROW(DynamicLibrary::load(missing, name), std::runtime_error) << name;
    }
}

TEST_F(Library, LoadingTellsWhoBroughtIt) {
    RecordProperty("behaviour", "host-platform.load.success");
    const DynamicLibrary first = DynamicLibrary::load(one, "");
    const DynamicLibrary second = DynamicLibrary::load(one, "");
    EXPECT_TRUE(first.is_first_load());
    EXPECT_FALSE(second.is_first_load());
    EXPECT_TRUE(second.is_loaded());
}

TEST_F(Library, AFailedLoadThrows) {
    RecordProperty("behaviour", "host-platform.load.failure");
    try {
        DynamicLibrary::load(missing, "");
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "DynamicLibrary::load");
        EXPECT_EQ(typeid(error), typeid(std::runtime_error));
    }
}

TEST_F(Library, FreeingReleasesOnce) {
    RecordProperty("behaviour", "host-platform.free.releases");
    DynamicLibrary library = DynamicLibrary::load(one, "");
    EXPECT_TRUE(library.free());
    EXPECT_FALSE(is_in_process(one));
    EXPECT_FALSE(library.free());
}

TEST_F(Library, FreeingWithoutTheRightOnlyTells) {
    RecordProperty("behaviour", "host-platform.free.cannot");
    DynamicLibrary library = DynamicLibrary::load(one, "");
    library.set_can_free(false);
    EXPECT_TRUE(library.free());
    EXPECT_TRUE(library.free());
    EXPECT_TRUE(is_in_process(one));
    library.set_can_free(true);
}

TEST_F(Library, TheEndOfItsOwnerFreesIt) {
    RecordProperty("behaviour", "host-platform.destructor.frees");
    { const DynamicLibrary library = DynamicLibrary::load(one, ""); }
    EXPECT_FALSE(is_in_process(one));
    {
        DynamicLibrary library = DynamicLibrary::load(one, "");
        library.set_can_free(false);
    }
    EXPECT_TRUE(is_in_process(one));
    unload(one);
}

TEST_F(Library, AnAssignmentFreesThenMoves) {
    RecordProperty("behaviour", "host-platform.assign.frees-then-moves");
    DynamicLibrary source = DynamicLibrary::load(two, "");
    DynamicLibrary target = DynamicLibrary::load(one, "");
    const DynamicLibrary earlier = DynamicLibrary::load(two, "");
    target = DynamicLibrary::load(two, ""); // found in the process: not a first load
    EXPECT_FALSE(is_in_process(one));
    EXPECT_TRUE(is_in_process(two));
    EXPECT_FALSE(target.is_first_load());
    target = std::move(source);
    EXPECT_TRUE(target.is_first_load());
}

} // namespace
