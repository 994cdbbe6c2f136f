// Shared test helpers: Fortran-style arguments, a private working directory per test,
// process-state restoration, child processes and captured output.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>

namespace tarvo_test {

// A writable, blank-padded Fortran CHARACTER variable of a fixed length.
struct FString {
    std::string text;
    explicit FString(std::size_t length, char fill = ' ') : text(length, fill) {}
    FString(std::string value, std::size_t length) : text(std::move(value)) { text.resize(length, ' '); }
    char* data() { return text.data(); }
    std::size_t size() const { return text.size(); }
    std::string trimmed() const { return text.substr(0, text.find_last_not_of(' ') + 1); }
};

// Each test runs in a fresh temporary directory; cwd, umask and errno come back afterwards.
class ScratchDirTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    const std::string& dir() const { return dir_; }
    std::string path(const std::string& name) const { return dir_ + "/" + name; }
    void write_file(const std::string& name, const std::string& content, mode_t mode = 0644) const;
    std::string read_file(const std::string& name) const;
    mode_t mode_of(const std::string& name) const;

private:
    std::string dir_;
    int saved_cwd_ = -1;
    mode_t saved_umask_ = 0;
};

// Runs fn in a forked child and returns the child's wait status; fn's result is the
// child's exit status.
int run_in_child(const std::function<int()>& fn);

// Collects what a file descriptor (standard error, by default) receives during a scope.
class CapturedOutput {
public:
    explicit CapturedOutput(int fd = 2);
    ~CapturedOutput();
    std::string text();  // stops capturing

private:
    int fd_;
    int saved_ = -1;
    int file_ = -1;
    bool done_ = false;
};

void remove_tree(const std::string& path);

}  // namespace tarvo_test
