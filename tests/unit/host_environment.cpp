// The host's records and texts, as far as they need no runtime.
#include "host/host_environment.h"
#include "host/missing_method.h"
#include "host_friend.h"
#include "host_scene.h"

#include <cstring>
#include <dlfcn.h>
#include <set>
#include <stdexcept>
#include <type_traits>

// Which variables have been asked for, while a test looks.
static std::vector<std::string> *variables_read = nullptr;

extern "C" char *getenv(const char *name) noexcept {
    static const auto real = reinterpret_cast<char *(*)(const char *)>(dlsym(RTLD_NEXT, "getenv"));
    if (variables_read) variables_read->push_back(name);
    return real(name);
}

namespace {

template <std::size_t Size>
constexpr bool equal(const std::size_t (&left)[Size], const std::size_t (&right)[Size]) {
    for (std::size_t index = 0; index < Size; ++index)
        if (left[index] != right[index]) return false;
    return true;
}

constexpr std::size_t environment_layout[] = {0, 8, 16, 24, 48, 56, 64, 72, 80, 81};
constexpr std::size_t exchange_layout[] = {0,  8,  16, 24, 32,  40,  48,  56, 64,
                                           72, 80, 88, 96, 104, 112, 120, 128};
constexpr std::size_t object_layout[] = {0, 8, 16, 24, 32, 40, 48, 56, 64, 72, 80, 88, 96, 104};
static_assert(equal(HostTest::environment_offsets, environment_layout));
static_assert(equal(HostTest::exchange_offsets, exchange_layout));
static_assert(equal(HostTest::object_offsets, object_layout));

// Without bases and virtual functions, so the first member lies at the start.
template <typename Host> constexpr bool is_plain() {
    return !std::is_polymorphic_v<Host> && std::is_standard_layout_v<Host>;
}
static_assert(is_plain<HostEnvironment>() && is_plain<ExchangeHost>() && is_plain<ObjectHost>());

template <typename Host, typename = void> constexpr bool has_flag = false;
template <typename Host>
constexpr bool has_flag<Host, std::void_t<decltype(&Host::is_not_valid)>> = true;
static_assert(has_flag<ObjectHost> && !has_flag<ExchangeHost>);

TEST(HostRecords, TheEnvironmentHasItsMembersInOrder) {
    RecordProperty("behaviour", "host-start.env.members");
    EXPECT_TRUE(equal(HostTest::environment_offsets, environment_layout));
    EXPECT_EQ(sizeof(HostEnvironment), 88u);
    EXPECT_TRUE(is_plain<HostEnvironment>());
}

TEST(HostRecords, TheExchangeHasItsSlotsInOrder) {
    RecordProperty("behaviour", "host-services.exchange.layout");
    EXPECT_TRUE(equal(HostTest::exchange_offsets, exchange_layout));
    EXPECT_TRUE(is_plain<ExchangeHost>());
}

TEST(HostRecords, TheExchangeHasNoFlag) {
    RecordProperty("behaviour", "host-services.exchange.no-invalid-flag");
    EXPECT_FALSE(has_flag<ExchangeHost>);
    EXPECT_EQ(sizeof(ExchangeHost), 136u); // nothing stands behind the text
}

TEST(HostRecords, TheObjectHostHasItsSlotsInOrder) {
    RecordProperty("behaviour", "host-services.object.layout");
    EXPECT_TRUE(equal(HostTest::object_offsets, object_layout));
    EXPECT_TRUE(is_plain<ObjectHost>());
}

TEST(HostRecords, TheExportedTexts) {
    EXPECT_STREQ(KelmorDomainName, "KelmorCLRHostDomain");
    EXPECT_STREQ(HostNotReady, "CLR Host is not ready");
}

TEST(NewEnvironment, IsEmpty) {
    RecordProperty("behaviour", "host-start.env.constructed-state");
    const HostTest::Environment environment;
    EXPECT_TRUE(environment.strings_are_empty());
    EXPECT_TRUE(environment.library_is_new());
    EXPECT_TRUE(environment.first_entries_are_null());
    EXPECT_TRUE(environment.flags_are_false());
}

TEST(WrapName, OfTheReleaseLibrary) {
    RecordProperty("behaviour", "host-start.name.release");
    const HostTest::Environment environment;
    EXPECT_STREQ(environment.host->get_libcoreclr_wrap_name(), "libkelmor.embed.coreclrwrap.so");
}

TEST(WrapName, OfTheDebugLibrary) {
    RecordProperty("behaviour", "host-start.name.debug");
    HostTest::Environment environment;
    environment.set_debug(true);
    EXPECT_STREQ(environment.host->get_libcoreclr_wrap_name(),
                 "libkelmor.embed.coreclrwrap.debug.so");
}

using Folders = std::vector<std::string>;

Folders completed(Folders folders, const std::string &folder) {
    HostEnvironment::complete_app_folders(folders, folder);
    return folders;
}

TEST(CompletingFolders, AppendsANewOne) {
    RecordProperty("behaviour", "host-start.complete-folders.appends");
    EXPECT_EQ(completed({}, "/r"), Folders{"/r"});
    EXPECT_EQ(completed({"/b", "/a"}, "/r"), (Folders{"/b", "/a", "/r"}));
}

TEST(CompletingFolders, LeavesOneThatIsThere) {
    RecordProperty("behaviour", "host-start.complete-folders.no-repeat");
    EXPECT_EQ(completed({"/r", "/a"}, "/r"), (Folders{"/r", "/a"}));
    EXPECT_EQ(completed({"/a", "/r"}, "/r"), (Folders{"/a", "/r"}));
    EXPECT_EQ(completed({"/r"}, "/r/"), (Folders{"/r", "/r/"}));
}

// Without a runtime beside this program the start fails, so the object stays without a library.
TEST(Start, ReadsThreeVariablesAndNothingElse) {
    std::vector<std::string> names;
    variables_read = &names;
    try {
        HostEnvironment::instance("first", false, "kelmor", "second", nullptr, nullptr);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "DynamicLibrary::load");
    }
    variables_read = nullptr;
    EXPECT_EQ(names,
              (std::vector<std::string>{"COREHOST_TRACE", "NETCORE_WRAPPER_NETCORE_DIR_kelmor",
                                        "NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor"}));
}

