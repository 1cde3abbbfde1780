#include "tests/qznum/tool.h"

#include "qzoci/oci_types.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <pty.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace qzoci::test {

namespace {

[[noreturn]] void fail(int error, const char* what) {
    throw std::system_error(error, std::generic_category(), what);
}

/* A file without a name, gone when closed. */
class TemporaryFile {
public:
    TemporaryFile() : file_(std::tmpfile(), std::fclose) {
        if (file_ == nullptr) {
            fail(errno, "tmpfile");
        }
    }

    int descriptor() const { return fileno(file_.get()); }

    void write(std::string_view text) {
        if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size() ||
            std::fflush(file_.get()) != 0) {
            fail(errno, "fwrite");
        }
        std::rewind(file_.get());
    }

    std::string read() {
        std::rewind(file_.get());
        std::string text;
        for (int c = std::getc(file_.get()); c != EOF; c = std::getc(file_.get())) {
            text.push_back(static_cast<char>(c));
        }
        return text;
    }

private:
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

std::vector<char*> argument_pointers(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    return arguments;
}

/* Spawns with the three files as the standard streams. */
pid_t spawn(const std::vector<std::string>& command, int input, int output, int error_output) {
    const std::vector<char*> arguments = argument_pointers(command);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, error_output, STDERR_FILENO);
    pid_t process = 0;
    const int error = posix_spawnp(&process, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        fail(error, arguments.front());
    }
    return process;
}

/* The outcome, still without its texts. */
Outcome wait_for(pid_t process) {
    constexpr int status_of_signal = 128;
    int status = 0;
    rusage usage{};
    while (wait4(process, &status, 0, &usage) == -1) {
        if (errno != EINTR) {
            fail(errno, "wait4");
        }
    }
    return {{},
            {},
            WIFSIGNALED(status) ? status_of_signal + WTERMSIG(status) : WEXITSTATUS(status),
            usage.ru_maxrss};
}

/* The near side of a terminal whose far side a process has. */
class Terminal {
public:
    explicit Terminal(int descriptor) : descriptor_(descriptor) {}

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    ~Terminal() { close(descriptor_); }

    /* Reads on until the text has been shown after what was awaited before, or the process has gone. */
    void await(std::string_view text) {
        std::size_t found = shown_.find(text, looked_at_);
        while (found == std::string::npos && read_some()) {
            found = shown_.find(text, looked_at_);
        }
        looked_at_ = found == std::string::npos ? shown_.size() : found + text.size();
    }

    void type(std::string_view keys) const {
        if (write(descriptor_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
            fail(errno, "write");
        }
    }

    std::string read_all() {
        while (read_some()) {
        }
        std::erase(shown_, '\r');
        return shown_;
    }

private:
    /* False when the far side is closed. */
    bool read_some() {
        char bytes[4096];
        const ssize_t count = read(descriptor_, bytes, sizeof bytes);
        if (count > 0) {
            shown_.append(bytes, static_cast<std::size_t>(count));
        }
        return count > 0 || (count == -1 && errno == EINTR);
    }

    int descriptor_;
    std::string shown_;
    std::size_t looked_at_ = 0;
};

} // namespace

Outcome on_terminal(const std::vector<std::string>& command, const std::vector<Typed>& keys) {
    const std::vector<char*> arguments = argument_pointers(command);
    int descriptor = -1;
    const pid_t process = forkpty(&descriptor, nullptr, nullptr, nullptr);
    if (process == -1) {
        fail(errno, "forkpty");
    }
    if (process == 0) {
        execvp(arguments.front(), arguments.data());
        _exit(127);
    }
    Terminal terminal(descriptor);
    for (const Typed& typed : keys) {
        terminal.await(typed.awaited);
        terminal.type(typed.keys);
    }
    std::string shown = terminal.read_all();
    Outcome outcome = wait_for(process);
    outcome.results = std::move(shown);
    return outcome;
}

TemporaryFolder::TemporaryFolder() : path_(std::filesystem::temp_directory_path() / "qznum_XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) {
        fail(errno, "mkdtemp");
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Outcome run(const std::vector<std::string>& command, std::string_view input) {
    TemporaryFile standard_input;
    TemporaryFile results;
    TemporaryFile messages;
    standard_input.write(input);
    const pid_t process =
        spawn(command, standard_input.descriptor(), results.descriptor(), messages.descriptor());
    Outcome outcome = wait_for(process);
    outcome.results = results.read();
    outcome.messages = messages.read();
    return outcome;
}

Outcome qznum(std::vector<std::string> arguments, std::string_view input) {
    arguments.insert(arguments.begin(), QZNUM_FOLDER "/qznum");
    return run(arguments, input);
}

Outcome shell(const std::string& script) {
    return run({"bash", "-c", "PATH=" QZNUM_FOLDER ":$PATH\n" + script});
}

std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::string all_bytes(std::string hex) {
    hex.resize(std::size_t{2} * QZOCI_NUMBER_SIZE, '0');
    return hex;
}

} // namespace qzoci::test
