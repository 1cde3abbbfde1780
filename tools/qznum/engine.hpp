/* The engine as the tool calls it: stored form in and out, and the engine's lines as messages. */
#ifndef QZNUM_ENGINE_HPP
#define QZNUM_ENGINE_HPP

#include "output.hpp"

#include "qzoci/oci_calc_number.h"
#include "qzoci/qzoci_log.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qznum {

/* From here on the engine's lines become messages: error lines, or those that QZOCI_LOG_LEVEL asks for; with
 * debug_lines all of them. The output must outlive every call of the engine. */
void show_engine_lines(Output& output, bool debug_lines);

/* While one lives, the engine's lines of its thread are kept here instead of becoming messages. One at a time. */
class CapturedLines {
public:
    CapturedLines();
    CapturedLines(const CapturedLines&) = delete;
    CapturedLines& operator=(const CapturedLines&) = delete;
    ~CapturedLines();

    /* As the messages would be. */
    const std::vector<std::string>& lines() const { return lines_; }

private:
    std::vector<std::string> lines_;
};

/* From here on the callback gets the engine's lines, all of them. */
void send_engine_lines(qzoci_log_callback callback, void* user);

/* An operation returned a status other than OCI_SUCCESS. Its own error line, if it wrote one, came before. */
class EngineError : public std::runtime_error {
public:
    EngineError(std::string_view operation, sword status);
};

/* All 22 bytes are set; those after the length are 00. Throws EngineError. */
OCINumber pack(const QZCICalcNumber& record);

/* Throws EngineError. */
QZCICalcNumber unpack(const OCINumber& number);

/* A record in its stored form. */
struct Stored {
    OCINumber number;
    QZCICalcNumber record; /* as whoever reads the number will have it */
    std::string change;    /* what storing changed, in words with the difference; empty: nothing */
};

/* Throws EngineError. */
Stored store(const QZCICalcNumber& record);

/* Tells whether bytes that the engine packed can be read back, and says so if not: rounding up at the upper
 * end of the stored range wraps the exponent byte. */
bool well_formed(const OCINumber& packed, std::string_view name, Output& output);

} // namespace qznum

#endif /* QZNUM_ENGINE_HPP */