int start_answer = 0;
int starts = 0;
// The texts live as long as the call.
std::vector<std::string> given_texts;
std::set<const char *> given_addresses;

int answer_start(const char *exe_path, const char *, int, const char **, const char **values) {
    ++starts;
    given_texts = {exe_path, values[1], values[2], values[3]};
    given_addresses = {exe_path, values[1], values[2], values[3]};
    return start_answer;
}

// The other side may keep or change a text without harm to another, or to the host.
TEST(Start, GivesEveryPropertyATextOfItsOwn) {
    HostTest::Environment environment;
    environment.set_start("/bin/python", "/a:/b", answer_start);
    start_answer = 0;
    EXPECT_TRUE(environment.host->create_default_app_domain());
    EXPECT_EQ(given_texts, (std::vector<std::string>{"/bin/python", "/a:/b", "/a:/b", "/a:/b"}));
    EXPECT_EQ(given_addresses.size(), 4u);
    for (const char *address : given_addresses) EXPECT_FALSE(environment.shows(address));
}

TEST(Start, MakesADomainUnlessItIsRefusedOrThereIsOne) {
    HostTest::Environment environment;
    environment.set_start("/bin/python", "/a", answer_start);
    starts = 0;
    start_answer = 5;
    EXPECT_THROW(environment.host->create_default_app_domain(), CoreClrInitException);
    EXPECT_FALSE(environment.domain_initialized());
    start_answer = 0;
    EXPECT_TRUE(environment.host->create_default_app_domain());
    EXPECT_TRUE(environment.domain_initialized());
    EXPECT_FALSE(environment.host->create_default_app_domain());
    EXPECT_EQ(starts, 2);
}

int shutdowns = 0;
int count_shutdown() { return ++shutdowns; }

