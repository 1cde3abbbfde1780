#include "qzoci/oci_calc_number_model.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace qzoci::engine {
namespace {

constexpr QZCICalcNumber constant_of(const ub4 (&units_to_last)[limb_count - units_limb]) {
    QZCICalcNumber num = {{}, 1, 0, units_limb, limb_count - 1, 0};
    for (int i = units_limb; i < limb_count; ++i) {
        num.data_part[i] = units_to_last[i - units_limb];
    }
    return num;
}

/* pi truncated, not rounded, to 160 fraction digits. */
constexpr QZCICalcNumber pi =
    constant_of({3,        14159265, 35897932, 38462643, 38327950, 28841971, 69399375,
                 10582097, 49445923, 7816406,  28620899, 86280348, 25342117, 6798214,
                 80865132, 82306647, 9384460,  95505822, 31725359, 40812848, 11174502});

/* Exactly twice the truncated pi: the last limb is 22349004, one below that of the truncated 2 pi
 * (...22349005). Callers rely on it. */
constexpr QZCICalcNumber pi_double =
    constant_of({6,        28318530, 71795864, 76925286, 76655900, 57683943, 38798750,
                 21164194, 98891846, 15632812, 57241799, 72560696, 50684234, 13596429,
                 61730265, 64613294, 18768921, 91011644, 63450718, 81625696, 22349004});

/* Exactly half the truncated pi. */
constexpr QZCICalcNumber pi_half =
    constant_of({1,        57079632, 67948966, 19231321, 69163975, 14420985, 84699687,
                 55291048, 74722961, 53908203, 14310449, 93140174, 12671058, 53399107,
                 40432566, 41153323, 54692230, 47752911, 15862679, 70406424, 5587251});

void set_constant(QZCICalcNumber* num, const QZCICalcNumber& constant) {
    if (num != nullptr) {
        *num = constant;
    }
}

/* Compares the limbs between the outermost positions of both records; 0 where a limb outside the record would be
 * compared first. */
int compare_limbs(const QZCICalcNumber& num1, const QZCICalcNumber& num2) {
    const int first = std::min(num1.start_pos, num2.start_pos);
    const int last = std::min<int>(std::max(num1.end_pos, num2.end_pos), limb_count - 1);
    if (first < 0 || first > last) {
        return 0;
    }
    /* Mostly the first limb tells. */
    if (num1.data_part[first] != num2.data_part[first]) {
        return num1.data_part[first] > num2.data_part[first] ? 1 : -1;
    }
    return limbs::kernels().compare({num1.data_part, num2.data_part, first, last});
}

/* Compares the magnitudes of two non-zero records. infinity1 and infinity2 stand for the magnitude of an
 * infinite first or second operand against a finite one. */
int compare_non_zero(const QZCICalcNumber& num1, const QZCICalcNumber& num2, int infinity1, int infinity2) {
    if (num1.num_infinity != 0 && num2.num_infinity != 0) {
        return 0;
    }
    if (num1.num_infinity != 0) {
        return infinity1;
    }
    if (num2.num_infinity != 0) {
        return -infinity2;
    }
    return compare_limbs(num1, num2);
}

int compare_magnitudes(const QZCICalcNumber* num1, const QZCICalcNumber* num2, int infinity1, int infinity2) {
    if (num1->is_zero != 0) {
        return num2->is_zero != 0 ? 0 : -1;
    }
    if (num2->is_zero != 0) {
        return 1;
    }
    return compare_non_zero(*num1, *num2, infinity1, infinity2);
}

constexpr int first_mantissa_byte = 2;
constexpr int pairs_per_limb = 4;
constexpr int max_stored_pairs = 20;
constexpr ub1 zero_exponent_byte = 128;
constexpr ub1 terminator_byte = 102;

/* Adds up the digit pairs of mantissa bytes 2..last_byte into limbs; units_byte is the index of the byte with
 * the units pair, wherever that would fall. Bytes outside the format give pairs outside 0..99, whose weighted
 * sums wrap in ub4; pairs below limb 39 are dropped. */
template <typename PairOfByte>
void place_pairs(const ub1* bytes, int units_byte, int last_byte, PairOfByte pair_of_byte,
                 QZCICalcNumber& num) {
    const auto weighted = [&](int index, ub4 exp) -> ub4 {
        const bool stored = index >= first_mantissa_byte && index <= last_byte;
        return stored ? pair_of_byte(bytes[index]) * pow_100(exp) : 0;
    };
    int limb = units_limb;
    for (int u = units_byte; u >= first_mantissa_byte && limb >= 0; u -= pairs_per_limb, --limb) {
        num.data_part[limb] = weighted(u, 0) + weighted(u - 1, 1) + weighted(u - 2, 2) + weighted(u - 3, 3);
    }
    limb = first_fraction_limb;
    for (int f = units_byte + 1; f <= last_byte && limb < limb_count; f += pairs_per_limb, ++limb) {
        num.data_part[limb] = weighted(f, 3) + weighted(f + 1, 2) + weighted(f + 2, 1) + weighted(f + 3, 0);
    }
}

void unpack_positive(const ub1* bytes, int length, QZCICalcNumber& num) {
    place_pairs(
        bytes, bytes[1] - 191, length, [](ub1 byte) { return static_cast<ub4>(byte) - 1; }, num);
    QZCICalcNumInit(&num);
    num.num_signed = 1;
}

/* Twenty pairs leave no room for a terminator; otherwise the last byte is taken to be one, unseen. */
int last_negative_byte(const ub1* bytes, int length) {
    return length == 21 && bytes[21] != terminator_byte ? 21 : length - 1;
}

void unpack_negative(const ub1* bytes, int length, QZCICalcNumber& num) {
    place_pairs(
        bytes, 64 - bytes[1], last_negative_byte(bytes, length),
        [](ub1 byte) { return 101 - static_cast<ub4>(byte); }, num);
    QZCICalcNumInit(&num);
    num.num_signed = -1;
}

/* Unpacks a number with a mantissa, or is false with nothing written. The kernel declines positive infinity,
 * whose mantissa byte is no pair's. */
bool try_unpack(Trace t, const ub1* bytes, QZCICalcNumber& num) {
    const int length = bytes[0];
    if (length < first_mantissa_byte || length > 21 || bytes[1] == zero_exponent_byte) {
        return false;
    }
    const bool positive = bytes[1] > zero_exponent_byte;
    const int last = positive ? length : last_negative_byte(bytes, length);
    const limbs::StoredPairs stored = {bytes + first_mantissa_byte, last - 1, !positive};
    const int exponent = positive ? bytes[1] - 193 : 62 - bytes[1];
    limbs::Extent extent = {-1, -1};
    if (!t.counted(Stretch::unpacking, limbs::kernels().unpack(stored, exponent, num.data_part, extent))) {
        return false;
    }
    set_fields(num, extent, positive ? sb1{1} : sb1{-1});
    return true;
}

void store_zero(OCINumber& number) {
    number.OCINumberPart[0] = 1;
    number.OCINumberPart[1] = zero_exponent_byte;
}

void store_infinity(bool positive, OCINumber& number) {
    if (positive) {
        number.OCINumberPart[0] = 2;
        number.OCINumberPart[1] = 255;
        number.OCINumberPart[2] = 101;
    } else {
        number.OCINumberPart[0] = 1;
        number.OCINumberPart[1] = 0;
    }
}

/* The exponent byte of base-100 exponent e, before it is cut to a byte. */
int exponent_byte(bool positive, int e) {
    return positive ? e + 193 : 62 - e;
}

/* Writes count <= 20 digit pairs with base-100 exponent e. The exponent byte is cut to 8 bits without a test:
 * a rounding carry at e = 62 wraps it (to 0 for positive, 255 for negative numbers), and callers rely on it.
 */
void store_pairs(bool positive, int e, const ub1* pairs, int count, OCINumber& number) {
    ub1* out = number.OCINumberPart;
    out[1] = static_cast<ub1>(exponent_byte(positive, e));
    for (int i = 0; i < count; ++i) {
        out[first_mantissa_byte + i] = static_cast<ub1>(positive ? pairs[i] + 1 : 101 - pairs[i]);
    }
    int length = count + 1;
    if (!positive && count < max_stored_pairs) {
        ++length;
        out[length] = terminator_byte;
    }
    out[0] = static_cast<ub1>(length);
}

/* Rounds pairs[0..20], pair 20 deciding, half-up in magnitude to twenty and stores them. */
void store_rounded(bool positive, int e, ub1* pairs, OCINumber& number) {
    int last = max_stored_pairs - 1;
    if (pairs[max_stored_pairs] >= 50) {
        while (last >= 0 && pairs[last] == 99) {
            --last;
        }
        if (last < 0) {
            constexpr ub1 one_pair = 1;
            store_pairs(positive, e + 1, &one_pair, 1, number);
            return;
        }
        ++pairs[last];
    } else if (positive) {
        while (pairs[last] == 0) {
            --last; /* pairs[0] is significant */
        }
    }
    /* A negative number that is not rounded up keeps its trailing 00 pairs: callers rely on it. */
    store_pairs(positive, e, pairs, last + 1, number);
}

/* The base-100 exponent of the leading pair of a record with a leading limb. */
int leading_exponent(const QZCICalcNumber& num) {
    const ub4 leading = num.data_part[num.start_pos];
    int e = (units_limb - num.start_pos) * pairs_per_limb;
    for (ub4 k = 1; k <= 3; ++k) {
        e += leading >= pow_100(k) ? 1 : 0;
    }
    return e;
}

/* Packs a finite, non-zero record. False: a position lies outside the record at the step that needs it. */
bool pack(const QZCICalcNumber& num, OCINumber& number) {
    if (!is_limb_index(num.start_pos)) {
        return false;
    }
    const bool positive = num.num_signed == 1;
    const int e = leading_exponent(num);
    const int exponent = exponent_byte(positive, e);
    if (positive ? exponent <= zero_exponent_byte : exponent > 127) {
        store_zero(number);
        return true;
    }
    if (positive ? exponent > 255 : exponent < 0) {
        store_infinity(positive, number);
        return true;
    }
    if (num.end_pos >= limb_count) {
        return false;
    }
    ub1 pairs[limb_count * pairs_per_limb];
    int count = 0;
    for (int i = num.start_pos; i <= num.end_pos; ++i) {
        for (ub4 k = pairs_per_limb; k-- > 0;) {
            pairs[count++] = static_cast<ub1>(num.data_part[i] / pow_100(k) % 100);
        }
    }
    const auto significant = [](ub1 pair) { return pair != 0; };
    ub1* const first = std::find_if(pairs, pairs + count, significant);
    if (first == pairs + count) {
        store_zero(number);
        return true;
    }
    const ub1* last = pairs + count - 1;
    while (!significant(*last)) {
        --last;
    }
    const auto length = static_cast<int>(last - first) + 1;
    if (length <= max_stored_pairs) {
        store_pairs(positive, e, first, length, number);
    } else {
        store_rounded(positive, e, first, number);
    }
    return true;
}

/* Packs a record whose exponent byte is in range for either sign, or is false with nothing written. */
bool try_pack(Trace t, const QZCICalcNumber& num, OCINumber& number) {
    constexpr int first_start = 5; /* e = 56..59; limb 4 has a pair with e = 63 */
    constexpr int last_start = 35; /* e = -64..-61 */
    if (!is_ordinary(num) || num.start_pos < first_start || num.start_pos > last_start) {
        return false;
    }
    const bool positive = num.num_signed == 1;
    const int leading_pair = (units_limb - num.start_pos) * pairs_per_limb + pairs_per_limb - 1;
    ub1* const bytes = number.OCINumberPart;
    limbs::PackedPairs packed = {0, 0};
    if (!t.counted(Stretch::packing,
                   limbs::kernels().pack(magnitude(num), !positive, bytes + first_mantissa_byte, packed))) {
        return false;
    }
    bytes[0] = static_cast<ub1>(packed.length + 1);
    bytes[1] = static_cast<ub1>(exponent_byte(positive, leading_pair - packed.leading_zeros));
    return true;
}

/* Adds one to limb 23 and carries upward: each limb that reaches 10^8 becomes 0. True: a carry left limb 0.
 */
bool carry_into_limb_23(QZCICalcNumber& num) {
    for (int i = 23; i >= 0; --i) {
        if (++num.data_part[i] < limb_base) {
            return false;
        }
        num.data_part[i] = 0;
    }
    return true;
}

/* Room for a sign, 40 limbs of up to ten digits with a sign and a comma each, and the terminator. */
constexpr size_t text_capacity = 512;

/* The limbs in decimal, groups separated by commas. False: a position lies outside the record. */
bool render(const QZCICalcNumber& num, char (&text)[text_capacity]) {
    char* end = text;
    *end = '\0';
    const auto append = [&](const char* format, ub4 limb) {
        end += std::snprintf(end, static_cast<size_t>(text + text_capacity - end), format,
                             static_cast<int>(limb));
    };
    if (num.num_signed == -1) {
        *end++ = '-';
    }
    if (num.start_pos <= units_limb) {
        if (num.start_pos < 0) {
            return false;
        }
        append("%d,", num.data_part[num.start_pos]);
        for (int i = num.start_pos + 1; i <= units_limb; ++i) {
            append("%08d,", num.data_part[i]);
        }
    }
    if (num.end_pos > units_limb) {
        if (num.end_pos >= limb_count) {
            return false;
        }
        if (num.start_pos > units_limb) {
            *end++ = '0';
        }
        *end++ = '.';
        for (int i = first_fraction_limb; i <= num.end_pos; ++i) {
            append("%08d,", num.data_part[i]);
        }
    }
    while (end - text > 1 && end[-1] == '0' && end[-2] != '.') {
        --end;
    }
    *end = '\0';
    return true;
}

/* True when the capacity tests let the text of a finite, non-zero record be formed. */
bool passes_capacity_tests(const QZCICalcNumber& num, size_t buf_len) {
    const auto above = [buf_len](int needed) { return needed > 0 && static_cast<size_t>(needed) > buf_len; };
    const auto reaches = [buf_len](int needed) {
        return needed > 0 && static_cast<size_t>(needed) >= buf_len;
    };
    if (num.end_pos > 18 && above((20 - num.start_pos) * 8)) {
        return false;
    }
    if (num.start_pos <= 18 && reaches(num.end_pos * 8 - 151)) {
        return false;
    }
    return !reaches((num.end_pos - num.start_pos + 1) * 8);
}

/* Steps of to_str for a finite, non-zero record; text receives what the line about it shows. */
sword limbs_to_str(const QZCICalcNumber& num, char* buf, size_t buf_len, int len,
                   char (&text)[text_capacity]) {
    const bool fits = passes_capacity_tests(num, buf_len);
    if (fits && !render(num, text)) {
        QZOCI_MALFORMED("QZCICalcNumToStr");
        text[0] = '\0';
        return OCI_ERROR;
    }
    const size_t size = fits ? std::strlen(text) + 1 : 0;
    if (!fits || size > buf_len) {
        QZOCI_ERROR("buf_len is not enough len:%d, and buf_len:%ld", len, static_cast<long>(buf_len));
        text[0] = '\0';
        return OCI_ERROR;
    }
    std::memcpy(buf, text, size);
    return OCI_SUCCESS;
}

/* ---- Stored form without fast kernels; apart, as the arithmetic's ---- */

[[gnu::noinline]] sword unpack_by_steps(Trace t, QZCICalcNumber* num, const OCINumber* number) {
    constexpr const char* name = "QZCICalcNumFromNumber";
    QZOCI_DEBUG(t, "call function QZCICalcNumFromNumber with num:%p, number:%p", ptr(num), ptr(number));
    if (num == nullptr || number == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    const ub1* bytes = number->OCINumberPart;
    const int length = bytes[0];
    const int exponent = bytes[1];
    if (length < 1 || length > 21) {
        QZOCI_ERROR("QZCICalcNumFromNumber get a invalid number");
        QZOCI_LEAVE(t, name, OCI_ERROR);
    }
    if (length == 2 && exponent == 255 && bytes[2] == 101) {
        *num = infinity_of_sign(1);
        QZOCI_LEAVE(t, name, OCI_SUCCESS);
    }
    if (length == 1 && exponent == 0) {
        *num = infinity_of_sign(-1);
        QZOCI_LEAVE(t, name, OCI_SUCCESS);
    }
    if (exponent == zero_exponent_byte) {
        to_zero(t, num);
        QZOCI_LEAVE(t, name, OCI_SUCCESS);
    }
    QZCICalcNumber unpacked = canonical_zero();
    if (exponent > zero_exponent_byte) {
        unpack_positive(bytes, length, unpacked);
    } else {
        unpack_negative(bytes, length, unpacked);
    }
    *num = unpacked;
    QZOCI_LEAVE(t, name, OCI_SUCCESS);
}

[[gnu::noinline]] sword pack_by_steps(Trace t, const QZCICalcNumber* nump, OCINumber* number) {
    constexpr const char* name = "QZCICalcNumToNumber";
    QZCICalcNumber cnum = canonical_zero();
    QZOCI_DEBUG(t, "call function QZCICalcNumToNumber with num:%p, number:%p", ptr(&cnum), ptr(number));
    if (number == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    const sword status = assign(t, nump, &cnum);
    if (status != OCI_SUCCESS) {
        QZOCI_ERROR("QZCICalcNumToNumber error in QZCICalcNumAssign");
        QZOCI_LEAVE(t, name, status);
    }
    if (cnum.num_infinity == 1) {
        store_infinity(cnum.num_signed == 1, *number);
    } else if (cnum.is_zero == 1) {
        store_zero(*number);
    } else if (!pack(cnum, *number)) {
        QZOCI_MALFORMED(name);
        QZOCI_LEAVE(t, name, OCI_ERROR);
    }
    QZOCI_LEAVE(t, name, OCI_SUCCESS);
}

} // namespace

bool try_truncated(Trace t, const QZCICalcNumber& num, bool add_unit, QZCICalcNumber& result) {
    if (num.num_infinity != 0) {
        return false;
    }
    const sb1 sign = num.num_signed;
    limbs::Extent extent = {-1, -1};
    if (!t.counted(Stretch::truncation,
                   limbs::kernels().truncate(num.data_part, add_unit, result.data_part, extent))) {
        return false;
    }
    set_fields(result, extent, sign);
    return true;
}

sword assign(Trace t, const QZCICalcNumber* num, QZCICalcNumber* opt) {
    QZOCI_DEBUG(t, "call function QZCICalcNumAssign with num:%p, opt:%p", ptr(num), ptr(opt));
    if (num == nullptr || opt == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    *opt = *num;
    QZOCI_LEAVE(t, "QZCICalcNumAssign", OCI_SUCCESS);
}

sword neg(Trace t, QZCICalcNumber* num) {
    QZOCI_DEBUG(t, "call function QZCICalcNumNeg with num:%p", ptr(num));
    if (num == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    num->num_signed = static_cast<sb1>(-num->num_signed);
    QZOCI_LEAVE(t, "QZCICalcNumNeg", OCI_SUCCESS);
}

sword to_zero(Trace t, QZCICalcNumber* num) {
    QZOCI_DEBUG(t, "call function QZCICalcNumToZero with num:%p", ptr(num));
    if (num == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    *num = canonical_zero();
    num->num_signed = 0; /* the next normalisation makes it 1; copies keep 0, and callers rely on both */
    QZOCI_LEAVE(t, "QZCICalcNumToZero", OCI_SUCCESS);
}

sword to_infinity(Trace t, QZCICalcNumber* num, sb1 nsigned) {
    QZOCI_DEBUG(t, "call function QZCICalcNumToInfinity with num:%p", ptr(num));
    if (num == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    *num = infinity_of_sign(nsigned);
    QZOCI_LEAVE(t, "QZCICalcNumToInfinity", OCI_SUCCESS);
}

sword from_number(Trace t, QZCICalcNumber* num, const OCINumber* number) {
    if (t.fast && num != nullptr && number != nullptr && try_unpack(t, number->OCINumberPart, *num)) {
        return OCI_SUCCESS;
    }
    return unpack_by_steps(t, num, number);
}

sword to_number(Trace t, const QZCICalcNumber* nump, OCINumber* number) {
    if (t.fast && nump != nullptr && number != nullptr && try_pack(t, *nump, *number)) {
        return OCI_SUCCESS;
    }
    return pack_by_steps(t, nump, number);
}

sword to_round(Trace t, QZCICalcNumber* num) {
    QZOCI_DEBUG(t, "call function QZCICalcNumToRound with num:%p", ptr(num));
    if (num == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    if (t.fast && try_truncated(t, *num, false, *num)) {
        return OCI_SUCCESS;
    }
    std::fill(num->data_part + first_fraction_limb, num->data_part + limb_count, 0U);
    QZCICalcNumInit(num);
    QZOCI_LEAVE(t, "QZCICalcNumToRound", OCI_SUCCESS);
}

sword to_round_to_oci_number(Trace t, QZCICalcNumber* num) {
    /* The exit trace has a name of its own, which log readers key on. */
    constexpr const char* name = "QZCICalcNumToRoundToFiveAfterDot";
    constexpr int rounded_limb = 24;
    QZOCI_DEBUG(t, "call function QZCICalcNumToRoundToOCINumber with num:%p", ptr(num));
    if (num == nullptr) {
        QZOCI_LEAVE(t, name, OCI_INVALID_HANDLE);
    }
    if (num->is_zero != 0 || num->num_infinity != 0) {
        QZOCI_LEAVE(t, name, OCI_SUCCESS);
    }
    ub4& limb = num->data_part[rounded_limb];
    const ub4 dropped = limb % 100;
    limb -= dropped;
    if (dropped >= 50) {
        limb += 100;
        if (limb >= limb_base) {
            limb %= limb_base;
            if (carry_into_limb_23(*num)) {
                num->num_infinity = 1;
            }
        }
    }
    std::fill(num->data_part + rounded_limb + 1, num->data_part + limb_count, 0U);
    QZCICalcNumInit(num);
    QZOCI_LEAVE(t, name, OCI_SUCCESS);
}

sword to_str(Trace t, const QZCICalcNumber* num, char* buf, size_t buf_len) {
    QZOCI_DEBUG(t, "call function QZCICalcNumToStr with num:%p, buf:%p, buf_len:%ld", ptr(num), ptr(buf),
                static_cast<long>(buf_len));
    if (buf == nullptr || buf_len == 0 || num == nullptr) {
        return OCI_INVALID_HANDLE;
    }
    const int len = num->end_pos - num->start_pos + 2;
    if (len > 0 && buf_len < static_cast<size_t>(len)) {
        return OCI_INVALID_HANDLE;
    }
    char text[text_capacity] = "";
    sword status = OCI_SUCCESS;
    if (num->num_infinity == 1) {
        /* Only a sign byte of 0 gets a minus: a negative infinity prints "inf", and callers rely on it. */
        const char* const name = num->num_signed != 0 ? "inf" : "-inf";
        std::strncpy(buf, name, buf_len);
        std::copy_n(name, std::min(buf_len, std::strlen(name)), text);
    } else if (num->is_zero == 1) {
        buf[0] = '0'; /* and no terminator */
        text[0] = '0';
    } else {
        status = limbs_to_str(*num, buf, buf_len, len, text);
    }
    const bool has_minus_sign = num->num_signed == -1 && text[0] == '-';
    QZOCI_DEBUG(t, "num:%p to_str is:%s", ptr(num), text + (has_minus_sign ? 1 : 0));
    QZOCI_LEAVE(t, "QZCICalcNumToStr", status);
}

} // namespace qzoci::engine

using namespace qzoci::engine;

extern "C" {

#define TEXT_OF(macro) TEXT_OF_TOKENS(macro)
#define TEXT_OF_TOKENS(tokens) #tokens

const char* qzoci_version() {
    return TEXT_OF(QZOCI_VERSION_MAJOR) "." TEXT_OF(QZOCI_VERSION_MINOR) "." TEXT_OF(QZOCI_VERSION_PATCH);
}

ub4 pow_100(ub4 exp) {
    ub4 power = 1;
    for (ub4 i = 0; i < exp; ++i) {
        power *= 100;
    }
    return power;
}

void initNullValue(QZCICalcNumber* num) {
    if (num != nullptr) {
        *num = canonical_zero();
    }
}

void initCalcNumberFromInt(QZCICalcNumber* num, sb8 data) {
    if (num == nullptr) {
        return;
    }
    *num = canonical_zero();
    num->num_signed = data < 0 ? -1 : 1;
    /* Negated in the unsigned type, so that the most negative value has its true magnitude. */
    const auto bits = static_cast<ub8>(data);
    ub8 magnitude = data < 0 ? 0 - bits : bits;
    for (int i = units_limb; magnitude != 0; --i) {
        num->data_part[i] = static_cast<ub4>(magnitude % limb_base);
        magnitude /= limb_base;
    }
    QZCICalcNumInit(num);
}

void QZCICalcNumInit(QZCICalcNumber* num) {
    if (num == nullptr) {
        return;
    }
    if (num->num_infinity != 0) {
        std::fill(num->data_part, num->data_part + limb_count, 0U);
    }
    if (num->num_signed != -1) {
        num->num_signed = 1;
    }
    const qzoci::limbs::Extent extent = qzoci::limbs::kernels().extent(num->data_part);
    num->start_pos = static_cast<sb1>(extent.first);
    num->end_pos = static_cast<sb1>(extent.last);
    num->is_zero = extent.first < 0 && num->num_infinity == 0 ? sb1{1} : sb1{0};
}

sword QZCICalcNumAssign(const QZCICalcNumber* num, QZCICalcNumber* opt) {
    return assign(trace_of_this_call(), num, opt);
}

sword QZCICalcNumNeg(QZCICalcNumber* num) {
    return neg(trace_of_this_call(), num);
}

sword QZCICalcNumToZero(QZCICalcNumber* num) {
    return to_zero(trace_of_this_call(), num);
}

sword QZCICalcNumToInfinity(QZCICalcNumber* num, sb1 nsigned) {
    return to_infinity(trace_of_this_call(), num, nsigned);
}

void QZCICalcNumSetPi(QZCICalcNumber* num) {
    set_constant(num, pi);
}

void QZCICalcNumSetPiDouble(QZCICalcNumber* num) {
    set_constant(num, pi_double);
}

void QZCICalcNumSetPiHalf(QZCICalcNumber* num) {
    set_constant(num, pi_half);
}

sb1 QZCICalcNumCompare(const QZCICalcNumber* num1, const QZCICalcNumber* num2) {
    if (num1 == nullptr || num2 == nullptr) {
        return 0;
    }
    if (num1->is_zero != 0) {
        return num2->is_zero != 0 ? sb1{0} : static_cast<sb1>(-num2->num_signed);
    }
    if (num2->is_zero != 0 || num1->num_signed != num2->num_signed) {
        return num1->num_signed;
    }
    const int magnitudes = compare_non_zero(*num1, *num2, num1->num_infinity, num2->num_infinity);
    return static_cast<sb1>(magnitudes * num1->num_signed);
}

sb1 QZCICalcNumAbsCompare(const QZCICalcNumber* num1, const QZCICalcNumber* num2) {
    if (num1 == nullptr || num2 == nullptr) {
        return 0;
    }
    return static_cast<sb1>(compare_magnitudes(num1, num2, 1, 1));
}

sb1 QZCICalcNumCompareAbs(const QZCICalcNumber* num1, const QZCICalcNumber* num2) {
    if (num1 == nullptr || num2 == nullptr) {
        return 0;
    }
    return static_cast<sb1>(compare_magnitudes(num1, num2, num1->num_infinity, num2->num_infinity));
}

sword QZCICalcNumFromNumber(QZCICalcNumber* num, const OCINumber* number) {
    return from_number(trace_of_this_call(), num, number);
}

sword QZCICalcNumToNumber(const QZCICalcNumber* nump, OCINumber* number) {
    return to_number(trace_of_this_call(), nump, number);
}

sword QZCICalcNumToRound(QZCICalcNumber* num) {
    return to_round(trace_of_this_call(), num);
}

sword QZCICalcNumToRoundToOCINumber(QZCICalcNumber* num) {
    return to_round_to_oci_number(trace_of_this_call(), num);
}

sword QZCICalcNumToStr(const QZCICalcNumber* num, char* buf, size_t buf_len) {
    return to_str(trace_of_this_call(), num, buf, buf_len);
}

} // extern "C"
