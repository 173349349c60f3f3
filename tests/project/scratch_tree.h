#pragma once

#include "support/file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace morquill::project {

/// What a piece of the program left on the two streams.
struct Output {
    int status = 0;
    std::string out;
    std::string err;
};

/// A test with a directory of its own, in which it stands, and with the three standard streams in hand.
class ScratchTree : public ::testing::Test {
  protected:
    ScratchTree() : before_(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "mqkit-project-XXXXXX").string();
        top_ = std::filesystem::canonical(::mkdtemp(name.data()));
        std::filesystem::permissions(top_, std::filesystem::perms{0755});
        // So deep that no search upwards meets what other programs leave in the temporary directory.
        root = (top_ / "1/2/3/4/5/6").string();
        std::filesystem::create_directories(root);
        std::filesystem::current_path(root);
    }
    ~ScratchTree() override {
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(top_);
    }

    [[nodiscard]] std::string at(const std::string& name) const {
        return name.empty() ? root : root + "/" + name;
    }
    void dir(const std::string& name) const { std::filesystem::create_directories(at(name)); }
    void enter(const std::string& name) const {
        dir(name);
        std::filesystem::current_path(at(name));
    }
    void write(const std::string& name, std::string_view text = "") const {
        std::filesystem::create_directories(std::filesystem::path(at(name)).parent_path());
        ASSERT_TRUE(writeTextFile(at(name), text)) << name;
    }
    /// Sets the permission bits of a file or directory; what lies there is removed again at the end all the
    /// same.
    void mode(const std::string& name, unsigned bits) const {
        std::filesystem::permissions(at(name), std::filesystem::perms{bits});
    }
    void link(const std::string& target, const std::string& name) const {
        std::filesystem::create_directories(std::filesystem::path(at(name)).parent_path());
        std::filesystem::create_symlink(target, at(name));
    }

    /// Everything below a directory, one line each in byte order: "a/", "a/b = <text>", "a/c -> <target>".
    [[nodiscard]] std::vector<std::string> tree(const std::string& below = "") const {
        namespace fs = std::filesystem;
        std::vector<std::string> lines;
        for (const auto& entry : fs::recursive_directory_iterator(at(below))) {
            const std::string name = entry.path().lexically_relative(at(below)).string();
            if (entry.is_symlink()) {
                lines.push_back(name + " -> " + fs::read_symlink(entry.path()).string());
            } else if (entry.is_directory()) {
                lines.push_back(name + "/");
            } else {
                lines.push_back(name + " = " + readTextFile(entry.path().string()).value_or("?"));
            }
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    /// Runs `action` with standard input taken from a descriptor and both output streams caught.
    template <class Action>
    Output runWith(int input, Action action) {
        const int saved = ::dup(STDIN_FILENO);
        ::dup2(input, STDIN_FILENO);
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        Output output;
        output.status = static_cast<int>(action());
        output.out = ::testing::internal::GetCapturedStdout();
        output.err = ::testing::internal::GetCapturedStderr();
        ::dup2(saved, STDIN_FILENO);
        ::close(saved);
        return output;
    }

    /// The same with the text as a pipe; it has to fit into the pipe's buffer.
    template <class Action>
    Output run(std::string_view input, Action action) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        EXPECT_EQ(::write(ends[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
        ::close(ends[1]);
        Output output = runWith(ends[0], action);
        ::close(ends[0]);
        return output;
    }

    std::string root;

  private:
    std::filesystem::path before_;
    std::filesystem::path top_;
};

/// For its life the tests run as nobody, so that permissions mean something where they run as root.
class Unprivileged {
  public:
    Unprivileged() : wasRoot_(::geteuid() == 0) {
        if (wasRoot_) {
            EXPECT_EQ(::seteuid(nobody), 0);
        }
    }
    ~Unprivileged() {
        if (wasRoot_) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

  private:
    static constexpr uid_t nobody = 65534;
    bool wasRoot_;
};

/// The arguments of one command line as `main` gets them.
class Arguments {
  public:
    Arguments(std::initializer_list<std::string> words) : words_(words) {
        for (std::string& word : words_) {
            pointers_.push_back(word.data());
        }
        pointers_.push_back(nullptr);
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    [[nodiscard]] int argc() const { return static_cast<int>(words_.size()); }
    [[nodiscard]] char** argv() { return pointers_.data(); }

  private:
    std::vector<std::string> words_;
    std::vector<char*> pointers_;
};

} // namespace morquill::project
