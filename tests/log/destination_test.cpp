#include "tests/log/log_test_tools.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using qzoci::test::Collector;
using qzoci::test::CommandOutcome;
using qzoci::test::lines_of_file;
using qzoci::test::parse_line;
using qzoci::test::ReceivedLine;
using qzoci::test::run_child;
using qzoci::test::TemporaryFolder;
using qzoci::test::write_file;

void write_error(const char* text) {
    qzoci_log_inner(LOG_LEVEL_ERROR, "dir/source.cpp", 123, "%s", text);
}

using Texts = std::vector<std::string>;

/* A line of another form than the documented one counts as "malformed". */
Texts texts_of(const std::vector<std::string>& lines) {
    Texts texts;
    for (const std::string& line : lines) {
        const auto parsed = parse_line(line);
        texts.push_back(parsed ? parsed->text : "malformed: " + line);
    }
    return texts;
}

Texts texts_of_file(const std::string& path) {
    return texts_of(lines_of_file(path));
}

class LogDestination : public testing::Test {
protected:
    LogDestination() { qzoci_log_set_level(LOG_LEVEL_ERROR); }

    ~LogDestination() override { qzoci_log_to_none(); }

    TemporaryFolder folder;
    Collector collector;
};

TEST_F(LogDestination, IsStandardErrorAtFirst) {
    const CommandOutcome outcome = run_child("every-level", "trace");
    EXPECT_EQ(outcome.exit_status, 0);
    EXPECT_TRUE(outcome.out.empty());
    const std::vector<std::string> names = {"trace", "debug", "info", "warn", "error", "fatal", "slowsql"};
    ASSERT_EQ(outcome.err.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto line = parse_line(outcome.err[i]);
        ASSERT_TRUE(line) << outcome.err[i];
        EXPECT_EQ(line->level, names[i]);
        EXPECT_EQ(line->file, "child.cpp");
        EXPECT_EQ(line->line, 7);
        EXPECT_EQ(line->text, std::to_string(i + 1));
        EXPECT_EQ(line->thread, line->process) << "the first thread has the number of the process";
    }
}

TEST_F(LogDestination, StandardErrorMayBeClosed) {
    EXPECT_EQ(run_child("no-standard-error").exit_status, 0);
}

TEST_F(LogDestination, MayBeAFileThatIsAppendedTo) {
    const std::string path = folder / "log";
    write_file(path, "earlier\n");
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    write_error("one");
    write_error("two");
    const std::vector<std::string> lines = lines_of_file(path);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "earlier");
    const auto line = parse_line(lines[1]);
    ASSERT_TRUE(line) << lines[1];
    EXPECT_EQ(line->process, getpid());
    EXPECT_EQ(line->thread, gettid());
    EXPECT_EQ(line->level, "error");
    EXPECT_EQ(line->file, "dir/source.cpp");
    EXPECT_EQ(line->line, 123);
    EXPECT_EQ(line->text, "one");
    EXPECT_EQ(parse_line(lines[2])->text, "two");
}

TEST_F(LogDestination, MayChangeFromFileToFile) {
    ASSERT_EQ(qzoci_log_to_file((folder / "a").c_str()), 0);
    write_error("1");
    ASSERT_EQ(qzoci_log_to_file((folder / "b").c_str()), 0);
    write_error("2");
    ASSERT_EQ(qzoci_log_to_file((folder / "a").c_str()), 0);
    write_error("3");
    EXPECT_EQ(texts_of_file(folder / "a"), (Texts{"1", "3"}));
    EXPECT_EQ(texts_of_file(folder / "b"), (Texts{"2"}));
}

TEST_F(LogDestination, MayBeTheSameFileAgainAfterARotation) {
    const std::string path = folder / "log";
    const std::string rotated = folder / "log.1";
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    write_error("1");
    std::filesystem::rename(path, rotated);
    write_error("2");
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    write_error("3");
    EXPECT_EQ(texts_of_file(rotated), (Texts{"1", "2"}));
    EXPECT_EQ(texts_of_file(path), (Texts{"3"}));
}

TEST_F(LogDestination, FileHoldsLongLinesWhole) {
    const std::string path = folder / "log";
    const std::string word(100000, 'x');
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    write_error(word.c_str());
    EXPECT_EQ(texts_of_file(path), (Texts{word}));
}

/* The descriptors of this process that are open on `path`. */
std::vector<int> descriptors_of(const std::string& path) {
    std::vector<int> descriptors;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry.path(), gone) == path) {
            descriptors.push_back(std::stoi(entry.path().filename().string()));
        }
    }
    return descriptors;
}

