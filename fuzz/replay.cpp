/* Runs one fuzz target on files, without a fuzzer: usage: replay_TARGET FILE-OR-FOLDER... Exit status 0: all ran,
 * 2: nothing to run, or a file cannot be read; a finding aborts. */
#include "fuzz/target.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

namespace fs = std::filesystem;

bool replay(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return false;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(stream)), {});
    std::fprintf(stderr, "%s\n", file.c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<const ub1*>(bytes.data()), bytes.size());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i])) {
            files.emplace_back(argv[i]);
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(argv[i])) {
            files.push_back(entry.path());
        }
    }
    for (const fs::path& file : files) {
        if (!replay(file)) {
            return 2;
        }
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 2 : 0;
}
