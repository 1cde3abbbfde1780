#include "tests/support/vector_cases.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <fstream>
#include <memory>
#include <span>
#include <stdexcept>
#include <utility>

namespace qzoci::test {
namespace {

constexpr std::string_view line_indent = "  ";
constexpr std::string_view answer_mark = "= ";
/* As many bytes of a text buffer are shown. */
constexpr size_t shown_text_size = 512;
/* The length that goes with a null text buffer, which a length of -1 asks for. */
constexpr size_t null_text_size = 10;

[[noreturn]] void malformed(const std::string& what, std::string_view text) {
    throw std::invalid_argument(what + ": '" + std::string(text) + "'");
}

bool remove_prefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

ub8 digest_from_text(std::string_view text) {
    ub8 value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.size() != 16 || error != std::errc() || end != text.data() + text.size()) {
        malformed("not a digest", text);
    }
    return value;
}

std::string limbs_text(std::span<const ub4> limbs) {
    std::string text;
    for (const ub4 limb : limbs) {
        text += text.empty() ? "" : ".";
        text += std::to_string(limb);
    }
    return text;
}

const QZCICalcNumber* pointer_to(const std::optional<QZCICalcNumber>& operand) {
    return operand ? &*operand : nullptr;
}

/* What one request's operation works on. */
class Call {
public:
    explicit Call(const Request& request) : request_(request), operation_(find_operation(request.operation)) {
        if (operation_ == nullptr) {
            malformed("not an operation", request.operation);
        }
        set_arguments();
        name_pointers();
    }

    /* The arguments point into the object. */
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    Outcome run(Side side) {
        const std::optional<QZCICalcNumber> first = first_;
        const std::optional<QZCICalcNumber> second = second_;
        const OCINumber stored = stored_operand_;
        Outcome outcome;
        {
            const LogCapture capture(names_);
            outcome.effect.status = operation_->call(side, arguments_);
            outcome.lines = capture.lines();
        }
        outcome.effect.result = shown_result();
        outcome.effect.out = shown_out();
        outcome.operands_unchanged = (arguments_.result == pointer_to(first_) || first == first_) &&
                                     (arguments_.result == pointer_to(second_) || second == second_) &&
                                     stored == stored_operand_;
        return outcome;
    }

private:
    void set_arguments() {
        switch (operation_->form) {
        case Form::create:
            expect_arguments(0);
            set_result();
            break;
        case Form::create_from_integer:
            expect_arguments(1);
            set_integer(0);
            set_result();
            break;
        case Form::in_place:
            expect_arguments(1);
            set_operand_in_place();
            break;
        case Form::in_place_integer:
            expect_arguments(2);
            set_operand_in_place();
            set_integer(1);
            break;
        case Form::unary:
            expect_arguments(1);
            set_first();
            set_result();
            break;
        case Form::unary_integer:
            expect_arguments(2);
            set_first();
            set_integer(1);
            set_result();
            break;
        case Form::binary:
            expect_arguments(2);
            set_first();
            set_second();
            set_result();
            break;
        case Form::comparison:
            expect_arguments(2);
            set_first();
            set_second();
            break;
        case Form::from_stored:
            expect_arguments(1);
            set_stored_operand();
            set_result();
            break;
        case Form::to_stored:
            expect_arguments(1);
            set_first();
            set_stored_result();
            break;
        case Form::to_text:
            expect_arguments(2);
            set_first();
            set_text();
            break;
        case Form::integer_function:
            expect_arguments(1);
            set_integer(0);
            break;
        case Form::long_division:
            expect_arguments(4);
            set_division();
            break;
        }
    }

    void expect_arguments(size_t count) const {
        if (request_.arguments.size() != count) {
            malformed("not the arguments of " + request_.operation,
                      std::to_string(request_.arguments.size()) + " of " + std::to_string(count));
        }
    }

    void set_integer(size_t index) { arguments_.integer = integer_from_text<sb8>(request_.arguments[index]); }

    void set_first() {
        first_ = operand_from_text(request_.arguments[0]);
        arguments_.first = pointer_to(first_);
    }