TEST_F(LogDestination, FileIsNotInheritedByExecutedPrograms) {
    const std::string path = folder / "log";
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    const std::vector<int> descriptors = descriptors_of(path);
    ASSERT_EQ(descriptors.size(), 1U);
    EXPECT_TRUE((fcntl(descriptors.front(), F_GETFD) & FD_CLOEXEC) != 0);
}

TEST_F(LogDestination, FormerFileIsClosed) {
    const std::string path = folder / "log";
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    ASSERT_EQ(qzoci_log_to_none(), 0);
    EXPECT_TRUE(descriptors_of(path).empty());
}

TEST_F(LogDestination, FileThatCannotBeOpenedIsReportedAndChangesNothing) {
    write_file(folder / "plain", "");
    ASSERT_EQ(qzoci_log_to_callback(Collector::receive, &collector), 0);
    EXPECT_EQ(qzoci_log_to_file(nullptr), EINVAL);
    EXPECT_EQ(qzoci_log_to_file(""), ENOENT);
    EXPECT_EQ(qzoci_log_to_file((folder / "missing/log").c_str()), ENOENT);
    EXPECT_EQ(qzoci_log_to_file((folder / "plain/log").c_str()), ENOTDIR);
    EXPECT_EQ(qzoci_log_to_file((folder / ".").c_str()), EISDIR);
    EXPECT_FALSE(std::filesystem::exists(folder / "missing")) << "no folder is made";
    write_error("still here");
    EXPECT_EQ(collector.texts(), (Texts{"still here"}));
}

TEST_F(LogDestination, FullDiskLosesLinesAndIsReportedAndGoesOn) {
    const std::string path = folder / "log";
    write_file(path, std::string(10000, 'x') + '\n');
    const CommandOutcome outcome = run_child("full-disk '" + path + "'");
    EXPECT_EQ(outcome.exit_status, 0);
    std::vector<std::string> lines = lines_of_file(path);
    lines.erase(lines.begin());
    EXPECT_EQ(texts_of(lines), (Texts{"before", "after"}));
    ASSERT_FALSE(outcome.err.empty());
    EXPECT_LT(outcome.err.size(), 1000U) << "not every lost line is reported";
    EXPECT_NE(outcome.err.front().find(path), std::string::npos) << outcome.err.front();
    EXPECT_NE(outcome.err.front().find("File too large"), std::string::npos) << outcome.err.front();
}

TEST_F(LogDestination, MayBeACallbackWithAUserPointer) {
    ASSERT_EQ(qzoci_log_to_callback(Collector::receive, &collector), 0);
    qzoci_log_inner(LOG_LEVEL_SLOWSQL, "dir/other.cpp", 4711, "%d rows", 3);
    const std::vector<ReceivedLine> lines = collector.lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, LOG_LEVEL_SLOWSQL);
    EXPECT_EQ(lines[0].file, "dir/other.cpp");
    EXPECT_EQ(lines[0].line, 4711);
    EXPECT_EQ(lines[0].text, "3 rows");
}

TEST_F(LogDestination, MayBeTheSameCallbackWithAnotherUserPointer) {
    Collector other;
    ASSERT_EQ(qzoci_log_to_callback(Collector::receive, &collector), 0);
    write_error("1");
    ASSERT_EQ(qzoci_log_to_callback(Collector::receive, &other), 0);
    write_error("2");
    ASSERT_EQ(qzoci_log_to_none(), 0);
    EXPECT_EQ(collector.texts(), (Texts{"1"}));
    EXPECT_EQ(other.texts(), (Texts{"2"}));
}

TEST_F(LogDestination, NullCallbackIsRefusedAndChangesNothing) {
    ASSERT_EQ(qzoci_log_to_callback(Collector::receive, &collector), 0);
    EXPECT_EQ(qzoci_log_to_callback(nullptr, &collector), EINVAL);
    write_error("still here");
    EXPECT_EQ(collector.texts(), (Texts{"still here"}));
}

