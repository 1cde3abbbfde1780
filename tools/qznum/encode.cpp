#include "commands.hpp"
#include "engine.hpp"
#include "values.hpp"

#include <qzoci/decimal_text.hpp>

#include <optional>

namespace qznum {

namespace {

/* False when the value is in error. */
bool encode_value(const Value& value, Output& output) {
    const auto record = qzoci::parse_record(value.text);
    if (!record) {
        output.message("{}: {}", value.where, qzoci::message(record.error()));
        return false;
    }
    const Stored stored = store(*record);
    if (!stored.change.empty()) {
        output.message("{}: {}", value.where, stored.change);
    }
    output.result("{}", value.labelled(qzoci::format_hex_all(stored.number)));
    return well_formed(stored.number, value.where, output);
}

} // namespace

ExitStatus encode(const EncodeOptions& options, Output& output) {
    const auto values = open_values(options.decimals, options.file_name);
    ExitStatus status = ExitStatus::ok;
    while (const std::optional<Value> value = values->next()) {
        if (!encode_value(*value, output)) {
            status = ExitStatus::value_error;
        }
    }
    return status;
}

} // namespace qznum