    /* Both operands and the result in one: the record of the first argument. */
    void set_second() {
        if (request_.first_is_result && request_.second_is_result) {
            arguments_.second = arguments_.first;
            return;
        }
        second_ = operand_from_text(request_.arguments[1]);
        arguments_.second = pointer_to(second_);
    }

    void set_result() {
        if (request_.null_result) {
            return;
        }
        if (!request_.first_is_result && !request_.second_is_result) {
            arguments_.result = &result_;
            return;
        }
        std::optional<QZCICalcNumber>& operand = request_.first_is_result ? first_ : second_;
        if (!operand) {
            malformed("no record to be the result", request_.operation);
        }
        arguments_.result = &*operand;
    }

    void set_operand_in_place() {
        if (const auto operand = operand_from_text(request_.arguments[0])) {
            result_ = *operand;
            arguments_.result = &result_;
        }
    }

    void set_stored_operand() {
        if (request_.arguments[0] != "N") {
            stored_operand_ = stored_from_hex(request_.arguments[0]);
            arguments_.stored_operand = &stored_operand_;
        }
    }

    void set_stored_result() {
        std::memset(&stored_result_, 0xEE, sizeof stored_result_);
        arguments_.stored_result = request_.null_result ? nullptr : &stored_result_;
    }

    /* The buffer has exactly the length that the operation is told, so that tools see a byte written beyond
     * it. */
    void set_text() {
        const auto size = integer_from_text<sb8>(request_.arguments[1]);
        if (size == -1) {
            arguments_.text_size = null_text_size;
            return;
        }
        arguments_.text_size = static_cast<size_t>(size);
        text_ = std::make_unique<char[]>(arguments_.text_size);
        std::fill_n(text_.get(), arguments_.text_size, '#');
        arguments_.text = text_.get();
    }

    void set_division() {
        division_.m = integer_from_text<sb1>(request_.arguments[0]);
        division_.n = integer_from_text<sb1>(request_.arguments[1]);
        division_.u = limbs_from_text(request_.arguments[2]);
        division_.v = limbs_from_text(request_.arguments[3]);
        if (division_.m < 0 || division_.n < 1 ||
            division_.u.size() != static_cast<size_t>(division_.m + division_.n) ||
            division_.v.size() != static_cast<size_t>(division_.n)) {
            malformed("not the limbs of a division", request_.arguments[2] + " " + request_.arguments[3]);
        }
        division_.u.push_back(0);
        division_.v.push_back(0);
        division_.quotient.resize(static_cast<size_t>(division_.m + 1));
        division_.remainder.resize(static_cast<size_t>(division_.n));
        arguments_.division = &division_;
    }

    void name_pointers() {
        names_.add(arguments_.first, 'A');
        names_.add(arguments_.second, 'B');
        names_.add(arguments_.result, 'R');
        names_.add(arguments_.stored_operand, 'O');
        names_.add(arguments_.stored_result, 'O');
        names_.add(arguments_.text, 'T');
    }

    std::optional<QZCICalcNumber> shown_result() const {
        switch (operation_->form) {
        case Form::comparison:
        case Form::to_stored:
        case Form::to_text:
        case Form::integer_function:
        case Form::long_division:
            return std::nullopt;
        default:
            return arguments_.result == nullptr ? result_ : *arguments_.result;
        }
    }

    std::optional<std::string> shown_out() const {
        switch (operation_->form) {
        case Form::to_stored:
            return hex_text(stored_result_);
        case Form::to_text: {
            const size_t size = text_ ? std::min(arguments_.text_size, shown_text_size) : 0;
            return hex_text(std::vector<ub1>(text_.get(), text_.get() + size));
        }
        case Form::long_division:
            return limbs_text(division_.quotient) + "/" + limbs_text(division_.remainder) + "/" +
                   limbs_text(std::span(division_.v).first(static_cast<size_t>(division_.n)));
        default:
            return std::nullopt;
        }
    }

    const Request& request_;
    const Operation* operation_;
    std::optional<QZCICalcNumber> first_;
    std::optional<QZCICalcNumber> second_;
    QZCICalcNumber result_ = poison_record();
    OCINumber stored_operand_{};
    OCINumber stored_result_{};
    std::unique_ptr<char[]> text_;
    LongDivision division_;
    Arguments arguments_;
    PointerNames names_;
};

/* Reads the lines of a file with their numbers; a line can be looked at before it is taken. */
class LineReader {
public:
    explicit LineReader(const std::filesystem::path& file) : stream_(file) {
        if (!stream_) {
            throw std::runtime_error("cannot read " + file.string());
        }
        take();
    }

