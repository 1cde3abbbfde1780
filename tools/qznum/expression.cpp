#include "expression.hpp"

#include "text.hpp"

#include <fmt/format.h>
#include <qzoci/decimal_text.hpp>
#include <tao/pegtl.hpp>

#include <algorithm>
#include <utility>

namespace qznum {

namespace {

namespace peg = tao::pegtl;

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

/* What the grammar's rules have made of the text so far. */
class State {
public:
    State(std::string_view text, std::span<const std::string> variables)
        : text_(text), variables_(variables) {}

    std::size_t position_of(const char* character) const {
        return static_cast<std::size_t>(character - text_.data());
    }

    [[noreturn]] void fail(const char* place, const std::string& reason) const {
        throw SyntaxError(position_of(place), reason);
    }

    void push(const char* place, const decltype(Step::action)& action) {
        steps_.push_back({position_of(place), action});
    }

    void push_variable(const char* place, std::string_view name) {
        const auto variable = std::ranges::find(variables_, name);
        if (variable == variables_.end()) {
            fail(place, fmt::format("unknown name {}", quoted(name)));
        }
        push(place, PushVariable{static_cast<std::size_t>(variable - variables_.begin())});
    }

    void enter(const char* place) {
        if (depth_ == deepest_nesting) {
            fail(place, fmt::format("nested more than {} deep", deepest_nesting));
        }
        ++depth_;
    }

    void leave() { --depth_; }

    void begin_call(const char* place, const Function& function) {
        calls_.push_back({place, &function, function.operand_count - 1});
    }

    /* Tells whether the innermost call takes another argument, and counts it. */
    bool take_argument() {
        std::size_t& due = calls_.back().arguments_due;
        if (due == 0) {
            return false;
        }
        --due;
        return true;
    }

    void end_call() {
        const Call call = calls_.back();
        calls_.pop_back();
        push(call.place, Apply{call.function->operation, call.function->operand_count});
    }

    void set_target(std::string_view name) { target_ = name; }

    std::vector<Step> take_steps() { return std::move(steps_); }

    std::string take_target() { return std::move(target_); }

private:
    struct Call {
        const char* place;
        const Function* function;
        std::size_t arguments_due;
    };

    std::string_view text_;
    std::span<const std::string> variables_;
    std::size_t depth_ = 0;
    std::vector<Call> calls_;
    std::vector<Step> steps_;
    std::string target_;
};

/* ---- The grammar: what follows a token takes the blanks behind it along ---- */

struct blanks : peg::star<peg::one<' ', '\t', '\n', '\r'>> {};

struct open : peg::one<'('> {};

struct close : peg::one<')'> {};

struct comma : peg::one<','> {};

struct quote : peg::one<'"'> {};

template <char symbol>
struct symbol_token : peg::seq<peg::one<symbol>, blanks> {};

/* One operand inside another. */
template <typename Rule>
struct nested {
    using rule_t = nested;
    using subs_t = peg::type_list<Rule>;

