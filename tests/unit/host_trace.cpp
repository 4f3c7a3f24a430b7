// When the host's diary is written, and where to.
#include "host/host_trace.h"
#include "host_scene.h"

namespace {

const char variable[] = "COREHOST_TRACE";
const bool enabled_at_start = trace::is_enabled(); // before any test has touched it

class Trace : public testing::Test {
protected:
    void SetUp() override {
        trace::disable();
        unsetenv(variable);
    }
    void TearDown() override { SetUp(); }

    Written initialized_with(const char *value) {
        setenv(variable, value, 1);
        return written_by([] { trace::initialize(); });
    }
};

TEST_F(Trace, IsOffAtFirst) {
    RecordProperty("behaviour", "host-platform.trace.default-off");
    EXPECT_FALSE(enabled_at_start);
}

TEST_F(Trace, IsTurnedOnAndOff) {
    RecordProperty("behaviour", "host-platform.trace.enable-disable");
    trace::enable();
    EXPECT_TRUE(trace::is_enabled());
    trace::disable();
    EXPECT_FALSE(trace::is_enabled());
}

TEST_F(Trace, AnErrorIsAlwaysWritten) {
    RecordProperty("behaviour", "host-platform.trace.error");
    const auto error = [] { trace::error("%s %d", "bad", 7); };
    EXPECT_EQ(written_by(error), (Written{"", "bad 7\r\n"}));
    trace::enable();
    EXPECT_EQ(written_by(error), (Written{"", "bad 7\r\n"}));
}

TEST_F(Trace, AllElseIsWrittenWhenItIsOn) {
    RecordProperty("behaviour", "host-platform.trace.stdout-writers");
    for (const auto writer : {trace::warning, trace::info, trace::verbose}) {
        const auto write = [&] { writer("%s %d", "line", 7); };
        trace::disable();
        EXPECT_EQ(written_by(write), (Written{"", ""}));
        trace::enable();
        EXPECT_EQ(written_by(write), (Written{"line 7\r\n", ""}));
    }
}

TEST_F(Trace, StaysOnWhenItIsOn) {
    RecordProperty("behaviour", "host-platform.trace-init.already-enabled");
    trace::enable();
    EXPECT_EQ(initialized_with("0"), (Written{"", ""}));
    EXPECT_TRUE(trace::is_enabled());
}

TEST_F(Trace, ANumberFromOneOnTurnsItOn) {
    RecordProperty("behaviour", "host-platform.trace-init.on");
    for (const char *value : {"1", "2"}) {
        trace::disable();
        EXPECT_EQ(initialized_with(value), (Written{"CLR host tracing enabled\r\n", ""}));
        EXPECT_TRUE(trace::is_enabled()) << value;
        EXPECT_EQ(written_by([] { trace::verbose("later"); }), (Written{"later\r\n", ""}));
    }
}

TEST_F(Trace, EverythingElseLeavesItOff) {
    RecordProperty("behaviour", "host-platform.trace-init.off");
    EXPECT_EQ(written_by([] { trace::initialize(); }), (Written{"", ""}));
    EXPECT_FALSE(trace::is_enabled());
    for (const char *value : {"", "0", "-1", "abc"}) {
        EXPECT_EQ(initialized_with(value), (Written{"", ""}));
        EXPECT_FALSE(trace::is_enabled()) << value;
    }
}

TEST_F(Trace, TheNumberMayBeFollowedByText) {
    RecordProperty("behaviour", "host-platform.trace-init.leading-number");
    initialized_with("1abc");
    EXPECT_TRUE(trace::is_enabled());
}

} // namespace