    const std::optional<std::string>& next() const { return next_; }

    /* Of the line last taken, from 1. */
    int number() const { return number_ - 1; }

    std::optional<std::string> take() {
        std::string line;
        ++number_;
        return std::exchange(next_, std::getline(stream_, line) ? std::optional(line) : std::nullopt);
    }

private:
    std::ifstream stream_;
    std::optional<std::string> next_;
    int number_ = 0;
};

VectorCase take_case(LineReader& reader) {
    VectorCase taken;
    taken.request = *reader.take();
    taken.line_number = reader.number();
    const std::optional<std::string> answer = reader.take();
    if (!answer || !answer->starts_with(answer_mark)) {
        malformed("no answer follows", taken.request);
    }
    taken.answer = parse_answer(std::string_view(*answer).substr(answer_mark.size()));
    while (reader.next() && reader.next()->starts_with(line_indent)) {
        taken.lines.push_back(reader.take()->substr(line_indent.size()));
    }
    return taken;
}

} // namespace

std::optional<QZCICalcNumber> operand_from_text(std::string_view text) {
    if (text == "N") {
        return std::nullopt;
    }
    if (remove_prefix(text, "O:")) {
        return record_from_stored(text);
    }
    if (remove_prefix(text, "D:")) {
        return record_from_decimal(text);
    }
    if (remove_prefix(text, "R:")) {
        return record_from_fields(text);
    }
    malformed("not an operand", text);
}

Request parse_request(std::string_view text) {
    Request request;
    if (remove_prefix(text, "alias12:")) {
        request.first_is_result = true;
        request.second_is_result = true;
    } else if (remove_prefix(text, "alias2:")) {
        request.second_is_result = true;
    } else if (remove_prefix(text, "alias:")) {
        request.first_is_result = true;
    } else {
        request.null_result = remove_prefix(text, "nullres:");
    }
    const std::vector<std::string_view> fields = split(text, ' ');
    request.operation = fields.front();
    request.arguments.assign(fields.begin() + 1, fields.end());
    if (request.operation.empty()) {
        malformed("no operation", text);
    }
    return request;
}

void PrintTo(const Effect& effect, std::ostream* out) {
    *out << "st=" << effect.status;
    if (effect.result) {
        *out << " r=";
        PrintTo(*effect.result, out);
    }
    if (effect.out) {
        *out << " out=" << *effect.out;
    }
}

Answer parse_answer(std::string_view text) {
    Answer answer;
    bool has_status = false;
    bool has_line_count = false;
    bool has_digest = false;
    for (std::string_view field : split(text, ' ')) {
        if (remove_prefix(field, "st=")) {
            answer.effect.status = integer_from_text<sb8>(field);
            has_status = true;
        } else if (remove_prefix(field, "r=")) {
            answer.effect.result = record_from_fields(field);
        } else if (remove_prefix(field, "out=")) {
            answer.effect.out = field;
        } else if (remove_prefix(field, "n=")) {
            answer.line_count = integer_from_text<size_t>(field);
            has_line_count = true;
        } else if (remove_prefix(field, "h=")) {
            answer.digest = digest_from_text(field);
            has_digest = true;
        } else {
            malformed("not a field of an answer", field);
        }
    }
    if (!has_status || !has_line_count || !has_digest) {
        malformed("not a whole answer", text);
    }
    return answer;
}

std::vector<VectorCase> read_vector_cases(const std::filesystem::path& file) {
    LineReader reader(file);
    std::vector<VectorCase> cases;
    try {
        while (reader.next()) {
            cases.push_back(take_case(reader));
        }
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(file.string() + ":" + std::to_string(reader.number()) + ": " + error.what());
    }
    if (cases.empty()) {
        throw std::runtime_error(file.string() + ": no case");
    }
    return cases;
}

Outcome run_request(const Request& request, Side side) {
    return Call(request).run(side);
}

} // namespace qzoci::test
