#include "values.hpp"

#include "exit_status.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace qznum {

namespace {

/* Bounds the memory that a file without line ends takes. Any number in decimal fits many times over. */
constexpr std::size_t longest_line = 65536;

class Arguments : public Values {
public:
    explicit Arguments(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {}

    std::optional<Value> next() override {
        if (next_ == arguments_.size()) {
            return std::nullopt;
        }
        const std::string_view text = trimmed(arguments_[next_++]);
        return Value{quoted(text), {}, std::string(text)};
    }

private:
    std::vector<std::string> arguments_;
    std::size_t next_ = 0;
};

class Lines : public Values {
public:
    Lines(std::FILE* file, std::string name) : file_(file), name_(std::move(name)) {}

    Lines(const Lines&) = delete;
    Lines& operator=(const Lines&) = delete;

    ~Lines() override {
        if (file_ != stdin) {
            std::fclose(file_);
        }
    }

    std::optional<Value> next() override {
        while (read_line()) {
            const std::string_view content = trimmed(std::string_view(line_).substr(0, line_.find('#')));
            if (content.empty()) {
                continue;
            }
            const std::size_t colon = content.rfind(':');
            const bool has_label = colon != std::string_view::npos;
            const std::string_view text = has_label ? trimmed(content.substr(colon + 1)) : content;
            const std::string_view label = has_label ? trimmed(content.substr(0, colon)) : std::string_view{};
            return Value{fmt::format("{}:{}: {}", name_, line_number_, quoted(text)), std::string(label),
                         std::string(text)};
        }
        return std::nullopt;
    }

private:
    /* False at the end of the file. */
    bool read_line() {
        line_.clear();
        int c = std::getc(file_);
        for (; c != EOF && c != '\n'; c = std::getc(file_)) {
            if (line_.size() == longest_line) {
                throw IoError(
                    fmt::format("{}:{}: longer than {} bytes", name_, line_number_ + 1, longest_line));
            }
            line_.push_back(static_cast<char>(c));
        }
        if (std::ferror(file_) != 0) {
            throw IoError(fmt::format("cannot read {}: {}", name_, std::strerror(errno)));
        }
        ++line_number_;
        return c != EOF || !line_.empty();
    }

    std::FILE* file_;
    std::string name_;
    std::string line_;
    std::size_t line_number_ = 0;
};

} // namespace

std::string Value::labelled(std::string_view result) const {
    return label.empty() ? std::string(result) : fmt::format("{}: {}", label, result);
}

std::unique_ptr<Values> open_values(std::vector<std::string> arguments, const std::string& file_name) {
    if (!arguments.empty()) {
        return std::make_unique<Arguments>(std::move(arguments));
    }
    if (file_name.empty() && isatty(STDIN_FILENO) == 1) {
        throw UsageError("nothing to work on: give values, --file FILE, or a file on standard input");
    }
    if (file_name.empty() || file_name == "-") {
        return std::make_unique<Lines>(stdin, "standard input");
    }
    std::FILE* file = std::fopen(file_name.c_str(), "re");
    if (file == nullptr) {
        throw IoError(fmt::format("cannot open {}: {}", file_name, std::strerror(errno)));
    }
    return std::make_unique<Lines>(file, file_name);
}

} // namespace qznum
