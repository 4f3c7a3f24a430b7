// What the tests of the host need around it: a folder of their own, text that was written, a user
// without rights.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// A folder that others can enter too, removed at the end of its scope.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = testing::TempDir() + "kelmor-XXXXXX";
        path_ = mkdtemp(pattern.data());
        chmod(path_.c_str(), 0755);
        umask(022); // a test says by itself what nobody may read
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder &) = delete;

    const std::string &path() const { return path_; }
    std::string path(const std::string &name) const { return path_ + "/" + name; }
    void add_folder(const std::string &name) const {
        std::filesystem::create_directories(path(name));
    }
    void add_file(const std::string &name) const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name)) << "content";
    }
    void add_link(const std::string &name, const std::string &target) const {
        std::filesystem::create_symlink(target, path(name));
    }

private:
    std::string path_;
};

struct Written {
    std::string out, err;
    bool operator==(const Written &other) const { return out == other.out && err == other.err; }
};

inline std::ostream &operator<<(std::ostream &stream, const Written &written) {
    return stream << "stdout " << testing::PrintToString(written.out) << ", stderr "
                  << testing::PrintToString(written.err);
}

template <typename Work> Written written_by(Work work) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    work();
    Written written;
    written.out = testing::internal::GetCapturedStdout();
    written.err = testing::internal::GetCapturedStderr();
    return written;
}

// The superuser may read everything, so a test of what can't be read becomes somebody else, in a
// child of its own.
template <typename Condition> void expect_as_nobody(Condition condition) {
    const auto child = [&] {
        const bool changed = getuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0);
        _exit(changed && condition() ? 0 : 1);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}
