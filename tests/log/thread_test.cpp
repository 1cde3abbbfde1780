#include "tests/log/log_test_tools.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <gtest/gtest.h>
#include <latch>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using qzoci::test::Collector;
using qzoci::test::lines_of_file;
using qzoci::test::parse_line;
using qzoci::test::TemporaryFolder;
using qzoci::test::TextLine;

constexpr int writer_count = 8;
constexpr int lines_per_writer = 1000;

/* Writes its numbered error lines, of different lengths, and a debug line after each. */
void write_lines(int writer) {
    for (int i = 0; i < lines_per_writer; ++i) {
        const std::string filling(static_cast<std::size_t>(i * 7 % 600), static_cast<char>('a' + writer));
        qzoci_log_inner(LOG_LEVEL_ERROR, "writer.cpp", 1, "%d %d %s.", writer, i, filling.c_str());
        qzoci_log_inner(LOG_LEVEL_DEBUG, "writer.cpp", 2, "debug");
    }
}

/* Runs `disturb` over and over while eight threads write their lines, at least once after they began. */
template <class Disturbance>
void write_on_eight_threads_while(Disturbance disturb) {
    std::atomic<int> at_work{writer_count};
    /* No thread ends before: a child forked after that would be blamed by the thread sanitizer for not joining it. */
    std::latch end{1};
    std::array<std::jthread, writer_count> writers;
    std::ranges::generate(writers, [&at_work, &end, writer = 0]() mutable {
        return std::jthread([&at_work, &end, number = writer++] {
            write_lines(number);
            --at_work;
            end.wait();
        });
    });
    do {
        disturb();
    } while (at_work > 0);
    end.count_down();
}

/* Takes the writers' lines in the order in which a destination got them and tells what is wrong with them. */
class WritersLines {
public:
    /* One destination's lines; a writer's numbers rise in it. */
    void add_destination(const std::vector<std::string>& texts) {
        std::array<int, writer_count> last{};
        last.fill(-1);
        for (const std::string& text : texts) {
            if (text == "debug") {
                continue;
            }
            int writer = -1;
            int number = -1;
            int start = 0;
            ASSERT_EQ(std::sscanf(text.c_str(), "%d %d %n", &writer, &number, &start), 2) << text;
            ASSERT_TRUE(writer >= 0 && writer < writer_count && number >= 0 && number < lines_per_writer)
                << text;
            const std::string filling(static_cast<std::size_t>(number * 7 % 600),
                                      static_cast<char>('a' + writer));
            ASSERT_EQ(text.substr(static_cast<std::size_t>(start)), filling + ".");
            ASSERT_GT(number, last.at(static_cast<std::size_t>(writer))) << "order of writer " << writer;
            last.at(static_cast<std::size_t>(writer)) = number;
            ++count_;
        }
    }

    void add_file(const std::string& path) {
        std::vector<std::string> texts;
        for (const std::string& line : lines_of_file(path)) {
            const std::optional<TextLine> parsed = parse_line(line);
            ASSERT_TRUE(parsed) << "torn: " << line;
            texts.push_back(parsed->text);
        }
        add_destination(texts);
    }

    /* Since none came twice to one destination, and each goes to one, this is all of them. */
    void expect_all() const { EXPECT_EQ(count_, writer_count * lines_per_writer); }

private:
    int count_ = 0;
};

class LogThreads : public testing::Test {
protected:
    ~LogThreads() override { qzoci_log_to_none(); }

    TemporaryFolder folder;
    Collector collector;
};

TEST_F(LogThreads, FileHoldsEveryLineWholeWhileTheLevelChanges) {
    const std::string path = folder / "log";
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    write_on_eight_threads_while([] {
        for (int level = LOG_LEVEL_TRACE; level <= LOG_LEVEL_ERROR; ++level) {
            EXPECT_EQ(qzoci_log_set_level(level), 0);
        }
    });
    WritersLines lines;
    lines.add_file(path);
    lines.expect_all();
}

