#include "system/prompt.h"

#include "fixtures/scratch_tree.h"

#include <pty.h>
#include <sys/wait.h>

namespace morquill::system {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Prompt : public ScratchTree {
  protected:
    std::vector<std::size_t> choose(std::string_view answer, std::size_t count) {
        std::vector<std::size_t> indices;
        const Output output = run(answer, [&] {
            indices = promptIndexSelection("", count);
            return 0;
        });
        EXPECT_EQ(output.out, "Input index (e.g. 1 2 3 or 1,2,3): ");
        EXPECT_EQ(output.err, "");
        return indices;
    }
    bool yes(std::string_view answer) {
        return run(answer, [] { return askYesNo() ? 1 : 0; }).status == 1;
    }
};

TEST_F(Prompt, TheMenuTakesNumbersInAnyOrder) {
    EXPECT_THAT(choose("2,1 1 99\n", 3), ElementsAre(0, 1));
    EXPECT_THAT(choose("3\n", 3), ElementsAre(2));
    EXPECT_THAT(choose(" ,, 1 ,\t2,\r\n", 3), ElementsAre(0, 1));
    EXPECT_THAT(choose("+2 02", 3), ElementsAre(1));
    EXPECT_THAT(choose("0 -1 4 2147483648 99999999999999999999 1x x 1.0 0x1 --1 +-2 + 1;2\n", 3), IsEmpty());
    EXPECT_THAT(choose("\n", 3), IsEmpty());
    EXPECT_THAT(choose("", 3), IsEmpty());
    EXPECT_THAT(choose("1\n", 0), IsEmpty());
}

TEST_F(Prompt, TheTitleComesFirst) {
    const Output output = run("", [] {
        static_cast<void>(promptIndexSelection("\n[mqkit] choose:", 1));
        return 0;
    });
    EXPECT_EQ(output.out, "\n[mqkit] choose:\nInput index (e.g. 1 2 3 or 1,2,3): ");
}

TEST_F(Prompt, YesIsYOrYesInAnyCase) {
    for (const char* answer : {"y\n", "Y", " yes\r\n", "YES\n", "\tYeS \n"}) {
        EXPECT_TRUE(yes(answer)) << answer;
    }
    for (const char* answer : {"", "\n", "n\n", "no\n", "yess\n", "y y\n", "ye\n", "\ny\n"}) {
        EXPECT_FALSE(yes(answer)) << answer;
    }
}

/// Reads one line and lets a child read the rest of standard input.
std::string lineThenRest() {
    const std::string line = readInputLine().value_or("<end>");
    const int status = std::system("cat >rest");
    return line + "|" + readTextFile("rest").value_or("?") + "|" + std::to_string(status);
}

TEST_F(Prompt, InputAfterTheLineIsLeftForTheChild) {
    std::string result;
    const auto read = [&] {
        result = lineThenRest();
        return 0;
    };
    run("one\ntwo\nthree", read);
    EXPECT_EQ(result, "one|two\nthree|0");

    write("input", "one\n" + std::string(10'000, 'x') + "\nlast");
    const int file = ::open(at("input").c_str(), O_RDONLY);
    runWith(file, read);
    ::close(file);
    EXPECT_EQ(result, "one|" + std::string(10'000, 'x') + "\nlast|0");
}

TEST_F(Prompt, LinesEndAtTheEndOfInputToo) {
    std::vector<std::string> lines;
    run(std::string_view("a\n\nb\0c\r", 7), [&] {
        for (int i = 0; i < 4; ++i) {
            lines.push_back(readInputLine().value_or("<end>"));
        }
        return 0;
    });
    EXPECT_THAT(lines, ElementsAre("a", "", std::string("b\0c\r", 4), "<end>"));
    const int closed = ::open("/dev/null", O_WRONLY); // reading from it is an error
    runWith(closed, [&] {
        lines.assign(1, readInputLine().value_or("<end>"));
        return 0;
    });
    ::close(closed);
    EXPECT_THAT(lines, ElementsAre("<end>"));
}

TEST_F(Prompt, AnAnswerOfMegabytesIsRead) {
    std::string numbers;
    for (int i = 0; i < 300'000; ++i) {
        numbers += "7,9 ";
    }
    write("input", numbers + "\n1\n");
    const int file = ::open(at("input").c_str(), O_RDONLY);
    std::vector<std::size_t> indices;
    runWith(file, [&] {
        indices = promptIndexSelection("", 8);
        return 0;
    });
    ::close(file);
    EXPECT_THAT(indices, ElementsAre(6));
}

TEST_F(Prompt, AnswersComeFromATerminal) {
    int master = -1;
    int terminal = -1;
    ASSERT_EQ(::openpty(&master, &terminal, nullptr, nullptr, nullptr), 0);
    const std::string typed = "2 1\nyes\n";
    ASSERT_EQ(::write(master, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    std::vector<std::size_t> indices;
    bool agreed = false;
    const Output output = runWith(terminal, [&] {
        indices = promptIndexSelection("Pick", 2);
        agreed = askYesNo();
        return 0;
    });
    EXPECT_THAT(indices, ElementsAre(0, 1));
    EXPECT_TRUE(agreed);
    EXPECT_EQ(output.out, "Pick\nInput index (e.g. 1 2 3 or 1,2,3): ");
    const char endOfInput = 4;
    ASSERT_EQ(::write(master, &endOfInput, 1), 1);
    runWith(terminal, [&] {
        agreed = askYesNo();
        return 0;
    });
    EXPECT_FALSE(agreed);
    ::close(terminal);
    ::close(master);
}

} // namespace
} // namespace morquill::system