TEST(Shutdown, DoesNothingBeforeTheStart) {
    RecordProperty("behaviour", "host-start.shutdown.unbound");
    shutdowns = 0;
    HostTest::Environment environment;
    EXPECT_EQ(environment.host->try_shutdown_default_app_domain(), -1);
    environment.set_domain_initialized(true); // but no entry is bound
    EXPECT_EQ(environment.host->try_shutdown_default_app_domain(), -1);
    EXPECT_TRUE(environment.domain_initialized()); // it is nobody's yet
    environment.set_domain_initialized(false);
    environment.set_shutdown(count_shutdown); // but there is no domain
    EXPECT_EQ(environment.host->try_shutdown_default_app_domain(), -1);
    EXPECT_EQ(shutdowns, 0);
}

TEST(Shutdown, WithoutTheLibraryOnlyForgetsTheDomain) {
    shutdowns = 0;
    HostTest::Environment environment;
    environment.set_shutdown(count_shutdown);
    for (const bool first_load : {false, true}) {
        environment.set_first_load(first_load);
        environment.set_domain_initialized(true);
        EXPECT_EQ(environment.host->try_shutdown_default_app_domain(), -1) << first_load;
        EXPECT_FALSE(environment.domain_initialized()) << first_load;
    }
    EXPECT_EQ(shutdowns, 0);
}

// What a virtual call of the slot gives: the deleting destructor lies between the two others.
TEST(StartFailure, IsAStandardExceptionWithOneText) {
    RecordProperty("behaviour", "host-start.exception.type");
    EXPECT_TRUE((std::is_convertible_v<CoreClrInitException *, std::exception *>));
    EXPECT_EQ(sizeof(CoreClrInitException), sizeof(std::exception) + sizeof(std::string));
    const CoreClrInitException failure(1, "/e", "D", 0, nullptr, nullptr);
    using What = const char *(*)(const void *);
    using Slot = void (*)();
    const Slot *slots;
    std::memcpy(&slots, &failure, sizeof(slots));
    const auto what = reinterpret_cast<What>(slots[2]);
    EXPECT_STREQ(what(&failure), failure.what());
    EXPECT_NE(slots[0], slots[1]);
}

TEST(StartFailure, TellsEverythingThatWasGiven) {
    RecordProperty("behaviour", "host-start.exception.message");
    const char *keys[] = {"K1", "K2"};
    const char *values[] = {"", "v"};
    const CoreClrInitException failure(1, "/e", "D", 2, keys, values);
    EXPECT_STREQ(failure.what(), "coreclr_initialize failed (0x1) [<APP_DOMAIN_NAME>='D',"
                                 "<HOST_EXE_PATH>='/e',<K1>='',<K2>='v']");
}

TEST(StartFailure, MayHaveNoProperties) {
    RecordProperty("behaviour", "host-start.exception.no-properties");
    const CoreClrInitException failure(1, "/e", "D", 0, nullptr, nullptr);
    EXPECT_STREQ(failure.what(), "coreclr_initialize failed (0x1) [<APP_DOMAIN_NAME>='D',"
                                 "<HOST_EXE_PATH>='/e']");
}

TEST(StartFailure, TellsTheCodeInHexadecimal) {
    RecordProperty("behaviour", "host-start.exception.hex-code");
    const struct {
        int code;
        const char *text;
    } rows[] = {{1, "(0x1)"}, {171, "(0xab)"}, {-1, "(0xffffffff)"}, {-2147024809, "(0x80070057)"}};
    for (const auto &row : rows) {
        const CoreClrInitException failure(row.code, "/e", "D", 0, nullptr, nullptr);
        EXPECT_NE(std::strstr(failure.what(), row.text), nullptr) << failure.what();
    }
}

TEST(MissingMethod, IsNamedWithItsTypeAndAssembly) {
    RecordProperty("behaviour", "host-services.message.text");
    EXPECT_EQ(missing_method_error_message("A", "T", "M", 5),
              "While initializing the host for the 'T (Assembly=A)' type, an error occurred - "
              "Method 'M' not found (error=5)");
}

TEST(MissingMethod, TellsTheCodeInDecimal) {
    RecordProperty("behaviour", "host-services.message.decimal-code");
    const std::string text = missing_method_error_message("A", "T", "M", -2146233069);
    EXPECT_NE(text.find("(error=-2146233069)"), std::string::npos) << text;
}

} // namespace
