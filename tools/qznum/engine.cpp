#include "engine.hpp"

#include <fmt/format.h>
#include <qzoci/decimal_text.hpp>

#include <cstring>

namespace qznum {

namespace {

/* Null: this thread's lines become messages. */
thread_local std::vector<std::string>* captured_lines = nullptr;

void show_line(void* output, log_level level, const char* /*file*/, long /*line*/, const char* text) {
    const std::string_view kind = level >= LOG_LEVEL_ERROR ? "engine error" : "trace";
    if (captured_lines != nullptr) {
        captured_lines->push_back(fmt::format("{}: {}", kind, text));
    } else {
        static_cast<Output*>(output)->message("{}: {}", kind, text);
    }
}

void set_up_log(int status) {
    if (status != 0) {
        throw std::runtime_error(fmt::format("cannot set up the engine's log: {}", std::strerror(status)));
    }
}

void check(std::string_view operation, sword status) {
    if (status != OCI_SUCCESS) {
        throw EngineError(operation, status);
    }
}

std::string change_in_words(const QZCICalcNumber& given, const QZCICalcNumber& stored) {
    if (given.num_infinity != 0 || QZCICalcNumCompare(&given, &stored) == 0) {
        return {};
    }
    if (stored.num_infinity != 0) {
        return "too large for the stored form, which keeps an infinity";
    }
    QZCICalcNumber difference;
    check("QZCICalcNumSub", QZCICalcNumSub(&stored, &given, &difference));
    return fmt::format("rounded to the stored form, by {}", qzoci::format_record(difference));
}

} // namespace

void show_engine_lines(Output& output, bool debug_lines) {
    set_up_log(qzoci_log_to_callback(show_line, &output));
    if (debug_lines) {
        set_up_log(qzoci_log_set_level(LOG_LEVEL_DEBUG));
    }
}

CapturedLines::CapturedLines() {
    captured_lines = &lines_;
}

CapturedLines::~CapturedLines() {
    captured_lines = nullptr;
}

void send_engine_lines(qzoci_log_callback callback, void* user) {
    set_up_log(qzoci_log_to_callback(callback, user));
    set_up_log(qzoci_log_set_level(LOG_LEVEL_DEBUG));
}

EngineError::EngineError(std::string_view operation, sword status)
    : std::runtime_error(fmt::format("{} returned status {}", operation, status)) {}

OCINumber pack(const QZCICalcNumber& record) {
    OCINumber number = {};
    check("QZCICalcNumToNumber", QZCICalcNumToNumber(&record, &number));
    return number;
}

QZCICalcNumber unpack(const OCINumber& number) {
    QZCICalcNumber record;
    check("QZCICalcNumFromNumber", QZCICalcNumFromNumber(&record, &number));
    return record;
}

Stored store(const QZCICalcNumber& record) {
    Stored stored{pack(record), {}, {}};
    stored.record = unpack(stored.number);
    stored.change = change_in_words(record, stored.record);
    return stored;
}

bool well_formed(const OCINumber& packed, std::string_view name, Output& output) {
    const auto notes = qzoci::validate(packed);
    if (!notes) {
        output.message("{}: its stored form is malformed: {}", name, qzoci::message(notes.error()));
    }
    return notes.has_value();
}

} // namespace qznum
