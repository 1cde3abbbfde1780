/* Tells whether this build of the engine, on this machine, gives the very bytes of every other.
 *
 *     digests write            prints, for each operation, the digest of what the plain side gives for a few thousand
 *                              fixed operands, and that of what the traced side gives and writes for some of them
 *     digests check FILE SIDE  compares with such a file; SIDE: plain, traced, portable, avx2, avx512 (the last three:
 *                              the fast side with the kernels of this level)
 *     digests vectors FOLDER N runs every Nth request and answer case of a folder on each side
 *
 * Exit status 0: the same, 1: a difference, which is printed, 2: wrong usage, 3: this machine or build has no
 * kernels of that level. */
#include "qzoci/limbs/limbs.h"
#include "tests/faults/operands.h"
#include "tests/support/calls.h"
#include "tests/support/log_capture.h"
#include "tests/support/vector_cases.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace qzoci::test;
namespace limbs = qzoci::limbs;

constexpr int no_such_level = 3;

/* FNV-1a, 64 bits, over bytes that do not depend on the machine. */
class Digest {
public:
    void add(std::string_view text) {
        for (const char c : text) {
            add_byte(static_cast<ub1>(c));
        }
        add_byte('\n');
    }

    std::string hex() const {
        char text[17];
        std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash_));
        return text;
    }

private:
    void add_byte(ub1 byte) { hash_ = (hash_ ^ byte) * 0x100000001b3; }

    ub8 hash_ = 0xcbf29ce484222325;
};

/* Fewer where an operation takes long, and where it writes its lines. */
std::vector<Operands> operands_of(const Operation& operation, Side side) {
    const int count = is_series(operation) ? 60 : 3000;
    return random_operands(side == Side::traced ? count / 10 : count, 20261125);
}

/* Status, record, stored number, text and lines. */
std::string digest_of(const Operation& operation, Side side) {
    Digest digest;
    for (const Operands& operands : operands_of(operation, side)) {
        const CallEffect effect = effect_of_call(operation, side, operands);
        digest.add(std::to_string(effect.status));
        digest.add(fields_text(effect.result));
        digest.add(hex_text(effect.stored));
        digest.add(effect.text);
        for (const std::string& line : effect.lines) {
            digest.add(line);
        }
    }
    return digest.hex();
}

int write() {
    for (const Operation* const operation : operations_on_numbers()) {
        std::printf("%s %s %s\n", std::string(operation->name).c_str(),
                    digest_of(*operation, Side::plain).c_str(), digest_of(*operation, Side::traced).c_str());
    }
    return 0;
}

struct Expected {
    std::string silent;
    std::string traced;
};

std::map<std::string, Expected, std::less<>> expected_digests(const char* file) {
    std::map<std::string, Expected, std::less<>> digests;
    std::ifstream stream(file);
    std::string name;
    Expected expected;
    while (stream >> name >> expected.silent >> expected.traced) {
        digests[name] = expected;
    }
    return digests;
}

int check(const char* file, Side side) {
    const auto expected = expected_digests(file);
    int status = 0;
    for (const Operation* const operation : operations_on_numbers()) {
        const auto found = expected.find(operation->name);
        const Expected wanted = found == expected.end() ? Expected{} : found->second;
        const std::string& wanted_digest = side == Side::traced ? wanted.traced : wanted.silent;
        const std::string actual = digest_of(*operation, side);
        if (actual != wanted_digest) {
            status = 1;
            std::printf("%s: %s, not '%s'\n", std::string(operation->name).c_str(), actual.c_str(),
                        wanted_digest.c_str());
        }
    }
    return status;
}

std::optional<limbs::Level> level_of(std::string_view name) {
    if (name == "portable") {
        return limbs::Level::portable;
    }
    if (name == "avx2") {
        return limbs::Level::avx2;
    }
    return name == "avx512" ? std::optional(limbs::Level::avx512) : std::nullopt;
}

bool gives_its_answer(const VectorCase& vector_case) {
    const Request request = parse_request(vector_case.request);
    const Answer& answer = vector_case.answer;
    const Outcome traced = run_request(request, Side::traced);
    const auto silent_agrees = [&](Side side) { return run_request(request, side).effect == answer.effect; };
    return traced.effect == answer.effect && traced.lines.size() == answer.line_count &&
           digest(traced.lines) == answer.digest && silent_agrees(Side::plain) && silent_agrees(Side::fast);
}

int run_vectors(const char* folder, long step) {
    long cases = 0;
    long differences = 0;
    long seen = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".txt") {
            continue;
        }
        for (const VectorCase& vector_case : read_vector_cases(entry.path())) {
            if (seen++ % step != 0) {
                continue;
            }
            ++cases;
            if (!gives_its_answer(vector_case)) {
                ++differences;
                std::printf("not its answer: %s\n", vector_case.request.c_str());
            }
        }
    }
    std::printf("%ld cases, %ld differences\n", cases, differences);
    return cases != 0 && differences == 0 ? 0 : 1;
}

int usage() {
    std::fputs("usage: digests write | check FILE plain|traced|portable|avx2|avx512 | vectors FOLDER N\n",
               stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + 1, argv + argc);
    if (arguments.size() == 1 && arguments[0] == "write") {
        return write();
    }
    if (arguments.size() != 3) {
        return usage();
    }
    if (arguments[0] == "vectors") {
        const long step = std::strtol(argv[3], nullptr, 10);
        return step > 0 ? run_vectors(argv[2], step) : usage();
    }
    if (arguments[0] != "check") {
        return usage();
    }
    if (arguments[2] == "plain" || arguments[2] == "traced") {
        return check(argv[2], arguments[2] == "plain" ? Side::plain : Side::traced);
    }
    const std::optional<limbs::Level> level = level_of(arguments[2]);
    if (!level) {
        return usage();
    }
    return limbs::force_level(*level) == *level ? check(argv[2], Side::fast) : no_such_level;
}