TEST_F(LogThreads, CallbackGetsEveryLineWholeWhileTheLevelChanges) {
    ASSERT_EQ(qzoci_log_to_callback(Collector::receive, &collector), 0);
    write_on_eight_threads_while([] {
        for (int level = LOG_LEVEL_TRACE; level <= LOG_LEVEL_ERROR; ++level) {
            EXPECT_EQ(qzoci_log_set_level(level), 0);
        }
    });
    WritersLines lines;
    lines.add_destination(collector.texts());
    lines.expect_all();
}

TEST_F(LogThreads, NoLineIsLostWhileTheDestinationChanges) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_ERROR), 0);
    const std::string a = folder / "a";
    const std::string b = folder / "b";
    ASSERT_EQ(qzoci_log_to_file(a.c_str()), 0);
    write_on_eight_threads_while([&] {
        EXPECT_EQ(qzoci_log_to_callback(Collector::receive, &collector), 0);
        EXPECT_EQ(qzoci_log_to_file(b.c_str()), 0);
        EXPECT_EQ(qzoci_log_to_file(a.c_str()), 0);
    });
    WritersLines lines;
    lines.add_file(a);
    lines.add_file(b);
    lines.add_destination(collector.texts());
    lines.expect_all();
}

/* A callback's user data that is gone as soon as the destination has been replaced. */
TEST_F(LogThreads, FormerCallbackNoLongerRunsWhenItIsReplaced) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_ERROR), 0);
    ASSERT_EQ(qzoci_log_to_none(), 0);
    write_on_eight_threads_while([] {
        auto short_lived = std::make_unique<Collector>();
        EXPECT_EQ(qzoci_log_to_callback(Collector::receive, short_lived.get()), 0);
        EXPECT_EQ(qzoci_log_to_none(), 0);
    });
}

struct Meeting {
    std::promise<void> callback_entered;
    std::promise<void> replaced;
    std::atomic<bool> callback_finished{false};

    /* Stays until the destination has been replaced, which must not come to pass while it is in here: so it
     * gives up waiting for it after a while. */
    static void receive(void* user, log_level, const char*, long, const char*) {
        auto* const self = static_cast<Meeting*>(user);
        self->callback_entered.set_value();
        EXPECT_EQ(self->replaced.get_future().wait_for(std::chrono::milliseconds(200)),
                  std::future_status::timeout);
        self->callback_finished = true;
    }
};

TEST_F(LogThreads, ReplacingACallbackWaitsForItToReturn) {
    Meeting meeting;
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_ERROR), 0);
    ASSERT_EQ(qzoci_log_to_callback(Meeting::receive, &meeting), 0);
    const std::jthread writer([] { qzoci_log_inner(LOG_LEVEL_ERROR, "file", 1, "a line"); });
    meeting.callback_entered.get_future().wait();
    ASSERT_EQ(qzoci_log_to_none(), 0);
    EXPECT_TRUE(meeting.callback_finished);
    meeting.replaced.set_value();
}

TEST_F(LogThreads, ForkedChildrenLogWhileTheParentsThreadsDo) {
    constexpr int child_count = 20;
    const std::string path = folder / "log";
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_ERROR), 0);
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    std::vector<std::string> expected;
    write_on_eight_threads_while([&expected] {
        if (expected.size() == child_count) {
            return;
        }
        const pid_t child = fork();
        ASSERT_NE(child, -1);
        if (child == 0) {
            qzoci_log_inner(LOG_LEVEL_ERROR, "child.cpp", 1, "child %ld", static_cast<long>(getpid()));
            _exit(0);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
        expected.push_back("child " + std::to_string(child));
    });
    std::vector<std::string> of_children;
    std::vector<std::string> of_writers;
    for (const std::string& line : lines_of_file(path)) {
        const std::optional<TextLine> parsed = parse_line(line);
        ASSERT_TRUE(parsed) << "torn: " << line;
        const bool of_child = parsed->file == "child.cpp";
        EXPECT_EQ(of_child, parsed->process != getpid());
        (of_child ? of_children : of_writers).push_back(parsed->text);
    }
    EXPECT_EQ(of_children, expected);
    EXPECT_FALSE(expected.empty());
    WritersLines lines;
    lines.add_destination(of_writers);
    lines.expect_all();
}

} // namespace