    template <peg::apply_mode A, peg::rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename Input>
    static bool match(Input& in, State& state) {
        struct Depth {
            Depth(State& entered, const char* place) : state(entered) { state.enter(place); }

            Depth(const Depth&) = delete;
            Depth& operator=(const Depth&) = delete;

            ~Depth() { state.leave(); }

            State& state;
        } const depth(state, in.current());

        return Control<Rule>::template match<A, M, Action, Control>(in, state);
    }
};

/* A rule that looks at the state too, or acts on it where it matches: Rule::accept says whether it does. */
template <typename Rule>
struct with_state {
    template <peg::apply_mode A, peg::rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename Input>
    static bool match(Input& in, State& state) {
        return Rule::accept(in, state);
    }
};

/* The name at the start of the input, empty when there is none. */
template <typename Input>
std::string_view name_ahead(const Input& in) {
    peg::memory_input<peg::tracking_mode::lazy> ahead(in.current(), in.end(), "");
    return peg::parse<peg::identifier>(ahead)
               ? std::string_view(in.current(), static_cast<std::size_t>(ahead.current() - in.current()))
               : std::string_view{};
}

struct function_name : with_state<function_name> {
    template <typename Input>
    static bool accept(Input& in, State& state) {
        const std::string_view name = name_ahead(in);
        const Function* const function = row_of_name(functions(), name);
        if (function == nullptr) {
            return false;
        }
        state.begin_call(in.current(), *function);
        in.bump(name.size());
        return true;
    }
};

/* Looks at nothing: the call says how many arguments it takes. */
struct argument_due : with_state<argument_due> {
    template <typename Input>
    static bool accept(Input& /*in*/, State& state) {
        return state.take_argument();
    }
};

struct constant_or_variable : with_state<constant_or_variable> {
    template <typename Input>
    static bool accept(Input& in, State& state) {
        const std::string_view name = name_ahead(in);
        if (name.empty()) {
            return false;
        }
        if (const Constant* const constant = row_of_name(constants(), name)) {
            state.push(in.current(), PushConstant{constant});
        } else {
            state.push_variable(in.current(), name);
        }
        in.bump(name.size());
        return true;
    }
};

struct quoted_name : peg::star<peg::sor<peg::two<'"'>, peg::not_one<'"'>>> {};

struct quoted_variable : peg::seq<quote, quoted_name, peg::must<quote>> {};

struct stored_number : peg::seq<peg::one<'0'>, peg::one<'x', 'X'>, peg::star<peg::identifier_other>> {};

struct decimal_number : with_state<decimal_number> {
    template <typename Input>
    static bool accept(Input& in, State& state) {
        const std::string_view rest(in.current(), in.size());
        if (rest.empty() || !(rest.front() == '.' || (rest.front() >= '0' && rest.front() <= '9'))) {
            return false;
        }
        const auto number = qzoci::parse_record_prefix(rest);
        if (!number) {
            state.fail(in.current() + number.error().position,
                       std::string(qzoci::describe(number.error().fault)));
        }
        state.push(in.current(), PushNumber{number->record});
        in.bump(number->length);
        return true;
    }
};

struct expression;
struct signed_operand;

struct more_arguments : peg::seq<argument_due, peg::must<comma>, blanks, peg::must<expression>> {};

struct call : peg::seq<function_name, blanks, peg::must<open>, blanks, peg::must<expression>,
                       peg::star<more_arguments>, peg::must<close>> {};

struct parenthesized : peg::seq<open, blanks, peg::must<expression>, peg::must<close>> {};

struct operand
    : peg::seq<
          peg::sor<parenthesized, call, constant_or_variable, quoted_variable, stored_number, decimal_number>,
          blanks> {};

struct power_tail : peg::seq<symbol_token<'^'>, nested<peg::must<signed_operand>>> {};

struct power : peg::seq<operand, peg::opt<power_tail>> {};

struct sign : peg::seq<peg::one<'+', '-'>, blanks, nested<peg::must<signed_operand>>> {};

struct signed_operand : peg::sor<sign, power> {};

struct product_tail : peg::seq<peg::one<'*', '/', '%'>, blanks, peg::must<signed_operand>> {};

struct product : peg::seq<signed_operand, peg::star<product_tail>> {};

struct sum_tail : peg::seq<peg::one<'+', '-'>, blanks, peg::must<product>> {};

struct expression : nested<peg::seq<product, peg::star<sum_tail>>> {};

struct end : peg::eof {};

struct whole_expression : peg::seq<blanks, peg::must<expression>, peg::must<end>> {};

struct target_name : peg::identifier {};

struct assignment : peg::seq<blanks, peg::opt<peg::string<'l', 'e', 't'>, peg::plus<peg::blank>>, target_name,
                             blanks, peg::one<'='>> {};

struct statement : peg::seq<peg::opt<assignment>, whole_expression> {};

/* ---- What the rules do ---- */

template <typename Rule>
struct action : peg::nothing<Rule> {};

/* Of an operator with the operand behind it. */
struct apply_binary {
    template <typename Input>
    static void apply(const Input& in, State& state) {
        state.push(in.begin(), Apply{row_of_symbol(binary_operators(), *in.begin())->operation, 2});
    }
};

template <>
struct action<sum_tail> : apply_binary {};

template <>
struct action<product_tail> : apply_binary {};

template <>
struct action<power_tail> : apply_binary {};

template <>
struct action<sign> {
    template <typename Input>
    static void apply(const Input& in, State& state) {
        state.push(in.begin(), Apply{row_of_symbol(unary_operators(), *in.begin())->operation, 1});
    }
};

template <>
struct action<call> {
    static void apply0(State& state) { state.end_call(); }
};

template <>
struct action<quoted_variable> {
    template <typename Input>
    static void apply(const Input& in, State& state) {
        std::string name;
        for (std::size_t i = 1; i + 1 < in.size(); ++i) {
            name.push_back(in.peek_char(i));
            i += in.peek_char(i) == '"' ? 1U : 0U;
        }
        state.push_variable(in.begin(), name);
    }
};

template <>
struct action<stored_number> {
    template <typename Input>
    static void apply(const Input& in, State& state) {
        const auto number = qzoci::parse_hex(in.string_view());
        if (!number) {
            state.fail(in.begin() + number.error().position,
                       std::string(qzoci::describe(number.error().fault)));
        }
        if (const auto notes = qzoci::validate(*number); !notes) {
            constexpr std::size_t digits_per_byte = 2;
            const std::size_t digits_before = 2 + digits_per_byte * notes.error().offset;
            state.fail(in.begin() + std::min(digits_before, in.size()), qzoci::message(notes.error()));
        }
        state.push(in.begin(), PushNumber{*number});
    }
};

template <>
struct action<assignment> {
    template <typename Input>
    static void apply(const Input& in, State& state) {
        std::string_view name = trimmed(in.string_view().substr(0, in.size() - 1));
        name.remove_prefix(std::min(name.find_last_of(" \t") + 1, name.size()));
        if (row_of_name(functions(), name) != nullptr || row_of_name(constants(), name) != nullptr) {
            state.fail(name.data(), fmt::format("{} is taken", quoted(name)));
        }
        state.set_target(name);
    }
};

/* ---- What is said when a rule that must match does not ---- */

template <typename Rule>
constexpr const char* expectation = "operand expected";

template <>
constexpr const char* expectation<open> = "'(' expected";

template <>
constexpr const char* expectation<close> = "')' expected";

template <>
constexpr const char* expectation<comma> = "',' expected";

template <>
constexpr const char* expectation<quote> = "'\"' expected";

template <>
constexpr const char* expectation<end> = "operator expected";

template <typename Rule>
struct control : peg::normal<Rule> {
    template <typename Input>
    [[noreturn]] static void raise(const Input& in, State& state) {
        const bool closes_nothing = std::is_same_v<Rule, end> && in.peek_char() == ')';
        state.fail(in.current(), closes_nothing ? "no parenthesis is open" : expectation<Rule>);
    }
};

template <typename Rule>
State parsed(std::string_view text, std::span<const std::string> variables) {
    State state(text, variables);
    peg::memory_input<peg::tracking_mode::lazy> in(text.data(), text.data() + text.size(), "");
    peg::parse<Rule, action, control>(in, state);
    return state;
}

} // namespace

std::vector<Step> parse_expression(std::string_view text, std::span<const std::string> variables) {
    return parsed<whole_expression>(text, variables).take_steps();
}

Statement parse_statement(std::string_view text, std::span<const std::string> variables) {
    State state = parsed<statement>(text, variables);
    return {state.take_target(), state.take_steps()};
}

} // namespace qznum