TEST_F(LogDestination, NoneKeepsNoLineAndAnswersSoAndKeepsTheLevel) {
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_TRACE), 0);
    ASSERT_EQ(qzoci_log_to_none(), 0);
    EXPECT_EQ(qzoci_log_is_on(LOG_LEVEL_SLOWSQL), 0);
    EXPECT_EQ(qzoci_log_get_level(), LOG_LEVEL_TRACE);
    ASSERT_EQ(qzoci_log_set_level(LOG_LEVEL_DEBUG), 0);
    EXPECT_EQ(qzoci_log_is_on(LOG_LEVEL_SLOWSQL), 0);
    write_error("lost");
    ASSERT_EQ(qzoci_log_to_callback(Collector::receive, &collector), 0);
    EXPECT_NE(qzoci_log_is_on(LOG_LEVEL_DEBUG), 0);
    EXPECT_EQ(qzoci_log_is_on(LOG_LEVEL_TRACE), 0);
    write_error("kept");
    EXPECT_EQ(collector.texts(), (Texts{"kept"}));
}

/* Passes a line on and, from inside the call, logs once more. */
struct Reentrant {
    Collector collector;

    static void receive(void* user, log_level level, const char* file, long line, const char* text) {
        auto* const self = static_cast<Reentrant*>(user);
        Collector::receive(&self->collector, level, file, line, text);
        if (level == LOG_LEVEL_ERROR) {
            qzoci_log_inner(LOG_LEVEL_FATAL, "callback.cpp", 1, "about: %s", text);
        }
    }
};

TEST_F(LogDestination, CallbackMayLog) {
    Reentrant reentrant;
    ASSERT_EQ(qzoci_log_to_callback(Reentrant::receive, &reentrant), 0);
    write_error("1");
    write_error("2");
    EXPECT_EQ(reentrant.collector.texts(), (Texts{"1", "about: 1", "2", "about: 2"}));
}

TEST_F(LogDestination, CallbackMayChangeLevelAndDestination) {
    const std::string path = folder / "log";
    const auto callback = [](void* user, log_level, const char*, long, const char*) {
        qzoci_log_set_level(LOG_LEVEL_FATAL);
        qzoci_log_to_file(static_cast<const std::string*>(user)->c_str());
        qzoci_log_inner(LOG_LEVEL_FATAL, "callback.cpp", 1, "from inside");
    };
    ASSERT_EQ(qzoci_log_to_callback(callback, const_cast<std::string*>(&path)), 0);
    write_error("to the callback");
    write_error("below the level");
    qzoci_log_inner(LOG_LEVEL_FATAL, "file", 1, "from outside");
    EXPECT_EQ(texts_of_file(path), (Texts{"from inside", "from outside"}));
}

TEST_F(LogDestination, ExceptionOfACallbackIsDropped) {
    const auto callback = [](void* user, log_level level, const char* file, long line, const char* text) {
        Collector::receive(user, level, file, line, text);
        throw std::runtime_error("from the callback");
    };
    ASSERT_EQ(qzoci_log_to_callback(callback, &collector), 0);
    EXPECT_NO_THROW(write_error("1"));
    EXPECT_NO_THROW(write_error("2"));
    EXPECT_EQ(collector.texts(), (Texts{"1", "2"}));
}

TEST_F(LogDestination, LeavesErrnoAsItWas) {
    const auto callback = [](void*, log_level, const char*, long, const char*) { errno = EAGAIN; };
    errno = EDOM;
    ASSERT_EQ(qzoci_log_to_callback(callback, nullptr), 0);
    write_error("a line");
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(qzoci_log_to_file((folder / "missing/log").c_str()), ENOENT);
    EXPECT_EQ(errno, EDOM);
}

TEST_F(LogDestination, CancelledThreadFinishesItsLine) {
    const std::string path = folder / "log";
    ASSERT_EQ(qzoci_log_to_file(path.c_str()), 0);
    pthread_t thread{};
    const auto body = [](void*) -> void* {
        pthread_cancel(pthread_self());
        write_error("a line");
        pthread_testcancel();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, nullptr, body, nullptr), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(texts_of_file(path), (Texts{"a line"}));
}

TEST_F(LogDestination, TakesLinesOfExitHandlersAndStaticDestructors) {
    const CommandOutcome outcome = run_child("end");
    EXPECT_EQ(outcome.exit_status, 0);
    EXPECT_EQ(texts_of(outcome.err), (Texts{"main", "exit handler", "static destructor"}));
}

TEST_F(LogDestination, FileTakesLinesOfExitHandlersAndStaticDestructors) {
    const std::string path = folder / "log";
    const CommandOutcome outcome = run_child("end-with-file '" + path + "'");
    EXPECT_EQ(outcome.exit_status, 0);
    EXPECT_TRUE(outcome.err.empty());
    EXPECT_EQ(texts_of_file(path), (Texts{"main", "exit handler", "static destructor"}));
}

} // namespace
