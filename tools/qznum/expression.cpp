#include "expression.hpp"

#include "text.hpp"

#include <fmt/format.h>
#include <qzoci/decimal_text.hpp>

#include <algorithm>

namespace qznum {

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool starts_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool continues_name(char c) {
    return starts_name(c) || is_digit(c);
}

template <typename Row>
const Row* row_of_symbol(std::span<const Row> table, char symbol) {
    const auto row = std::ranges::find(table, symbol, &Row::symbol);
    return row == table.end() ? nullptr : &*row;
}

template <typename Row>
const Row* row_of_name(std::span<const Row> table, std::string_view name) {
    const auto row = std::ranges::find(table, name, &Row::name);
    return row == table.end() ? nullptr : &*row;
}

/* Recursive descent, with precedence climbing for the binary operators. */
class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    std::vector<Step> parse() {
        expression(0);
        if (!at_end()) {
            fail(next() == ')' ? "no parenthesis is open" : "operator expected");
        }
        return std::move(steps_);
    }

private:
    /* One operand inside another. */
    class Nested {
    public:
        explicit Nested(Parser& parser) : depth_(parser.depth_) {
            if (depth_ == deepest_nesting) {
                parser.fail(fmt::format("nested more than {} deep", deepest_nesting));
            }
            ++depth_;
        }

        Nested(const Nested&) = delete;
        Nested& operator=(const Nested&) = delete;

        ~Nested() { --depth_; }

    private:
        std::size_t& depth_;
    };

    /* An operand and all binary operators after it that bind at least this tightly. */
    void expression(int lowest_precedence) {
        const Nested nested(*this);
        operand();
        while (!at_end()) {
            const BinaryOperator* const op = row_of_symbol(binary_operators(), next());
            if (op == nullptr || op->precedence < lowest_precedence) {
                return;
            }
            const std::size_t position = position_++;
            expression(op->association == Association::left ? op->precedence + 1 : op->precedence);
            steps_.push_back({position, Apply{op->operation, 2}});
        }
    }

    void operand() {
        if (at_end()) {
            fail("operand expected");
        }
        const std::size_t position = position_;
        if (const UnaryOperator* const op = row_of_symbol(unary_operators(), next())) {
            ++position_;
            expression(unary_precedence);
            steps_.push_back({position, Apply{op->operation, 1}});
        } else if (next() == '(') {
            ++position_;
            expression(0);
            expect(')');
        } else if (starts_name(next())) {
            named_operand();
        } else if (text_.substr(position_).starts_with("0x") || text_.substr(position_).starts_with("0X")) {
            stored_number();
        } else if (is_digit(next()) || next() == '.') {
            decimal_number();
        } else {
            fail("operand expected");
        }
    }

    void named_operand() {
        const std::size_t position = position_;
        const std::string_view name = take_while(continues_name);
        if (const Constant* const constant = row_of_name(constants(), name)) {
            steps_.push_back({position, PushConstant{constant}});
        } else if (const Function* const function = row_of_name(functions(), name)) {
            expect('(');
            expression(0);
            for (std::size_t count = 1; count < function->operand_count; ++count) {
                expect(',');
                expression(0);
            }
            expect(')');
            steps_.push_back({position, Apply{function->operation, function->operand_count}});
        } else {
            throw SyntaxError(position, fmt::format("unknown name {}", quoted(name)));
        }
    }

    void stored_number() {
        const std::size_t position = position_;
        const auto number = qzoci::parse_hex(take_while(continues_name));
        if (!number) {
            throw SyntaxError(position + number.error().position,
                              std::string(qzoci::describe(number.error().fault)));
        }
        if (const auto notes = qzoci::validate(*number); !notes) {
            constexpr std::size_t digits_per_byte = 2;
            const std::size_t digits_before = 2 + digits_per_byte * notes.error().offset;
            throw SyntaxError(std::min(position + digits_before, position_), qzoci::message(notes.error()));
        }
        steps_.push_back({position, PushNumber{*number}});
    }

    void decimal_number() {
        const auto number = qzoci::parse_record_prefix(text_.substr(position_));
        if (!number) {
            throw SyntaxError(position_ + number.error().position,
                              std::string(qzoci::describe(number.error().fault)));
        }
        steps_.push_back({position_, PushNumber{number->record}});
        position_ += number->length;
    }

    /* Skips blanks. */
    bool at_end() {
        take_while(is_blank);
        return position_ == text_.size();
    }

    /* Precondition: not at the end. */
    char next() const { return text_[position_]; }

    void expect(char c) {
        if (at_end() || next() != c) {
            fail(fmt::format("'{}' expected", c));
        }
        ++position_;
    }

    std::string_view take_while(bool (*belongs)(char)) {
        const std::size_t first = position_;
        while (position_ < text_.size() && belongs(text_[position_])) {
            ++position_;
        }
        return text_.substr(first, position_ - first);
    }

    [[noreturn]] void fail(const std::string& reason) const { throw SyntaxError(position_, reason); }

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t depth_ = 0;
    std::vector<Step> steps_;
};

} // namespace

std::vector<Step> parse_expression(std::string_view text) {
    return Parser(text).parse();
}

} // namespace qznum
