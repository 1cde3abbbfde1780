/* The tool as its users run it: a process with arguments, three streams and an exit status. */
#ifndef QZOCI_TESTS_QZNUM_TOOL_H
#define QZOCI_TESTS_QZNUM_TOOL_H

#include <string>
#include <string_view>
#include <vector>

namespace qzoci::test {

struct Outcome {
    std::string results;  /* standard output */
    std::string messages; /* standard error */
    int status;           /* exit status; 128 + n when signal n ended the process */
    long peak_kilobytes;  /* the memory of the largest of its processes */
};

/* Throws std::system_error when the program cannot be started. */
Outcome run(const std::vector<std::string>& command, std::string_view input = "");

/* qznum with these arguments. */
Outcome qznum(std::vector<std::string> arguments, std::string_view input = "");

/* A script for bash, in which qznum is on the path. */
Outcome shell(const std::string& script);

/* What is typed on a terminal once this has been shown there. */
struct Typed {
    std::string awaited;
    std::string keys;
};

/* A command on a terminal of its own, which is all three of its streams. Keys are typed one after the other.
 * Results hold what the terminal shows, its line ends as "\n"; there are no messages beside them. */
Outcome on_terminal(const std::vector<std::string>& command, const std::vector<Typed>& keys = {});

/* A folder of its own that is gone with all in it afterwards. */
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

std::vector<std::string> lines_of(std::string_view text);

/* All 44 hex digits of a stored number, given those of the bytes it uses: the rest is 00. */
std::string all_bytes(std::string hex);

} // namespace qzoci::test

#endif /* QZOCI_TESTS_QZNUM_TOOL_H */
